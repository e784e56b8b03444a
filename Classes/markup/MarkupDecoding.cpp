// What a page says of its charset is often wrong, and its header is as well. So both are tried: a
// reading that cannot be made falls out, and between two that can, the one with less units U+FFFD
// wins. The order of the trials decides ties, and differs between the web, where a header may have
// named the charset, and files, which have only what they say themselves.
//
// Each reading is a pass over the whole page; where the head tells by itself that another reading
// will win, the first one is never made.
#include <velmocore/markup/MarkupDecoding.h>

#include <velmocore/markup/Charsets.h>
#include <velmocore/markup/FileTypes.h>
#include <velmocore/markup/MarkupCharset.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/WebCharsets.h>
#include <velmocore/platform/PropertyList.h>

#include "markup/HeadCharset.h"
#include "markup/MarkupReading.h"
#include "platform/Converter.h"
#include "platform/EncodingNumbers.h"
#include "platform/Files.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using detail::Decode;
using detail::MarkupReading;
namespace encoding = detail::encoding;

constexpr StringEncoding otherEncoding(TextEncoding encoding) { return 0x80000000 | encoding; }

constexpr StringEncoding Big5 = otherEncoding(Big5TextEncoding);
constexpr StringEncoding Big5HKSCS = otherEncoding(Big5HKSCSTextEncoding);
constexpr StringEncoding EUCCN = otherEncoding(EUCCNTextEncoding);

/// What a page in Shift JIS may be besides, in the order in which it is tried.
constexpr TextEncoding japaneseEncodings[] = {
    encoding::ShiftJIS,        encoding::ShiftJISX0213, encoding::MacJapanese,
    encoding::WindowsJapanese, encoding::JISX0201,      encoding::JISX0208of83,
    encoding::JISX0208of90,    encoding::JISX0212,      encoding::JISC6226,
    encoding::EUCJP,           encoding::ISO2022JP,     encoding::ISO2022JP1,
    encoding::ISO2022JP2,      encoding::ISO2022JP3};
/// The same for a page in EUC-CN.
constexpr TextEncoding chineseEncodings[] = {encoding::EUCTW, encoding::GB2312, encoding::HZ,
                                             encoding::GBK,   encoding::Big5,   encoding::Big5HKSCS,
                                             encoding::Big5E};

/// A reading of the bytes in one encoding.
struct Trial {
    String text;  ///< absent if it gave no units
    StringEncoding encoding = UnknownStringEncoding;

    bool failed() const { return text.isAbsent(); }
    std::size_t errors() const {
        return detail::scan::count(text.begin(), text.end(), detail::ReplacementUnit);
    }
};

Trial tryEncoding(Bytes data, StringEncoding encoding, Decode how = Decode::Lenient) {
    return {detail::decodedString(textEncodingOf(encoding), data, how), encoding};
}

Trial tryOneOf(Bytes data, std::span<const TextEncoding> encodings) {
    for (TextEncoding encoding : encodings) {
        Trial trial = tryEncoding(data, stringEncodingOf(encoding));
        if (!trial.failed()) return trial;
    }
    return {};
}

/// The encoding that a page says it has by its byte-order mark; else the given one.
StringEncoding markedEncoding(Bytes data, StringEncoding otherwise) {
    // Two bytes could only be the mark itself.
    if (data.size() < 3) return otherwise;
    if (data[0] == 0xFF && data[1] == 0xFE) return UTF16LittleEndianStringEncoding;
    if (data[0] == 0xFE && data[1] == 0xFF) return UTF16BigEndianStringEncoding;
    return otherwise;
}

/// UTF-8 without its mark, which is no part of the text.
std::string_view withoutMark(Bytes data) {
    constexpr std::string_view Mark = "\xEF\xBB\xBF";
    const std::string_view bytes = charsOf(data);
    return bytes.substr(bytes.starts_with(Mark) ? Mark.size() : 0);
}

/// Whether UTF-8 was right although the page names a single-byte encoding: read as such, UTF-8
/// makes a longer text.
bool isUTF8AfterAll(const Trial& first, const Trial& second) {
    // In these nearly every byte is a unit, so that reading UTF-8 as such makes no errors by which
    // the reading could be refused.
    const bool isSingleByte = second.encoding == WindowsCP1251StringEncoding ||
                              second.encoding == ISOLatin1StringEncoding;
    return isSingleByte && second.text.length() > first.text.length() && first.errors() == 0 &&
           second.errors() == 0;
}

/// The order of trials for a page whose charset is named by its header, if at all.
class PageTrials {
public:
    PageTrials(Bytes data, std::u16string_view encodingName, StringEncoding defaultEncoding)
        : data_(data), default_(defaultEncoding), encoding_(markedEncoding(data, defaultEncoding)) {
        if (encodingName.empty()) return;
        const StringEncoding named = NSEncodingFromName(encodingName);
        if (named == 0 || named == UnknownStringEncoding) return;
        encoding_ = named;
        isNamed_ = true;
    }

    MarkupReading run() {
        const std::string_view utf8 = withoutMark(data_);
        const bool isUTF8 = encoding_ == UTF8StringEncoding && !utf8.empty();
        String charset = charsetOfHead();
        if (charset.isAbsent())
            charset = isUTF8 ? detail::markupCharsetOfBytes(utf8) : charsetOfFirst();
        if (isUTF8 && isSettledBy(charset2NSStringEncoding(charset)))
            return {utf8, {{}, UTF8StringEncoding, std::move(charset)}};
        const bool isRead = !charset.isEmpty() || !first().failed();
        Trial best = choose(isRead ? charset2NSStringEncoding(charset) : 0);
        return {{}, {std::move(best.text), best.encoding, std::move(charset)}};
    }

private:
    /// The charset that the page names, if its head tells; absent if the whole page must be
    /// read for it. Where another reading than the first wins, the first is then never made.
    String charsetOfHead() const {
        // A sequence that is cut at the end of the head does no harm, as only tags in front of it
        // count.
        constexpr std::size_t HeadBytes = 2048;
        if (isNamed_ || encoding_ != UTF8StringEncoding || data_.size() < HeadBytes) return {};
        return detail::markupCharsetOfHead(charsOf(data_.first(HeadBytes)));
    }

