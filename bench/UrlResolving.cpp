// The links of the pages: resolved against their page, reduced to the key of a page, and text
// escaped for URLs, beside Boost.URL, uriparser and libcurl.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <uriparser/Uri.h>

#include <boost/url.hpp>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/text/Lines.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSimplification.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

constexpr char PageURL[] = "https://www.example.org/docs/2.4/en/mod/page.html";

/// One text for both sides.
struct Text {
    String units;
    std::string utf8;
};
Text textOf(const String& units) { return {units, units.utf8()}; }

/// In an order that tells nothing of what comes next, as that of a page would; the same in each run.
void shuffle(std::vector<Text>& texts) {
    std::mt19937 random(1);
    for (std::size_t i = texts.size(); i > 1; --i) std::swap(texts[i - 1], texts[random() % i]);
}

/// The links of all pages, as they stand there.
const std::vector<Text>& links() {
    static const std::vector<Text> made = [] {
        std::vector<Text> texts;
        for (const std::string& page : corpus().pages)
            for (const String& link : htmlLinks(stringWithMarkupData(Bytes(page))).links)
                texts.push_back(textOf(link));
        shuffle(texts);
        return texts;
    }();
    return made;
}

/// The same, resolved. Every second one gets a query with a session and a campaign.
const std::vector<Text>& urls() {
    static const std::vector<Text> made = [] {
        std::vector<Text> texts;
        const URL page = URL::URLWithString(String::fromUTF8(PageURL));
        for (const Text& link : links()) {
            const URL url = URLRelativeTo(page, link.units);
            if (url.isAbsent()) continue;
            std::u16string text(url.absoluteString());
            if (texts.size() % 2 && url.query().isAbsent())
                text += u"?id=12&PHPSESSID=4b1f9a&utm_source=feed&page=2";
            texts.push_back(textOf(text));
        }
        return texts;
    }();
    return made;
}

/// The pages' texts in pieces about as long as URLs are: lines, and short ones put together.
const std::vector<Text>& terms() {
    static const std::vector<Text> made = [] {
        constexpr std::size_t Length = 80;
        std::vector<Text> texts;
        for (const String& text : corpus().texts) {
            std::u16string term;
            for (const String& line : lines(text)) {
                term.append(line).append(u" ");
                if (term.size() < Length) continue;
                texts.push_back(textOf(term));
                term.clear();
            }
        }
        return texts;
    }();
    return made;
}

/// The same, escaped.
const std::vector<Text>& escapedTerms() {
    static const std::vector<Text> made = [] {
        std::vector<Text> texts;
        for (const Text& term : terms())
            texts.push_back(textOf(stringByAddingPercentEscapesToURL(
                term.units, {.toBeEscaped = u"!$&'()*+,;=:/?#[]@%"})));
        return texts;
    }();
    return made;
}

template <class Work>
void eachText(benchmark::State& state, const std::vector<Text>& texts, Work work) {
    std::size_t units = 0;
    for (const Text& text : texts) units += text.units.length();
    for (auto _ : state)
        for (const Text& text : texts) work(text);
    state.SetBytesProcessed(static_cast<std::int64_t>(units) * state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(texts.size()) * state.iterations());
}

void resolveVelmo(benchmark::State& state) {
    const URL page = URL::URLWithString(String::fromUTF8(PageURL));
    eachText(state, links(),
             [&](const Text& link) { benchmark::DoNotOptimize(URLRelativeTo(page, link.units)); });
}
BENCHMARK(resolveVelmo)->Name("resolve/velmo")->Unit(benchmark::kMillisecond);

/// The peer keeps one buffer for all results, and does less: what is no URL is left out.
void resolveBoost(benchmark::State& state) {
    namespace urls = boost::urls;
    const urls::url_view page = urls::parse_uri(PageURL).value();
    urls::url result;
    eachText(state, links(), [&](const Text& link) {
        const auto reference = urls::parse_uri_reference(link.utf8);
        if (!reference || !urls::resolve(page, *reference, result)) return;
        result.normalize();
        benchmark::DoNotOptimize(std::string(result.buffer()));
    });
}
BENCHMARK(resolveBoost)->Name("resolve/boost-url")->Unit(benchmark::kMillisecond);

