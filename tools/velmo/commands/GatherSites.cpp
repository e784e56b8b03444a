#include "GatherSites.h"

#include <fmt/core.h>

#include <velmocore/url/URLConstruction.h>

namespace velmo::tool {
namespace {

/// A crawl that tells what it came by when it ends.
class CountedSite final : public PageSource {
public:
    CountedSite(const std::vector<URL>& starts, const SiteOptions& options, SiteCounts& counts)
        : site_(starts, options), counts_(counts) {}
    ~CountedSite() override { counts_ = site_.counts(); }
    CountedSite(const CountedSite&) = delete;
    CountedSite& operator=(const CountedSite&) = delete;

    State next(SourcePage& page) override { return site_.next(page); }
    void didRead(const PageRecord& record) override { site_.didRead(record); }
    SourceProgress progress() const override { return site_.progress(); }

private:
    SiteSource site_;
    SiteCounts& counts_;
};

/// The option, which then also notes that it was given.
Option forSites(Option option, GatherSites& sites) {
    option.take = [take = std::move(option.take), &sites](const std::string& value) {
        take(value);
        sites.isAsked = true;
    };
    return option;
}

template <class Number>
Option numberFor(std::string_view name, std::string_view value, Number& target, std::string help,
                 std::uint64_t least, std::uint64_t most) {
    std::uint64_t usual = target;
    Option option = number(name, value, usual, std::move(help), least, most);
    option.take = [&target, name, value, least, most](const std::string& text) {
        std::uint64_t given = 0;
        number(name, value, given, "", least, most).take(text);
        target = given;
    };
    return option;
}

}  // namespace

std::vector<Option> siteOptions(GatherSites& sites) {
    SiteOptions& options = sites.options;
    std::vector<Option> all = {
        numberFor("--depth", "N", options.depth,
                  "of a site, follow links up to so many steps from its address", 0, 1'000'000),
        real("--delay", "SECONDS", options.delay,
             "the pause between two pages of a host, longer if it asks for that", 0, 86400),
        numberFor("--hosts", "N", options.hosts, "from how many hosts pages are loaded at once", 1,
                  64),
        text("--contact", "CONTACT", sites.contact,
             "an address of the web or of mail, told to servers, where to reach who gathers"),
        real("--timeout", "SECONDS", options.timeout,
             "give a page of a site up after so long a silence", 0.001, 1e6),
    };
    for (Option& option : all) option = forSites(std::move(option), sites);
    return all;
}

std::unique_ptr<PageSource> sourceOf(GatherSites& sites, PageStore* store) {
    std::vector<URL> starts;
    for (const std::string& start : sites.starts)
        starts.push_back(URLWithNormalizedStringURL(String::fromUTF8(start)));
    SiteOptions options = sites.options;
    options.contact = String::fromUTF8(sites.contact);
    options.store = store;
    return std::make_unique<CountedSite>(starts, options, sites.counts);
}

std::string wordsOf(const SiteCounts& counts) {
    return fmt::format(
        "sites: {} requests, {} unchanged, {} forbidden, {} dead links, {} no pages, {} still to "
        "be loaded, {} dropped",
        counts.requests, counts.unchanged, counts.forbidden, counts.failed, counts.others,
        counts.waiting, counts.dropped);
}

JsonObject objectOf(const SiteCounts& counts) {
    return {{"requests", counts.requests},   {"notModified", counts.unchanged},
            {"forbidden", counts.forbidden}, {"dead", counts.failed},
            {"others", counts.others},       {"waiting", counts.waiting},
            {"dropped", counts.dropped}};
}

}  // namespace velmo::tool
