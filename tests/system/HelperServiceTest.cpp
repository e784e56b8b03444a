// Both sides of named connections in one process: what goes through them, who is found, and peers that
// mean no good. Processes that come to harm are tested with the tasks that own them.
#include <velmocore/system/ConnectionTable.h>
#include <velmocore/system/HelperService.h>

#include <sys/socket.h>

#include <atomic>
#include <functional>
#include <thread>

#include "ServiceFixture.h"
#include "system/BusValues.h"
#include "system/ConnectionFolder.h"

#ifdef __SANITIZE_THREAD__
// The bus library draws the keys of its tables into one place, from which each table copies its own:
// that two threads draw at once is no harm.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
    return "called_from_lib:libsystemd.so\nrace:libsystemd.so\n";
}
#endif

namespace velmo {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using Values = PropertyListArray;

std::optional<PropertyList> echo(const Values& arguments, Error*) { return PropertyList{arguments}; }

/// A service on a thread of its own.
class Running {
public:
    explicit Running(const String& name) {
        service_.addOperation(u"echo", echo);
        service_.addOperation(u"fail", [](const Values&, Error* error) {
            *error = {u"own", 42, u"no \u00E9"};
            return std::optional<PropertyList>();
        });
        service_.addOperation(u"dumb", [](const Values&, Error*) { return std::optional<PropertyList>(); });
        service_.addOperation(u"huge", [](const Values&, Error*) { return PropertyList{Data(61 << 20)}; });
        service_.addOperation(
            u"cast", [](const Values&, Error*) -> std::optional<PropertyList> { throw std::runtime_error("thrown"); });
        service_.addOperation(u"work", [this](const Values&, Error*) {
            while (!mayEnd) std::this_thread::sleep_for(1ms);
            return PropertyList{std::int64_t(++done)};
        });
        service_.addOperation(u"end", [this](const Values&, Error*) { return service_.stop(), PropertyList{true}; });
        isPublished = service_.publish(name, &reason);
        if (isPublished) thread_ = std::thread([this] { EXPECT_TRUE(service_.serve()); });
    }
    ~Running() {
        mayEnd = true;
        service_.stop();
        if (thread_.joinable()) thread_.join();
    }

