#pragma once

/// Marks what the library offers to callers; everything else stays hidden in the shared object. Class templates carry
/// the mark too: run-time casts between shared objects rest on one visible type identity for each instance.
#if defined(__GNUC__)
#define LEGACY_IF_API __attribute__((visibility("default")))
#else
#define LEGACY_IF_API
#endif
