// The library that reads property lists recurses as deep as they nest, and unfolds objects
// that a binary list shares. What would hurt is found out before it sees the bytes.
#pragma once

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

/// Arrays and dictionaries nest at most so deep.
inline constexpr std::size_t MaxListLevels = 256;

/// Whether a list, binary or XML, nests no deeper, and unfolds to no more than 64 times its
/// size and a megabyte. False also for damage that is seen on the way; what is still wrong
/// with a list that passes is for the parser to find. Linear time, no recursion.
bool isHarmlessPropertyList(Bytes bytes);

}  // namespace velmo::detail
