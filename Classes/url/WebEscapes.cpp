// Most units of most links stay as they are, so that runs of those are copied in one piece.
#include "url/WebEscapes.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/text/StringFiles.h>

#include "url/Escapes.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

constexpr std::uint8_t bitOf(EncodeSet set) { return static_cast<std::uint8_t>(set); }

/// The sets that each byte is in.
constexpr auto Sets = [] {
    constexpr int Control = bitOf(EncodeSet::Control), Fragment = bitOf(EncodeSet::Fragment),
                  Query = bitOf(EncodeSet::Query), Special = bitOf(EncodeSet::SpecialQuery),
                  Path = bitOf(EncodeSet::Path), User = bitOf(EncodeSet::UserInfo);
    std::array<std::uint8_t, 256> sets{};
    for (std::size_t byte = 0; byte < sets.size(); ++byte)
        if (byte < 0x20 || byte > 0x7E)
            sets[byte] = Control | Fragment | Query | Special | Path | User;
    const auto add = [&sets](std::string_view units, int mask) {
        for (const char unit : units) {
            auto& entry = sets[static_cast<unsigned char>(unit)];
            entry = static_cast<std::uint8_t>(entry | mask);
        }
    };
    add(" \"<>", Fragment | Query | Special | Path | User);
    add("`", Fragment | Path | User);
    add("#", Query | Special | Path | User);
    add("'", Special);
    add("?^{}", Path | User);
    add("/:;=@[\\]|", User);
    return sets;
}();

bool isIn(char16_t unit, EncodeSet set) {
    return unit >= Sets.size() || (Sets[unit] & bitOf(set)) != 0;
}

/// How many units from a position on stay as they are.
std::size_t plainRun(Units units, std::size_t from, EncodeSet set) {
    const auto start = units.begin() + static_cast<std::ptrdiff_t>(from);
    return static_cast<std::size_t>(
        std::find_if(start, units.end(), [set](char16_t unit) { return isIn(unit, set); }) - start);
}

/// The character at a position, which moves behind it.
char32_t takeCharacter(Units units, std::size_t& i) {
    const char16_t unit = units[i];
    if (!isSurrogate(unit)) return units[i++];
    if (!isPairAt(units, i)) return ++i, U'\uFFFD';
    i += 2;
    return characterOfPair(unit, units[i - 1]);
}

void appendEscape(StringBuilder& out, char32_t byte) {
    constexpr std::size_t AtATime = std::tuple_size_v<escapes::Spelling>;
    escapes::writeEscape(out.prepare(AtATime), byte);
    out.commit(3);
}

void appendEscapes(StringBuilder& out, char32_t character) {
    constexpr std::size_t MostUnits = 12, AtATime = std::tuple_size_v<escapes::Spelling>;
    if (character < 0x80) return appendEscape(out, character);
    char16_t* const write = out.prepare(MostUnits + AtATime);
    const char16_t* const end = escapes::writeEscapes(write, character);
    out.commit(static_cast<std::size_t>(end - write));
}

/// Calls escape(position) for all that does not stay as it is; it moves the position on.
template <class Escape>
void appendWith(StringBuilder& out, Units units, EncodeSet set, Escape escape) {
    for (std::size_t i = 0;;) {
        const std::size_t run = plainRun(units, i, set);
        out.append(units.substr(i, run));
        i += run;
        if (i == units.size()) return;
        escape(i);
    }
}

}  // namespace

void appendEncoded(StringBuilder& out, Units units, EncodeSet set) {
    appendWith(out, units, set,
               [&](std::size_t& i) { appendEscapes(out, takeCharacter(units, i)); });
}

void appendEncoded(StringBuilder& out, Units units, EncodeSet set, StringEncoding encoding) {
    appendWith(out, units, set, [&](std::size_t& i) {
        const std::size_t start = i;
        const char32_t character = takeCharacter(units, i);
        const auto bytes = dataUsingEncoding(units.substr(start, i - start), encoding);
        if (!bytes) {
            // "&#" and ";", escaped.
            out.append(u"%26%23");
            for (const char digit : std::to_string(static_cast<std::uint32_t>(character)))
                out.append(static_cast<char16_t>(digit));
            return out.append(u"%3B");
        }
        for (const std::uint8_t byte : *bytes)
            isIn(byte, set) ? appendEscape(out, byte) : out.append(static_cast<char16_t>(byte));
    });
}

}  // namespace velmo::detail
