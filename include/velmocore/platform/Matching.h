#pragma once

#include <cstdint>

namespace velmo {

// How all operations of the library that compare or search are told what to look past and
// which way to go.
//
//     containsSubstring(u"a Title", u"title", Case::Insensitive);                 // true
//     findString(u"a name, a name", u"name", {8, 1}, {.direction = Direction::Backward});    // {2, 4}

/// Whether upper and lower case differ. What counts as the same letter is told with each
/// operation.
enum class Case : std::uint8_t {
    Sensitive,    ///< they differ
    Insensitive,  ///< they do not
};

/// Which way a search goes, and so whether it gives the first hit or the last.
enum class Direction : std::uint8_t {
    Forward,   ///< from the start; the first hit
    Backward,  ///< from the end; the last one
};

}  // namespace velmo
