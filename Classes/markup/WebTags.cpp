#include "markup/WebTags.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "markup/TagName.h"
#include "text/Keyword.h"
#include "text/UnitScan.h"

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

bool closesComment(const char16_t* greater) { return greater[-1] == u'-' && greater[-2] == u'-'; }

}  // namespace

const RawElement* rawElement(const Tag& tag) {
    // Most tags have other lengths.
    if (tag.nameLength != 3 && (tag.nameLength < 5 || tag.nameLength > 9)) return nullptr;
    const std::u16string_view name = tag.name();
    for (const RawElement& row : RawElements)
        if (row.name.size() == name.size() && keyword::equals(name, row.name)) return &row;
    return nullptr;
}

void ForeignElements::change(const Tag& tag, bool isClosing) {
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

bool isVoidElement(const Tag& tag) {
    static constexpr std::string_view Names[] = {"AREA",  "BASE",   "BR",    "COL",  "EMBED",
                                                 "HR",    "IMG",    "INPUT", "LINK", "META",
                                                 "PARAM", "SOURCE", "TRACK", "WBR"};
    return std::ranges::any_of(Names, [&](std::string_view name) { return tag.isNamed(name); });
}

// What the scan does by its index of marks.
std::u16string_view openingTagOf(std::u16string_view element) {
    const char16_t* const begin = element.data();
    const char16_t* const end = begin + element.size();
    const char16_t* attributes = element.empty() ? end : endOfName(begin, end);
    for (const char16_t* at = attributes; (at = scan::findEither(at, end, u'=', u'>')) != end;) {
        if (*at == u'>') return element.substr(0, static_cast<std::size_t>(at - begin) + 1);
        if (!isAssignment(attributes, at++)) continue;
        at = skipWhite(at, end);
        if (at == end) break;
        at = isQuote(*at) ? scan::find(at + 1, end, *at) : endOfPlainValue(at, end);
        if (at == end) break;
        attributes = at += isQuote(*at);
    }
    return element;
}

const char16_t* findClosing(const char16_t* at, const char16_t* end, std::string_view closing) {
    if (closing.empty()) return end;
    for (; (at = scan::find(at, end, u'<')) != end; ++at)
        if (beginsTag(at, end, closing)) return at;
    return end;
}

const char16_t* findEndOfScript(const char16_t* at, const char16_t* end) {
    enum { Plain, InComment, InScriptOfComment } state = Plain;
    constexpr std::ptrdiff_t Opening = 4;  // units of <!--
    const char16_t* comment = at;
    for (; (at = scan::findEither(at, end, u'<', u'>')) != end; ++at) {
        if (*at == u'>') {
            // The hyphens may be those that open the comment.
            if (state != Plain && at - comment >= Opening && closesComment(at)) state = Plain;
        } else if (beginsTag(at, end, "</SCRIPT")) {
            if (state != InScriptOfComment) return at;
            state = InComment;
        } else if (state == Plain && end - at >= Opening && at[1] == u'!' && at[2] == u'-' &&
                   at[3] == u'-') {
            state = InComment;
            comment = at;
        } else if (state == InComment && beginsTag(at, end, "<SCRIPT")) {
            state = InScriptOfComment;
        }
    }
    return end;
}

}  // namespace velmo::detail::webTags
