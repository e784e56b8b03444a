#pragma once

#if !defined(__cplusplus) || __cplusplus < 202002L
#error "velmocore needs C++20: compile with -std=c++20 or newer"
#endif

/// Marks what the library shows; everything else is hidden. The library is built
/// with -fvisibility=hidden, so that a name without this mark is private.
#define VELMO_API __attribute__((visibility("default")))

/// Marks an argument (or, after a member function's parentheses, the object) into which the
/// result points. Clang warns where such a result outlives a temporary; other compilers
/// ignore it.
#if defined(__has_cpp_attribute) && __has_cpp_attribute(clang::lifetimebound)
#define VELMO_LIFETIME [[clang::lifetimebound]]
#else
#define VELMO_LIFETIME
#endif
