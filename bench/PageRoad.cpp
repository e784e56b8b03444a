// The road of a page: bytes to units, links, plain text and metadata, beside ICU and libxml2.
#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <unicode/ustring.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/markup/TagStripping.h>

#include "Corpus.h"
#include "HtmlParse.h"

namespace velmo::bench {
namespace {

void utf8Velmo(benchmark::State& state) {
    eachPage(state, corpus().utf8,
             [](const std::string& page) { benchmark::DoNotOptimize(String::fromUTF8(page)); });
}
BENCHMARK(utf8Velmo)->Name("utf8-to-string/velmo")->Unit(benchmark::kMillisecond);

void utf8Icu(benchmark::State& state) {
    eachPage(state, corpus().utf8, [](const std::string& page) {
        const std::unique_ptr<char16_t[]> buffer(new char16_t[page.size()]);
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t length = 0;
        u_strFromUTF8(buffer.get(), static_cast<std::int32_t>(page.size()), &length, page.data(),
                      static_cast<std::int32_t>(page.size()), &status);
        benchmark::DoNotOptimize(buffer.get());
    });
}
BENCHMARK(utf8Icu)->Name("utf8-to-string/icu")->Unit(benchmark::kMillisecond);

void linksVelmo(benchmark::State& state) {
    eachPage(state, corpus().pages,
             [](const std::string& page) { benchmark::DoNotOptimize(htmlLinks(Bytes(page))); });
}
BENCHMARK(linksVelmo)->Name("links/velmo")->Unit(benchmark::kMillisecond);

void textVelmo(benchmark::State& state) {
    eachPage(state, corpus().pages, [](const std::string& page) {
        benchmark::DoNotOptimize(plainTextOfHtml(Bytes(page)));
    });
}
BENCHMARK(textVelmo)->Name("plain-text/velmo")->Unit(benchmark::kMillisecond);

void thumbnailsVelmo(benchmark::State& state) {
    const URL base = URL::URLWithString(u"http://h.org/a/");
    eachPage(state, corpus().pages, [&](const std::string& page) {
        const String units = stringWithMarkupData(Bytes(page));
        benchmark::DoNotOptimize(getLinkThumbnails(units, {.baseURL = base}));
    });
}
BENCHMARK(thumbnailsVelmo)->Name("thumbnails/velmo")->Unit(benchmark::kMillisecond);

void strippingVelmo(benchmark::State& state) {
    eachPage(state, corpus().pages, [](const std::string& page) {
        const String units = stringWithMarkupData(Bytes(page));
        benchmark::DoNotOptimize(stripTags(units));
    });
}
BENCHMARK(strippingVelmo)->Name("strip-tags/velmo")->Unit(benchmark::kMillisecond);

/// The pages as units: a head is read of a page that is there, and the peer stops decoding where
/// it stops reading.
const std::vector<String>& decodedPages() {
    static const std::vector<String> pages = [] {
        std::vector<String> decoded;
        for (const std::string& page : corpus().pages)
            decoded.push_back(stringWithMarkupData(Bytes(page)));
        return decoded;
    }();
    return pages;
}

void metadataVelmo(benchmark::State& state) {
    eachPage(state, decodedPages(),
             [](const String& page) { benchmark::DoNotOptimize(htmlMetadata(page)); });
}
BENCHMARK(metadataVelmo)->Name("metadata/velmo")->Unit(benchmark::kMillisecond);

void metadataOfBytesVelmo(benchmark::State& state) {
    eachPage(state, corpus().pages, [](const std::string& page) {
        const String units = stringWithMarkupData(Bytes(page));
        benchmark::DoNotOptimize(htmlMetadata(units));
    });
}
BENCHMARK(metadataOfBytesVelmo)->Name("metadata/velmo-bytes")->Unit(benchmark::kMillisecond);

/// What the peer's handlers collect.
struct Collected {
    std::vector<std::string> links;
    std::string text;
    int raw = 0;
    std::string link;  ///< the one that is open
    std::map<std::string, std::string> thumbnails, titles, texts;
    htmlParserCtxtPtr parser = nullptr;
    std::map<std::string, std::string> metadata;
    bool inTitle = false;
};

/// The value of an attribute; empty if there is none.
std::string_view valueOf(const xmlChar** attributes, const char* name) {
    for (; attributes && attributes[0]; attributes += 2)
        if (!std::strcmp(reinterpret_cast<const char*>(attributes[0]), name) && attributes[1])
            return reinterpret_cast<const char*>(attributes[1]);
    return {};
}

bool isRaw(const xmlChar* name) {
    return !std::strcmp(reinterpret_cast<const char*>(name), "script") ||
           !std::strcmp(reinterpret_cast<const char*>(name), "style");
}

void parseWithLibxml2(const std::string& page, htmlSAXHandler& handler) {
    Collected collected;
    parseHtml(page, handler, collected);
    benchmark::DoNotOptimize(collected.links.data());
    benchmark::DoNotOptimize(collected.text.data());
}

void linksLibxml2(benchmark::State& state) {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar** attributes) {
        const char* tag = reinterpret_cast<const char*>(name);
        if (std::strcmp(tag, "a") && std::strcmp(tag, "area")) return;
        for (; attributes && attributes[0]; attributes += 2)
            if (!std::strcmp(reinterpret_cast<const char*>(attributes[0]), "href") && attributes[1])
                static_cast<Collected*>(data)->links.emplace_back(
                    reinterpret_cast<const char*>(attributes[1]));
    };
    eachPage(state, corpus().pages,
             [&](const std::string& page) { parseWithLibxml2(page, handler); });
}
BENCHMARK(linksLibxml2)->Name("links/libxml2")->Unit(benchmark::kMillisecond);

/// The first image in each link, as it stands, its title and its text: no image is judged or
/// resolved, none beside a link is looked for, and no white space is collapsed.
void thumbnailsLibxml2(benchmark::State& state) {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar** attributes) {
        auto* collected = static_cast<Collected*>(data);
        const char* tag = reinterpret_cast<const char*>(name);
        if (!std::strcmp(tag, "a")) {
            collected->link = valueOf(attributes, "href");
            collected->text.clear();
            if (const auto title = valueOf(attributes, "title"); !title.empty())
                collected->titles.emplace(collected->link, title);
        } else if (!std::strcmp(tag, "img") && !collected->link.empty()) {
            collected->thumbnails.emplace(collected->link, valueOf(attributes, "src"));
            collected->titles.emplace(collected->link, valueOf(attributes, "alt"));
        }
    };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        auto* collected = static_cast<Collected*>(data);
        if (!collected->link.empty())
            collected->text.append(reinterpret_cast<const char*>(text),
                                   static_cast<std::size_t>(length));
    };
    handler.endElement = [](void* data, const xmlChar* name) {
        auto* collected = static_cast<Collected*>(data);
        if (std::strcmp(reinterpret_cast<const char*>(name), "a")) return;
        if (!collected->link.empty()) collected->texts.emplace(collected->link, collected->text);
        collected->link.clear();
    };
    eachPage(state, corpus().pages,
             [&](const std::string& page) { parseWithLibxml2(page, handler); });
}
BENCHMARK(thumbnailsLibxml2)->Name("thumbnails/libxml2")->Unit(benchmark::kMillisecond);

