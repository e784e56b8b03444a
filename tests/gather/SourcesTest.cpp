// Ways in: the same pages come out of all of them, and nothing foreign hurts.
#include <velmocore/gather/FeedSource.h>
#include <velmocore/gather/FolderSource.h>
#include <velmocore/gather/Gathering.h>
#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/gather/WARCSource.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/storage/Compression.h>

#include <map>

#include "FolderFixture.h"

namespace velmo {
namespace {

std::string packed(std::string_view bytes, bool gzip = true) {
    return std::string(charsOf(*dataByCompressingBytes(Bytes(bytes), 6, gzip)));
}

std::string inChunks(std::string_view body) {
    std::string chunked;
    for (; !body.empty(); body.remove_prefix(std::min<std::size_t>(7, body.size()))) {
        const std::string_view chunk = body.substr(0, 7);
        chunked += std::to_string(chunk.size()) + ";x=y\r\n" + std::string(chunk) + "\r\n";
    }
    return chunked + "0\r\n\r\n";
}

std::string recordOf(std::string_view type, std::string_view url, std::string_view block, std::string_view more = "") {
    return "WARC/1.0\r\nWARC-Type: " + std::string(type) + "\r\nWARC-Target-URI: " + std::string(url) +
           "\r\nWARC-Date: 2020-01-02T03:04:05Z\r\n" + std::string(more) +
           "Content-Length: " + std::to_string(block.size()) + "\r\n\r\n" + std::string(block) + "\r\n\r\n";
}

std::string responseOf(std::string_view headers, std::string_view body, std::string_view status = "200 OK") {
    return "HTTP/1.1 " + std::string(status) + "\r\nContent-Type: text/html\r\n" + std::string(headers) + "\r\n" +
           std::string(body);
}

InputStream streamOf(std::string_view bytes) { return InputStream::ofBytes(Data(bytes.begin(), bytes.end())); }

/// What a source gives, each page with its address and text, or the error.
std::vector<std::string> linesOf(PageSource& source) {
    std::vector<std::string> lines;
    gatherPages(source, {.threads = 2}, [&](GatheredPage& page) {
        lines.push_back(page.error ? "! " + page.error->text.utf8()
                                   : page.record.url.absoluteString().utf8() + " " + page.record.text.utf8());
        if (!page.duplicateOf.isAbsent()) lines.back() += "= " + page.duplicateOf.utf8();
        return true;
    });
    return lines;
}

std::vector<std::string> linesOfArchive(std::string_view bytes, const SourceOptions& options = {}) {
    WARCSource source(streamOf(bytes), options);
    return linesOf(source);
}

using Lines = std::vector<std::string>;

class SourcesTest : public test::FolderTest {
protected:
    /// The records of a store, without when they were fetched and what differs by the way in.
    Lines stored(PageSource& source, const char* name) {
        PageStore store = PageStore::openForUpdating(at(name));
        gatherPages(source, {.threads = 2, .store = &store}, [](GatheredPage& page) {
            EXPECT_FALSE(page.error) << *page.error;
            return true;
        });
        store = {};
        Lines lines;
        PageStore::openForReading(at(name)).forEachPage([&](const StoredPage& stored) {
            PageRecord page = *pageRecordFromData(stored.block());
            page.fetched.reset();
            page.status = 0;
            lines.emplace_back(charsOf(dataFromPageRecord(page)));
            return true;
        });
        std::ranges::sort(lines);
        return lines;
    }
};

TEST_F(SourcesTest, EveryWayInGivesTheSame) {
    const std::map<std::string, std::string> pages = {
        {"a.html",
         "<html><head><meta charset=utf-8><title>One</title></head><body><p>Tea and <a "
         "href=b.html>more</a></p></body></html>"},
        {"b.html",
         "<html><head><meta charset=utf-8><title>Two \xC3\xA9</title><meta name=author "
         "content=A></head><body>Cups</body></html>"},
        {"c/d.html", "<html><head><meta charset=utf-8><title>Three</title></head><body>" + std::string(5000, 'x') +
                         "</body></html>"}};
    std::string archive = packed("WARC/1.0\r\nWARC-Type: warcinfo\r\nContent-Length: 3\r\n\r\na:b\r\n\r\n"), lines,
                feed = "<rss><channel>";
    const std::string codings[] = {"", "Transfer-Encoding: chunked\r\n",
                                   "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n"};
    for (std::size_t i = 0; const auto& [name, bytes] : pages) {
        const std::string url = "http://h.org/" + name;
        write("site/" + name, bytes);
        std::string body = i == 2 ? packed(bytes) : bytes;
        if (i > 0) body = inChunks(body);
        archive += packed(recordOf("response", url, responseOf(codings[i++], body)));
        archive += packed(recordOf("request", url, "GET / HTTP/1.1\r\n\r\n"));
        archive += packed(recordOf("revisit", url, "", "WARC-Refers-To-Target-URI: " + url + "\r\n"));
        std::string escaped = bytes;
        for (std::size_t q = 0; (q = escaped.find('"', q)) != escaped.npos; q += 2) escaped.insert(q, "\\");
        lines += R"({"x":[{"url":1}],"url":")" + url + R"(","html":")" + escaped + "\"}\n";
        feed += "<item><link>" + url + "</link><description><![CDATA[" + bytes + "]]></description></item>";
    }
    write("site.warc.gz", archive);
    write("site.jsonl", lines);
    write("site.xml", feed + "</channel></rss>");
    FolderSource folder(at("site"), {.base = URL::URLWithString(u"http://h.org/")});
    const Lines expected = stored(folder, "folder.store");
    EXPECT_EQ(expected.size(), 3U);
    for (const char* name : {"site.warc.gz", "site.jsonl", "site.xml"})
        EXPECT_TRUE(stored(*openSource(Path(at(name))), (name + std::string(".store")).c_str()) == expected) << name;
}

TEST_F(SourcesTest, WalksFoldersByWhatTheirFilesAre) {
    const std::pair<const char*, std::string> files[] = {
        {"a.html", "<p>A"},
        {"b.txt", "plain < text"},
        {"c.css", "p { x: y }"},
        {"d.png", "\x89PNG\r\n\x1A"},
        {"e/f.html.gz", packed("<p>F")},
        {"e/g.warc", recordOf("resource", "http://w.org/", "<p>W", "Content-Type: text/html\r\n")},
        {"e/h.js", "var x;"},
        {"i j#.html", "<p>I"},
        {"k.html.gz", packed("<p>broken").substr(0, 20)}};
    for (const auto& [name, bytes] : files) write(name, bytes);
    FolderSource source(at(""), {.base = URL::URLWithString(u"http://h.org/s/")});
    EXPECT_EQ(linesOf(source),
              (Lines{"http://h.org/s/a.html A", "http://h.org/s/b.txt plain < text", "http://h.org/s/e/f.html.gz F",
                     "http://w.org/ W", "http://h.org/s/i%20j%23.html I", "! the gzip data break off"}));
    EXPECT_EQ(source.progress().done, source.progress().total);
    FolderSource some(at(""), {.files = {.include = {u"*.html", u"g*"}, .exclude = {u"e"}}});
    EXPECT_EQ(linesOf(some).size(), 2U);
    EXPECT_EQ(linesOf(*openSource(Path(at("d.png")))), (Lines{"! a binary file"}));
    EXPECT_EQ(linesOf(*openSource(Path(at("none")))), (Lines{"! No such file or directory"}));
}

TEST_F(SourcesTest, ReadsTheRecordsOfArchives) {
    const std::string html = "Content-Type: text/html\r\n";
    const struct {
        std::string record;
        Lines lines;
    } cases[] = {
        {recordOf("response", "<http://h.org/a>", responseOf("", "<p>A")), {"http://h.org/a A"}},
        {recordOf("response", "http://h.org/", responseOf("Content-Encoding: deflate\r\n", packed("<p>D", false))),
         {"http://h.org/ D"}},
        {recordOf("response", "http://h.org/", responseOf("Content-Encoding: gzip, identity\r\n", packed("<p>G"))),
         {"http://h.org/ G"}},
        // Its header says so still, though it was undone when it was kept.
        {recordOf("response", "http://h.org/", responseOf("Transfer-Encoding: chunked\r\n", "<p>C")),
         {"http://h.org/ C"}},
        {recordOf("response", "http://h.org/", responseOf("Transfer-Encoding: chunked\r\n", "fffffffffffffff\r\n<p>L")),
         {"http://h.org/ L"}},
        {recordOf("response", "http://h.org/", responseOf("Content-Encoding: br\r\n", "xyz")),
         {"! its content encoding br cannot be undone"}},
        {recordOf("response", "http://h.org/", responseOf("", "moved", "301 Moved")), {}},
        {recordOf("response", "http://h.org/", "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n<p>no"), {}},
        {recordOf("response", "http://h.org/", responseOf("", "\x89PNG\r\n\x1A")), {}},
        {recordOf("response", "dns:h.org", "20200102 h.org 1.2.3.4"), {}},
        {recordOf("response", "http://h.org/", "no head"), {}},
        {recordOf("conversion", "http://h.org/t", "a < b", "Content-Type: text/plain\r\n"), {"http://h.org/t a < b"}},
        {recordOf("resource", "http://h.org/i", "GIF89a", "Content-Type: image/gif\r\n"), {}},
        {recordOf("metadata", "http://h.org/", "x: y"), {}},
        {recordOf("revisit", "http://h.org/n", "", "WARC-Refers-To-Target-URI: http://h.org/o\r\n"),
         {"http://h.org/n = http://h.org/o"}},
        {recordOf("revisit", "http://h.org/n", "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n"), {}},
        {recordOf("resource", "http://h.org/", std::string(101, 'x'), html), {"! too large"}},
    };
    for (const auto& each : cases) {
        Lines expected = each.lines;
        EXPECT_EQ(linesOfArchive(each.record, {.mostBytes = 100}), expected) << each.record;
        expected.push_back("http://h.org/z Z");
        EXPECT_EQ(
            linesOfArchive(each.record + recordOf("resource", "http://h.org/z", "<p>Z", html), {.mostBytes = 100}),
            expected)
            << each.record;
    }
    WARCSource source(streamOf(cases[0].record));
    SourcePage page;
    ASSERT_EQ(source.next(page), PageSource::State::Page);
    EXPECT_EQ(stringInISO8601(*page.fetched), u"2020-01-02T03:04:05Z");
    EXPECT_EQ(page.status, 200);
}

TEST_F(SourcesTest, GivesWhatIsWholeOfDamagedArchives) {
    const std::string first = recordOf("resource", "http://h.org/1", "<p>1", "Content-Type: text/html\r\n");
    const std::string second = recordOf("response", "http://h.org/2", responseOf("", "<p>2"));
    const std::string both = first + second;
    for (std::size_t length = first.size(); length < both.size() - 4; ++length) {
        const Lines lines = linesOfArchive(both.substr(0, length));
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines[0], "http://h.org/1 1") << length;
        const bool isNone = length == first.size(), isMark = length < first.size() + 5;
        EXPECT_EQ(isNone ? "" : lines.at(1), isNone ? "" : isMark ? "! damaged archive" : "! the archive breaks off");
    }
    const std::string gzipped = packed(first) + packed(second);
    for (std::size_t length = packed(first).size() + 1; length < gzipped.size(); length += 3) {
        const Lines lines = linesOfArchive(gzipped.substr(0, length));
        EXPECT_EQ(lines.at(0), "http://h.org/1 1") << length;
    }
    const std::string head =
        "WARC/1.0\r\nWARC-Type: resource\r\nWARC-Target-URI: http://h.org/\r\nContent-Type: "
        "text/html\r\nContent-Length: ";
    for (const char* length : {"18446744073709551615", "9223372036854775807", "99999999999999999999", "-1", "x", ""})
        EXPECT_EQ(linesOfArchive(first + head + length + "\r\n\r\n<p>x").size(), 2U) << length;
    std::mt19937 random(1);
    for (int i = 0; i < 3000; ++i) {
        std::string damaged = i % 2 ? both : gzipped;
        for (std::size_t k = 0; k <= random() % 3; ++k)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        linesOfArchive(damaged, {.mostBytes = 10000});
    }
}

