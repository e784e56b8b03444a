// Stores of pages.
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>

#include <velmocore/gather/PageSearch.h>
#include <velmocore/gather/PageStatistics.h>
#include <velmocore/gather/PageStore.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/KeyedStorage.h>

#include "Growth.h"

namespace velmo::growth {
namespace {

/// A store on disk, filled with what is given.
class StoreFile {
public:
    explicit StoreFile(Bytes bytes = {}) {
        std::ofstream(path_, std::ios::binary) << charsOf(bytes);
    }
    ~StoreFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    PageStore forReading() const { return PageStore::openForReading(path_); }
    PageStore forUpdating() const { return PageStore::openForUpdating(path_); }
    KeyedStorage blocks() const { return KeyedStorage::keyedStorageForUpdatingAtPath(path_); }

private:
    /// Of its own: cases run side by side.
    static std::filesystem::path newPath() {
        static std::atomic<int> serial = 0;
        return std::filesystem::temp_directory_path() /
               ("velmo-growth-" + std::to_string(getpid()) + "-" + std::to_string(serial++));
    }

    const std::filesystem::path path_ = newPath();
};

PageRecord pageOf(std::size_t number, String text) {
    PageRecord page;
    page.key = String::fromUTF8("http://h.org/" + std::to_string(number));
    page.text = std::move(text);
    return page;
}

/// All of one key, so that each is compared with the one before.
void appendVersions(const StoreFile& file, std::size_t count) {
    KeyedStorage blocks = file.blocks();
    for (std::size_t i = 0; i < count; ++i)
        blocks.appendBlock(dataFromPageRecord(pageOf(1, String::fromUTF8(std::to_string(i)))));
}

constexpr Operation Rows[] = {
    {"records of pages",
     [](const Input& in) {
         PageRecord page = pageOf(1, in.text);
         page.title = in.text;
         page.bytes = in.utf8;
         page.links.assign(in.utf8.size() / 64, {URL::URLWithString(u"http://h.org/"), u"a", {}});
         use(pageRecordFromData(dataFromPageRecord(page)));
         use(pageRecordFromData(in.utf8));
     },
     262144},
    {"stores of pages",
     [](const Input& in) {
         use(pageStatistics(StoreFile(in.utf8).forReading()));
         const StoreFile file;
         appendVersions(file, in.utf8.size() / 64);
         PageStore store = file.forUpdating();
         for (std::size_t i = 0; i < in.utf8.size() / 64; ++i)
             store.put(pageOf(i, String::fromUTF8(std::to_string(i))));
     },
     65536},
    {"searching pages",
     [](const Input& in) {
         const StoreFile file;
         {
             PageStore store = file.forUpdating();
             store.put(pageOf(1, in.text));
             store.put(pageOf(2, in.almost));
         }
         const PageStore stores[] = {file.forReading()};
         for (const char16_t* query : {u"a", u"a* OR b", u"a NEAR/3 b", u"-nothing"})
             use(searchPages(stores, QueryTerms(query, {.wildcard = true}),
                             {.order = SearchOrder::Hits, .facets = true, .threads = 1}));
         const QueryTerms asked(in.text.substring({0, in.text.length() / 4}), {.wildcard = true});
         use(searchPages({stores, 0}, asked));
     },
     65536},
};

}  // namespace

std::span<const Operation> gatherOperations() { return Rows; }

}  // namespace velmo::growth