    std::atomic<bool> mayEnd = false;
    std::atomic<int> done = 0;
    bool isPublished = false;
    Error reason;

private:
    HelperService service_;
    std::thread thread_;
};

class HelperServiceTest : public test::ServiceFixture {};
using Service = HelperServiceTest;

PropertyList randomValue(std::mt19937& random, int depth) {
    const auto text = [&] {
        return String(test::randomText(random, u"a\u00E9\u4E00\xD83D\xDE00\0"s.c_str(), random() % 5));
    };
    Values list;
    PropertyListDictionary dictionary;
    for (unsigned i = depth < 4 ? random() % 5 : 0; i > 0; --i) {
        list.push_back(randomValue(random, depth + 1));
        dictionary[random() % 9 ? text() : String(View(u"a\0b\xDC00", 4))] = randomValue(random, depth + 1);
    }
    const PropertyList any[] = {{},
                                {random() % 2 == 0},
                                {static_cast<std::int64_t>(random() << 31 | random())},
                                {double(random()) / 7 - 1e8},
                                {Date(std::chrono::duration<double>(double(random()) - 5e8))},
                                {String(View(u"a\0b", 3))},
                                {Data(random() % 50, std::uint8_t(random()))},
                                {list},
                                {dictionary},
                                {text()}};
    return any[random() % std::size(any)];
}

TEST_F(Service, CarriesEveryValue) {
    const Running service(u"values");
    const auto proxy = rootProxyForConnectionWithRegisteredName(u"values");
    ASSERT_TRUE(proxy);
    std::mt19937 random(1);
    for (int i = 0; i < 150; ++i) {
        const Values sent = {randomValue(random, 0), {}, randomValue(random, 0)};
        ASSERT_EQ(proxy->call(u"echo", sent), PropertyList{sent}) << i;
    }
    const Values large = {{Data(30 << 20, 7)}, {String(test::repeated(u"x", 10 << 20))}};
    EXPECT_EQ(proxy->call(u"echo", large), PropertyList{large});
}

TEST_F(Service, TellsWhatFails) {
    const Running service(u"failures");
    const auto proxy = rootProxyForConnectionWithRegisteredName(u"failures", {.timeout = 30});
    ASSERT_TRUE(proxy);
    PropertyList deep;
    for (int i = 0; i < 40; ++i) deep = {Values{deep}};
    const std::tuple<const char16_t*, Values, std::string> cases[] = {
        {u"fail", {}, "own 42 no \u00E9"},
        {u"dumb", {}, "velmo.helper 5 the operation failed"},
        {u"cast", {}, "velmo.helper 5 thrown"},
        {u"huge", {}, "velmo.helper 3 Message too long"},
        {u"echo", {{Data(61 << 20)}}, "velmo.helper 3 Message too long"},
        {u"echo", {deep}, "velmo.helper 2 Too many levels of symbolic links"},
        {u"ech", {}, "velmo.helper 1 Unknown method ech or interface org.velmo.Helper."},
        {u"no name", {}, "velmo.helper 1 no name of an operation"},
    };
    for (const auto& [operation, arguments, expected] : cases) {
        Error error;
        const auto result = proxy->call(operation, arguments, &error);
        EXPECT_EQ(test::printed(result, error), expected);
        EXPECT_TRUE(proxy->call(u"echo")) << expected;
    }
    EXPECT_EQ(proxy->operations(),
              (Strings{u"cast", u"dumb", u"echo", u"end", u"fail", u"huge", u"stillBusy", u"work"}));
    EXPECT_TRUE(proxy->offers(u"echo") && !proxy->offers(u"ech"));
    EXPECT_TRUE(proxy->call(u"end"));
    Error error;
    for (int i = 0; i < 2000 && proxy->connection()->isValid(); ++i) std::this_thread::sleep_for(10ms);
    EXPECT_FALSE(proxy->call(u"echo", {}, &error));
    EXPECT_TRUE(isPortException(error) && !isPortTimeoutException(error)) << error;
}

TEST_F(Service, AnswersWhileItWorks) {
    Running service(u"busy");
    const auto proxy = rootProxyForConnectionWithRegisteredName(u"busy", {.timeout = 30});
    ASSERT_TRUE(proxy);
    EXPECT_EQ(proxy->call(u"stillBusy"), PropertyList{false});
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(proxy->post(u"work"));
    std::thread([] {  // greeted, and answered, while the first of them runs
        const auto other = rootProxyForConnectionWithRegisteredName(u"busy", {.timeout = 30});
        ASSERT_TRUE(other);
        EXPECT_EQ(other->call(u"stillBusy"), PropertyList{true});
    })
        .join();
    proxy->connection()->setReplyTimeout(0.05);
    Error error;
    EXPECT_FALSE(proxy->call(u"echo", {}, &error));
    EXPECT_TRUE(isPortTimeoutException(error));
    proxy->connection()->setReplyTimeout(30);
    service.mayEnd = true;
    EXPECT_EQ(proxy->call(u"work"), PropertyList{std::int64_t(4)});  // behind those posted, the late answer passed over
}

TEST_F(Service, ServesManyThreads) {
    Running service(u"many");
    service.mayEnd = true;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([i] {
            const auto proxy = rootProxyForConnectionWithRegisteredName(u"many", {.timeout = 60});
            ASSERT_TRUE(proxy);
            for (int turn = 0; turn < 300; ++turn) {
                const Values own = {{std::int64_t(i)}, {std::int64_t(turn)}};
                ASSERT_EQ(proxy->call(u"echo", own), PropertyList{own});
                if (turn % 10 == 0) { ASSERT_TRUE(proxy->call(u"work")); }
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(service.done, 240);
}

TEST_F(Service, IsFoundByItsName) {
    const String names[] = {u"plain",
                            u"../../etc/passwd",
                            u".",
                            u"a/b\0c"s,
                            u"\u00FC \xD800",
                            u"%002E",
                            u"org.example.x",
                            String(test::repeated(u"long/", 1000)),
                            String(test::repeated(u"long/", 1000) + u"x")};
    std::vector<std::unique_ptr<Running>> services;
    for (const String& name : names) {
        EXPECT_FALSE(rootProxyForConnectionWithRegisteredName(name));
        services.push_back(std::make_unique<Running>(name));
        EXPECT_TRUE(services.back()->isPublished) << name;
        EXPECT_TRUE(rootProxyForConnectionWithRegisteredName(name)) << name;
    }
    EXPECT_EQ(sockets(), std::size(names));
    EXPECT_EQ(Running(u"plain").reason.code, std::int64_t(HelperError::NameTaken));
    EXPECT_EQ(Running(u"").reason.code, std::int64_t(HelperError::InvalidName));
    const Strings listed = registeredConnectionNames();
    ASSERT_EQ(listed.size(), std::size(names));
    for (std::size_t i = 0; i < 7; ++i) EXPECT_TRUE(std::ranges::count(listed, names[i])) << names[i];
}

TEST_F(Service, KeepsToAFolderOfItsOwn) {
    const auto folder = folder_ / "velmo";
    const auto open = [] {
        Error error;
        return detail::ConnectionFolder::open(&error) ? 0 : error.code;
    };
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
    std::filesystem::permissions(folder, std::filesystem::perms(0750));
    EXPECT_EQ(open(), EPERM);
    std::filesystem::remove(folder);
    std::filesystem::create_directory_symlink(folder_, folder);
    EXPECT_EQ(open(), ENOTDIR);
    std::filesystem::remove(folder);
    std::ofstream(folder) << "a file";
    EXPECT_EQ(open(), ENOTDIR);
    std::filesystem::remove(folder);
}

TEST_F(Service, ForgetsConnectionsThatDied) {
    static std::atomic<int> deaths = 0;
    observeConnectionDidDie([](const auto&) { ++deaths; });
    deaths = 0;
    auto service = std::make_unique<Running>(u"dying");
    auto proxy = rootProxyForConnectionWithRegisteredName(u"dying", {.protocol = HelperProtocol{{u"assumed"}}});
    ASSERT_TRUE(proxy);
    const auto connection = proxy->connection();
    EXPECT_TRUE(proxy->offers(u"assumed"));
    EXPECT_EQ(rootProxyForConnectionWithRegisteredName(u"dying")->connection(), connection);
    std::thread([&] { EXPECT_FALSE(connectionRegisteredWithName(u"dying")); }).join();
    service.reset();
    EXPECT_FALSE(connectionRegisteredWithName(u"dying"));
    EXPECT_FALSE(connection->isValid());
    EXPECT_EQ(deaths, 1);
    setConnectionRegisteredWithName(connection, u"other");
    EXPECT_FALSE(connectionRegisteredWithName(u"other"));

    const Running again(u"dying");
    proxy = rootProxyForConnectionWithRegisteredName(u"dying");
    ASSERT_TRUE(proxy && proxy->connection() != connection);
    setConnectionRegisteredWithName(proxy->connection(), u"alias");
    removeConnection(proxy->connection());  // the first of both only
    EXPECT_TRUE(!connectionRegisteredWithName(u"alias") && connectionRegisteredWithName(u"dying"));
    proxy->connection()->invalidate();
    Error error;
    EXPECT_FALSE(proxy->call(u"echo", {}, &error));
    EXPECT_EQ(error.code, std::int64_t(PortError::InvalidReceivePort));
    EXPECT_FALSE(connectionRegisteredWithName(u"dying"));
}

bool sendTo(int socket, const std::string& bytes) {
    return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

TEST_F(Service, StandsHostileCallers) {
    const Running service(u"stormed");
    const auto folder = detail::ConnectionFolder::open();
    std::mt19937 random(1);
    int failure = 0;
    std::vector<detail::Descriptor> silent;
    for (int i = 0; i < 200; ++i) {
        detail::Descriptor socket = folder->connect("stormed", failure);
        ASSERT_TRUE(socket);
        // Noise at once, behind a greeting, and as a message with a wild length; some go on silently.
        std::string noise = i % 3 ? "\0AUTH EXTERNAL\r\nDATA\r\nBEGIN\r\n"s : "";
        if (i % 3 == 2) noise += "l\1\0\1"s;
        for (unsigned count = random() % 300; count > 0; --count) noise += char(random());
        sendTo(socket.get(), noise);
        if (i % 4 == 0) silent.push_back(std::move(socket));
    }
    const auto proxy = rootProxyForConnectionWithRegisteredName(u"stormed", {.timeout = 30});
    ASSERT_TRUE(proxy);
    EXPECT_TRUE(proxy->call(u"echo"));
}

/// Accepts one caller and treats it as it likes.
void withPeer(const std::function<void(int socket)>& treat, const std::function<void()>& use) {
    auto folder = detail::ConnectionFolder::open();
    const detail::Descriptor listener = folder->publish("peer", nullptr);
    ASSERT_TRUE(listener);
    std::atomic<bool> mayEnd = false;
    std::thread thread([&] {
        int socket = -1;
        while (!mayEnd && (socket = ::accept(listener.get(), nullptr, nullptr)) < 0) std::this_thread::sleep_for(1ms);
        const detail::Descriptor owned(socket);
        if (socket >= 0) treat(socket);
        while (!mayEnd) std::this_thread::sleep_for(1ms);
    });
    use();
    mayEnd = true;
    thread.join();
    folder->withdraw("peer");
}

TEST_F(Service, StandsHostilePeers) {
    for (const auto& noise : {""s, "\r\n\r\n\r\n"s, std::string(100000, 'x'), "REJECTED\r\n"s, "DATA\r\nOK 12\r\n"s})
        withPeer([&](int socket) { sendTo(socket, noise); },
                 [] {
                     Error error;
                     const RootProxyWait wait{{.timeout = 0.3}, 5};
                     EXPECT_FALSE(waitForRootProxyForConnectionWithRegisteredName(u"peer", wait, &error));
                     EXPECT_TRUE(isPortException(error)) << error;
                 });

    const std::string greeting = "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";
    std::mt19937 random(1);
    for (int i = 0; i < 60; ++i) {
        std::string noise(1 + random() % 100, 0);
        for (char& byte : noise) byte = char(random());
        // As an answer to the first call, with lengths beyond all limits or of its own.
        const std::string head =
            i % 2 ? "l\2\1\1"s + "\xFF\xFF\xFF\x7F"s + "\1\0\0\0"s : "l\2\1\1\4\0\0\0\1\0\0\0\x8\0\0\0\5\1u\0\1\0\0\0"s;
        const auto answers = [&](int socket) {
            sendTo(socket, greeting);
            std::this_thread::sleep_for(2ms);
            sendTo(socket, i % 3 ? head + noise : noise);
            if (i % 4 == 0) ::shutdown(socket, SHUT_RDWR);
        };
        withPeer(answers, [&] {
            auto connection = NamedConnection::connectionWithRegisteredName(u"peer", 5);
            if (!connection && i % 4 == 0) return;  // hung up before it was looked at
            ASSERT_TRUE(connection);
            connection->setReplyTimeout(0.05);
            EXPECT_FALSE(HelperProxy(connection).call(u"echo"));
            EXPECT_FALSE(HelperProxy(connection).offers(u"echo"));
        });
    }
}

}  // namespace
}  // namespace velmo
