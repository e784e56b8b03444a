// One way for each kind of encoding. What pages are mostly written in does not go through ICU:
// UTF-8 has its own decoder, a single-byte encoding is a table of 256 units, and a pair of bytes is
// asked of ICU once (PairDecoder.h). ICU does the rest, and fills the tables.
#include "platform/Converter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "platform/AsciiRun.h"
#include "platform/EncodingTables.h"
#include "platform/EscapedPairs.h"
#include "platform/IcuConverter.h"
#include "platform/PairDecoder.h"
#include "platform/RowCache.h"
#include "platform/Surrogates.h"
#include "platform/Utf8.h"

namespace velmo::detail {
namespace {

using Units = std::span<char16_t>;

// ---- Single-byte encodings -----------------------------------------------------------------

/// The lower half is ASCII whatever ICU says: its code pages of IBM turn three control
/// characters round, which pages do not mean.
struct ByteTable : std::array<char16_t, 256> {
    explicit ByteTable(const EncodingRow& row) {
        for (unsigned i = 0; i < size(); ++i) {
            const auto byte = static_cast<std::uint8_t>(i);
            char16_t& unit = (*this)[i] = byte;
            if (byte < 0x80) continue;
            const Decoding one = decodeWithIcu(row, {&byte, 1}, {&unit, 1});
            if (one.written == 0) unit = ReplacementUnit;
        }
        for (const ByteUnit& own : row.own) {
            (*this)[own.byte] = own.unit;
            keepsAscii &= own.byte >= 0x80;
        }
    }
    bool keepsAscii = true;  ///< whether all bytes of ASCII are that
};

const ByteTable& byteTable(const EncodingRow& row) {
    static RowCache<ByteTable> cache;
    return cache.get(row);
}

Decoding decodeSingleBytes(const EncodingRow& row, Bytes bytes, Units out) {
    const ByteTable& table = byteTable(row);
    const std::size_t count = std::min(bytes.size(), out.size());
    const std::uint8_t* in = bytes.data();
    const std::uint8_t* const end = in + count;
    for (char16_t* to = out.data(); in < end;) {
        if (table.keepsAscii && asciiAhead(in, end)) {
            widenAscii(in, end, to);
            continue;
        }
        // Other letters come in words, between which ASCII is not worth a look.
        const std::uint8_t* const stop = in + std::min<std::ptrdiff_t>(end - in, 16);
        while (in < stop) *to++ = table[*in++];
    }
    return {count, count == bytes.size()};
}

std::optional<Data> encodeSingleBytes(const EncodingRow& row, std::u16string_view text,
                                      bool lossy) {
    // The lowest byte of a unit is the one that stands for it.
    const ByteTable& table = byteTable(row);
    std::array<ByteUnit, 256> bytes;
    for (unsigned i = 0; i < 256; ++i) bytes[i] = {static_cast<std::uint8_t>(i), table[i]};
    std::ranges::stable_sort(bytes, {}, &ByteUnit::unit);

    Data result;
    result.reserve(text.size());
    for (char16_t unit : text) {
        const auto hit = std::ranges::lower_bound(bytes, unit, {}, &ByteUnit::unit);
        const bool known = hit != bytes.end() && hit->unit == unit && unit != ReplacementUnit;
        if (!known && !lossy) return std::nullopt;
        result.push_back(known ? hit->byte : '?');
    }
    return result;
}

// ---- ASCII -----------------------------------------------------------------------------------

Decoding decodeAscii(Bytes bytes, Units out) {
    const std::size_t count = std::min(bytes.size(), out.size());
    for (std::size_t i = 0; i < count; ++i) out[i] = bytes[i] < 128 ? bytes[i] : ReplacementUnit;
    return {count, count == bytes.size()};
}

std::optional<Data> encodeAscii(std::u16string_view text, bool lossy) {
    if (!lossy && std::ranges::any_of(text, [](char16_t unit) { return unit > 127; }))
        return std::nullopt;
    Data result(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        result[i] = text[i] < 128 ? static_cast<std::uint8_t>(text[i]) : '?';
    return result;
}

// ---- UTF-8 -----------------------------------------------------------------------------------

bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// How many bytes of at most that many can be decoded on their own, so that no sequence is
/// cut. Three continuation bytes in front of the cut belong to what stands before them.
std::size_t wholeSequences(Bytes bytes, std::size_t most) {
    if (bytes.size() <= most) return bytes.size();
    std::size_t cut = most;
    while (cut > 0 && most - cut < 3 && isContinuation(bytes[cut])) --cut;
    return cut == 0 || isContinuation(bytes[cut]) ? most : cut;
}

/// The vector stores of the decoder want some room behind their result. While there is that
/// much they write to the place itself, and in the last stretch to a buffer.
Decoding decodeUtf8Within(Bytes bytes, Units out) {
    char16_t buffer[64 + Utf8Slack];
    std::size_t written = 0;
    while (!bytes.empty()) {
        const std::size_t room = out.size() - written;
        const bool direct = room >= 64 + Utf8Slack;
        const Bytes piece = bytes.first(wholeSequences(bytes, direct ? room - Utf8Slack : 64));
        const std::size_t count =
            decodeUtf8(charsOf(piece), direct ? out.data() + written : buffer);
        if (!direct) {
            std::size_t fitting = std::min(count, room);
            if (fitting < count && fitting && isHighSurrogate(buffer[fitting - 1])) --fitting;
            std::copy_n(buffer, fitting, out.data() + written);
            if (fitting < count) return {written + fitting, false};
        }
        written += count;
        bytes = bytes.subspan(piece.size());
    }
    return {written};
}

/// Whether the units hold more U+FFFD than the bytes spell out.
bool wasReplaced(Bytes bytes, Units units) {
    const auto replaced = std::ranges::count(units, ReplacementUnit);
    if (replaced == 0) return false;
    std::ptrdiff_t spelt = 0;
    const std::string_view text = charsOf(bytes);
    for (std::size_t i = text.find("\xEF\xBF\xBD"); i != text.npos;
         i = text.find("\xEF\xBF\xBD", i + 3))
        ++spelt;
    return replaced > spelt;
}

std::optional<Data> encodeUtf8Data(std::u16string_view text, bool lossy) {
    if (!lossy && hasLoneSurrogate(text)) return std::nullopt;
    Data result(text.size() * 3);
    result.resize(encodeUtf8(text, reinterpret_cast<char*>(result.data())));
    return result;
}

// ---- UTF-16 ----------------------------------------------------------------------------------

constexpr bool hostIsLittle = std::endian::native == std::endian::little;

constexpr char16_t swapped(char16_t unit) { return static_cast<char16_t>(unit << 8 | unit >> 8); }

bool beginsWith(Bytes bytes, std::string_view mark) { return charsOf(bytes).starts_with(mark); }

/// A last odd byte is U+FFFD. Lone surrogates stay what they are.
Decoding decodeUtf16(Bytes bytes, Units out, bool little) {
    const std::size_t wanted = bytes.size() / 2;
    const std::size_t count = std::min(wanted, out.size());
    if (count) std::memcpy(out.data(), bytes.data(), count * 2);
    if (little != hostIsLittle)
        for (char16_t& unit : out.first(count)) unit = swapped(unit);
    if (count < wanted || bytes.size() % 2 == 0) return {count, count == wanted};
    if (count == out.size()) return {count, false};
    out[count] = ReplacementUnit;
    return {.written = count + 1, .broken = true};
}

/// Text in 8-bit units that says it is UTF-16, as pages do whose meta tag could never have
/// been read if it were true.
bool isSurelyEightBit(Bytes bytes) {
    const Bytes head = bytes.first(std::min<std::size_t>(bytes.size(), 32));
    return head.size() >= 16 &&
           std::ranges::all_of(head, [](std::uint8_t byte) { return byte > 0 && byte < 128; });
}

/// Without a byte-order mark, the text is little-endian, as browsers have it, unless its
/// first byte is 0: pages begin with ASCII.
Decoding decodeMarkedUtf16(Bytes bytes, Units out) {
    if (beginsWith(bytes, "\xFE\xFF")) return decodeUtf16(bytes.subspan(2), out, false);
    if (beginsWith(bytes, "\xFF\xFE")) return decodeUtf16(bytes.subspan(2), out, true);
    if (isSurelyEightBit(bytes)) return {.complete = false};
    return decodeUtf16(bytes, out, bytes.empty() || bytes[0] != 0);
}

Bytes without(std::string_view mark, Bytes bytes) {
    return beginsWith(bytes, mark) ? bytes.subspan(mark.size()) : bytes;
}

Data encodeUtf16(std::u16string_view text, bool little, bool marked) {
    std::u16string units = marked ? u"\uFEFF" : u"";
    units += text;
    if (little != hostIsLittle)
        for (char16_t& unit : units) unit = swapped(unit);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(units.data());
    return Data(bytes, bytes + units.size() * 2);
}

/// For the kinds that do not tell by themselves whether bytes had no meaning.
Decoding checked(Decoding result, Units out, bool strict) {
    const Units written = out.first(result.written);
    if (strict) result.broken = std::ranges::find(written, ReplacementUnit) != written.end();
    return result;
}

Decoding decodeRow(const EncodingRow& row, Bytes bytes, Units out, bool strict) {
    switch (row.kind) {
        case EncodingKind::ASCII:
            return checked(decodeAscii(bytes, out), out, strict);
        case EncodingKind::SingleByte:
            return checked(decodeSingleBytes(row, bytes, out), out, strict);
        case EncodingKind::DoubleByte:
            return decodePairs(row, bytes, out);
        case EncodingKind::Streamed:
            if (hasEscapedPairs(row))
                if (const auto result = decodeEscapedPairs(row, bytes, out)) return *result;
            return decodeWithIcu(row, bytes, out);
        case EncodingKind::UTF16:
            return decodeMarkedUtf16(bytes, out);
        case EncodingKind::LittleEndian:
            return decodeUtf16(without("\xFF\xFE", bytes), out, true);
        case EncodingKind::BigEndian:
            return decodeUtf16(without("\xFE\xFF", bytes), out, false);
        case EncodingKind::UTF8:
            break;
    }
    Decoding result = decodeUtf8Within(without("\xEF\xBB\xBF", bytes), out);
    if (strict) result.broken = wasReplaced(bytes, out.first(result.written));
    return result;
}

}  // namespace

bool hasConverter(std::uint32_t encoding) noexcept { return encodingRow(encoding) != nullptr; }

std::string_view converterName(std::uint32_t encoding) noexcept {
    const EncodingRow* const row = encodingRow(encoding);
    return row ? row->iana : std::string_view();
}

Decoding decode(std::uint32_t encoding, Bytes bytes, std::span<char16_t> out, bool strict) {
    const EncodingRow* const row = encodingRow(encoding);
    if (!row) return {.complete = false};
    return decodeRow(*row, bytes, out, strict);
}

String decodedString(std::uint32_t encoding, Bytes bytes, Decode how) {
    const EncodingRow* const row = encodingRow(encoding);
    if (!row) return {};
    const bool strict = how == Decode::Strict;
    const std::size_t slack = row->kind == EncodingKind::UTF8 ? Utf8Slack : 0;
    const std::size_t room = std::max<std::size_t>(bytes.size(), 32) + slack;
    StringBuilder builder(room);
    const Decoding result = decodeRow(*row, bytes, {builder.data(), room}, strict);
    if (strict ? result.broken || !result.complete : result.written == 0) return {};
    builder.commit(result.written);
    return builder.finish();
}

namespace {

/// Some encodings are read by a larger set than they are written in, and the two do not agree on
/// a few private and rare characters: what another one would come back for is lacking too.
bool comesBack(const EncodingRow& row, Bytes bytes, std::u16string_view text) {
    std::u16string again(std::max<std::size_t>(bytes.size(), 32), u'\0');
    const Decoding result = decodeRow(row, bytes, again, false);
    return result.complete && std::u16string_view(again).substr(0, result.written) == text;
}

std::optional<Data> encodeRow(const EncodingRow& row, std::u16string_view text, bool lossy) {
    std::optional<Data> bytes = encodeWithIcu(row, text, lossy);
    const bool mayDiffer = row.encoder || row.kind == EncodingKind::DoubleByte;
    if (bytes && !lossy && mayDiffer && !comesBack(row, *bytes, text)) return std::nullopt;
    return bytes;
}

}  // namespace

std::optional<Data> encode(std::uint32_t encoding, std::u16string_view text, bool lossy) {
    const EncodingRow* const row = encodingRow(encoding);
    if (!row) return std::nullopt;
    switch (row->kind) {
        case EncodingKind::ASCII:
            return encodeAscii(text, lossy);
        case EncodingKind::UTF8:
            return encodeUtf8Data(text, lossy);
        case EncodingKind::UTF16:
            return encodeUtf16(text, hostIsLittle, true);
        case EncodingKind::LittleEndian:
            return encodeUtf16(text, true, false);
        case EncodingKind::BigEndian:
            return encodeUtf16(text, false, false);
        case EncodingKind::SingleByte:
            return encodeSingleBytes(*row, text, lossy);
        case EncodingKind::DoubleByte:
        case EncodingKind::Streamed:
            return encodeRow(*row, text, lossy);
    }
    return std::nullopt;
}

}  // namespace velmo::detail
