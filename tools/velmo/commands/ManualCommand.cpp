// The man pages, for whoever has none installed, and for the build, which installs them.
#include <filesystem>
#include <fstream>
#include <memory>

#include "Commands.h"
#include "frame/FileBytes.h"
#include "frame/Manual.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string name, output;
};

void printPage(Report& report, const std::vector<ManualPage>& pages, const std::string& name) {
    const std::string wanted = name.empty() ? "velmo" : "velmo-" + name;
    std::vector<std::string_view> names;
    for (const ManualPage& page : pages) {
        if (page.name == wanted) return report.printBytes(page.text);
        if (&page != &pages.front()) names.push_back(page.name);
        if (&page != &pages.front()) names.back().remove_prefix(std::string_view("velmo-").size());
    }
    throw UsageError("no page " + name + suggestion(name, names));
}

/// Where man looks below a folder: man1 and so on.
void writePages(Report& report, const std::vector<ManualPage>& pages,
                const std::filesystem::path& folder) {
    for (const ManualPage& page : pages) {
        const std::filesystem::path place = folder / (std::string("man") + page.section);
        const std::filesystem::path path = place / (page.name + "." + page.section);
        std::error_code error;
        std::filesystem::create_directories(place, error);
        std::ofstream file(path, std::ios::binary);
        if (!(file << page.text).flush()) return report.fail(path.string(), "cannot be written");
    }
}

void run(Report& report, const Options& options) {
    const std::vector<ManualPage> pages = manualPages(allCommands(), report.session());
    if (options.output.empty()) return printPage(report, pages, options.name);
    if (!options.name.empty()) throw UsageError("--output is for all pages");
    writePages(report, pages, options.output);
}

}  // namespace

Command makeManualCommand(Session&) {
    auto options = std::make_shared<Options>();
    return {.summary = "Print the man page of a command or topic, or write all of them",
            .examples = {"velmo manual text"},
            .options = {text("-o,--output", "FOLDER", options->output,
                             "write all pages below this folder, as man looks for them")},
            .arguments = {{.name = "NAME",
                           .help = "a command or topic; none is the page of velmo itself",
                           .take = [options](const auto& given) { options->name = given; }}},
            .run = [options](Report& report) { run(report, *options); }};
}

}  // namespace velmo::tool
