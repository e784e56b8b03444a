// String encodings and text encodings are two numberings of the same converters. Sixteen string
// encodings have numbers of their own; all others are the number of the text encoding with a high
// bit, so that the mapping needs no table for them and loses nothing.
#include <velmocore/text/Encodings.h>

#include <algorithm>
#include <atomic>

#include "platform/Converter.h"
#include "platform/EncodingNumbers.h"
#include "platform/Surrogates.h"
#include "platform/Utf8.h"

namespace velmo {
namespace {

namespace encoding = detail::encoding;

struct EncodingPair {
    StringEncoding string;
    TextEncoding text;
};

/// The string encodings with numbers of their own; all others are told by their top bit.
constexpr EncodingPair Pairs[] = {
    {ASCIIStringEncoding, ASCIITextEncoding},
    {JapaneseEUCStringEncoding, encoding::EUCJP},
    {UTF8StringEncoding, UTF8TextEncoding},
    {ISOLatin1StringEncoding, ISOLatin1TextEncoding},
    {ShiftJISStringEncoding, ShiftJISTextEncoding},
    {ISOLatin2StringEncoding, encoding::ISOLatin2},
    {UTF16StringEncoding, UTF16TextEncoding},
    {WindowsCP1251StringEncoding, encoding::Windows1251},
    {WindowsCP1252StringEncoding, encoding::Windows1252},
    {WindowsCP1253StringEncoding, encoding::Windows1253},
    {WindowsCP1254StringEncoding, encoding::Windows1254},
    {WindowsCP1250StringEncoding, encoding::Windows1250},
    {ISO2022JPStringEncoding, encoding::ISO2022JP},
    {MacOSRomanStringEncoding, encoding::MacRoman},
    {KamenickyStringEncoding, KamenickyTextEncoding},
    {KOI8CS2StringEncoding, KOI8CS2TextEncoding},
};

constexpr std::uint32_t OtherBit = 0x80000000;

// Relaxed: the number stands for itself, and no other memory depends on it.
std::atomic<StringEncoding> processEncoding = UTF8StringEncoding;

}  // namespace

StringEncoding stringEncodingOf(TextEncoding encoding) noexcept {
    if (encoding == UnknownTextEncoding) return UnknownStringEncoding;
    const auto pair = std::ranges::find(Pairs, encoding, &EncodingPair::text);
    return pair != std::end(Pairs) ? pair->string : StringEncoding{encoding | OtherBit};
}

TextEncoding textEncodingOf(StringEncoding encoding) noexcept {
    const auto pair = std::ranges::find(Pairs, encoding, &EncodingPair::string);
    if (pair != std::end(Pairs)) return pair->text;
    // The unknown encoding has the bit too, and is none.
    const bool other = encoding < UnknownStringEncoding && (encoding & OtherBit);
    return other ? static_cast<TextEncoding>(encoding & ~OtherBit) : UnknownTextEncoding;
}

bool isEncodingAvailable(TextEncoding encoding) noexcept { return detail::hasConverter(encoding); }

std::string_view ianaName(StringEncoding encoding) noexcept {
    return detail::converterName(textEncodingOf(encoding));
}

StringEncoding defaultEncoding() noexcept {
    return processEncoding.load(std::memory_order_relaxed);
}

void setDefaultEncoding(StringEncoding encoding) noexcept {
    processEncoding.store(encoding, std::memory_order_relaxed);
}

std::optional<Data> dataUsingEncoding(const String& string, StringEncoding encoding, bool lossy) {
    if (string.isAbsent()) return std::nullopt;
    return detail::encode(textEncodingOf(encoding), string, lossy);
}

Conversion convertUTF8ToUnicode(Bytes source, std::span<char16_t> destination) {
    const detail::Decoding result = detail::decode(UTF8TextEncoding, source, destination);
    return {result.complete ? 0 : ConverterOutputBufferFull, result.written};
}

Conversion convertUnicodeToUTF8(std::u16string_view source, std::span<std::uint8_t> destination) {
    // As many units go at once as surely fit, at three bytes each; near the end of the room
    // it is one character after the other.
    std::size_t written = 0;
    int status = 0;
    while (!source.empty()) {
        const std::size_t room = destination.size() - written;
        std::size_t count = detail::wholePairs(source, room / 3);
        if (count) {
            written += detail::encodeUtf8(source.substr(0, count),
                                          reinterpret_cast<char*>(destination.data() + written));
        } else {
            // The most that a character takes; it is copied only if all of it fits, as no half of
            // a sequence may stand at the end.
            char bytes[4];
            count = detail::isPairAt(source, 0) ? 2 : 1;
            const std::size_t length = detail::encodeUtf8(source.substr(0, count), bytes);
            if (length > room) {
                status = ConverterOutputBufferFull;
                break;
            }
            std::copy_n(bytes, length, destination.data() + written);
            written += length;
        }
        source.remove_prefix(count);
    }
    return {status, written};
}

Conversion convertEncodingToUnicode(Bytes source, TextEncoding encoding,
                                    std::span<char16_t> destination) {
    if (!isEncodingAvailable(encoding)) return {ConverterUnsupportedEncoding, 0};
    const detail::Decoding result = detail::decode(encoding, source, destination);
    return {result.complete ? 1 : 0, result.written};
}

}  // namespace velmo
