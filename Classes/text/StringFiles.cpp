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

StringEncoding told(StringEncoding encoding, StringEncoding* usedEncoding) {
    if (usedEncoding) *usedEncoding = encoding;
    return encoding;
}

}  // namespace

String stringWithData(Bytes data, StringEncoding encoding) {
    if (data.empty())
        return isEncodingAvailable(textEncodingOf(encoding)) ? String::empty() : String();
    const auto how =
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

String stringWithContentsOfFile(const String& path, StringEncoding encoding,
                                StringEncoding* usedEncoding) {
    told(encoding, usedEncoding);
    const std::optional<Data> data = path.isAbsent() ? std::nullopt : detail::readFile(path.utf8());
    if (isUnknownEncoding(encoding)) {
        encoding = data ? detectedEncoding(*data) : ASCIIStringEncoding;
        String detected = data ? stringWithData(*data, encoding) : String();
        if (!detected.isAbsent()) {
            told(encoding, usedEncoding);
            return detected;
        }
        encoding = told(ASCIIStringEncoding, usedEncoding);
    }
    return data ? stringWithData(*data, encoding) : String();
}

bool writeToFile(const String& string, const String& path, bool atomically,
                 StringEncoding encoding) {
    if (path.isAbsent()) return false;
    const std::optional<Data> data = dataUsingEncoding(string, encoding);
    return data && detail::writeFile(path.utf8(), *data, atomically);
}

bool writeToFileUsingDefaultEncoding(const String& string, const String& path, bool atomically,
                                     StringEncoding* usedEncoding) {
    return writeToFile(string, path, atomically, told(defaultEncoding(), usedEncoding));
}

bool writeToFileUsingFastestEncoding(const String& string, const String& path, bool atomically,
                                     StringEncoding* usedEncoding) {
    return writeToFile(string, path, atomically, told(fastestEncoding(string), usedEncoding));
}

bool writeToFileUsingSmallestEncoding(const String& string, const String& path, bool atomically,
                                      StringEncoding* usedEncoding) {
    return writeToFile(string, path, atomically, told(smallestEncoding(string), usedEncoding));
}

StringEncoding fastestEncoding(std::u16string_view) noexcept { return UTF16StringEncoding; }

StringEncoding smallestEncoding(std::u16string_view string) noexcept {
    char16_t all = 0;
    std::size_t bytes = 0;
    for (char16_t unit : string) {
        all |= unit;
        // A surrogate pair has four bytes, two for each half.
        bytes += unit < 0x80 ? 1 : unit < 0x800 || detail::isSurrogate(unit) ? 2 : 3;
    }
    if (all < 0x80) return ASCIIStringEncoding;
    if (all < 0x100) return ISOLatin1StringEncoding;
    if (detail::hasLoneSurrogate(string)) return UTF16StringEncoding;
    // UTF-16 has a byte-order mark besides.
    return bytes <= 2 * string.size() + 2 ? UTF8StringEncoding : UTF16StringEncoding;
}

}  // namespace velmo
