#pragma once

/// Marks what the library shows; everything else is hidden. The library is built
/// with -fvisibility=hidden, so that a name without this mark is private.
#define VELMO_API __attribute__((visibility("default")))
