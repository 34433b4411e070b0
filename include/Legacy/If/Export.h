#pragma once

#include <Orlek/Export.h> // what the compiler must offer

/// Marks what the library offers to callers; everything else stays hidden in the shared object. Class templates carry
/// the mark too: run-time casts between shared objects rest on one visible type identity for each instance. Where a
/// type argument is a foreign template, such as a pointer to one of our classes, the instance needs the mark of its own
/// in its `extern template` line, or it is as hidden as the argument.
#if defined(__GNUC__)
#define LEGACY_IF_API __attribute__((visibility("default")))
#else
#define LEGACY_IF_API
#endif

/// The mark of an instance that is the base of its own argument. clang takes such an argument, which is not complete
/// yet, for hidden, and the instance with it; g++ does not, and warns of a mark that comes after the first use.
#if defined(__clang__)
#define LEGACY_IF_BASE_API LEGACY_IF_API
#else
#define LEGACY_IF_BASE_API
#endif
