// A call to a helper and back, beside the bus library alone with a handler that answers at once. Both
// sides run on threads of this program, and the same kind of socket is between them. The ratio is
// that of what both sides take of the processor together; how long a caller waits stands beside it.
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <velmocore/system/ConnectionTable.h>
#include <velmocore/system/HelperService.h>

namespace velmo::bench {
namespace {

const std::string& text(std::size_t length) {
    static const std::string shortText = "a short text", longText(20000, 'x');
    return length > shortText.size() ? longText : shortText;
}

/// A helper that gives back what it gets.
class Helper {
public:
    Helper() {
        folder_ = std::filesystem::temp_directory_path() /
                  ("velmo-bench-bus-" + std::to_string(::getpid()));
        std::filesystem::create_directory(folder_);
        ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
        service_.addOperation(u"echo", [](const PropertyListArray& arguments, Error*) {
            return std::optional(arguments.at(0));
        });
        if (!service_.publish(u"bench")) std::abort();
        thread_ = std::thread([this] { (void)service_.serve(); });
    }
    ~Helper() {
        service_.stop();
        thread_.join();
        std::filesystem::remove_all(folder_);
    }

private:
    std::filesystem::path folder_;
    HelperService service_;
    std::thread thread_;
};

void helperCall(benchmark::State& state, std::size_t length) {
    const Helper helper;
    const PropertyListArray arguments = {{String::fromUTF8(text(length))}};
    const auto proxy = rootProxyForConnectionWithRegisteredName(u"bench", {.timeout = 60});
    for (auto _ : state)
        if (!proxy->call(u"echo", arguments)) state.SkipWithError("no answer");
}

int echo(sd_bus_message* call, void*, sd_bus_error*) {
    const char* held = nullptr;
    if (const int result = sd_bus_message_read(call, "s", &held); result < 0) return result;
    return sd_bus_reply_method_return(call, "s", held);
}

const sd_bus_vtable BareTable[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("echo", "s", "s", echo, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

void serveBare(int socket) {
    sd_bus* bus = nullptr;
    sd_id128_t identity;
    if (sd_id128_randomize(&identity) < 0 || sd_bus_new(&bus) < 0) std::abort();
    sd_bus_set_fd(bus, socket, socket);
    sd_bus_set_server(bus, 1, identity);
    sd_bus_start(bus);
    sd_bus_add_object_vtable(bus, nullptr, "/", "org.velmo.Bench", BareTable, nullptr);
    while (sd_bus_is_open(bus) > 0) {
        const int result = sd_bus_process(bus, nullptr);
        if (result < 0 || (result == 0 && sd_bus_wait(bus, UINT64_MAX) < 0)) break;
    }
    sd_bus_close_unref(bus);
}

void bareCall(benchmark::State& state, std::size_t length) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0)
        std::abort();
    std::thread server(serveBare, ends[1]);
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0) std::abort();
    sd_bus_set_fd(bus, ends[0], ends[0]);
    sd_bus_start(bus);
    for (auto _ : state) {
        sd_bus_message* answer = nullptr;
        const char* held = nullptr;
        if (sd_bus_call_method(bus, nullptr, "/", "org.velmo.Bench", "echo", nullptr, &answer, "s",
                               text(length).c_str()) < 0 ||
            sd_bus_message_read(answer, "s", &held) < 0)
            state.SkipWithError("no answer");
        sd_bus_message_unref(answer);
    }
    sd_bus_close_unref(bus);
    server.join();
}

BENCHMARK_CAPTURE(helperCall, short, 1)->Name("helperCall/velmo")->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(bareCall, short, 1)->Name("helperCall/sd-bus")->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(helperCall, long, 20000)->Name("helperCall20KB/velmo")->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(bareCall, long, 20000)->Name("helperCall20KB/sd-bus")->MeasureProcessCPUTime();

}  // namespace
}  // namespace velmo::bench
