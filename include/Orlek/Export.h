#pragma once

/// Marks what the base library offers to callers; everything else stays hidden in the shared object.
#if defined(__GNUC__)
#define ORLEK_API __attribute__((visibility("default")))
#else
#define ORLEK_API
#endif
