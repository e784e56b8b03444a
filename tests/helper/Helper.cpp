// A helper for the tests, which comes to harm as VELMO_HELPER says.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <velmocore/system/HelperService.h>

using namespace velmo;

int main() {
    const char* variable = std::getenv("VELMO_HELPER");
    const std::string mode = variable ? variable : "";
    if (mode == "silent") ::pause();
    if (mode == "late") std::this_thread::sleep_for(std::chrono::milliseconds(300));
    if (mode == "stubborn")
        for (const int number : {SIGTERM, SIGINT}) std::signal(number, SIG_IGN);
    HelperService service({.answersStillBusy = mode != "plain"});
    const auto value = [](auto&& made) { return std::optional(PropertyList{made}); };
    service.addOperation(u"process", [&](const auto&, Error*) { return value(std::int64_t(::getpid())); });
    service.addOperation(u"crash", [&](const auto&, Error*) { return std::raise(SIGKILL), value(true); });
    service.addOperation(u"sleep", [&](const PropertyListArray& arguments, Error*) {
        std::this_thread::sleep_for(std::chrono::duration<double>(*arguments.at(0).as<double>()));
        return value(true);
    });
    if (!service.publish(u"test.helper")) return 1;
    if (mode == "hung") ::pause();
    return service.serve() ? 0 : 1;
}
