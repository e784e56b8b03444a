// Downloads from servers in the test itself: well-behaved ones, and those that are not.
#include <httplib.h>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <csignal>

#include <condition_variable>
#include <filesystem>
#include <future>

#include <velmocore/net/DownloadRequest.h>
#include <velmocore/net/URLCache.h>
#include <velmocore/net/URLSession.h>
#include <velmocore/net/UserAgents.h>
#include <velmocore/storage/Compression.h>
#include <velmocore/url/DownloadStatus.h>

#include "RawServer.h"

namespace velmo {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using test::answerOf;
using test::RawServer;

std::string textOf(const std::optional<Data>& data) { return data ? std::string(charsOf(*data)) : "absent"; }
std::int64_t codeOf(const std::optional<Error>& error) { return error ? error->code : 0; }
std::string found(const std::string& place) { return answerOf("old", "Location: " + place + "\r\n", "302 Found"); }

/// What each path says. Bodies without an end are sent until nobody takes them.
void answerBadly(RawServer::Client& client, std::atomic<std::size_t>& sent) {
    const std::string path = client.head.substr(4, client.head.find(' ', 4) - 4);
    const std::string ok = "HTTP/1.1 200 OK\r\n", chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const auto forever = [&](const std::string& start, const std::string& piece) {
        if (client.send(start))
            while (client.send(piece)) sent += piece.size();
    };
    if (path == "/stall") client.send(ok + "Content-Length: 9\r\n\r\nhello"), client.wait(5s);
    if (path == "/silent") client.wait(5s);
    if (path == "/drip") {
        client.send(ok + "Content-Length: 8\r\n\r\n");
        for (int i = 0; i < 8; ++i) client.wait(100ms), client.send("x");
    }
    if (path == "/circle") client.send(found("/circle"));
    if (path == "/file") client.send(found("file:///etc/passwd"));
    if (path == "/nowhere") client.send(found("http://h:99999/"));
    if (path == "/hop") client.send(found("page?a b"));
    if (path == "/page?a%20b") client.send(answerOf("new"));
    if (path == "/short") client.send(ok + "Content-Length: 100\r\n\r\n0123456789");
    if (path == "/long") client.send(ok + "Content-Length: 3\r\n\r\n0123456789");
    if (path == "/announced") client.send(ok + "Content-Length: 10000000000\r\n\r\nx"), client.wait(5s);
    if (path == "/endless") forever(chunked, "10000\r\n" + std::string(65536, 'x') + "\r\n");
    if (path == "/chunks") client.send(chunked + "3\r\nabc\r\nzz\r\n");
    if (path == "/head") forever(ok, "A: " + std::string(1000, 'x') + "\r\n");
    if (path == "/continue") forever("", "HTTP/1.1 100 Continue\r\n\r\n");
    if (path == "/long-redirect")
        forever("HTTP/1.1 302 Found\r\nLocation: /page?a%20b\r\n\r\n", std::string(65536, 'x'));
    if (path == "/speech") client.send("Good day to you\r\n\r\n");
    if (path == "/gzip") client.send(answerOf("no gzip at all", "Content-Encoding: gzip\r\n"));
    if (path == "/missing") client.send(answerOf("none", "", "404 Not Found"));
    if (path == "/bomb") {
        static const auto bomb = dataByGzippingData(Data(20'000'000));
        client.send(answerOf(charsOf(*bomb), "Content-Encoding: gzip\r\n"));
    }
}

TEST(Download, StandsBadServers) {
    std::atomic<std::size_t> sent = 0;
    RawServer server([&](RawServer::Client& client) { answerBadly(client, sent); });
    const struct {
        const char *path, *body;
        std::int64_t error, status;
        const char* forward = "";
    } cases[] = {
        {"/stall", "hello", URLErrorTimedOut, 200},
        {"/silent", "absent", URLErrorTimedOut, 0},
        {"/drip", "xxxxxxxx", 0, 200},
        {"/circle", "absent", URLErrorHTTPTooManyRedirects, 302},
        {"/file", "absent", URLErrorUnsupportedURL, 0},
        {"/nowhere", "absent", URLErrorRedirectToNonExistentLocation, 0},
        {"/hop", "new", 0, 200, "/page?a%20b"},
        {"/long-redirect", "new", 0, 200, "/page?a%20b"},
        {"/short", "0123456789", URLErrorNetworkConnectionLost, 200},
        {"/long", "012", 0, 200},
        {"/announced", "absent", URLErrorDataLengthExceedsMaximum, 200},
        {"/endless", "absent", URLErrorDataLengthExceedsMaximum, 200},
        {"/chunks", "abc", URLErrorNetworkConnectionLost, 200},
        {"/head", "absent", URLErrorDataLengthExceedsMaximum, 0},
        {"/continue", "absent", URLErrorDataLengthExceedsMaximum, 0},
        {"/speech", "absent", URLErrorBadServerResponse, 0},
        {"/gzip", "absent", URLErrorCannotDecodeRawData, 200},
        {"/bomb", "absent", URLErrorDataLengthExceedsMaximum, 200},
        {"/missing", "none", 0, 404},
        {"/closes", "absent", URLErrorNetworkConnectionLost, 0},
    };
    const DownloadLimits limits = {.body = 1'000'000, .header = 10'000, .redirects = 5};
    for (const auto& [path, body, error, status, forward] : cases) {
        // Silence ends the first two; a busy machine ends none of the others.
        const double timeout = error == URLErrorTimedOut ? 0.25 : std::string_view(path) == "/drip" ? 0.7 : 30;
        const auto result = downloadSynchronous(server.url(path), {.timeoutInterval = timeout, .limits = limits});
        EXPECT_EQ(textOf(result.data), body) << path;
        EXPECT_EQ(codeOf(result.error), error) << path << " " << (result.error ? printed(*result.error) : "");
        EXPECT_EQ(result.statusCode, status) << path;
        EXPECT_EQ(result.forward, *forward ? server.url(forward) : URL()) << path;
        // The same by the thread of the library.
        std::promise<std::pair<std::string, std::int64_t>> promise;
        downloadAsynchronous(server.url(path), {.timeoutInterval = timeout, .limits = limits},
                             [&](auto data, auto, auto failure) {
                                 promise.set_value({textOf(data), codeOf(failure)});
                             });
        EXPECT_EQ(promise.get_future().get(), std::pair(std::string(body), error)) << path;
    }
    EXPECT_LT(sent, 100'000'000u);  // what sockets hold, and no more
    EXPECT_EQ(numberOfDownloads() + numberOfRunningDownloads(), 0u);
}

TEST(Download, RefusesWhatIsNoPage) {
    for (const char16_t* text : {u"ftp://127.0.0.1/a", u"file:///etc/passwd"})
        EXPECT_EQ(codeOf(downloadSynchronous(URL::URLWithString(text)).error), URLErrorUnsupportedURL);
    EXPECT_FALSE(downloadSynchronous(URL::URLWithString(u"mailto:a@b.c")).error);
    bool isCalled = false;
    downloadAsynchronous(URL(), [&](auto data, auto response, auto error) { isCalled = !data && !response && !error; });
    EXPECT_TRUE(isCalled);
    EXPECT_DEATH(downloadAsynchronous(URL(), nullptr), "completionHandler!=NULL");
    URLRequest request = {.url = URL::URLWithString(u"http://127.0.0.1:1/")};
    EXPECT_EQ(codeOf(sendSynchronousRequest(request).error), URLErrorCannotConnectToHost);
    request.method = u"GET / HTTP/1.1\r\nX:";
    EXPECT_EQ(codeOf(downloadSynchronousResponse(request).error), URLErrorBadURL);
}

TEST(Download, AsksItsHooks) {
    RawServer server([](RawServer::Client& client) {
        const bool isFirst = client.head.starts_with("GET /first ");
        client.send(isFirst ? found("/second") : answerOf("body", "Cache-Control: max-age=60\r\n"));
    });
    const Error own{u"own", 7, u"enough"};
    using Hook = DownloadDelegate::Hook DownloadDelegate::*;
    const struct {
        Hook hook;
        std::string data;
        const char* last;
    } cases[] = {{&DownloadDelegate::acceptRedirectResponse, "absent", "/second"},
                 {&DownloadDelegate::acceptResponse, "absent", "/second"},
                 {&DownloadDelegate::shouldContinueDownloadingRequest, "body", "/second"}};
    for (const auto& [hook, data, last] : cases) {
        for (const bool throws : {false, true}) {
            DownloadDelegate delegate;
            delegate.*hook = [&](SynchronousDownload& download, Error& error) {
                EXPECT_TRUE(download.running() && download.connection());
                EXPECT_EQ(SynchronousDownload::numberOfRunningDownloads(), 1u);
                // Another download may run meanwhile.
                EXPECT_EQ(textOf(downloadSynchronous(server.url("/other")).data), "body");
                if (throws) throw std::runtime_error("hook");
                error = own;
                return false;
            };
            const auto answer = downloadSynchronousResponse(requestWithURL(server.url("/first")), &delegate);
            EXPECT_EQ(textOf(answer.data), data);
            EXPECT_EQ(answer.request.url, server.url(last));
            EXPECT_EQ(codeOf(answer.error), throws ? -1 : 7);
        }
    }
    DownloadDelegate delegate;
    int polls = 0;
    delegate.shouldCancelConnection = [&](auto&, Error&) { return ++polls == 3; };
    RawServer silent([](RawServer::Client& client) { client.wait(5s); });
    SynchronousDownload download(requestWithURL(silent.url("/")), &delegate);
    const auto start = steady_clock::now();
    download.run();
    EXPECT_TRUE(polls == 3 && download.done() && !download.connection() && !download.error());
    EXPECT_LT(steady_clock::now() - start, 4s);  // not until the server ends
}

/// A well-behaved server on a thread of its own.
template <class Base = httplib::Server>
class Server : public Base {
public:
    template <class... Arguments>
    explicit Server(Arguments... arguments) : Base(arguments...) {
        this->set_tcp_nodelay(true);
        this->set_keep_alive_max_count(1);
        port_ = this->bind_to_any_port("127.0.0.1");
    }
    ~Server() {
        this->stop();
        if (thread_.joinable()) thread_.join();
        // The base has it ignored, and programs that other tests start would inherit that.
        std::signal(SIGPIPE, SIG_DFL);
    }
    void start() {
        thread_ = std::thread([this] { this->listen_after_bind(); });
        while (!this->is_running()) std::this_thread::sleep_for(1ms);
    }
    URL url(const std::string& path, const std::string& scheme = "http") const {
        return URL::URLWithString(String::fromUTF8(scheme + "://127.0.0.1:" + std::to_string(port_) + path));
    }

private:
    int port_;
    std::thread thread_;
};

TEST(Download, SendsAndTellsWhatItShould) {
    Server<> server;
    server.Post("/post", [](const auto& request, auto& response) {
        response.set_header("Last-Modified", "Thu, 01 Jan 1970 00:00:00 GMT");
        response.set_content(request.method + " " + request.get_header_value("Content-Type") + " " + request.body,
                             "Text/HTML; charset=\"koi8-r\"");
    });
    server.Get("/see", [](const auto&, auto& response) { response.set_redirect("/head", 303); });
    server.Post("/see", [](const auto&, auto& response) { response.set_redirect("/head", 302); });
    server.Get("/head", [](const auto& request, auto& response) {
        std::string told;
        for (const char* name : {"User-Agent", "Referer", "Cookie", "X"}) told += request.get_header_value(name) + "|";
        response.set_header("Set-Cookie", "a=1");
        response.set_content(told, "text/plain");
    });
    server.start();
    const auto posted = downloadSynchronous(server.url("/post"), {.httpPost = HTTPPostFields{{u"a", u"1 2"}}});
    EXPECT_EQ(textOf(posted.data), "POST application/x-www-form-urlencoded a=1%202");
    EXPECT_EQ(posted.MIMEType, u"text/html");
    EXPECT_EQ(posted.encodingName, u"koi8-r");
    EXPECT_EQ(posted.lastModified, u"Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(posted.expectedContentLength, static_cast<std::int64_t>(posted.data->size()));
    const auto seen = downloadSynchronous(
        server.url("/see"), {.referrer = u"http://h.org/", .userAgent = u"me", .httpPost = String(u"text")});
    EXPECT_EQ(textOf(seen.data), "me|http://h.org/|||");
    const std::string agent = libraryUserAgent().utf8();
    // Cookies only where they are wanted, and in a session for as long as it lives.
    URLRequest request = requestWithURL(server.url("/head"));
    request.headers.setValue(u"X", u"a\r\nCookie: b=2");
    const URLSession session;
    for (const bool wants : {false, true, true, false}) {
        static int round = 0;
        request.shouldHandleCookies = wants;
        const std::string cookie = round++ == 2 ? "a=1" : "";
        EXPECT_EQ(textOf(session.sendSynchronousRequest(request).data), agent + "||" + cookie + "||");
    }
    request.shouldHandleCookies = true;
    EXPECT_EQ(textOf(URLSession().sendSynchronousRequest(request).data), agent + "||||");
    EXPECT_EQ(textOf(session.sendThumbnailRequest(server.url("/head"))), downloadsUserAgent().utf8() + "||||");
}

TEST(Download, AnswersFromItsCache) {
    std::atomic<int> asked = 0, confirmed = 0;
    RawServer server([&](RawServer::Client& client) {
        ++asked;
        const bool isKnown = client.head.find("If-None-Match: \"v\"") != std::string::npos;
        confirmed += isKnown;
        const std::string path = client.head.substr(4, client.head.find(' ', 4) - 4);
        std::string fields = "ETag: \"v\"\r\n";
        if (path == "/fresh") fields += "Cache-Control: max-age=60\r\n";
        if (path == "/secret") fields += "Cache-Control: no-store\r\n";
        if (path == "/vary") fields += "Vary: Cookie\r\n";
        client.send(isKnown ? "HTTP/1.1 304 Not Modified\r\nConnection: close\r\nX: 2\r\n\r\n"
                            : answerOf("page", fields + "X: 1\r\n"));
    });
    const struct {
        const char* path;
        bool keeps;
        int asked, confirmed;  // for three downloads
    } cases[] = {{"/fresh", true, 1, 0},
                 {"/stale", true, 3, 2},
                 {"/secret", true, 3, 0},
                 {"/vary", true, 3, 0},
                 {"/stale", false, 3, 0}};
    for (const auto& [path, keeps, asks, confirms] : cases) {
        URLCache cache;
        asked = confirmed = 0;
        DownloadDelegate delegate;
        delegate.shouldCacheResponse = [&, k = keeps](auto&) { return k; };
        for (int round = 0; round < 3; ++round) {
            const auto result =
                downloadSynchronous(server.url(path), {.delegate = &delegate, .shouldUseCache = true, .cache = &cache});
            EXPECT_EQ(textOf(result.data), "page") << path;
            EXPECT_EQ(result.statusCode, 200) << path;
        }
        EXPECT_EQ(std::pair(asked.load(), confirmed.load()), std::pair(asks, confirms)) << path << keeps;
    }
    const auto known = downloadSynchronous(server.url("/"), {.ifNoneMatch = u"\"v\""});
    EXPECT_EQ(known.statusCode, 304);
    EXPECT_FALSE(known.data);
    URLCache small(2000);
    for (char16_t name = u'a'; name <= u'z'; ++name)
        small.storeCachedResponse(URL::URLWithString(String(u"http://h/") + View(&name, 1)), {{}, Data(500), {}});
    EXPECT_TRUE(small.count() > 0 && small.count() < 4);
    EXPECT_TRUE(small.cachedResponse(URL::URLWithString(u"http://h/z")));
}

TEST(Download, TakesAThousandPagesAtOnce) {
    const std::string page(20'000, 'p');
    RawServer server([&](RawServer::Client& client) {
        const std::string body = page + client.head.substr(4, client.head.find(' ', 4) - 4);
        client.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        client.keepsOpen = true;
    });
    std::mutex mutex;
    std::condition_variable condition;
    std::size_t right = 0, ended = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::string path = "/" + std::to_string(i);
        downloadAsynchronous(server.url(path), [&, path](auto data, auto, auto error) {
            // A handler may wait for another download.
            const bool isSame = path != "/7" || sendSynchronousRequest(requestWithURL(server.url("/7"))).data == data;
            const std::lock_guard lock(mutex);
            right += isSame && !error && textOf(data) == page + path;
            if (++ended == 1000) condition.notify_one();
        });
    }
    std::vector<std::thread> threads;
    std::atomic<int> synchronous = 0;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 50; ++n)
                synchronous += textOf(downloadSynchronous(server.url("/s")).data) == page + "/s";
        });
    for (std::thread& thread : threads) thread.join();
    std::unique_lock lock(mutex);
    EXPECT_TRUE(condition.wait_for(lock, 60s, [&] { return ended == 1000; }));
    EXPECT_EQ(right, 1000u);
    EXPECT_EQ(synchronous, 200);
    EXPECT_LT(server.connections(), 120u);  // which are used again
}

