#pragma once

#include <Orlek/Export.h> // what the compiler must offer

/// Marks what the companion library offers to callers; everything else stays hidden in the shared object.
#if defined(__GNUC__)
#define LEGACY_IFKIT_API __attribute__((visibility("default")))
#else
#define LEGACY_IFKIT_API
#endif
