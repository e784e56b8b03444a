#include <velmocore/markup/WebCharsets.h>

#include <algorithm>
#include <string>

#include "markup/CharsetLabelTables.h"
#include "markup/HeadPrescan.h"
#include "platform/Ascii.h"
#include "platform/EncodingNumbers.h"
#include "platform/Utf8.h"
#include "text/ByteScan.h"

namespace velmo {
namespace {

constexpr TextEncoding UTF16BE = 0x10000100, UTF16LE = 0x14000100;

struct Mark {
    std::string_view bytes;
    TextEncoding encoding;
};
constexpr Mark Marks[] = {
    {"\xEF\xBB\xBF", UTF8TextEncoding}, {"\xFE\xFF", UTF16BE}, {"\xFF\xFE", UTF16LE}};
/// How XML begins in units of two bytes.
constexpr Mark WideXML[] = {{{"\0<\0?\0x", 6}, UTF16BE}, {{"<\0?\0x\0", 6}, UTF16LE}};

/// Whether the bytes are UTF-8 and say so by some that are not ASCII.
bool isPlainlyUTF8(Bytes page) {
    const std::string_view bytes = charsOf(page);
    return !detail::scan::isAscii(bytes) && detail::isValidUtf8(bytes);
}

/// A page whose head could be read byte by byte is not in UTF-16, whatever it says.
TextEncoding readable(TextEncoding encoding) {
    return encoding == UTF16BE || encoding == UTF16LE ? UTF8TextEncoding : encoding;
}

}  // namespace

TextEncoding encodingOfCharsetLabel(std::u16string_view label) {
    constexpr std::u16string_view White = u"\t\n\f\r ";
    const std::size_t start = label.find_first_not_of(White);
    if (start == label.npos) return UnknownTextEncoding;
    label = label.substr(start, label.find_last_not_of(White) + 1 - start);
    std::string name;
    // No label is longer; what is not ASCII becomes a unit that none has.
    for (const char16_t unit : label.substr(0, 32))
        name += unit < 128 ? static_cast<char>(detail::ascii::toLower(unit)) : '?';
    const auto rows = detail::charsetLabels();
    const auto row = std::ranges::lower_bound(rows, name, {}, &detail::CharsetLabel::label);
    return row != rows.end() && row->label == name ? row->encoding : UnknownTextEncoding;
}

WebCharset webCharset(Bytes page, std::u16string_view headerLabel) {
    const Mark* const mark = std::ranges::find_if(
        Marks, [&](const Mark& m) { return charsOf(page).starts_with(m.bytes); });
    const bool isMarked = mark != std::end(Marks);
    const Bytes head = page.subspan(isMarked ? mark->bytes.size() : 0);
    const std::string meta = detail::labelOfMetaTags(head),
                      xml = meta.empty() ? detail::labelOfXMLDeclaration(head) : std::string();
    const String declared = String::fromUTF8(meta.empty() ? xml : meta);
    if (isMarked) return {mark->encoding, declared};
    const TextEncoding header = encodingOfCharsetLabel(headerLabel);
    if (header != UnknownTextEncoding) return {header, declared};
    for (const Mark& wide : WideXML)
        if (charsOf(page).starts_with(wide.bytes)) return {wide.encoding, declared};
    if (!declared.isEmpty()) return {readable(encodingOfCharsetLabel(declared)), declared};
    return {isPlainlyUTF8(page) ? UTF8TextEncoding : Windows1252TextEncoding, declared};
}

}  // namespace velmo