/// A certificate for an address that signs itself, and its key.
struct Certificate {
    explicit Certificate(const char* name) : key(EVP_RSA_gen(2048)), x509(X509_new()) {
        X509_set_version(x509, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(x509), 1);
        X509_gmtime_adj(X509_getm_notBefore(x509), -3600);
        X509_gmtime_adj(X509_getm_notAfter(x509), 3600);
        X509_set_pubkey(x509, key);
        X509_NAME* subject = X509_get_subject_name(x509);
        const auto* bytes = reinterpret_cast<const unsigned char*>(name);
        X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, bytes, -1, -1, 0);
        X509_set_issuer_name(x509, subject);
        X509_EXTENSION* names = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, name);
        X509_add_ext(x509, names, -1);
        X509_EXTENSION_free(names);
        X509_sign(x509, key, EVP_sha256());
    }
    ~Certificate() { X509_free(x509), EVP_PKEY_free(key); }
    void write(const std::string& path) const {
        const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "w"), fclose);
        PEM_write_X509(file.get(), x509);
    }
    EVP_PKEY* key;
    X509* x509;
};

TEST(Download, ChecksCertificates) {
    const std::string path = std::filesystem::temp_directory_path() / ("velmo-ca-" + std::to_string(getpid()));
    for (const auto& [name, isRight] : {std::pair("IP:127.0.0.1", true), {"DNS:other.example", false}}) {
        const Certificate certificate(name);
        certificate.write(path);
        Server<httplib::SSLServer> server(certificate.x509, certificate.key);
        server.Get("/", [](const auto&, auto& response) { response.set_content("safe", "text/plain"); });
        server.start();
        const auto trusting = downloadSynchronous(server.url("/", "https"), {.certificateAuthorities = path});
        EXPECT_EQ(textOf(trusting.data), isRight ? "safe" : "absent");
        EXPECT_EQ(codeOf(trusting.error), isRight ? 0 : int{URLErrorServerCertificateUntrusted});
        const auto other = downloadSynchronous(server.url("/", "https"));
        EXPECT_EQ(codeOf(other.error), URLErrorServerCertificateUntrusted);
    }
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace velmo
