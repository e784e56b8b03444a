#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// What an input is taken for.
enum class ContentKind : std::uint8_t {
    Unclear,  ///< neither its bytes nor its name tell
    Page,     ///< a page or a feed
    Text,     ///< a plain text
    Binary,   ///< none of these
};

/// So many bytes of an input tell what it is.
inline constexpr std::size_t ContentHeadSize = 8192;

/// What the first bytes of an input and its name tell: a page, something binary, or nothing clear,
/// which as a rule is a text. The content goes first: marks of byte order, zeros, the signatures of
/// other formats, markup at its start. Where that leaves it open, a name such as page.html or
/// page.html.fr makes it a page; it may be empty. Time is linear in the head. Any thread.
///
///     contentKind("<!DOCTYPE html>", "a") == ContentKind::Page;           // true
///     contentKind("Tea and cups", "notes") == ContentKind::Unclear;       // true
///     contentKind("%PDF-1.7", "page.html") == ContentKind::Binary;        // true
[[nodiscard]] VELMO_API ContentKind contentKind(Bytes head, std::string_view name);

}  // namespace velmo
