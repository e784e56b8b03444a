// A line is cut off where the source is asked, and parsed where the page is read: parsing needs no
// order, and takes longer than all else here. The parser tells what it finds, one value after the
// other, so that only the members that count are kept, and nothing is as deep as a line may be.
#include <velmocore/gather/JSONLinesSource.h>

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include <velmocore/readers/Dates.h>
#include <velmocore/url/URLConstruction.h>

#include "gather/GatherErrors.h"

namespace velmo {
namespace {

using json = nlohmann::json;

/// How long one question to a source may take, in milliseconds.
constexpr int Patience = 200;

enum Member : std::uint8_t {
    Url,
    Html,
    Text,
    Title,
    Author,
    DateText,
    ContentType,
    Fetched,
    Status
};
constexpr std::size_t Members = 9;
constexpr std::array<std::string_view, Members> Names = {
    "url", "html", "text", "title", "author", "date", "contentType", "fetched", "status"};

/// Takes the members of the outermost object; false ends the parsing.
class Object : public nlohmann::json_sax<json> {
public:
    std::array<std::optional<std::string>, Members> values;
    std::optional<double> fetched;
    std::int64_t status = 0;
    std::string error;

    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t number) override {
        return takeNumber(static_cast<double>(number));
    }
    bool number_unsigned(number_unsigned_t number) override {
        return takeNumber(static_cast<double>(number));
    }
    bool number_float(number_float_t number, const string_t&) override {
        return takeNumber(number);
    }
    bool string(string_t& text) override {
        if (depth_ == 1 && member_ < Members) values[member_] = std::move(text);
        return value();
    }
    bool binary(binary_t&) override { return value(); }
    bool start_object(std::size_t) override { return ++depth_, true; }
    bool end_object() override { return --depth_, true; }
    bool start_array(std::size_t) override { return value() && (++depth_, true); }
    bool end_array() override { return --depth_, true; }
    bool key(string_t& name) override {
        if (depth_ != 1) return true;
        const auto found = std::ranges::find(Names, name);
        member_ = static_cast<std::size_t>(found - Names.begin());
        return true;
    }
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::detail::exception&) override {
        error = fmt::format("not JSON at byte {}", position);
        return false;
    }

private:
    /// What is no object is no page.
    bool value() {
        if (depth_ == 0) error = "no JSON object";
        return depth_ > 0;
    }
    bool takeNumber(double number) {
        if (depth_ == 1 && member_ == Fetched) fetched = number;
        // What is no status at all is none, and no cast overflows.
        if (depth_ == 1 && member_ == Status && number >= 0 && number < 1000)
            status = static_cast<std::int64_t>(number);
        return value();
    }

    std::size_t depth_ = 0, member_ = Members;
};

String stringOf(const std::optional<std::string>& value) {
    return value && !value->empty() ? String::fromUTF8(*value) : String();
}

std::optional<Date> fetchedOf(const Object& object) {
    // Beyond these years a date is none.
    constexpr double MostSeconds = 253402300799;
    if (object.fetched && *object.fetched >= 0 && *object.fetched <= MostSeconds)
        return Date(std::chrono::duration<double>(*object.fetched));
    if (!object.values[Fetched]) return std::nullopt;
    return date(String::fromUTF8(*object.values[Fetched]), {.zone = {}, .offsets = true});
}

/// The JSON was decoded already, whatever the page and its header say.
String contentTypeOf(const Object& object) {
    const String type = stringOf(object.values[ContentType]);
    const std::u16string_view view = type.isAbsent() ? u"text/html" : type.view();
    return String(view.substr(0, view.find(u';'))) + u"; charset=utf-8";
}