TEST_F(SourcesTest, ReadsLinesOneByOne) {
    const auto lines = [](std::string_view bytes) {
        JSONLinesSource source(streamOf(bytes), {.name = u"f", .mostBytes = 200});
        return linesOf(source);
    };
    const std::pair<std::string, std::string> cases[] = {
        {R"({"url":"http://h.org/","html":"<p>A"})", "http://h.org/ A"},
        {R"({"html":"<p>\u00e9\ud83d\ude00","url":"http://h.org/"})", "http://h.org/ \xC3\xA9\xF0\x9F\x98\x80"},
        {R"({"url":"http://h.org/","html":"<meta charset=koi8-r>\u00e9","contentType":"text/html; charset=koi8-r"})",
         "http://h.org/ \xC3\xA9"},
        {R"({"url":"http://h.org/","text":"a < b","deep":)" + std::string(60, '[') + std::string(60, ']') + "}",
         "http://h.org/ a < b"},
        {R"({"url":"http://h.org/"})", "! no html"},
        {R"({"url":"","html":""})", "! not a URL"},
        {R"({"url":5,"html":""})", "! no url"},
        {"[1]", "! no JSON object"},
        {"{", "! not JSON at byte 2"},
        {"{\"url\":\"\xFF\"}", "! not JSON at byte 9"},
        {R"({"url":"http://h.org/","html":")" + std::string(300, 'x') + "\"}", "! too large"},
        {R"({"url":"http://h.org/","html":"x","status":1e300,"fetched":-1e300})", "http://h.org/ x"},
    };
    std::string all;
    Lines expected;
    for (const auto& [line, result] : cases) {
        EXPECT_EQ(lines(line), Lines{result}) << line;
        all += line + (all.size() % 2 ? "\r\n" : "\n \t\n");
        expected.push_back(result);
    }
    EXPECT_EQ(lines(all), expected);
    EXPECT_EQ(lines(packed(all)), expected);
    JSONLinesSource source(streamOf(
        R"({"url":"http://h.org/","html":"","title":"T","author":"A","date":"2001-02-03","fetched":"2020-01-02T03:04:05Z","status":201})"));
    gatherPages(source, {}, [](GatheredPage& page) {
        EXPECT_EQ(page.record.title, u"T");
        EXPECT_EQ(page.record.author, u"A");
        EXPECT_EQ(stringInISO8601(*page.record.date), u"2001-02-03T00:00:00Z");
        EXPECT_EQ(stringInISO8601(*page.record.fetched), u"2020-01-02T03:04:05Z");
        EXPECT_EQ(page.record.status, 201);
        return true;
    });
}

TEST_F(SourcesTest, AnswersWhoWaitsForTheAnswer) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const auto say = [&](const std::string& line) {
        ASSERT_EQ(::write(pipe[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    };
    JSONLinesSource source(InputStream::ofDescriptor(pipe[0]));
    std::size_t answers = 0;
    say("{\"url\":\"http://h.org/\",\"html\":\"0\"}\n");
    // Nothing more is written before the answer has come.
    gatherPages(source, {.threads = 3}, [&](GatheredPage& page) {
        EXPECT_EQ(page.record.text, String::fromUTF8(std::to_string(answers)));
        if (++answers < 5)
            say("{\"url\":\"http://h.org/\",\"html\":\"" + std::to_string(answers) + "\"}\n");
        else
            ::close(pipe[1]);
        return true;
    });
    EXPECT_EQ(answers, 5U);
    ::close(pipe[0]);
}

TEST_F(SourcesTest, TakesItemsOfFeedsForPages) {
    const std::string feed =
        "<feed><title>F</title><entry><title>One</title><link href='/1'/><updated>2001-02-03T04:05:06Z</updated>"
        "<author><name>A</name></author><content type='html'>&lt;p&gt;Tea</content></entry><entry><title>No "
        "link</title></entry></feed>";
    FeedSource source(streamOf(feed), {.url = URL::URLWithString(u"http://h.org/feed")});
    std::size_t count = 0;
    gatherPages(source, {}, [&](GatheredPage& page) {
        ++count;
        EXPECT_EQ(page.record.url.absoluteString(), u"http://h.org/1");
        EXPECT_EQ(page.record.title, u"One");
        EXPECT_EQ(page.record.author, u"A");
        EXPECT_EQ(stringInISO8601(*page.record.date), u"2001-02-03T04:05:06Z");
        EXPECT_NE(page.record.text.view().find(u"Tea"), View::npos);
        return true;
    });
    EXPECT_EQ(count, 1U);
    FeedSource none(streamOf("<html>"));
    EXPECT_EQ(linesOf(none), (Lines{"! no feed"}));
}

TEST_F(SourcesTest, ReadsStreamsInPiecesOfAnySize) {
    std::string text;
    for (int i = 0; text.size() < 700000; ++i) text += std::to_string(i);
    const std::string whole = packed(text.substr(0, 400000)) + packed(text.substr(400000));
    std::mt19937 random(2);
    for (const std::string& bytes : {text, whole, whole + std::string(600, '\0')}) {
        InputStream stream = streamOf(bytes);
        std::string read;
        while (!stream.peek(1).empty()) {
            const std::size_t wanted = random() % 200000 + 1;
            const Bytes here = stream.peek(wanted);
            const std::size_t taken = std::min(wanted, here.size());
            read += charsOf(here.first(taken));
            EXPECT_EQ(stream.skip(taken), taken);
        }
        EXPECT_TRUE(read == text);
        EXPECT_FALSE(stream.error());
    }
    InputStream behind = streamOf(whole + "x");
    EXPECT_EQ(behind.skip(1000000), text.size());
    EXPECT_TRUE(behind.error());
}

}  // namespace
}  // namespace velmo
