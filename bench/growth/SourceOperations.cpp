// Ways in: archives and lines of pages, and the road of a page to its record.
#include <velmocore/gather/FeedSource.h>
#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/gather/PageReading.h>
#include <velmocore/gather/RobotsRules.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/gather/WARCSource.h>
#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/markup/JSONEscapes.h>
#include <velmocore/text/Removal.h>
#include <velmocore/url/PercentEscapes.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

constexpr std::u16string_view ResourceHead =
    u"WARC/1.0\r\nWARC-Type: resource\r\nWARC-Target-URI: http://h.org/\r\n"
    u"Content-Type: text/html\r\nContent-Length: ";

Data dataOf(const String& text) {
    const std::string utf8 = text.utf8();
    return {utf8.begin(), utf8.end()};
}

/// All that a source gives, with what is left to do for each page.
void useAll(PageSource& source) {
    SourcePage page;
    while (source.next(page) == PageSource::State::Page) {
        if (page.complete && !page.error) page.complete(page);
        use(page);
        source.didRead({});
    }
}

Data responseOf(const Input& in, std::u16string_view headers) {
    const String block =
        u"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n" + String(headers) + u"\r\n" + in.text;
    const String length = String::fromUTF8(std::to_string(block.utf8().size()));
    return dataOf(
        u"WARC/1.0\r\nWARC-Type: response\r\nWARC-Target-URI: http://h.org/\r\n"
        u"Content-Length: " +
        length + u"\r\n\r\n" + block);
}

/// A rule that is the text, and paths for which it nearly holds.
void useRule(const Input& in) {
    const String line = stringByRemovingFeeds(in.text);
    const RobotsRules rules(dataOf(u"User-agent: *\nDisallow: /*" + line), "velmo");
    const std::u16string path(in.text.length(), u'a');
    use(rules.isAllowed(URL::URLWithString(u"http://h.org/" + String(path))));
    const String same = stringByAddingPercentEscapesToURL(in.almost);
    use(rules.isAllowed(URL::URLWithString(u"http://h.org/" + same)));
}

constexpr Operation Rows[] = {
    {"robots.txt",
     [](const Input& in) {
         const RobotsRules rules(in.utf8, "velmo");
         use(rules.isAllowed(URL::URLWithString(u"http://h.org/aaaaaaaaaaaaaaaaaaaaaaaaaaaaa")));
     }},
    {"a rule of robots.txt", useRule},
    {"archive of pages",
     [](const Input& in) {
         WARCSource archive(InputStream::ofBytes(in.utf8));
         useAll(archive);
         WARCSource length(InputStream::ofBytes(dataOf(ResourceHead + in.text)));
         useAll(length);
     }},
    {"body of a response in an archive",
     [](const Input& in) {
         for (const auto headers :
              {u"Transfer-Encoding: chunked\r\n", u"Content-Encoding: gzip\r\n",
               u"Content-Encoding: deflate\r\n"}) {
             WARCSource archive(InputStream::ofBytes(responseOf(in, headers)));
             useAll(archive);
         }
     }},
    {"lines of pages",
     [](const Input& in) {
         JSONLinesSource lines(InputStream::ofBytes(in.utf8));
         useAll(lines);
         JSONLinesSource few(InputStream::ofBytes(in.utf8), {.mostBytes = 100});
         useAll(few);
         const std::string line = "{\"url\":\"http://h/\",\"text\":\"" +
                                  stringByConvertingCharactersToJSON(in.text).utf8() + "\"}\n";
         JSONLinesSource page(InputStream::ofBytes(Data(line.begin(), line.end())));
         useAll(page);
     }},
    {"an input by its content",
     [](const Input& in) {
         useAll(*openSource(InputStream::ofBytes(in.utf8)));
         useAll(*openSource(InputStream::ofBytes(in.compressed)));
         use(decodeContent(Data(in.utf8), {.kind = ContentKind::Text}));
     }},
    {"record of a page",
     [](const Input& in) {
         SourcePage page = {.url = URL::URLWithString(u"http://h.org/"), .bytes = in.utf8};
         use(readPage(std::move(page)));
     }},
};

}  // namespace

std::span<const Operation> sourceOperations() { return Rows; }

}  // namespace velmo::growth