void takeObject(SourcePage& page, Object& object) {
    const bool isText = !object.values[Html];
    std::optional<std::string>& content = object.values[isText ? Text : Html];
    page.url = URLWithNormalizedStringURL(stringOf(object.values[Url]));
    if (page.url.isAbsent())
        page.error = detail::gatherError(object.values[Url] ? "not a URL" : "no url");
    else if (!content)
        page.error = detail::gatherError("no html");
    if (object.values[Url]) page.name = String::fromUTF8(*object.values[Url]);
    if (page.error) return;
    page.kind = isText ? ContentKind::Text : ContentKind::Page;
    page.bytes.assign(content->begin(), content->end());
    page.contentType = contentTypeOf(object);
    page.title = stringOf(object.values[Title]);
    page.author = stringOf(object.values[Author]);
    page.date = stringOf(object.values[DateText]);
    page.fetched = fetchedOf(object);
    page.status = object.status;
}

void parse(SourcePage& page) {
    const Data line = std::move(page.bytes);
    page.bytes = Data();
    Object object;
    const std::string_view chars = charsOf(line);
    if (json::sax_parse(chars.begin(), chars.end(), &object))
        takeObject(page, object);
    else
        page.error = detail::gatherError(object.error);
}

bool isBlank(Bytes line) {
    return std::ranges::all_of(
        line, [](std::uint8_t byte) { return byte == ' ' || byte == '\t' || byte == '\r'; });
}

}  // namespace

JSONLinesSource::JSONLinesSource(InputStream&& stream, const SourceOptions& options)
    : stream_(std::move(stream)), options_(options) {}

/// Reading may wait for who writes: not while pages are on their way that he may be waiting for,
/// and not for long, so that the run can be ended meanwhile.
bool JSONLinesSource::mayWait() { return stream_.isReady(untold_ > 0 ? 0 : Patience); }

JSONLinesSource::Line JSONLinesSource::readLine(Data& line) {
    for (;;) {
        const Bytes bytes = stream_.buffered();
        const std::size_t end = charsOf(bytes).find('\n', scanned_);
        const bool isEnd = end != std::string_view::npos;
        scanned_ = isEnd ? end : bytes.size();
        const bool isTooLong = scanned_ > options_.mostBytes;
        if (isEnd || isTooLong) {
            if (!isTooLong && !isPassing_)
                line.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(scanned_));
            stream_.skip(std::exchange(scanned_, 0) + (isEnd ? 1 : 0));
            if (std::exchange(isPassing_, !isEnd)) continue;
            return isTooLong ? Line::TooLong : Line::Whole;
        }
        if (!mayWait()) return Line::Later;
        if (!stream_.fill()) break;
    }
    const Bytes rest = stream_.buffered();
    if (rest.empty() || isPassing_) return Line::None;
    line.assign(rest.begin(), rest.end());
    stream_.skip(std::exchange(scanned_, 0));
    return Line::Whole;
}

PageSource::State JSONLinesSource::next(SourcePage& page) {
    page = SourcePage();
    for (;;) {
        Data bytes;
        const Line line = readLine(bytes);
        if (line == Line::Later) return State::Wait;
        if (line == Line::None) break;
        ++number_;
        if (line == Line::Whole && isBlank(bytes)) continue;
        give(page, line, std::move(bytes));
        return State::Page;
    }
    if (!stream_.error() || std::exchange(isOver_, true)) return State::End;
    page.name = options_.name;
    page.error = stream_.error();
    ++untold_;
    return State::Page;
}

void JSONLinesSource::give(SourcePage& page, Line line, Data&& bytes) {
    if (!options_.name.isAbsent())
        page.name = String::fromUTF8(fmt::format("{} line {}", options_.name.utf8(), number_));
    if (line == Line::TooLong)
        page.error = detail::gatherError("too large");
    else
        page.complete = parse;
    page.bytes = std::move(bytes);
    ++untold_;
}

void JSONLinesSource::didRead(const PageRecord&) { --untold_; }

SourceProgress JSONLinesSource::progress() const {
    return {.done = stream_.position(), .total = stream_.size()};
}

}  // namespace velmo