/// Meta tags by their names, the title, the base and the canonical link, up to the body.
void metadataLibxml2(benchmark::State& state) {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar** attributes) {
        auto* collected = static_cast<Collected*>(data);
        const std::string_view tag(reinterpret_cast<const char*>(name));
        if (tag == "body") return xmlStopParser(collected->parser);
        if (tag == "title") collected->inTitle = true;
        if (tag == "base") collected->metadata.emplace("base", valueOf(attributes, "href"));
        if (tag == "link" && valueOf(attributes, "rel") == "canonical")
            collected->metadata.emplace("canonical", valueOf(attributes, "href"));
        if (tag != "meta") return;
        std::string_view key = valueOf(attributes, "name");
        if (key.empty()) key = valueOf(attributes, "property");
        if (key.empty()) key = valueOf(attributes, "http-equiv");
        const auto [entry, isNew] =
            collected->metadata.try_emplace(std::string(key), valueOf(attributes, "content"));
        if (!isNew) entry->second.append(" ").append(valueOf(attributes, "content"));
    };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        auto* collected = static_cast<Collected*>(data);
        if (collected->inTitle)
            collected->text.append(reinterpret_cast<const char*>(text),
                                   static_cast<std::size_t>(length));
    };
    handler.endElement = [](void* data, const xmlChar*) {
        static_cast<Collected*>(data)->inTitle = false;
    };
    eachPage(state, corpus().pages,
             [&](const std::string& page) { parseWithLibxml2(page, handler); });
}
BENCHMARK(metadataLibxml2)->Name("metadata/libxml2")->Unit(benchmark::kMillisecond);

/// All that a gatherer wants of a page, by the library's own rules and by those of today.
void wholeRoad(benchmark::State& state, const WebRules& web) {
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    eachPage(state, corpus().pages, [&](const std::string& bytes) {
        const Page page(Bytes(bytes), {.url = url, .web = web});
        benchmark::DoNotOptimize(page.title());
        benchmark::DoNotOptimize(page.links());
        benchmark::DoNotOptimize(page.metadata());
        benchmark::DoNotOptimize(page.plainText());
    });
}
void roadOfToday(benchmark::State& state) { wholeRoad(state, WebRules::today()); }
void describedRoad(benchmark::State& state) { wholeRoad(state, {}); }
BENCHMARK(roadOfToday)->Name("page-road-today/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(describedRoad)->Name("page-road-today/described")->Unit(benchmark::kMillisecond);

/// The tags alone.
void scanPages(benchmark::State& state, const WebRules& web) {
    eachPage(state, decodedPages(), [&](const String& page) {
        std::size_t tags = 0;
        GetTagsOfString(
            page, [&](const Tag&) { return ++tags == 0; }, web);
        benchmark::DoNotOptimize(tags);
    });
}
void scanOfToday(benchmark::State& state) { scanPages(state, WebRules::today()); }
void describedScan(benchmark::State& state) { scanPages(state, {}); }
BENCHMARK(scanOfToday)->Name("scan-today/velmo")->Unit(benchmark::kMillisecond);
BENCHMARK(describedScan)->Name("scan-today/described")->Unit(benchmark::kMillisecond);

void textLibxml2(benchmark::State& state) {
    htmlSAXHandler handler{};
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar**) {
        static_cast<Collected*>(data)->raw += isRaw(name);
    };
    handler.endElement = [](void* data, const xmlChar* name) {
        static_cast<Collected*>(data)->raw -= isRaw(name);
    };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        auto* collected = static_cast<Collected*>(data);
        if (!collected->raw)
            collected->text.append(reinterpret_cast<const char*>(text),
                                   static_cast<std::size_t>(length));
    };
    eachPage(state, corpus().pages,
             [&](const std::string& page) { parseWithLibxml2(page, handler); });
}
BENCHMARK(textLibxml2)->Name("plain-text/libxml2")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
