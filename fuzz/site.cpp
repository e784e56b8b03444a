// Requests to the site of a store. The input is a target; the store has a page of the same bytes.
#include <velmocore/gather/SearchSite.h>

#include <unistd.h>

#include <filesystem>

#include "Input.h"

using namespace velmo;

namespace {

const SearchSite& site() {
    static const SearchSite made = [] {
        const auto path = std::filesystem::temp_directory_path() /
                          ("velmo-fuzz-site-" + std::to_string(::getpid()));
        {
            PageStore store = PageStore::openForUpdating(path.string());
            store.put({.url = URL::URLWithString(u"http://h.org/"),
                       .key = u"http://h.org",
                       .title = u"<x> \"Tea\"",
                       .text = u"A cup of tea.\n\nTea & <x> \u4E2D\u6587"});
        }
        std::vector<PageStore> stores;
        stores.push_back(PageStore::openForReading(path.string()));
        std::filesystem::remove(path);
        return SearchSite(std::move(stores), {.seconds = 5, .threads = 1});
    }();
    return made;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const SiteResponse response =
        site().respond({.target = std::string(reinterpret_cast<const char*>(bytes), size)});
    const std::string body = response.body + (response.rest ? response.rest() : "");
    // No foreign text became markup.
    fuzz::require(response.contentType == "application/json" || body.find("<x>") == body.npos);
    return 0;
}
