// Encoding by the standard, but decoding by rules of its own: no unit is refused or passed over,
// so that a few damaged ones leave all bytes behind them where they were. isBase64String() is for
// those who must know.
#include <velmocore/storage/Base64.h>

#include <algorithm>
#include <array>

#include <velmocore/text/StringCreation.h>
#include <velmocore/text/StringFiles.h>

namespace velmo {
namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// One more than the largest value of six bits.
constexpr std::uint8_t NoValue = 64;

/// The value of each ASCII unit.
constexpr std::array<std::uint8_t, 128> Values = [] {
    std::array<std::uint8_t, 128> values;
    values.fill(NoValue);
    std::uint8_t value = 0;
    for (const char letter : Alphabet) values[static_cast<std::uint8_t>(letter)] = value++;
    return values;
}();

bool isInAlphabet(char16_t unit) { return unit < Values.size() && Values[unit] != NoValue; }
std::uint32_t valueOf(char16_t unit) { return isInAlphabet(unit) ? Values[unit] : 0; }

/// All of it, however much: each "=" takes one byte off the result. It is not looked for in the
/// middle, where it counts as any unit outside the alphabet.
std::size_t paddingAtEnd(std::u16string_view string) {
    return string.size() - (string.find_last_not_of(u'=') + 1);
}

}  // namespace

String encodeBase64Bytes(Bytes bytes, char16_t padding) {
    if (bytes.empty()) return {};
    StringBuilder out((bytes.size() + 2) / 3 * 4);
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(3, bytes.size()))) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size());
        std::uint32_t group = 0;
        // A short last group is filled up with zeros, of which the digits beyond the data are left
        // out below.
        for (std::size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? bytes[i] : 0);
        for (std::size_t i = 0; i < 4; ++i) {
            if (i <= count)
                out.append(static_cast<char16_t>(Alphabet[group >> (18 - 6 * i) & 63]));
            else if (padding)
                out.append(padding);
        }
    }
    return out.finish();
}

String encodebase64(const String& string) { return encodeBase64Bytes(Bytes(string.utf8()), 0); }

std::optional<Data> decodedBase64Data(std::u16string_view string) {
    Data result;
    result.reserve((string.size() + 3) / 4 * 3);
    for (std::size_t i = 0; i < string.size(); i += 4) {
        std::uint32_t group = 0;
        for (std::size_t j = i; j < i + 4; ++j)
            // The same number of steps whatever is read, so that nothing shifts where a unit has
            // no value.
            group = group << 6 | (j < string.size() ? valueOf(string[j]) : 0);
        for (const int shift : {16, 8, 0})
            result.push_back(static_cast<std::uint8_t>(group >> shift));
    }
    result.resize(result.size() - std::min(result.size(), paddingAtEnd(string)));
    if (result.empty()) return std::nullopt;
    return result;
}

String decodebase64UsingEncoding(const String& string, StringEncoding encoding) {
    if (string.isEmpty()) return string;
    const std::optional<Data> bytes = decodedBase64Data(string);
    if (!bytes) return {};
    // Groups without padding gave zeros behind the data; a text has none.
    const auto end = std::find(bytes->begin(), bytes->end(), 0);
    if (end == bytes->begin()) return {};
    return stringWithData({bytes->begin(), end}, encoding);
}

bool isBase64String(std::u16string_view string) {
    const std::size_t padding = paddingAtEnd(string), length = string.size() - padding;
    // Six bits are less than a byte: one unit alone in the last group can stand for nothing.
    if (length == 0 || padding > 2 || length % 4 == 1) return false;
    if (padding > 0 && string.size() % 4 != 0) return false;
    return std::all_of(string.begin(), string.end() - static_cast<std::ptrdiff_t>(padding),
                       isInAlphabet);
}

}  // namespace velmo
