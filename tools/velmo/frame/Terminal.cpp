#include "Terminal.h"

#include <fmt/core.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::tool {
namespace {

constexpr char16_t Replacement = 0xFFFD;

bool isPlainByte(unsigned char byte) {
    return (byte >= 0x20 && byte < 0x7F) || byte == '\t' || byte == '\n';
}

/// How many bytes from the start on are plain ASCII.
std::size_t plainBytes(std::string_view bytes) {
    std::size_t count = 0;
    while (count < bytes.size() && isPlainByte(static_cast<unsigned char>(bytes[count]))) ++count;
    return count;
}

/// The bytes that the first one announces, no more than there are.
std::size_t sequenceLength(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes.front());
    const std::size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return std::min(length, bytes.size());
}

/// The first character, which is not plain ASCII, as it may be shown; takes it off the bytes.
std::string shownCharacter(std::string_view& bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    if (first < 0x80) {
        // A carriage return alone would let what follows be written over the line.
        const bool isLineEnd = first == '\r' && bytes.size() > 1 && bytes[1] == '\n';
        bytes.remove_prefix(1);
        return isLineEnd ? "\r" : std::string{'^', static_cast<char>(first ^ 0x40)};
    }
    const std::string_view sequence = bytes.substr(0, sequenceLength(bytes));
    const String units = String::fromUTF8(sequence);
    if (units[0] == Replacement && sequence != "\xEF\xBF\xBD") {
        bytes.remove_prefix(1);
        return fmt::format("<{:02X}>", first);
    }
    bytes.remove_prefix(sequence.size());
    // Controls of the C1 set are commands to some terminals, and turned text can show another name
    // than a file has.
    if (units[0] < 0xA0 || turnsDirection(units[0]))
        return fmt::format("<U+{:04X}>", static_cast<unsigned>(units[0]));
    return std::string(sequence);
}

constexpr std::string_view escapeOf(Line::Color color) {
    switch (color) {
        case Line::Color::File:
            return "35";
        case Line::Color::Number:
            return "32";
        default:
            return "1;31";
    }
}

}  // namespace

bool turnsDirection(char16_t unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isTerminal(int descriptor) { return isatty(descriptor) != 0; }

bool isColorTerminal() {
    const char* terminal = std::getenv("TERM");
    const char* refused = std::getenv("NO_COLOR");
    return isTerminal(STDOUT_FILENO) && !(refused && *refused) &&
           !(terminal && std::string_view(terminal) == "dumb");
}

std::string shown(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const std::size_t plain = plainBytes(bytes);
        out += bytes.substr(0, plain);
        bytes.remove_prefix(plain);
        if (!bytes.empty()) out += shownCharacter(bytes);
    }
    return out;
}

std::string oneLine(std::u16string_view units) {
    std::u16string line(units);
    for (char16_t& unit : line)
        if (isFeedUnit(unit)) unit = u' ';
    return utf8(line);
}

Line& Line::add(std::string_view text) {
    text_ += style_.visible ? shown(text) : std::string(text);
    return *this;
}

Line& Line::add(Color color, std::string_view text) {
    if (!style_.colors) return add(text);
    (text_ += "\x1B[") += escapeOf(color);
    text_ += 'm';
    add(text);
    text_ += "\x1B[m";
    return *this;
}

}  // namespace velmo::tool