/// By the URL standard, which has the same escapes and dot segments to look for, and converts hosts.
void resolveWebVelmo(benchmark::State& state) {
    const WebRules web = {.resolution = true};
    const URL page = URLWithStringRelativeTo(String::fromUTF8(PageURL), URL(), {.web = web});
    eachText(state, links(), [&](const Text& link) {
        benchmark::DoNotOptimize(URLRelativeTo(page, link.units, {.web = web}));
    });
}
BENCHMARK(resolveWebVelmo)->Name("resolve-web/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(resolveBoost)->Name("resolve-web/boost-url")->Unit(benchmark::kMillisecond);

void simplifyVelmo(benchmark::State& state) {
    eachText(state, urls(),
             [](const Text& url) { benchmark::DoNotOptimize(simplifiedStringURL(url.units)); });
}
BENCHMARK(simplifyVelmo)->Name("simplify/velmo")->Unit(benchmark::kMillisecond);

void keyVelmo(benchmark::State& state) {
    eachText(state, urls(), [](const Text& url) {
        benchmark::DoNotOptimize(pageKey(URL::URLWithString(url.units)));
    });
}
BENCHMARK(keyVelmo)->Name("page-key/velmo")->Unit(benchmark::kMillisecond);

void simplifyUriparser(benchmark::State& state) {
    std::string result;
    eachText(state, urls(), [&](const Text& url) {
        UriUriA uri;
        if (uriParseSingleUriA(&uri, url.utf8.c_str(), nullptr) != URI_SUCCESS) return;
        uriNormalizeSyntaxA(&uri);
        int length = 0;
        uriToStringCharsRequiredA(&uri, &length);
        result.resize(static_cast<std::size_t>(length) + 1);
        uriToStringA(result.data(), &uri, length + 1, nullptr);
        uriFreeUriMembersA(&uri);
        benchmark::DoNotOptimize(result.data());
    });
}
/// The peer keeps escapes of what needs none, parameters and index pages.
void simplifyBoost(benchmark::State& state) {
    namespace urls = boost::urls;
    eachText(state, velmo::bench::urls(), [&](const Text& text) {
        const auto view = urls::parse_uri(text.utf8);
        if (!view) return;
        urls::url url(*view);
        url.normalize();
        benchmark::DoNotOptimize(std::string(url.buffer()));
    });
}
BENCHMARK(simplifyBoost)->Name("simplify/boost-url")->Unit(benchmark::kMillisecond);
BENCHMARK(simplifyBoost)->Name("page-key/boost-url")->Unit(benchmark::kMillisecond);
BENCHMARK(simplifyUriparser)->Name("simplify/uriparser")->Unit(benchmark::kMillisecond);
BENCHMARK(simplifyUriparser)->Name("page-key/uriparser")->Unit(benchmark::kMillisecond);

void escapeVelmo(benchmark::State& state) {
    eachText(state, terms(), [](const Text& term) {
        benchmark::DoNotOptimize(
            stringByAddingPercentEscapesToURL(term.units, {.toBeEscaped = u"!$&'()*+,;=:/?#[]@%"}));
    });
}
BENCHMARK(escapeVelmo)->Name("percent-encode/velmo")->Unit(benchmark::kMillisecond);

void escapeASCIIVelmo(benchmark::State& state) {
    eachText(state, terms(), [](const Text& term) {
        benchmark::DoNotOptimize(stringByAddingASCIIPercentEscapesToURL(term.units));
    });
}
BENCHMARK(escapeASCIIVelmo)->Name("percent-encode-ascii/velmo")->Unit(benchmark::kMillisecond);

void escapeCurl(benchmark::State& state) {
    eachText(state, terms(), [](const Text& term) {
        char* escaped =
            curl_easy_escape(nullptr, term.utf8.data(), static_cast<int>(term.utf8.size()));
        benchmark::DoNotOptimize(escaped);
        curl_free(escaped);
    });
}
BENCHMARK(escapeCurl)->Name("percent-encode/libcurl")->Unit(benchmark::kMillisecond);
BENCHMARK(escapeCurl)->Name("percent-encode-ascii/libcurl")->Unit(benchmark::kMillisecond);

/// With the units that it takes to have a text as we give it.
void escapeTextCurl(benchmark::State& state) {
    eachText(state, terms(), [](const Text& term) {
        char* escaped =
            curl_easy_escape(nullptr, term.utf8.data(), static_cast<int>(term.utf8.size()));
        benchmark::DoNotOptimize(String::fromUTF8(escaped));
        curl_free(escaped);
    });
}
BENCHMARK(escapeVelmo)->Name("percent-encode-text/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(escapeTextCurl)->Name("percent-encode-text/libcurl")->Unit(benchmark::kMillisecond);

void unescapeVelmo(benchmark::State& state) {
    eachText(state, escapedTerms(), [](const Text& term) {
        benchmark::DoNotOptimize(stringByReplacingPercentEscapesOfURL(term.units));
    });
}
BENCHMARK(unescapeVelmo)->Name("percent-decode/velmo")->Unit(benchmark::kMillisecond);

/// The peer gives bytes; this is what it takes to have the text.
void unescapeTextCurl(benchmark::State& state) {
    eachText(state, escapedTerms(), [](const Text& term) {
        int length = 0;
        char* text = curl_easy_unescape(nullptr, term.utf8.data(),
                                        static_cast<int>(term.utf8.size()), &length);
        benchmark::DoNotOptimize(String::fromUTF8({text, static_cast<std::size_t>(length)}));
        curl_free(text);
    });
}
BENCHMARK(unescapeVelmo)->Name("percent-decode-text/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(unescapeTextCurl)->Name("percent-decode-text/libcurl")->Unit(benchmark::kMillisecond);

void unescapeStandardVelmo(benchmark::State& state) {
    eachText(state, escapedTerms(), [](const Text& term) {
        benchmark::DoNotOptimize(stringByReplacingStandardPercentEscapesOfURL(term.units));
    });
}
BENCHMARK(unescapeStandardVelmo)
    ->Name("percent-decode-standard/velmo")
    ->Unit(benchmark::kMillisecond);

void unescapeCurl(benchmark::State& state) {
    eachText(state, escapedTerms(), [](const Text& term) {
        int length = 0;
        char* text = curl_easy_unescape(nullptr, term.utf8.data(),
                                        static_cast<int>(term.utf8.size()), &length);
        benchmark::DoNotOptimize(text);
        curl_free(text);
    });
}
BENCHMARK(unescapeCurl)->Name("percent-decode/libcurl")->Unit(benchmark::kMillisecond);
BENCHMARK(unescapeCurl)->Name("percent-decode-standard/libcurl")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
