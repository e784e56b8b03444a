// Dates of HTTP headers beside libcurl's reader, and strings of which nine in ten are no date beside
// ICU's formatters, one for each of the formats that the strings may be in, made once.
#include <benchmark/benchmark.h>

#include <curl/curl.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <string>
#include <vector>

#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/Log.h>
#include <velmocore/readers/Dates.h>

namespace velmo::bench {
namespace {

constexpr std::size_t Count = 10'000;

/// Seconds that fall on all days and times of thirty years.
std::int64_t instantOf(std::size_t i) { return static_cast<std::int64_t>(i * 94'607 + 12'345); }

std::vector<std::string> headers(const char* format) {
    std::vector<std::string> made(Count);
    for (std::size_t i = 0; i < Count; ++i) {
        const std::time_t time = instantOf(i);
        std::tm fields{};
        gmtime_r(&time, &fields);
        char text[64];
        made[i].assign(text, std::strftime(text, sizeof text, format, &fields));
    }
    return made;
}

std::vector<String> unitsOf(const std::vector<std::string>& texts) {
    std::vector<String> made;
    for (const std::string& text : texts) made.push_back(String::fromUTF8(text));
    return made;
}

constexpr const char* HeaderFormat = "%a, %d %b %Y %H:%M:%S GMT";

template <class Texts, class Work>
void eachText(benchmark::State& state, const Texts& texts, Work work) {
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(work(text));
    state.SetItemsProcessed(static_cast<std::int64_t>(texts.size() * state.iterations()));
}

void headerVelmo(benchmark::State& state) {
    const auto texts = unitsOf(headers(HeaderFormat));
    eachText(state, texts, [](const String& text) { return dateFromHTTPHeaderValue(text); });
}
BENCHMARK(headerVelmo)->Name("http-date/velmo")->Unit(benchmark::kMillisecond);

void headerCurl(benchmark::State& state) {
    const auto texts = headers(HeaderFormat);
    eachText(state, texts,
             [](const std::string& text) { return curl_getdate(text.c_str(), nullptr); });
}
BENCHMARK(headerCurl)->Name("http-date/libcurl")->Unit(benchmark::kMillisecond);

/// Titles, numbers, versions, prices and names among the dates of all the formats.
const std::vector<String>& mixture() {
    static const std::vector<String> made = [] {
        const char* const formats[] = {
            HeaderFormat,
            "%A, %d-%b-%y %H:%M:%S GMT",
            "%a %b %d %H:%M:%S %Y",
            "%Y-%m-%d %H:%M:%S",
            "%d.%m.%Y",
            "%Y-%m-%dT%H:%M:%S",
            "%d/%m/%Y",
            "%B %d, %Y",
            "%d.%m.%Y %H:%M",
            "%Y%m%d",
        };
        const char* const others[] = {
            "Annual report of the board",  "1.4.17",         "EUR 1,299.00", "page 12 of 31",
            "https://example.org/a/b?c=d", "10:15 to 11:45", "Smith, John",  "555-0134-77",
            "Meeting on the second floor",
        };
        std::vector<String> texts;
        std::vector<std::vector<std::string>> dates;
        for (const char* format : formats) dates.push_back(headers(format));
        for (std::size_t i = 0; i < Count; ++i)
            texts.push_back(String::fromUTF8(i % 10 ? others[i % 10 - 1] : dates[i / 10 % 10][i]));
        return texts;
    }();
    return made;
}

void mixtureVelmo(benchmark::State& state) {
    setLogHandler([](std::string_view) {});
    eachText(state, mixture(), [](const String& text) { return date(text); });
    setLogHandler(nullptr);
}
BENCHMARK(mixtureVelmo)->Name("mixed-dates/velmo")->Unit(benchmark::kMillisecond);

/// The formats of date(), as ICU writes them.
const char* const Patterns[] = {
    "EEE, dd MMM yyyy HH:mm:ss z",
    "EEEE, dd-MMM-yy HH:mm:ss z",
    "EEE MMM dd HH:mm:ss yyyy",
    "yyyyMMdd",
    "ddMMyyyy",
    "yyyyMMdd'T'HHmmss",
    "yyyy.MM.dd",
    "dd.MM.yyyy",
    "dd.MM.yy",
    "dd.MM.yyyy HH:mm:ss",
    "dd.MM.yyyy HH:mm",
    "dd/MM/yyyy HH.mm.ss",
    "yyyy-MM-dd HH:mm:ss",
    "dd-MM-yyyy HH:mm:ss",
    "dd/MM/yyyy HH:mm:ss z",
    "dd/MM/yyyy HH:mm:ss",
    "dd-MM-yyyy HH:mm",
    "yyyy-MM-dd",
    "dd-MM-yyyy",
    "yyyy-MM-dd'T'HH:mm:ss",
    "dd-MM-yyyy'T'HH:mm:ss",
    "dd/MM/yyyy",
    "MM/dd/yyyy",
    "yyyy/MM/dd",
    "yyyy/dd/MM",
    "MMMM dd, yyyy",
    "MMM dd, yyyy",
};

void mixtureIcu(benchmark::State& state) {
    std::vector<std::unique_ptr<icu::SimpleDateFormat>> formats;
    for (const char* pattern : Patterns) {
        UErrorCode status = U_ZERO_ERROR;
        formats.push_back(
            std::make_unique<icu::SimpleDateFormat>(pattern, icu::Locale::getEnglish(), status));
        formats.back()->setLenient(false);
    }
    eachText(state, mixture(), [&](const String& text) {
        const icu::UnicodeString units(text.characters(), static_cast<std::int32_t>(text.length()));
        for (const auto& format : formats) {
            UErrorCode status = U_ZERO_ERROR;
            const UDate date = format->parse(units, status);
            if (U_SUCCESS(status)) return date;
        }
        return UDate();
    });
}
BENCHMARK(mixtureIcu)->Name("mixed-dates/icu")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
