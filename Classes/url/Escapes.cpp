#include "url/Escapes.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/Utf8.h"

namespace velmo::escapes {
namespace {

using Units = std::u16string_view;

constexpr std::uint64_t Ascii = 1, Utf8 = 4, Latin1 = 5;

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
std::optional<std::string> encoded(Units units, std::uint64_t encoding) {
    if (encoding == Utf8) {
        if (hasLoneSurrogate(units)) return std::nullopt;
        return utf8(units);
    }
    const char16_t highest = encoding == Latin1 ? 255 : encoding == Ascii ? 127 : 0;
    if (std::any_of(units.begin(), units.end(), [=](char16_t unit) { return unit > highest; }))
        return std::nullopt;
    return std::string(units.begin(), units.end());
}

/// The text of bytes; absent if they are nothing in the encoding.
String stringOf(std::string_view bytes, std::uint64_t encoding) {
    if (encoding == Utf8) {
        constexpr std::string_view Replacement = "\xEF\xBF\xBD";
        const String text = String::fromUTF8(bytes);
        std::size_t expected = 0;
        for (std::size_t i = bytes.find(Replacement); i != bytes.npos;
             i = bytes.find(Replacement, i + 3))
            ++expected;
        const auto broken = std::count(text.begin(), text.end(), u'\uFFFD');
        return static_cast<std::size_t>(broken) == expected ? text : String();
    }
    std::u16string units;
    for (char byte : bytes) units += static_cast<unsigned char>(byte);
    const bool fits = encoding == Latin1 ||
                      (encoding == Ascii && std::none_of(units.begin(), units.end(),
                                                         [](char16_t u) { return u > 127; }));
    return fits ? String(units) : String();
}

}  // namespace

bool appendBytes(StringBuilder& out, Units units, std::uint64_t encoding) {
    constexpr char16_t Digits[] = u"0123456789ABCDEF";
    const std::optional<std::string> bytes = encoded(units, encoding);
    if (!bytes) return false;
    char16_t* write = out.prepare(bytes->size() * 3);
    for (char byte : *bytes) {
        const auto value = static_cast<unsigned char>(byte);
        *write++ = u'%';
        *write++ = Digits[value >> 4];
        *write++ = Digits[value & 15];
    }
    out.commit(bytes->size() * 3);
    return true;
}

String decoded(const String& text, std::uint64_t encoding) {
    const Units units = text;
    std::size_t i = 0;
    while (i < units.size() && escapeAt(units, i) < 0) ++i;
    if (i == units.size()) return text;
    StringBuilder out(units.size());
    std::string bytes;
    for (i = 0; i < units.size();) {
        // ASCII between escapes may be the second byte of a character: it is decoded along.
        bytes.clear();
        for (; i < units.size() && units[i] < 128; ++i) {
            const int value = escapeAt(units, i);
            bytes += static_cast<char>(value < 0 ? units[i] : value);
            if (value >= 0) i += 2;
        }
        const String run = stringOf(bytes, encoding);
        if (run.isAbsent()) return {};
        out.append(run);
        while (i < units.size() && units[i] >= 128) out.append(units[i++]);
    }
    return out.finish();
}

}  // namespace velmo::escapes
