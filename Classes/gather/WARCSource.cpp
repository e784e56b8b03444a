// Records are walked in the stream; of one that is no page only its head is looked at, and its block
// is passed over. Undoing codings is left to the thread that reads the page.
//
// Lengths come from the file. None is believed: memory is taken as bytes come, a block above the
// limit is passed over, and one that is longer than what is left ends the archive.
#include <velmocore/gather/WARCSource.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include <velmocore/readers/Dates.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/URLConstruction.h>

#include "gather/GatherErrors.h"
#include "gather/HTTPBodies.h"
#include "gather/StreamReading.h"

namespace velmo {
namespace {

/// Of a record, or of a response in it; longer ones are damage.
constexpr std::size_t MostHeadBytes = std::size_t{1} << 16;
constexpr std::string_view Mark = "WARC/";

/// Takes a line off the front, without its end; what is left if none ends.
std::string_view takeLine(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

std::string_view trimmed(std::string_view text) {
    const auto isWhite = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
    return text;
}

/// The fields of a head, behind its first line.
HTTPHeaders headersOf(std::string_view head) {
    HTTPHeaders headers;
    takeLine(head);
    while (!head.empty()) {
        const std::string_view line = takeLine(head);
        const std::size_t colon = line.find(':');
        if (colon == line.npos) continue;
        headers.add({.name = String::fromUTF8(trimmed(line.substr(0, colon))),
                     .value = String::fromUTF8(trimmed(line.substr(colon + 1)))});
    }
    return headers;
}

/// How long a head is with the empty line at its end; 0 if it does not end.
std::size_t headLength(std::string_view bytes) {
    for (std::size_t at = 0; (at = bytes.find('\n', at)) != bytes.npos;) {
        ++at;
        if (bytes.substr(at).starts_with("\n")) return at + 1;
        if (bytes.substr(at).starts_with("\r\n")) return at + 2;
    }
    return 0;
}

std::optional<std::uint64_t> lengthOf(const HTTPHeaders& headers) {
    const std::string text = headers.value(u"Content-Length").utf8();
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber ? std::optional(length) : std::nullopt;
}

/// Some archives have addresses in angles.
String addressOf(const HTTPHeaders& headers, std::u16string_view name) {
    const String value = headers.value(name);
    const bool hasAngles = value.length() > 2 && value[0] == u'<';
    return hasAngles ? value.substring({1, value.length() - 2}) : value;
}

/// What a type lets expect; Binary for what is no page.
ContentKind kindOfType(const String& type) {
    if (type.isEmpty() || type.view().starts_with(u"application/octet-stream"))
        return ContentKind::Unclear;
    if (isStylesheetOrScriptMIMEType(type)) return ContentKind::Binary;
    if (isPlainTextMIMEType(type)) return ContentKind::Text;
    return isMarkupMIMEType(type) ? ContentKind::Page : ContentKind::Binary;
}

/// The bytes go before what was said of them, unless they leave it open.
void judge(SourcePage& page, ContentKind expected) {
    const Bytes head = Bytes(page.bytes).first(std::min(page.bytes.size(), ContentHeadSize));
    page.kind = contentKind(head, {});
    if (page.kind == ContentKind::Unclear) page.kind = expected;
    if (page.kind == ContentKind::Unclear) page.kind = ContentKind::Text;
    page.isLeftOut = page.kind == ContentKind::Binary;
}

/// What is left to do for a response when it is read.
struct Coding {
    bool isChunked = false;
    String encoding = {};
    ContentKind expected = ContentKind::Unclear;
    std::size_t mostBytes = 0;

    void operator()(SourcePage& page) const {
        if (isChunked) page.bytes = detail::dechunked(std::move(page.bytes));
        auto body = detail::decodedBody(std::move(page.bytes), encoding, mostBytes);
        page.bytes = body ? std::move(*body) : Data();
        if (body) return judge(page, expected);
        page.error =
            detail::gatherError("its content encoding " + encoding.utf8() + " cannot be undone");
    }
};

bool isOfTheWeb(const URL& url) {
    const String scheme = url.scheme();
    return scheme == u"http" || scheme == u"https";
}

}  // namespace

bool isWARC(Bytes head) { return charsOf(head).starts_with(Mark); }

WARCSource::WARCSource(InputStream&& stream, const SourceOptions& options)
    : stream_(std::move(stream)), options_(options) {}

bool WARCSource::readRecord(Record& record, std::optional<Error>& error) {
    Bytes bytes = stream_.peek(Mark.size());
    // Two line ends stand behind each record; some writers have more.
    while (!bytes.empty() && (bytes[0] == '\r' || bytes[0] == '\n')) {
        stream_.skip(1);
        bytes = stream_.peek(Mark.size());
    }
    if (bytes.empty()) {
        error = stream_.error();
        return false;
    }
    error = detail::sourceError("damaged archive");
    if (!isWARC(bytes)) return false;
    std::size_t length = headLength(charsOf(bytes));
    while (length == 0 && bytes.size() < MostHeadBytes && stream_.fill()) {
        bytes = stream_.buffered();
        length = headLength(charsOf(bytes));
    }
    if (length == 0 && bytes.size() < MostHeadBytes)
        error = detail::sourceError("the archive breaks off");
    if (length == 0) return false;
    record.headers = headersOf(charsOf(bytes.first(length)));
    const std::optional<std::uint64_t> block = lengthOf(record.headers);
    if (!block) return false;
    stream_.skip(length);
    record.length = *block;
    error.reset();
    return true;
}

void WARCSource::takeBlock(Record& record, SourcePage& page) {
    if (record.length > options_.mostBytes) {
        page.error = detail::gatherError("too large");
        return;
    }
    page.bytes = detail::readBytes(stream_, static_cast<std::size_t>(record.length));
    record.length -= page.bytes.size();
}

bool WARCSource::takeResponse(Record& record, SourcePage& page) {
    const auto most =
        static_cast<std::size_t>(std::min<std::uint64_t>(record.length, MostHeadBytes));
    Bytes bytes = stream_.peek(1);
    std::size_t length = 0;
    do bytes = stream_.buffered().first(std::min(stream_.buffered().size(), most));
    while ((length = headLength(charsOf(bytes))) == 0 && bytes.size() < most && stream_.fill());
    const std::optional<HTTPResponseHead> head = responseHeadOfBytes(bytes.first(length));
    if (!head || head->statusCode < 200 || head->statusCode > 299) return false;
    page.contentType = head->headers.value(u"Content-Type");
    const ContentKind expected = kindOfType(page.contentType);
    if (expected == ContentKind::Binary) return false;
    page.status = head->statusCode;
    record.length -= stream_.skip(length);
    page.complete =
        Coding{.isChunked = head->headers.value(u"Transfer-Encoding").view().find(u"chunked") !=
                            std::u16string_view::npos,
               .encoding = head->headers.value(u"Content-Encoding"),
               .expected = expected,
               .mostBytes = options_.mostBytes};
    takeBlock(record, page);
    return true;
}

bool WARCSource::takePlain(Record& record, SourcePage& page) {
    page.contentType = record.headers.value(u"Content-Type");
    const ContentKind expected = kindOfType(page.contentType);
    if (expected == ContentKind::Binary) return false;
    takeBlock(record, page);
    page.status = 0;
    page.complete = Coding{.expected = expected, .mostBytes = options_.mostBytes};
    return true;
}

bool WARCSource::takeRevisit(Record& record, SourcePage& page) {
    const Bytes bytes = stream_.peek(1);
    const auto most =
        static_cast<std::size_t>(std::min<std::uint64_t>(record.length, bytes.size()));
    // Where the head of the response stands there, it tells what was revisited.
    const auto head = responseHeadOfBytes(bytes.first(most));
    if (head && kindOfType(head->headers.value(u"Content-Type")) == ContentKind::Binary)
        return false;
    page.repeats =
        URLWithNormalizedStringURL(addressOf(record.headers, u"WARC-Refers-To-Target-URI"));
    if (page.repeats->isAbsent()) page.repeats = page.url;
    return true;
}

bool WARCSource::takeRecord(Record& record, SourcePage& page) {
    page.url = URLWithNormalizedStringURL(addressOf(record.headers, u"WARC-Target-URI"));
    if (!isOfTheWeb(page.url)) return false;
    page.name = page.url.absoluteString();
    const String type = record.headers.value(u"WARC-Type");
    const bool isPage = type == u"response"                            ? takeResponse(record, page)
                        : type == u"resource" || type == u"conversion" ? takePlain(record, page)
                        : type == u"revisit"                           ? takeRevisit(record, page)
                                                                       : false;
    if (isPage)
        page.fetched = date(record.headers.value(u"WARC-Date"), {.zone = {}, .offsets = true});
    return isPage;
}

PageSource::State WARCSource::end(SourcePage& page, std::optional<Error> error) {
    isOver_ = true;
    if (!error) return State::End;
    page = SourcePage();
    page.name = options_.name;
    page.error = std::move(error);
    return State::Page;
}

PageSource::State WARCSource::next(SourcePage& page) {
    while (!isOver_) {
        page = SourcePage();
        Record record;
        std::optional<Error> error;
        if (!readRecord(record, error)) return end(page, std::move(error));
        const bool isPage = takeRecord(record, page);
        if (stream_.skip(record.length) < record.length)
            return end(page, stream_.error() ? *stream_.error()
                                             : detail::sourceError("the archive breaks off"));
        if (isPage) return State::Page;
    }
    return State::End;
}

SourceProgress WARCSource::progress() const {
    return {.done = stream_.position(), .total = stream_.size()};
}

}  // namespace velmo
