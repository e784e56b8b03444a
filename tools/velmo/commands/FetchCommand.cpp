// Downloads. Who wants a page in another command names its URL there; this one is for what comes
// with a page: its status, its type, where it has gone, and for keeping it.
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include <velmocore/net/DownloadRequest.h>
#include <velmocore/url/InvertedPaths.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include "Commands.h"
#include "UrlCommands.h"
#include "frame/FileBytes.h"
#include "frame/NewFile.h"
#include "frame/OrderedRun.h"
#include "frame/Remote.h"

namespace velmo::tool {
namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> urls;
    std::string output, referrer, userAgent, post, certificates;
    double timeout = 60;
    std::uint64_t jobs = 8, limit = UsualLimit;
    bool toStandardOutput = false, force = false;
};

/// What became of a URL.
struct Fetched {
    std::string url;
    DownloadResult result = {};
    std::string file = {}, complaint = {};
};

String given(const std::string& text) { return text.empty() ? String() : String::fromUTF8(text); }

DownloadOptions downloadOptions(const Options& options) {
    DownloadOptions download = {.referrer = given(options.referrer),
                                .userAgent = given(options.userAgent),
                                .timeoutInterval = options.timeout,
                                .limits = {.body = options.limit}};
    if (!options.certificates.empty()) download.certificateAuthorities = options.certificates;
    if (!options.post.empty()) download.httpPost = given(options.post);
    return download;
}

bool isFolder(const Options& options) {
    std::error_code none;
    return options.urls.size() != 1 || options.output.ends_with('/') ||
           fs::is_directory(options.output, none);
}

/// Where a page is kept. Nothing in a URL leads out of the folder, but better twice than never.
fs::path placeOf(const URL& url, const Options& options) {
    if (!isFolder(options)) return options.output;
    const String path = invertedPathRelativeToDirectory(url, u"", {.letterCase = Case::Sensitive});
    const fs::path inside = fs::path(path.utf8()).relative_path().lexically_normal();
    if (inside.empty() || *inside.begin() == "..") throw InputError("no name for a file");
    fs::path place = options.output / inside;
    std::error_code error;
    fs::create_directories(place.parent_path(), error);
    if (error) throw InputError(error.message());
    return place;
}

void keep(Fetched& fetched, const URL& url, const Options& options) {
    if (options.output.empty()) return;
    const std::string place = placeOf(url, options).string();
    writeNewFile(place, fetched.result.data ? Bytes(*fetched.result.data) : Bytes(), options.force);
    fetched.file = place;
}

void fetch(Fetched& fetched, const Options& options) {
    requireNetwork();
    const URL url = URLWithNormalizedStringURL(String::fromUTF8(fetched.url));
    if (!isHTTPURL(url)) throw InputError("not a URL of the web");
    fetched.result = downloadSynchronous(url, downloadOptions(options));
    if (fetched.result.error)
        fetched.complaint = fetched.result.error->text.utf8();
    else
        fetched.complaint = statusComplaint(fetched.result.statusCode);
    // What is not the page is not kept in its place.
    if (fetched.complaint.empty()) keep(fetched, url, options);
}

Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

JsonObject objectOf(const Fetched& fetched) {
    const DownloadResult& result = fetched.result;
    return {
        {"url", fetched.url},
        {"status", result.statusCode > 0 ? Json(result.statusCode) : Json()},
        {"type", result.MIMEType},
        {"charset", result.encodingName},
        {"lastModified", result.lastModified},
        {"length", result.expectedContentLength < 0 ? Json() : Json(result.expectedContentLength)},
        {"forward", result.forward.absoluteString()},
        {"error", orNull(fetched.complaint)},
        {"bytes", result.data ? result.data->size() : 0},
        {"file", orNull(fetched.file)}};
}

std::string lineOf(const Fetched& fetched) {
    const DownloadResult& result = fetched.result;
    std::string line = fetched.url;
    if (!result.forward.isAbsent()) line += " => " + printed(result.forward);
    if (!fetched.file.empty()) line += " -> " + fetched.file;
    for (const String& part : {result.MIMEType, result.encodingName})
        if (!part.isEmpty()) line += ", " + part.utf8();
    return line + fmt::format(", {} bytes", result.data ? result.data->size() : 0);
}

void print(const Fetched& fetched, const Options& options, Report& report) {
    const bool isGood = fetched.complaint.empty();
    if (report.json())
        report.printObject(objectOf(fetched));
    else if (isGood && !options.toStandardOutput)
        report.printLine(lineOf(fetched));
    else if (isGood && fetched.result.data)
        report.printBytes(charsOf(*fetched.result.data));
    if (!isGood) report.fail(fetched.url, fetched.complaint);
}

void fetchOne(const std::string& url, const Options& options, Report& report) {
    Fetched fetched = {.url = url};
    try {
        fetch(fetched, options);
    } catch (const InputError& error) {
        fetched.complaint = error.what();
    } catch (const std::bad_alloc&) {
        fetched.complaint = "not enough memory";
    }
    print(fetched, options, report);
}

void run(Report& report, Options& options) {
    const auto isASCII = [](unsigned char byte) { return byte < 128; };
    if (!std::ranges::all_of(options.post, isASCII))
        throw UsageError("--post: only ASCII can be posted; escape what is not");
    std::vector<std::string> urls;
    forEachUrl(report, options.urls, [&](const String& url) { urls.push_back(url.utf8()); });
    options.urls = urls;
    runInOrder(report.session(), urls.size(), options.jobs,
               [&](std::size_t i, Report& own) { fetchOne(urls[i], options, own); });
}

}  // namespace

Command makeFetchCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Download pages, and tell what their servers say of them",
        .examples = {"velmo fetch --output mirror/ https://www.example.org/page.html",
                     "velmo fetch --stdout https://www.example.org/page.html | velmo links --json"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    command.add({
        text("-o,--output", "PATH", options->output,
             "keep the page in this file; in a folder, and several pages, by their URLs"),
        {.names = "--stdout",
         .value = {},
         .help = "write the bytes of the pages to standard output",
         .take = [options](const auto&) { options->toStandardOutput = true; },
         .excludes = "--json"},
        flag("-f,--force", options->force, "replace files that are there"),
        text("--referrer", "URL", options->referrer, "the page that one comes from"),
        text("--user-agent", "NAME", options->userAgent,
             "the name that is told to servers; velmo and its version if not given"),
        real("--timeout", "SECONDS", options->timeout, "give up after so long a silence", 0.001,
             1e6),
        text("--post", "TEXT", options->post, "post this, as NAME=VALUE&NAME=VALUE"),
        text("--certificates", "FILE", options->certificates,
             "trust the certificates in this file, in PEM, and not those of the system"),
        number("--max-size", "BYTES", options->limit, "most bytes that a page may have"),
        number("-j,--jobs", "N", options->jobs,
               "how many downloads go on at once; the output stays in order", 1, 1024),
        jsonFlag(session, "one JSON object a URL"),
    });
    return command;
}

}  // namespace velmo::tool
