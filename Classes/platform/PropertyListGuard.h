// The library that reads property lists recurses as deep as they nest, unfolds objects that a
// binary list shares, ends the program at a key with a zero in it, and takes time by the square of
// a text with entities. What would hurt is found out, or put right, before it sees the bytes.
#pragma once

#include <cstddef>
#include <optional>

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

/// Arrays and dictionaries nest at most so deep.
inline constexpr std::size_t MaxListLevels = 256;
/// A dictionary has at most so many keys: the parser looks through all those before each.
inline constexpr std::size_t MaxListKeys = 16384;

struct HarmlessList {
    bool isHarmless = false;
    std::optional<Data> instead;  ///< if not absent, what the parser is to see in its place
};

/// Whether a list, binary or XML, nests no deeper and has no larger dictionaries; a binary one
/// also, whether none of its keys holds a zero and it is written as no more than 64 times its size
/// and a megabyte. False for damage that is seen on the way too; what is still wrong with a list
/// that passes is for the parser to find. Linear time, no recursion.
HarmlessList harmlessPropertyList(Bytes bytes);

}  // namespace velmo::detail
