#pragma once

// Every header of the platform that needs either of these includes this one, so that a program built without them is
// told so at once.
#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) <= 201703L
#error "Orlek, Net and Legacy::If need C++20: compile with -std=c++20"
#elif !defined(__cpp_rtti)
#error "Orlek, Net and Legacy::If need run-time type information: compile without -fno-rtti"
#endif

/// Marks what the base library offers to callers; everything else stays hidden in the shared object.
#if defined(__GNUC__)
#define ORLEK_API __attribute__((visibility("default")))
#else
#define ORLEK_API
#endif
