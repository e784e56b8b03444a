// Bytes as what a peer sends over a named connection, and as what it tells of itself. What is read
// from its messages can be sent again.
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include "Input.h"
#include "system/Bus.h"
#include "system/BusValues.h"
#include "system/ConnectionFolder.h"
#include "system/Introspection.h"

using namespace velmo;
using fuzz::require;

namespace {

constexpr std::string_view Greeting =
    "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";

int onMessage(sd_bus_message* message, void* bus, sd_bus_error*) {
    PropertyListArray values;
    PropertyList value;
    const bool isList = detail::readArguments(message, values) == 0;
    if (!isList) sd_bus_message_rewind(message, 1);
    if (!isList && detail::readResult(message, value) != 0) return 1;
    sd_bus_message* made = nullptr;
    require(sd_bus_message_new_method_call(static_cast<sd_bus*>(bus), &made, nullptr, "/", "a.b",
                                           "c") >= 0);
    const detail::Message again(made);
    require((isList ? detail::appendArguments(made, values) : detail::appendResult(made, value)) ==
            0);
    require(sd_bus_message_seal(made, 1, 0) >= 0);
    PropertyListArray sameValues;
    PropertyList same;
    require((isList ? detail::readArguments(made, sameValues) : detail::readResult(made, same)) ==
            0);
    return 1;
}

void receive(std::string_view bytes) {
    int ends[2];
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) == 0);
    const detail::Descriptor peer(ends[1]);
    sd_bus* made = nullptr;
    require(sd_bus_new(&made) >= 0);
    const detail::Bus bus(made);
    require(sd_bus_set_fd(made, ends[0], ends[0]) >= 0 && sd_bus_start(made) >= 0);
    require(::write(peer.get(), Greeting.data(), Greeting.size()) > 0);
    while (sd_bus_is_ready(made) == 0) require(sd_bus_process(made, nullptr) >= 0);
    sd_bus_add_filter(made, nullptr, onMessage, made);
    if (::write(peer.get(), bytes.data(), bytes.size()) < 0) return;
    while (sd_bus_process(made, nullptr) > 0) continue;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    receive(bytes);
    (void)detail::operationsOfIntrospection(bytes);
    const String name = detail::registeredNameOfFile(bytes);
    if (!name.isAbsent() && bytes.find('~') == bytes.npos)
        require(detail::fileOfRegisteredName(name) == bytes);
    return 0;
}
