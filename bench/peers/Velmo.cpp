// Our side of the cases. What the peers do else, or not, is said at theirs.
#include <benchmark/benchmark.h>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/url/PageKey.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSimplification.h>

#include "peers/Inputs.h"

namespace velmo::bench {
namespace {

void utf8(benchmark::State& state, const std::vector<std::string>& texts) {
    countEachPage(state, texts, [](const std::string& text) {
        const String units = String::fromUTF8(text);
        benchmark::DoNotOptimize(units.characters());
        return units.length();
    });
}
void utf8Pages(benchmark::State& state) { utf8(state, corpus().utf8); }
void utf8Chinese(benchmark::State& state) { utf8(state, chineseText()); }
void utf8Russian(benchmark::State& state) { utf8(state, russianText()); }
BENCHMARK(utf8Pages)->Name("utf8-pages/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(utf8Chinese)->Name("utf8-chinese/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(utf8Russian)->Name("utf8-russian/velmo")->Unit(benchmark::kMillisecond);

/// Each link once, normalised.
void links(benchmark::State& state) {
    countEachPage(state, pagesInUtf8(), [](const std::string& page) {
        return htmlLinks(stringWithMarkupData(Bytes(page))).links.size();
    });
}
BENCHMARK(links)->Name("links/velmo")->Unit(benchmark::kMillisecond);

/// White space collapsed, lines where elements break them, what is hidden left out.
void plainText(benchmark::State& state) {
    countEachPage(state, pagesInUtf8(), [](const std::string& page) {
        return stringByConvertingHtml2PlainText(stringWithMarkupData(Bytes(page))).length();
    });
}
BENCHMARK(plainText)->Name("plain-text/velmo")->Unit(benchmark::kMillisecond);

void resolve(benchmark::State& state, const RelativeURLOptions& options) {
    const URL page = URLWithStringRelativeTo(String::fromUTF8(PageURL), URL(), options);
    countEachText(state, linksOfPages(), [&](const Text& link) {
        return URLRelativeTo(page, link.units, options).absoluteString().size();
    });
}
void resolveByOwnRules(benchmark::State& state) { resolve(state, {}); }
void resolveByStandard(benchmark::State& state) {
    resolve(state, {.trimAnchor = false, .web = {.resolution = true}});
}
BENCHMARK(resolveByOwnRules)->Name("resolve/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(resolveByStandard)->Name("resolve-web/velmo")->Unit(benchmark::kMillisecond);

void normalizeByStandard(benchmark::State& state) {
    const RelativeURLOptions options = {.trimAnchor = false, .web = {.resolution = true}};
    countEachText(state, urlsOfLinks(), [&](const Text& url) {
        return URLWithStringRelativeTo(url.units, URL(), options).absoluteString().size();
    });
}
BENCHMARK(normalizeByStandard)->Name("normalize-web/velmo")->Unit(benchmark::kMillisecond);

/// Index pages, sessions and campaigns are cut off too.
void simplify(benchmark::State& state) {
    countEachText(state, urlsOfLinks(),
                  [](const Text& url) { return simplifiedStringURL(url.units).length(); });
}
BENCHMARK(simplify)->Name("simplify/velmo")->Unit(benchmark::kMillisecond);

void key(benchmark::State& state) {
    countEachText(state, urlsOfLinks(),
                  [](const Text& url) { return pageKey(URL::URLWithString(url.units)).length(); });
}
BENCHMARK(key)->Name("page-key/velmo")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
