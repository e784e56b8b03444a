// What the HTML standard says of tags: where their names and attributes end, and which elements
// hold text that is none. The scan (markup/TagScan.h) and the reader of attributes ask here, when
// the rules of WebRules are on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/markup/TagScanner.h>

#include "markup/ByteTag.h"
#include "platform/Ascii.h"

namespace velmo::detail::webTags {

/// White space of markup. There is less of it than in texts.
constexpr bool isWhite(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r' && unit != u'\v');
}
constexpr bool endsName(char16_t unit) { return unit == u'>' || unit == u'/' || isWhite(unit); }
constexpr bool isQuote(char16_t unit) { return unit == u'"' || unit == u'\''; }

template <class Unit>
const Unit* skipWhite(const Unit* at, const Unit* end) {
    while (at < end && isWhite(*at)) ++at;
    return at;
}

/// The end of the name that begins behind the < or </ of a tag; where none does, that place.
template <class Unit>
const Unit* endOfName(const Unit* tag, const Unit* end) {
    const Unit* at = tag + 1;
    if (at < end && *at == '/') ++at;
    if (at == end || !ascii::isLetter(*at)) return at;
    while (at < end && !endsName(*at)) ++at;
    return at;
}

/// The end of a value without quotes, in which quotes, = and / are units like all others.
template <class Unit>
const Unit* endOfPlainValue(const Unit* at, const Unit* end) {
    while (at < end && *at != '>' && !isWhite(*at)) ++at;
    return at;
}

/// Whether an = belongs to an attribute, of those that begin at a place: else it is the first unit
/// of a name itself.
template <class Unit>
bool isAssignment(const Unit* attributes, const Unit* equal) {
    while (equal > attributes && isWhite(equal[-1])) --equal;
    return equal > attributes && equal[-1] != '/';
}

/// An element that holds text and no tags.
struct RawElement {
    std::string_view name, closing;  ///< in capitals; no closing text if nothing ends it
    bool isReportedWhole = false;    ///< whether it is one tag to handlers, with its text
};

/// Whether a tag begins as those do that hold text only, or other elements than those of HTML.
template <class AnyTag>
bool mayBeSpecial(const AnyTag& tag) {
    constexpr std::uint32_t Letters = 1u << ('i' - 'a') | 1u << ('m' - 'a') | 1u << ('n' - 'a') |
                                      1u << ('p' - 'a') | 1u << ('s' - 'a') | 1u << ('t' - 'a') |
                                      1u << ('x' - 'a');
    if (tag.nameLength < 3) return false;
    const auto letter = static_cast<std::uint32_t>(tag.name()[0] | 0x20) - 'a';
    return letter < 26 && (Letters >> letter & 1) != 0;
}

/// Null for a tag of any other name.
VELMO_API const RawElement* rawElement(const Tag& tag);
VELMO_API const RawElement* rawElement(const ByteTag& tag);

/// Tells whether tags stand in images or formulas, the elements of which are not those of HTML.
class ForeignElements {
public:
    /// In a feed all are foreign.
    explicit ForeignElements(bool always) : always_(always) {}

    bool isInside() const { return always_ || depth_ > ownDepth_; }
    /// Whether any image or formula is open.
    bool isOpen() const { return depth_ > 0; }

    /// Takes notice of a tag that does not close itself.
    template <class AnyTag>
    void note(const AnyTag& tag, bool isClosing) {
        if (depth_ > 0 || tag.isNamed("SVG") || tag.isNamed("MATH")) change(tag, isClosing);
    }

private:
    VELMO_API void change(const Tag& tag, bool isClosing);
    VELMO_API void change(const ByteTag& tag, bool isClosing);
    template <class AnyTag>
    void changeBy(const AnyTag& tag, bool isClosing);

    const bool always_;
    std::size_t depth_ = 0;     ///< of images and formulas
    std::size_t ownDepth_ = 0;  ///< of places in them that hold HTML
};

/// Whether the element never has contents, as br and img.
bool isVoidElement(const Tag& tag);

/// The opening tag that a text begins with; all of it if it does not end.
std::u16string_view openingTagOf(std::u16string_view element);
std::string_view openingTagOf(std::string_view element);

/// Where the closing tag of an element begins, whose name in capitals is given with its </; the end
/// if there is none.
VELMO_API const char16_t* findClosing(const char16_t* at, const char16_t* end,
                                      std::string_view closing);
VELMO_API const char* findClosing(const char* at, const char* end, std::string_view closing);

/// The same for a script. In a comment a script within it must be closed first.
VELMO_API const char16_t* findEndOfScript(const char16_t* at, const char16_t* end);
VELMO_API const char* findEndOfScript(const char* at, const char* end);

}  // namespace velmo::detail::webTags
