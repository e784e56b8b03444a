// Files as strings. Reading without a known encoding takes the word of a byte-order mark or tries
// UTF-8, and proves either by decoding strictly: bytes that are not that would come out as another
// text without anybody noticing.
#include <velmocore/text/StringFiles.h>

#include <algorithm>
#include <cstring>

#include "platform/Converter.h"
#include "platform/Files.h"
#include "platform/Surrogates.h"

namespace velmo {
namespace {

struct ByteOrderMark {
    std::string_view bytes;
    StringEncoding encoding;
};

/// UTF-32 stands first, as its little-endian mark begins with that of UTF-16.
constexpr ByteOrderMark Marks[] = {
    {{"\xFF\xFE\0\0", 4}, UTF32StringEncoding}, {{"\0\0\xFE\xFF", 4}, UTF32StringEncoding},
    {"\xFF\xFE", UTF16StringEncoding},          {"\xFE\xFF", UTF16StringEncoding},
    {"\xEF\xBB\xBF", UTF8StringEncoding},
};

/// By its mark, else UTF-8, which the decoding then proves or refutes.
StringEncoding detectedEncoding(Bytes bytes) {
    for (const ByteOrderMark& mark : Marks)
        if (charsOf(bytes).starts_with(mark.bytes)) return mark.encoding;
    return UTF8StringEncoding;
}

FileWriting writtenIn(StringEncoding encoding, const String& string, const Path& path,
                      bool atomically) {
    return {writeToFile(string, path, atomically, encoding), encoding};
}

}  // namespace

String stringWithData(Bytes data, StringEncoding encoding) {
    if (data.empty())
        return isEncodingAvailable(textEncodingOf(encoding)) ? String::empty() : String();
    const auto how =
        // ASCII is the encoding of last resort: it takes any bytes, so that reading ends with some
        // text.
        encoding == ASCIIStringEncoding ? detail::Decode::Lenient : detail::Decode::Strict;
    return detail::decodedString(textEncodingOf(encoding), data, how);
}

String stringWithBytes(const void* bytes, std::size_t length, StringEncoding encoding) {
    if (!bytes) return {};
    return stringWithData({static_cast<const std::uint8_t*>(bytes), length}, encoding);
}

String stringWithCString(const char* cString, std::size_t length, StringEncoding encoding) {
    return stringWithBytes(cString, length, encoding);
}

String stringWithNullTerminatedCString(const char* cString, StringEncoding encoding) {
    return stringWithBytes(cString, cString ? std::strlen(cString) : 0, encoding);
}

FileText stringWithContentsOfFile(const Path& path, StringEncoding encoding) {
    const std::optional<Data> data = detail::readFile(path.bytes());
    if (isUnknownEncoding(encoding)) {
        if (!data) return {{}, ASCIIStringEncoding};
        encoding = detectedEncoding(*data);
        String detected = stringWithData(*data, encoding);
        if (!detected.isAbsent()) return {detected, encoding};
        encoding = ASCIIStringEncoding;
    }
    return {data ? stringWithData(*data, encoding) : String(), encoding};
}

bool writeToFile(const String& string, const Path& path, bool atomically, StringEncoding encoding) {
    if (path.isAbsent()) return false;
    const std::optional<Data> data = dataUsingEncoding(string, encoding);
    return data && detail::writeFile(path.bytes(), *data, atomically);
}

FileWriting writeToFileUsingDefaultEncoding(const String& string, const Path& path,
                                            bool atomically) {
    return writtenIn(defaultEncoding(), string, path, atomically);
}

FileWriting writeToFileUsingFastestEncoding(const String& string, const Path& path,
                                            bool atomically) {
    return writtenIn(fastestEncoding(string), string, path, atomically);
}

FileWriting writeToFileUsingSmallestEncoding(const String& string, const Path& path,
                                             bool atomically) {
    return writtenIn(smallestEncoding(string), string, path, atomically);
}

// The units as they stand in memory: nothing is computed.
StringEncoding fastestEncoding(std::u16string_view) noexcept { return UTF16StringEncoding; }

StringEncoding smallestEncoding(std::u16string_view string) noexcept {
    char16_t all = 0;
    std::size_t bytes = 0;
    for (char16_t unit : string) {
        all |= unit;
        // A surrogate pair has four bytes, two for each half.
        bytes += unit < 0x80 ? 1 : unit < 0x800 || detail::isSurrogate(unit) ? 2 : 3;
    }
    // The units or-ed together are below a power of two only if each of them is.
    if (all < 0x80) return ASCIIStringEncoding;
    if (all < 0x100) return ISOLatin1StringEncoding;
    // UTF-8 has no form for it.
    if (detail::hasLoneSurrogate(string)) return UTF16StringEncoding;
    // UTF-16 has a byte-order mark besides.
    return bytes <= 2 * string.size() + 2 ? UTF8StringEncoding : UTF16StringEncoding;
}

}  // namespace velmo
