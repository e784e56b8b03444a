// Percent escapes as bytes of an encoding. UTF-8, which nearly all of them are, is decoded
// straight into units; for other encodings the bytes of a run are gathered and converted together,
// as the bytes of one character may be written as an escape and a plain letter.
#include "url/Escapes.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include <velmocore/text/StringFiles.h>

#include "platform/Utf8Blocks.h"
#include "url/EscapeBlocks.h"

namespace velmo::detail::escapes {
namespace {

using Units = std::u16string_view;

/// Decodes the UTF-8 of one character, whose escapes stand at read, and moves both on. False if
/// it is broken.
bool decodeCharacter(int lead, const char16_t*& read, const char16_t* end, char16_t*& write) {
    read += 3;
    if (lead < 0x80) {
        *write++ = static_cast<char16_t>(lead);
        return true;
    }
    // The others begin no sequence: parts of one, overlong forms, or beyond what Unicode has.
    if (lead < 0xC2 || lead > 0xF4) return false;
    const int further = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (end - read < 3 * further) return false;
    auto c = static_cast<char32_t>(lead & (0x3F >> further));
    for (int n = 0; n < further; ++n, read += 3) {
        const int byte = *read == u'%' ? escapeValue(read) : -1;
        if ((byte & ~0x3F) != 0x80) return false;
        c = (c << 6) | static_cast<char32_t>(byte & 0x3F);
    }
    // By the number of further bytes. A shorter form of the same character must be refused, or a
    // filter that looks for a unit could be passed by.
    constexpr char32_t Least[] = {0, 0x80, 0x800, 0x10000};
    if (c < Least[further] || c > 0x10FFFF || isSurrogate(c)) return false;
    if (c < 0x10000) {
        *write++ = static_cast<char16_t>(c);
    } else {
        *write++ = static_cast<char16_t>(0xD7C0 + (c >> 10));
        *write++ = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
    }
    return true;
}

/// The text with its escapes decoded as UTF-8, by blocks of bytes; absent if one is broken, or if the
/// text is not ASCII.
String decodedByBlocks(Units text) {
    const std::size_t most = text.size() + BlockSlack;
    std::uint8_t small[Room::Short + BlockSlack];
    std::unique_ptr<std::uint8_t[]> large;
    if (most > sizeof small) large = std::make_unique_for_overwrite<std::uint8_t[]>(most);
    std::uint8_t* const bytes = large ? large.get() : small;
    const std::uint8_t* const end = bytesOfAsciiByBlocks(text, bytes);
    if (!end) return {};
    Room room(static_cast<std::size_t>(end - bytes));
    const std::uint8_t* read = bytes;
    char16_t* write = room.units();
    decodeUtf8Blocks(read, end, write);
    return read == end ? room.finish(write) : String();
}

/// The text with its escapes decoded as UTF-8; absent if one is broken.
String decodedUtf8(Units text) {
    if (canDecodeEscapeBlocks()) {
        if (String whole = decodedByBlocks(text); !whole.isAbsent()) return whole;
    }
    Room room(text.size() + CopySlack);
    const char16_t* const end = text.data() + text.size();
    bool sound = true;
    const char16_t* const written =
        copyReplacing(text, room.units(), [&](int value, const char16_t*& read, char16_t*& write) {
            return sound = decodeCharacter(value, read, end, write);
        });
    return sound ? room.finish(written) : String();
}

/// The text of bytes; absent if they are nothing in the encoding.
String stringOf(std::string_view bytes, StringEncoding encoding) {
    const String text = stringWithData(Bytes(bytes), encoding);
    const bool failed =
        encoding == ASCIIStringEncoding && text.view().find(u'\uFFFD') != Units::npos;
    return failed ? String() : text;
}

}  // namespace

bool holdsAscii(StringEncoding encoding) {
    const TextEncoding text = textEncodingOf(encoding);
    return text == UTF8TextEncoding || (text & 0xFFFF) != UTF16TextEncoding;
}

bool appendBytes(StringBuilder& out, Units units, StringEncoding encoding) {
    const std::optional<Data> bytes = dataUsingEncoding(units, encoding);
    if (!bytes) return false;
    char16_t* write = out.prepare(bytes->size() * 3 + 1);
    for (std::uint8_t byte : *bytes) write = writeEscape(write, byte);
    out.commit(bytes->size() * 3);
    return true;
}

String decoded(const String& text, StringEncoding encoding) {
    const Units units = text;
    const char16_t* percent = scan::find(text.begin(), text.end(), u'%');
    // A % that begins no escape is a unit like any other, so a text with only such ones comes
    // back.
    while (percent < text.end() && (text.end() - percent < 3 || escapeValue(percent) < 0))
        percent = scan::find(percent + 1, text.end(), u'%');
    if (percent == text.end()) return text;
    if (encoding == UTF8StringEncoding) return decodedUtf8(units);
    // ASCII between escapes may be the second byte of a character: it is decoded along.
    const bool takesAscii = holdsAscii(encoding);
    const auto byteAt = [=](std::size_t at) {
        const int value = escapeAt(units, at);
        return value < 0 && takesAscii && units[at] < 128 ? units[at] : value;
    };
    StringBuilder out(units.size());
    std::string bytes;
    for (std::size_t i = 0; i < units.size();) {
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

}  // namespace velmo::detail::escapes