    /// The reading without regard to what the page says, made when it is asked for.
    const Trial& first() {
        if (!first_) first_ = tryEncoding(data_, encoding_);
        return *first_;
    }

    String charsetOfFirst() {
        return first().failed() ? String::empty() : markupCharset(first().text);
    }

    /// Whether what the page says leads to no other reading than the first.
    bool isSettledBy(StringEncoding declared) const {
        return declared == encoding_ || declared == UnknownStringEncoding ||
               declared == ASCIIStringEncoding;
    }

    Trial choose(StringEncoding declared) {
        if (isSettledBy(declared)) return first();
        const bool isTrustedUTF8 = isNamed_ && encoding_ == UTF8StringEncoding;
        if (declared == WindowsCP1251StringEncoding && !isTrustedUTF8) {
            // Without a header's backing, such a page is often Windows-1250 in fact.
            first_ = Trial();
            encoding_ = WindowsCP1250StringEncoding;
        } else if (declared == Big5) {
            first_ = Trial();
            encoding_ = Big5HKSCS;
        }
        Trial second = tryEncoding(data_, declared);
        if (second.failed()) return lastResort(declared);
        if (!isNamed_ || first().failed()) return second;
        if (isTrustedUTF8 && isUTF8AfterAll(first(), second)) return first();
        return second.errors() > first().errors() ? first() : second;
    }

    Trial lastResort(StringEncoding declared) {
        Trial result = first();
        if (declared == ShiftJISStringEncoding) result = tryOneOf(data_, japaneseEncodings);
        if (declared == EUCCN) result = tryOneOf(data_, chineseEncodings);
        if (result.failed() && encoding_ != declared)
            result = tryEncoding(data_, encoding_, Decode::Strict);
        if (result.failed() && encoding_ != default_ && declared != default_)
            result = tryEncoding(data_, default_, Decode::Strict);
        return result;
    }

    Bytes data_;
    StringEncoding default_;
    StringEncoding encoding_;  ///< of the first trial, and of the last but one resort
    bool isNamed_ = false;
    std::optional<Trial> first_;
};

/// The order of trials for a page from a file.
Trial chooseForFile(Bytes data, StringEncoding defaultEncoding) {
    if (data.empty()) return {String::empty(), defaultEncoding};
    Trial first = tryEncoding(data, defaultEncoding);
    if (first.failed()) return first;
    const StringEncoding declared = markupEncoding(first.text);
    if (declared == defaultEncoding || declared == UnknownStringEncoding ||
        declared == ASCIIStringEncoding)
        return first;
    Trial second = tryEncoding(data, declared);
    if (second.failed()) {
        // The encoding that is told is not that of the text, which is kept as it was.
        if (declared != UTF8StringEncoding) return {first.text, declared};
        Trial roman = tryEncoding(data, MacOSRomanStringEncoding, Decode::Strict);
        return roman.failed() ? Trial{first.text, MacOSRomanStringEncoding} : roman;
    }
    if (second.errors() > first.errors()) return first;
    if (defaultEncoding == UTF8StringEncoding && isUTF8AfterAll(first, second)) return first;
    return second;
}

/// The XML form of a property list in its text; absent if the bytes are none.
String propertyListText(const String& path, Bytes data) {
    const bool isBinary = data.size() >= 6 && charsOf(data).starts_with("bplist");
    if (!isBinary && !isPropertyListFile(path)) return {};
    const std::optional<Data> xml = propertyListAsXML(data);
    return xml ? String::fromUTF8(charsOf(*xml)) : String();
}

}  // namespace

MarkupReading detail::readMarkup(Bytes data, const MarkupDecodingOptions& options) {
    if (data.empty()) return {{}, {String::empty(), options.defaultEncoding}};
    const String charset = headerCharset(options.contentType);
    const std::u16string_view name = charset.isEmpty() ? options.encodingName : charset.view();
    if (!options.web.charsets) return PageTrials(data, name, options.defaultEncoding).run();
    WebCharset found = webCharset(data, name);
    const StringEncoding encoding = stringEncodingOf(found.encoding);
    if (const std::string_view utf8 = withoutMark(data);
        found.encoding == UTF8TextEncoding && !utf8.empty())
        return {utf8, {{}, encoding, std::move(found.declared)}};
    return {{},
            {detail::decodedString(found.encoding, data, Decode::Lenient), encoding,
             std::move(found.declared)}};
}

MarkupDecoding decodeMarkup(Bytes data, const MarkupDecodingOptions& options) {
    MarkupReading reading = detail::readMarkup(data, options);
    if (reading.isUTF8()) reading.page.text = String::fromUTF8(reading.utf8);
    return std::move(reading.page);
}

String stringWithMarkupData(Bytes data, const MarkupDecodingOptions& options) {
    return decodeMarkup(data, options).text;
}

FileText stringWithMarkupContentsOfFile(const Path& path, StringEncoding defaultEncoding) {
    const std::optional<Data> data = detail::readFile(path.bytes());
    if (!data) return {{}, UnknownStringEncoding};
    const String list = propertyListText(path.string(), *data);
    if (!list.isAbsent()) return {list, UnknownStringEncoding};
    Trial best = chooseForFile(*data, defaultEncoding);
    return {best.text, best.encoding};
}

}  // namespace velmo
