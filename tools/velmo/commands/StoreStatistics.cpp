// What stores of pages hold, in numbers.
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include <velmocore/gather/PageStatistics.h>

#include "PageStores.h"
#include "StoreCommands.h"

namespace velmo::tool {
namespace {

struct Count {
    std::string name;
    std::size_t pages;
};

/// The most frequent first, and of these the first by name.
std::vector<Count> counted(const std::map<String, std::size_t>& pages) {
    std::vector<Count> counts;
    for (const auto& [name, number] : pages) counts.push_back({name.utf8(), number});
    std::ranges::stable_sort(counts, std::greater(), &Count::pages);
    return counts;
}

/// In the order of the years.
std::vector<Count> counted(const std::map<int, std::size_t>& pages) {
    std::vector<Count> counts;
    for (const auto& [year, number] : pages) counts.push_back({std::to_string(year), number});
    return counts;
}

Json jsonOf(const std::vector<Count>& counts) {
    JsonArray array;
    for (const Count& count : counts)
        array.push_back(JsonObject{{"name", count.name}, {"pages", count.pages}});
    return array;
}

void printCounts(std::string_view heading, const std::vector<Count>& counts, std::size_t most,
                 Report& report) {
    if (counts.empty()) return;
    report.printLine(heading);
    const std::size_t told = most == 0 ? counts.size() : std::min(most, counts.size());
    for (const Count& count : std::span(counts).first(told))
        report.printLine(
            fmt::format("{:12}  {}", count.pages, count.name.empty() ? "-" : count.name));
    if (told < counts.size())
        report.printLine(fmt::format("{:>12}  and {} more", "", counts.size() - told));
}

void printStatistics(const std::string& file, const StoreOptions& options, Report& report) {
    const PageStatistics found = pageStatistics(openedPageStore(file));
    const std::uintmax_t size = std::filesystem::file_size(file);
    const auto languages = counted(found.languages), hosts = counted(found.hosts),
               years = counted(found.years);
    if (report.json())
        return report.printObject(fileObject(file, {{"pages", found.pages},
                                                    {"damaged", found.damaged},
                                                    {"words", found.words},
                                                    {"bytes", found.bytes},
                                                    {"size", size},
                                                    {"languages", jsonOf(languages)},
                                                    {"hosts", jsonOf(hosts)},
                                                    {"years", jsonOf(years)}}));
    report.printLine(fmt::format("{}: {} pages, {} words, {} of {} bytes", file, found.pages,
                                 found.words, found.bytes, size));
    if (found.damaged > 0) report.warn(file, fmt::format("{} damaged pages", found.damaged));
    printCounts("languages", languages, options.top, report);
    printCounts("hosts", hosts, options.top, report);
    printCounts("years", years, options.top, report);
}

void run(Report& report, const StoreOptions& options) {
    for (const std::string& file : options.files) try {
            printStatistics(file, options, report);
        } catch (const InputError& error) {
            report.fail(file, error.what());
        }
}

}  // namespace

Command makeStoreStatsCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command;
    command.summary = "Tell how many pages stores hold, of which languages, hosts and years";
    command.examples = {"velmo store stats pages.store"};
    command.run = [options](Report& report) { run(report, *options); };
    command.arguments = {list("STORE", options->files, "stores of pages")};
    command.arguments.back().isRequired = true;
    options->top = 20;
    command.add({number("-n,--limit", "N", options->top, "how many of each are listed, 0 for all"),
                 jsonFlag(session, "one JSON object a store, with all of each")});
    return command;
}

}  // namespace velmo::tool
