// A server that says what a test wants, byte for byte, to whoever connects.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include <velmocore/url/URL.h>

#include "TestSupport.h"

namespace velmo::test {

class RawServer {
public:
    /// One connection, after the head of a request has come.
    class Client {
    public:
        Client(int file, const std::atomic<bool>& stops) : file_(file), stops_(stops) {}
        /// False when the other side has gone.
        bool send(std::string_view bytes) const {
            while (!bytes.empty()) {
                const ssize_t sent = ::send(file_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (sent <= 0) return false;
                bytes.remove_prefix(static_cast<std::size_t>(sent));
            }
            return true;
        }
        /// Says nothing for so long, or until the test ends.
        void wait(std::chrono::milliseconds time) const {
            const auto end = std::chrono::steady_clock::now() + time;
            while (!stops_ && std::chrono::steady_clock::now() < end)
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        /// The request, up to the empty line at least.
        std::string head;
        bool keepsOpen = false;  ///< whether another request may come

    private:
        int file_;
        const std::atomic<bool>& stops_;
    };
    using Answer = std::function<void(Client&)>;

    explicit RawServer(Answer answer) : answer_(std::move(answer)) {
        for (const char* name : {"http_proxy", "https_proxy", "ALL_PROXY", "all_proxy"}) ::unsetenv(name);
        listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(::bind(listener_, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(::listen(listener_, 128), 0);
        EXPECT_EQ(::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length), 0);
        root_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        acceptor_ = std::thread([this] { acceptAll(); });
    }
    ~RawServer() {
        stops_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        acceptor_.join();
        for (std::thread& client : clients_) client.join();
        ::close(listener_);
    }

    std::string at(const std::string& path) const { return root_ + path; }
    URL url(const std::string& path) const { return URL::URLWithString(String::fromUTF8(at(path))); }
    std::size_t connections() const { return connections_; }

private:
    void acceptAll() {
        for (int file; (file = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            ++connections_;
            clients_.emplace_back([this, file] { serve(file); });
        }
    }
    void serve(int file) {
        Client client(file, stops_);
        do {
            client.head.clear();
            client.keepsOpen = false;
            char bytes[4096];
            while (client.head.find("\r\n\r\n") == std::string::npos) {
                pollfd waiting = {file, POLLIN, 0};
                while (::poll(&waiting, 1, 20) == 0 && !stops_) {}
                const ssize_t got = stops_ ? 0 : ::recv(file, bytes, sizeof bytes, 0);
                if (got <= 0) break;
                client.head.append(bytes, static_cast<std::size_t>(got));
            }
            if (!client.head.empty()) answer_(client);
        } while (client.keepsOpen);
        ::close(file);
    }

    const Answer answer_;
    std::atomic<bool> stops_ = false;
    std::atomic<std::size_t> connections_ = 0;
    int listener_;
    std::string root_;
    std::list<std::thread> clients_;
    std::thread acceptor_;
};

/// A whole answer.
inline std::string answerOf(std::string_view body, const std::string& fields = "", const char* status = "200 OK") {
    return "HTTP/1.1 " + std::string(status) +
           "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + fields + "\r\n" +
           std::string(body);
}

}  // namespace velmo::test
