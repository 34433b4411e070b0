#pragma once

#include <Orlek/Export.h> // what the compiler must offer

/// Marks what the networking library offers to callers; everything else stays hidden in the shared object.
#if defined(__GNUC__)
#define NET_API __attribute__((visibility("default")))
#else
#define NET_API
#endif
