// What is sent and what is read, without a network.
#include <velmocore/net/Reachability.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/net/UserAgents.h>

#include "TestSupport.h"
#include "net/BrowserVersions.h"
#include "net/CacheRules.h"

namespace velmo {
namespace {

URL urlOf(View text) { return URL::URLWithString(String(text)); }

TEST(URLRequest, TakesReferrersOfTheWeb) {
    const struct {
        const char16_t *given, *set;
    } cases[] = {{u"http://h.org/a", u"http://h.org/a"},
                 {u"www.h.org", u"www.h.org"},
                 {u"/tmp/a", nullptr},
                 {u"file:///a", nullptr},
                 {u"http://mac.local/", nullptr},
                 {u"http://mac.LOCAL:8/a", nullptr},
                 {u"http://h.org/a.local", u"http://h.org/a.local"},
                 {u"http://h.local.org/", u"http://h.local.org/"},
                 {u"http://h .local/", nullptr},
                 {nullptr, nullptr}};
    for (const auto& [given, set] : cases) {
        URLRequest request = {.url = urlOf(u"http://h/")};
        setReferrer(request, given);
        EXPECT_EQ(referrer(request), String(set)) << utf8(given ? given : u"");
    }
    const URLRequest request =
        requestWithURL(urlOf(u"feed://h.org/a"), {.referrer = urlOf(u"http://h.org/"), .userAgent = u"me"});
    EXPECT_EQ(request.url.absoluteString(), u"http://h.org/a");
    EXPECT_EQ(userAgent(request), u"me");
    EXPECT_EQ(referrer(request), u"http://h.org/");
    EXPECT_TRUE(requestWithURL(URL()).isAbsent());
}

TEST(URLRequest, MakesBodiesOfPosts) {
    const struct {
        HTTPPost post;
        const char* body;
        bool isValid;
        TextEncoding encoding = UnknownTextEncoding;
    } cases[] = {
        {{}, nullptr, false},
        {String(), nullptr, false},
        {String(u""), "", false},
        {String(u"a=b&c"), "a=b&c", true},
        {String(u"\u00E4"), nullptr, true},
        {Data{0, 255}, "\0\xFF", false},
        {HTTPPostFields{}, "", false},
        {HTTPPostFields{{u"b", u"1 2"}, {u"a", u"\u00E4"}}, "b=1%202&a=%C3%A4", true},
        {HTTPPostFields{{u"a", u"\u00E4"}}, "a=%E4", true, ISOLatin1TextEncoding},
        {HTTPPostFields{{u"\u20AC", u"1"}, {u"a", u"\u20AC"}, {u"c", u"x=y&z"}}, "c=x=y&z", true,
         ISOLatin1TextEncoding},
    };
    for (const auto& [post, body, isValid, encoding] : cases) {
        URLRequest request = {.body = Data{1}};
        setHTTPPost(request, post, encoding);
        EXPECT_EQ(isValidHTTPPost(post), isValid);
        EXPECT_EQ(request.body.has_value(), body != nullptr);
        EXPECT_EQ(request.body ? charsOf(*request.body).substr(0, 99) : "",
                  std::string_view(body ? body : "", body ? request.body->size() : 0));
    }
}

TEST(UserAgents, FallBackByTheSystemsVersion) {
    EXPECT_EQ(WebKitUserAgent(),
              u"Mozilla/5.0 (Macintosh; Intel Mac OS X) AppleWebKit/600.7.12 (KHTML, like Gecko) Version/9.0 "
              u"Safari/600.7.12");
    const struct {
        double foundation;
        const char16_t *webKit, *ofFile, *browser;
    } cases[] = {{1151.15, u"536.30.1", u"2600", u"7.0"},
                 {1151.16, u"600.7.12", u"600", u"8.0"},
                 {1153.2, u"600.7.12", u"600", u"8.0.7"},
                 {1252.0, u"600.7.12", u"600", u"9.0"}};
    for (const auto& [foundation, webKit, ofFile, browser] : cases) {
        EXPECT_EQ(detail::webKitVersionOf({}, foundation), webKit);
        EXPECT_EQ(detail::webKitVersionOf(u"1", foundation), webKit);
        EXPECT_EQ(detail::webKitVersionOf(u"12600", foundation), ofFile);
        EXPECT_EQ(detail::browserVersionOf(u"", foundation), browser);
    }
}

TEST(HTTPHeaders, AreReadFromWhatServersSend) {
    const auto head = responseHeadOfBytes(
        "HTTP/1.1 404  Not Found \r\n folded onto nothing\r\nno colon\r\n: no name\r\nA: 1\r\nSet-Cookie : x\r\n"
        "a:  2 \t\r\nLong: one\n\ttwo\r\n  three\r\nLatin: \xE4\r\nUtf: \xC3\xA4\r\nEmpty:\r\n\r\nBody: no");
    ASSERT_TRUE(head);
    EXPECT_EQ(head->statusCode, 404);
    EXPECT_EQ(head->reason, u"Not Found");
    const std::pair<View, String> fields[] = {{u"a", u"1, 2"},       {u"set-cookie", u"x"}, {u"long", u"one two three"},
                                              {u"latin", u"\u00E4"}, {u"utf", u"\u00E4"},   {u"empty", u""},
                                              {u"body", String()}};
    for (const auto& [name, value] : fields) EXPECT_EQ(head->headers.value(name), value) << utf8(name);
    EXPECT_EQ(head->headers.all().size(), 7u);
    for (const char* bad : {"", "HTTP/1.1", "HTTP/1.1 20", "HTTP/1.1 2000 x", "HTTP/1.1 abc", "ICY 200 OK"})
        EXPECT_FALSE(responseHeadOfBytes(bad)) << bad;
    HTTPHeaders headers = head->headers;
    headers.setValue(u"A", u"3");
    headers.setValue(u"LATIN", {});
    EXPECT_EQ(headers.value(u"a"), u"3");
    EXPECT_EQ(headers.all().size(), 5u);
}

TEST(URLResponse, TellsTypeLengthAndDates) {
    const struct {
        const char* fields;
        String type, encoding;
        std::int64_t length;
    } cases[] = {
        {"", {}, {}, -1},
        {"Content-Type: Text/HTML ; charset=KOI8-R\r\nContent-Length: 12\r\n", u"text/html", u"KOI8-R", 12},
        {"Content-Type: text/html\r\nContent-Type: text/html\r\nContent-Encoding: gzip\r\nContent-Length: 12\r\n",
         u"text/html",
         {},
         -1},
        {"Content-Encoding: identity\r\nContent-Length: 99999999999999999999\r\n", {}, {}, -1},
    };
    for (const auto& [fields, type, encoding, length] : cases) {
        const auto head = responseHeadOfBytes("HTTP/1.1 200 OK\r\n" + std::string(fields));
        const URLResponse response = responseOfHead({}, *head);
        EXPECT_EQ(response.MIMEType, type) << fields;
        EXPECT_EQ(response.textEncodingName, encoding) << fields;
        EXPECT_EQ(response.expectedContentLength, length) << fields;
    }
    URLResponse response;
    EXPECT_FALSE(createdDate(response));
    response.headers.setValue(u"Date", u"Thu, 01 Jan 1970 00:01:00 GMT");
    response.headers.setValue(u"Expires", u"Thu, 01 Jan 1970 00:02:00 GMT");
    EXPECT_EQ(createdDate(response), Date(std::chrono::seconds(60)));
    EXPECT_EQ(*expiresDate(response) - *createdDate(response), std::chrono::seconds(60));
    // A minute that began when the answer was made, of which half had gone when it came.
    response.headers.setValue(u"Age", u"30");
    const CachedURLResponse kept = {response, {}, Date(std::chrono::seconds(1000))};
    for (const auto& [now, isGood] : {std::pair(1029, true), {1031, false}, {999, false}})
        EXPECT_EQ(detail::isUsable(kept, {}, Date(std::chrono::seconds(now))), isGood) << now;
}

TEST(Reachability, GoesByTheRoutingTable) {
    EXPECT_EQ(connectionFlagsForHost("127.0.0.1"), ConnectionReachable | ConnectionIsLocalAddress | ConnectionIsDirect);
    EXPECT_EQ(connectionFlagsForHost(nullptr) | connectionFlagsForHost("") | connectionFlagsForHost("a b"), 0u);
    for (const char16_t* text : {u"file:///a", u"mailto:a@b.c", u"http://127.0.0.1:1/", u"http://localhost/"})
        EXPECT_TRUE(isURLOnline(urlOf(text)) && isLocalURL(urlOf(text))) << utf8(text);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(isURLOnline(urlOf(u"http://no-such-host.invalid/")));
    EXPECT_FALSE(isLocalURL(urlOf(u"http://255.255.255.255/")));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
}

}  // namespace
}  // namespace velmo
