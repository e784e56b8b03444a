// What a file is, by its first bytes. Names say little: servers send pages from files called
// page.html.ja.euc-jp, and from files without any extension. So the bytes are asked first.
//
// A wrong guess costs much on one side: a text that is taken for a page loses what looks like
// tags, while a page that is taken for a text is only ugly. So what is not sure is no page by its
// bytes, and only then its name is asked.
#include <velmocore/markup/ContentKinds.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <string>

#include <velmocore/markup/FileTypes.h>
#include <velmocore/markup/TagPredicates.h>

#include "markup/ByteOrderMarks.h"

namespace velmo {
namespace {

using namespace std::string_view_literals;
using detail::ByteOrderMark;
using detail::encodingOfZeros;
using detail::markOf;

/// Controls are counted in so many bytes: what is no text shows it soon.
constexpr std::size_t StartSize = 2048;

/// How the bytes of formats begin that are no text, though they may have no zero near their
/// start.
constexpr std::string_view Signatures[] = {
    "%PDF-"sv,
    "\x89PNG\r\n"sv,
    "GIF8"sv,
    "\xFF\xD8\xFF"sv,
    "PK\x03\x04"sv,
    "\x7F"
    "ELF"sv,
    "\xFD"
    "7zXZ"sv,
    "BZh9"sv,
    "Rar!"sv,
    "7z\xBC\xAF"sv,
    "\xD0\xCF\x11\xE0"sv,
};

/// Tags that a page begins with, or that are in no other kind of text.
constexpr std::string_view PageTags[] = {"<!doctype"sv, "<html"sv,    "<head"sv,  "<title"sv,
                                         "<body"sv,     "<?xml"sv,    "<!--"sv,   "<meta"sv,
                                         "<frameset"sv, "<script"sv,  "<style"sv, "<base"sv,
                                         "<rss"sv,      "<rdf:rdf"sv, "<feed"sv};

constexpr StringEncoding UTF32BigEndian = 0x98000100, UTF32LittleEndian = 0x9C000100;

/// The mark of UTF-32 in little-endian order begins with that of UTF-16.
constexpr std::array<ByteOrderMark, 5> Marks = {{
    {"\xFF\xFE\0\0"sv, UTF32LittleEndian},
    {"\0\0\xFE\xFF"sv, UTF32BigEndian},
    {"\xEF\xBB\xBF"sv, UTF8StringEncoding},
    {"\xFE\xFF"sv, UTF16BigEndianStringEncoding},
    {"\xFF\xFE"sv, UTF16LittleEndianStringEncoding},
}};

/// What a text in UTF-16 without a mark has: so many units, and high bytes of so few values.
constexpr std::size_t FewestPairs = 4, MostRows = 8;

bool hasZero(Bytes head) { return charsOf(head).find('\0') != std::string_view::npos; }

bool isTextControl(std::uint8_t byte) {
    return (byte >= '\b' && byte <= '\r') || byte == 0x1A || byte == 0x1B;
}

/// Whether bytes are UTF-32 in an order: of all characters, none is beyond the last or no text.
bool isUTF32(Bytes head, bool isBig) {
    constexpr std::uint32_t LastCharacter = 0x10FFFF;
    for (std::size_t i = 0; i + 4 <= head.size(); i += 4) {
        std::uint32_t unit = 0;
        for (std::size_t k = 0; k < 4; ++k) unit = unit << 8 | head[i + (isBig ? k : 3 - k)];
        if (unit > LastCharacter ||
            (unit < 0x20 && !isTextControl(static_cast<std::uint8_t>(unit))))
            return false;
    }
    return true;
}

bool isBinary(Bytes head) {
    const std::string_view chars = charsOf(head);
    if (std::ranges::any_of(Signatures, [&](auto each) { return chars.starts_with(each); }))
        return true;
    if (hasZero(head)) return true;
    const Bytes start = head.first(std::min(head.size(), StartSize));
    const auto controls = std::ranges::count_if(
        start, [](std::uint8_t byte) { return byte < 0x20 && !isTextControl(byte); });
    return static_cast<std::size_t>(controls) > start.size() / 10;
}

/// What follows the mark and the white space at the start, in lower case; that of UTF-16 without
/// its zeros. Empty if it begins with no tag.
std::string lowerMarkup(Bytes head) {
    const auto isNoSpace = [](std::uint8_t byte) {
        return " \t\r\n\f\0"sv.find(static_cast<char>(byte)) == std::string_view::npos;
    };
    const Bytes text = head.subspan(markOf(head).bytes.size());
    std::string lower;
    auto at = std::ranges::find_if(text, isNoSpace);
    if (at == text.end() || *at != '<') return lower;
    for (; at != text.end(); ++at)
        if (*at != 0) lower += static_cast<char>(std::tolower(*at));
    return lower;
}

/// The name of the tag that a text begins with; empty if it begins with none.
std::string_view firstTagName(std::string_view text) {
    std::size_t end = 1;
    while (end < text.size() && (std::isalnum(static_cast<unsigned char>(text[end])) != 0 ||
                                 ":-_"sv.find(text[end]) != std::string_view::npos))
        ++end;
    const bool isTag = end > 1 && end < text.size() && " \t\r\n/>"sv.find(text[end]) != text.npos;
    return isTag ? text.substr(1, end - 1) : std::string_view();
}

/// Whether a head looks like markup: it begins with a tag of pages, or with any tag that is also
/// closed, or is by the library's test a page.
bool beginsAsMarkup(Bytes head) {
    const std::string text = lowerMarkup(head);
    if (text.empty()) return false;
    if (std::ranges::any_of(PageTags, [&](auto tag) { return text.starts_with(tag); })) return true;
    const std::string_view name = firstTagName(text);
    if (!name.empty() && text.find("</" + std::string(name)) != text.npos) return true;
    return !name.empty() && isHTML(String::fromUTF8(text));
}

/// Whether a name is that of a page, also with up to three extensions behind it, as for languages
/// and charsets, and .gz.
bool isPageName(std::string name) {
    for (int i = 0; i < 4; ++i) {
        if (isMarkupFile(String::fromUTF8(name))) return true;
        const std::size_t dot = name.find_last_of("./");
        if (dot == name.npos || name[dot] == '/') return false;
        name.resize(dot);
    }
    return false;
}

}  // namespace

ByteOrderMark detail::markOf(Bytes bytes) {
    for (const ByteOrderMark& mark : Marks)
        if (charsOf(bytes).starts_with(mark.bytes)) return mark;
    return {};
}

StringEncoding detail::encodingOfZeros(Bytes head) {
    const std::size_t pairs = head.size() / 2;
    if (pairs < FewestPairs || !hasZero(head)) return UnknownStringEncoding;
    if (pairs >= 2 * FewestPairs)
        for (const bool isBig : {false, true})
            if (isUTF32(head, isBig)) return isBig ? UTF32BigEndian : UTF32LittleEndian;
    std::size_t zeros[2] = {0, 0};
    for (std::size_t i = 0; i < head.size(); ++i) zeros[i % 2] += head[i] == 0;
    if ((zeros[0] == 0) == (zeros[1] == 0)) return UnknownStringEncoding;
    const std::size_t high = zeros[0] > 0 ? 0 : 1;
    std::set<std::uint8_t> rows;
    for (std::size_t i = high; i < head.size(); i += 2) rows.insert(head[i]);
    // White space alone is a tenth of a text in any script, and a script has few rows of units.
    if (zeros[high] * 10 < pairs || rows.size() > MostRows) return UnknownStringEncoding;
    return high == 0 ? UTF16BigEndianStringEncoding : UTF16LittleEndianStringEncoding;
}

ContentKind contentKind(Bytes head, std::string_view name) {
    const bool isWide =
        markOf(head).encoding != 0 || encodingOfZeros(head) != UnknownStringEncoding;
    if (!isWide && isBinary(head)) return ContentKind::Binary;
    if (beginsAsMarkup(head) || isPageName(std::string(name))) return ContentKind::Page;
    return ContentKind::Unclear;
}

}  // namespace velmo
