// Stores as a site for browsers. What the site is stands in the library (gather/SearchSite.h); here
// is how it gets to a browser, and how much of this machine a browser may take.
#include <fmt/core.h>
#include <httplib.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <thread>

#include <velmocore/gather/SearchSite.h>

#include "Commands.h"
#include "PageStores.h"

namespace velmo::tool {
namespace {

constexpr std::size_t Connections = 16, RequestsAConnection = 100, LongestBody = 1024;
constexpr time_t SecondsOfSilence = 5;
constexpr std::uint64_t LastPort = 65535;

struct Options {
    std::vector<std::string> stores;
    std::string listen = "127.0.0.1";
    std::vector<std::string> names;
    std::uint64_t port = 8080;
    SearchSiteOptions site;
};

bool isLoopback(const std::string& address) {
    return address.starts_with("127.") || address == "::1" || address == "localhost";
}

std::string asHost(const std::string& address) {
    return address.find(':') == address.npos ? address : "[" + address + "]";
}

/// The names that a browser may use, with the port, and without it where it is the usual one. A site
/// for others that was given no name answers to any.
std::vector<std::string> hostsOf(const Options& options, int port) {
    std::vector<std::string> names = options.names;
    if (isLoopback(options.listen)) names.insert(names.end(), {"localhost", "127.0.0.1", "[::1]"});
    if (!names.empty()) names.push_back(asHost(options.listen));
    std::vector<std::string> hosts;
    for (const std::string& name : names) {
        hosts.push_back(fmt::format("{}:{}", name, port));
        if (port == 80) hosts.push_back(name);
    }
    return hosts;
}

/// Sends the body in two pieces: what stands there at once, and what has to be found first.
void sendInPieces(httplib::Response& response, SiteResponse&& answer) {
    const auto shared = std::make_shared<SiteResponse>(std::move(answer));
    response.set_chunked_content_provider(
        shared->contentType.c_str(), [shared](std::size_t offset, httplib::DataSink& sink) {
            const std::string piece =
                offset == 0 && !shared->body.empty() ? shared->body : shared->rest();
            if (!sink.write(piece.data(), piece.size())) return false;
            if (offset > 0 || shared->body.empty()) sink.done();
            return true;
        });
}

void answer(const SearchSite& site, const httplib::Request& request, httplib::Response& response) {
    SiteResponse found = site.respond({.method = request.method,
                                       .target = request.target,
                                       .host = request.get_header_value("Host")});
    response.status = found.status;
    for (const auto& [name, value] : found.headers) response.set_header(std::string(name), value);
    if (found.rest && request.method == "GET") return sendInPieces(response, std::move(found));
    response.set_content(found.body, found.contentType.c_str());
}

void limit(httplib::Server& server) {
    server.new_task_queue = [] { return new httplib::ThreadPool(Connections); };
    server.set_keep_alive_max_count(RequestsAConnection);
    server.set_read_timeout(SecondsOfSilence);
    server.set_write_timeout(SecondsOfSilence);
    server.set_keep_alive_timeout(SecondsOfSilence);
    server.set_payload_max_length(LongestBody);
    // Not the library's own, which lets two servers have one port.
    server.set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
}

void setUp(httplib::Server& server, const SearchSite& site) {
    server.set_pre_routing_handler([&site](const auto& request, auto& response) {
        answer(site, request, response);
        return httplib::Server::HandlerResponse::Handled;
    });
    server.set_exception_handler([](const auto&, auto& response, std::exception_ptr) {
        response.status = 503;
        response.set_content("The server is out of memory.\n", "text/plain");
    });
}

/// Ends a server on SIGINT and SIGTERM, which no thread but its own takes meanwhile.
class Ending {
public:
    explicit Ending(httplib::Server& server) {
        sigemptyset(&signals_);
        for (const int signal : {SIGINT, SIGTERM}) sigaddset(&signals_, signal);
        pthread_sigmask(SIG_BLOCK, &signals_, &former_);
        thread_ = std::thread([this, &server] {
            int signal = 0;
            sigwait(&signals_, &signal);
            server.stop();
        });
    }
    ~Ending() {
        pthread_kill(thread_.native_handle(), SIGTERM);  // if the server ended by itself
        thread_.join();
        pthread_sigmask(SIG_SETMASK, &former_, nullptr);
    }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

private:
    sigset_t signals_, former_;
    std::thread thread_;
};

void tellAddress(Report& report, const std::string& address) {
    if (report.json())
        report.printObject({{"address", address}});
    else
        report.printLine("serving " + address + " (Ctrl-C ends it)");
    report.flush();  // whoever started the tool waits for it
}

/// The port; -1 if there is none to be had.
int listenOn(httplib::Server& server, const Options& options) {
    if (options.port == 0) return server.bind_to_any_port(options.listen);
    const int port = static_cast<int>(options.port);
    return server.bind_to_port(options.listen, port) ? port : -1;
}

void run(Report& report, Options& options) {
    std::vector<PageStore> stores = openedPageStores(report, options.stores).open;
    if (stores.empty()) return;
    httplib::Server server;
    limit(server);
    const int port = listenOn(server, options);
    const std::string address = fmt::format("http://{}:{}/", asHost(options.listen), port);
    if (port < 0)
        return report.fail(options.listen, fmt::format("cannot listen on port {}", options.port));
    if (!isLoopback(options.listen))
        report.warn(options.listen, "whoever reaches this address can read the stores");
    options.site.hosts = hostsOf(options, port);
    const SearchSite site(std::move(stores), options.site);
    setUp(server, site);
    const Ending ending(server);
    tellAddress(report, address);
    server.listen_after_bind();
}

}  // namespace

Command makeServeCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Show stores of pages in a browser: search them, read them",
        .examples = {"velmo serve pages.store", "velmo serve --port 9000 pages.store"},
        .arguments = {{.name = "STORE",
                       .help = "files that velmo gather --store made",
                       .take = [options](const auto& path) { options->stores.push_back(path); },
                       .isRequired = true,
                       .isList = true}},
        .more =
            "Ends on SIGINT and SIGTERM. A request changes nothing, and what is shown loads "
            "nothing\n"
            "from elsewhere.",
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add({
        number("--port", "N", options->port, "where it listens, 0 is any free one", 0, LastPort),
        text("--listen", "ADDRESS", options->listen,
             "of this machine, instead of 127.0.0.1, which nobody else reaches"),
        texts("--name", "HOST", options->names,
              "a name under which others reach it; may be given again"),
        flag("--thumbnails", options->site.images,
             "show thumbnails, from servers that then see who looks at them"),
        real("--timeout", "SECONDS", options->site.seconds, "a search ends after so long", 0.1,
             3600),
        jsonFlag(session, "a JSON object when it is ready"),
    });
    return command;
}

}  // namespace velmo::tool
