#include "url/Escapes.h"

#include <algorithm>
#include <optional>
#include <string>

#include <velmocore/text/StringFiles.h>

#include "platform/Utf8.h"

namespace velmo::escapes {
namespace {

using Units = std::u16string_view;

bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

bool hasLoneSurrogate(Units units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (!isSurrogate(units[i])) continue;
        if (units[i] >= 0xDC00 || i + 1 == units.size() || (units[i + 1] & 0xFC00) != 0xDC00)
            return true;
        ++i;
    }
    return false;
}

/// The bytes of units; none if the encoding cannot hold them.
std::optional<Data> encoded(Units units, StringEncoding encoding) {
    if (encoding != UTF8StringEncoding) return dataUsingEncoding(units, encoding);
    if (hasLoneSurrogate(units)) return std::nullopt;
    Data bytes(units.size() * 3);
    bytes.resize(detail::encodeUtf8(units, reinterpret_cast<char*>(bytes.data())));
    return bytes;
}

/// Whether the text has broken bytes replaced: more U+FFFD than stood in the bytes.
bool hasReplacements(const String& text, std::string_view utf8) {
    constexpr std::string_view Replacement = "\xEF\xBF\xBD";
    std::ptrdiff_t expected = 0;
    for (std::size_t i = utf8.find(Replacement); i != utf8.npos; i = utf8.find(Replacement, i + 3))
        ++expected;
    return std::count(text.begin(), text.end(), u'\uFFFD') != expected;
}

/// The text of bytes; absent if they are nothing in the encoding.
String stringOf(std::string_view bytes, StringEncoding encoding) {
    if (encoding == UTF8StringEncoding) {
        const String text = String::fromUTF8(bytes);
        return hasReplacements(text, bytes) ? String() : text;
    }
    const String text = stringWithData(bytesOf(bytes), encoding);
    const bool failed =
        encoding == ASCIIStringEncoding && text.view().find(u'\uFFFD') != Units::npos;
    return failed ? String() : text;
}

/// Whether ASCII is what it is in the encoding: not so in UTF-16 and UTF-32.
bool holdsAscii(StringEncoding encoding) {
    const TextEncoding text = textEncodingOf(encoding);
    return text == UTF8TextEncoding || (text & 0xFFFF) != UTF16TextEncoding;
}

}  // namespace

bool appendBytes(StringBuilder& out, Units units, StringEncoding encoding) {
    constexpr char16_t Digits[] = u"0123456789ABCDEF";
    const std::optional<Data> bytes = encoded(units, encoding);
    if (!bytes) return false;
    char16_t* write = out.prepare(bytes->size() * 3);
    for (std::uint8_t value : *bytes) {
        *write++ = u'%';
        *write++ = Digits[value >> 4];
        *write++ = Digits[value & 15];
    }
    out.commit(bytes->size() * 3);
    return true;
}

String decoded(const String& text, StringEncoding encoding) {
    const Units units = text;
    std::size_t i = 0;
    while (i < units.size() && escapeAt(units, i) < 0) ++i;
    if (i == units.size()) return text;
    // ASCII between escapes may be the second byte of a character: it is decoded along.
    const bool takesAscii = holdsAscii(encoding);
    const auto byteAt = [=](std::size_t at) {
        const int value = escapeAt(units, at);
        return value < 0 && takesAscii && units[at] < 128 ? units[at] : value;
    };
    StringBuilder out(units.size());
    std::string bytes;
    for (i = 0; i < units.size();) {
        bytes.clear();
        for (int byte; i < units.size() && (byte = byteAt(i)) >= 0;) {
            i += escapeAt(units, i) < 0 ? 1 : 3;
            bytes += static_cast<char>(byte);
        }
        const String run = stringOf(bytes, encoding);
        if (run.isAbsent()) return {};
        out.append(run);
        while (i < units.size() && byteAt(i) < 0) out.append(units[i++]);
    }
    return out.finish();
}

}  // namespace velmo::escapes
