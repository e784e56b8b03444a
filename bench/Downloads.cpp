// 1,000 pages of 20 KB from a server in the same program, 32 at once, by the clock. The peers are
// the usual program for it, which has to start first, and its library with next to nothing around
// it: transfers that are started anew as they end, and bytes that are appended.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

#include <velmocore/net/DownloadRequest.h>

namespace velmo::bench {
namespace {

constexpr int Pages = 1000, AtOnce = 32;
constexpr std::size_t PageSize = 20'000;

/// Answers each request with the same page, one thread a connection, until the program ends.
class Server {
public:
    Server() {
        for (const char* name : {"http_proxy", "ALL_PROXY", "all_proxy"}) ::unsetenv(name);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::listen(listener_, 128) != 0)
            std::abort();
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        root = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
        std::thread([this] {
            for (int file; (file = ::accept(listener_, nullptr, nullptr)) >= 0;)
                std::thread([file] { serve(file); }).detach();
        }).detach();
    }

    std::string root;

private:
    static void serve(int file) {
        static const std::string answer =
            "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: " +
            std::to_string(PageSize) + "\r\n\r\n" + std::string(PageSize, 'x');
        std::string head;
        char bytes[4096];
        for (ssize_t got; (got = ::recv(file, bytes, sizeof bytes, 0)) > 0;) {
            head.append(bytes, static_cast<std::size_t>(got));
            if (!head.ends_with("\r\n\r\n")) continue;
            head.clear();
            if (::send(file, answer.data(), answer.size(), MSG_NOSIGNAL) < 0) break;
        }
        ::close(file);
    }

    int listener_;
};

const Server& server() {
    static const Server& running = *new Server;
    return running;
}

/// Starts a download whenever one ends, until there are enough.
class Round {
public:
    void run() {
        for (int i = 0; i < AtOnce; ++i) start();
        std::unique_lock lock(mutex_);
        condition_.wait(lock, [this] { return ended_ == Pages; });
        if (bytes_ != Pages * PageSize) std::abort();
    }

private:
    void start() {
        {
            const std::lock_guard lock(mutex_);
            if (started_ == Pages) return;
            ++started_;
        }
        const static URL url = URL::URLWithString(String::fromUTF8(server().root));
        downloadAsynchronous(url, [this](auto data, auto, auto) {
            start();
            const std::lock_guard lock(mutex_);
            bytes_ += data ? data->size() : 0;
            if (++ended_ == Pages) condition_.notify_one();
        });
    }

    std::mutex mutex_;
    std::condition_variable condition_;
    int started_ = 0, ended_ = 0;
    std::size_t bytes_ = 0;
};

void downloadVelmo(benchmark::State& state) {
    for (auto _ : state) Round().run();
}
BENCHMARK(downloadVelmo)->Name("download/velmo")->Unit(benchmark::kMillisecond)->UseRealTime();

void downloadCurl(benchmark::State& state) {
    const std::string config = std::filesystem::temp_directory_path() / "velmo-bench-urls";
    {
        std::ofstream file(config);
        for (int i = 0; i < Pages; ++i) file << "url=" << server().root << "\noutput=/dev/null\n";
    }
    const std::string command = "curl -s --parallel --parallel-max " + std::to_string(AtOnce) +
                                " --config " + config + " 2>/dev/null";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("curl failed");
    std::filesystem::remove(config);
}
BENCHMARK(downloadCurl)
    ->Name("download/curl-parallel")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

std::size_t append(char* bytes, std::size_t, std::size_t count, void* page) {
    static_cast<std::string*>(page)->append(bytes, count);
    return count;
}

void downloadBare(benchmark::State& state) {
    for (auto _ : state) {
        CURLM* const multi = curl_multi_init();
        std::vector<std::string> pages(AtOnce);
        int started = 0, ended = 0, running = 0, left = 0;
        const auto start = [&](CURL* easy, std::string& page) {
            page.clear();
            if (started++ < Pages) curl_multi_add_handle(multi, easy);
        };
        for (std::string& page : pages) {
            CURL* const easy = curl_easy_init();
            curl_easy_setopt(easy, CURLOPT_URL, server().root.c_str());
            curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, append);
            curl_easy_setopt(easy, CURLOPT_WRITEDATA, &page);
            curl_easy_setopt(easy, CURLOPT_PRIVATE, &page);
            start(easy, page);
        }
        while (ended < Pages) {
            curl_multi_poll(multi, nullptr, 0, 100, nullptr);
            curl_multi_perform(multi, &running);
            while (CURLMsg* message = curl_multi_info_read(multi, &left)) {
                CURL* const easy = message->easy_handle;
                std::string* page = nullptr;
                curl_easy_getinfo(easy, CURLINFO_PRIVATE, &page);
                curl_multi_remove_handle(multi, easy);
                if (++ended > Pages - AtOnce)
                    curl_easy_cleanup(easy);
                else
                    start(easy, *page);
            }
        }
        curl_multi_cleanup(multi);
    }
}
BENCHMARK(downloadBare)
    ->Name("download/libcurl-multi")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace velmo::bench
