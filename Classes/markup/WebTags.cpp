#include "markup/WebTags.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "markup/TagName.h"
#include "text/ByteScan.h"
#include "text/Keyword.h"

namespace velmo::detail::webTags {
namespace {

// clang-format off
constexpr RawElement RawElements[] = {
    {"SCRIPT", "</SCRIPT", true},
    {"STYLE", "</STYLE", true},
    {"TITLE", "</TITLE"},
    {"TEXTAREA", "</TEXTAREA"},
    {"XMP", "</XMP"},
    {"IFRAME", "</IFRAME"},
    {"NOEMBED", "</NOEMBED"},
    {"NOFRAMES", "</NOFRAMES"},
    {"PLAINTEXT", ""},
};
// clang-format on

/// Elements that cannot stand in images and formulas.
constexpr std::string_view BreakoutNames[] = {
    "b",     "big",     "body",   "br",   "center", "code",  "dd", "div",  "dl",   "dt",  "em",
    "embed", "h1",      "h2",     "h3",   "h4",     "h5",    "h6", "head", "hr",   "i",   "img",
    "li",    "listing", "menu",   "meta", "nobr",   "ol",    "p",  "pre",  "ruby", "s",   "small",
    "span",  "strong",  "strike", "sub",  "sup",    "table", "tt", "u",    "ul",   "var",
};
constexpr NameTable Breakouts([] {
    std::array<PackedName, std::size(BreakoutNames)> names{};
    std::ranges::transform(BreakoutNames, names.begin(), packed);
    return names;
}());

/// Whether a tag begins there, whose name in capitals is given with its < or </.
bool beginsTag(const char16_t* at, const char16_t* end, std::string_view tag) {
    const auto length = static_cast<std::ptrdiff_t>(tag.size());
    return end - at > length && endsName(at[length]) &&
           keyword::beginsWith({at, static_cast<std::size_t>(length)}, tag);
}
bool beginsTag(const char* at, const char* end, std::string_view tag) {
    const std::size_t length =
        keyword::lengthAtStart({at, static_cast<std::size_t>(end - at)}, tag);
    return length > 0 && at + length < end && endsName(at[length]);
}

template <class Unit>
bool closesComment(const Unit* greater) {
    return greater[-1] == '-' && greater[-2] == '-';
}

template <class AnyTag>
const RawElement* rawElementOf(const AnyTag& tag) {
    // Most tags have other lengths.
    const std::size_t length = lengthOfName(tag);
    if (length != 3 && (length < 5 || length > 9)) return nullptr;
    for (const RawElement& row : RawElements)
        if (row.name.size() == length && keyword::isKeyword(tag.name(), row.name)) return &row;
    return nullptr;
}

template <class Unit>
const Unit* findClosingIn(const Unit* at, const Unit* end, std::string_view closing) {
    if (closing.empty()) return end;
    for (; (at = scan::find(at, end, Unit('<'))) != end; ++at)
        if (beginsTag(at, end, closing)) return at;
    return end;
}

template <class Unit>
const Unit* findEndOfScriptIn(const Unit* at, const Unit* end) {
    enum { Plain, InComment, InScriptOfComment } state = Plain;
    constexpr std::ptrdiff_t Opening = 4;  // units of <!--
    const Unit* comment = at;
    for (; (at = scan::findEither(at, end, Unit('<'), Unit('>'))) != end; ++at) {
        if (*at == '>') {
            // The hyphens may be those that open the comment.
            if (state != Plain && at - comment >= Opening && closesComment(at)) state = Plain;
        } else if (beginsTag(at, end, "</SCRIPT")) {
            if (state != InScriptOfComment) return at;
            state = InComment;
        } else if (state == Plain && end - at >= Opening && at[1] == '!' && at[2] == '-' &&
                   at[3] == '-') {
            state = InComment;
            comment = at;
        } else if (state == InComment && beginsTag(at, end, "<SCRIPT")) {
            state = InScriptOfComment;
        }
    }
    return end;
}

// What the scan does by its index of marks.
template <class Unit>
std::basic_string_view<Unit> openingTagIn(std::basic_string_view<Unit> element) {
    const Unit* const begin = element.data();
    const Unit* const end = begin + element.size();
    const Unit* attributes = element.empty() ? end : endOfName(begin, end);
    for (const Unit* at = attributes;
         (at = scan::findEither(at, end, Unit('='), Unit('>'))) != end;) {
        if (*at == '>') return element.substr(0, static_cast<std::size_t>(at - begin) + 1);
        if (!isAssignment(attributes, at++)) continue;
        at = skipWhite(at, end);
        if (at == end) break;
        at = isQuote(*at) ? scan::find(at + 1, end, *at) : endOfPlainValue(at, end);
        if (at == end) break;
        attributes = at += isQuote(*at);
    }
    return element;
}

}  // namespace

const RawElement* rawElement(const Tag& tag) { return rawElementOf(tag); }
const RawElement* rawElement(const ByteTag& tag) { return rawElementOf(tag); }

template <class AnyTag>
void ForeignElements::changeBy(const AnyTag& tag, bool isClosing) {
    const bool isRoot = tag.isNamed("SVG") || tag.isNamed("MATH");
    const bool holdsHTML = tag.isNamed("FOREIGNOBJECT") || tag.isNamed("DESC");
    if (isRoot && !isClosing) {
        ++depth_;
    } else if (isRoot) {
        depth_ -= depth_ > 0;
        ownDepth_ = std::min(ownDepth_, depth_);
    } else if (holdsHTML) {
        if (!isClosing && isInside())
            ++ownDepth_;
        else if (isClosing && ownDepth_ > 0)
            --ownDepth_;
    } else if (isInside() && (!isClosing || tag.isNamed("P") || tag.isNamed("BR")) &&
               Breakouts.find(packedName(tag)) >= 0) {
        // Nobody draws a paragraph: the image before it was never closed.
        depth_ = ownDepth_;
    }
}

void ForeignElements::change(const Tag& tag, bool isClosing) { changeBy(tag, isClosing); }
void ForeignElements::change(const ByteTag& tag, bool isClosing) { changeBy(tag, isClosing); }

bool isVoidElement(const Tag& tag) {
    static constexpr std::string_view Names[] = {"AREA",  "BASE",   "BR",    "COL",  "EMBED",
                                                 "HR",    "IMG",    "INPUT", "LINK", "META",
                                                 "PARAM", "SOURCE", "TRACK", "WBR"};
    return std::ranges::any_of(Names, [&](std::string_view name) { return tag.isNamed(name); });
}

std::u16string_view openingTagOf(std::u16string_view element) { return openingTagIn(element); }
std::string_view openingTagOf(std::string_view element) { return openingTagIn(element); }

const char16_t* findClosing(const char16_t* at, const char16_t* end, std::string_view closing) {
    return findClosingIn(at, end, closing);
}
const char* findClosing(const char* at, const char* end, std::string_view closing) {
    return findClosingIn(at, end, closing);
}

const char16_t* findEndOfScript(const char16_t* at, const char16_t* end) {
    return findEndOfScriptIn(at, end);
}
const char* findEndOfScript(const char* at, const char* end) { return findEndOfScriptIn(at, end); }

}  // namespace velmo::detail::webTags
