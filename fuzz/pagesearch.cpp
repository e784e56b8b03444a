// Bytes as a query and as a text, and as a store that is searched for it. With signatures and without
// the same must be found, and what is told must lie where it says.
#include <velmocore/gather/PageSearch.h>
#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedDataEditing.h>

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

/// A store without a name, and a path that leads to it.
class MemoryFile {
public:
    MemoryFile() : file_(::memfd_create("pages", MFD_CLOEXEC)) { require(file_ >= 0); }
    ~MemoryFile() { ::close(file_); }
    void append(Bytes bytes) const {
        require(::write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    }
    Path path() const { return "/proc/self/fd/" + std::to_string(file_); }

private:
    int file_;
};

void checkHits(const SearchResult& result) {
    for (const SearchHit& hit : result.hits) {
        std::size_t end = 0;
        for (const Range& range : hit.hits) {
            require(range.length > 0 && range.end() <= hit.excerpt.length());
            require(range.location >= end);
            end = range.location;
        }
    }
}

void search(const PageStore& store, const QueryTerms& query, PageSearchOptions options) {
    options.threads = 1;
    const SearchResult fast = searchPages({&store, 1}, query, options);
    options.useSignatures = false;
    const SearchResult slow = searchPages({&store, 1}, query, options);
    checkHits(fast);
    require(fast.matching == slow.matching && fast.hits.size() == slow.hits.size());
    require(fast.pages == slow.pages && fast.scanned <= slow.scanned);
    for (std::size_t i = 0; i < fast.hits.size(); ++i) {
        require(fast.hits[i].key == slow.hits[i].key);
        require(fast.hits[i].score == slow.hits[i].score);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    if (size < 4) return 0;
    PageSearchOptions options;
    options.order = static_cast<SearchOrder>(data[0] % 5);
    options.comparison = static_cast<WildcardComparison>(data[1] % 8);
    options.facets = data[1] & 8;
    options.excerptLength = data[2];
    const std::size_t length = std::min<std::size_t>(data[3], size - 4);
    const auto utf8 = [](Bytes bytes) { return String::fromUTF8(charsOf(bytes)); };
    const QueryTerms query(utf8({data + 4, length}), {.wildcard = (data[0] & 8) != 0});
    const Bytes rest(data + 4 + length, size - 4 - length);
    {  // as it stands
        const MemoryFile file;
        file.append(rest);
        search(PageStore::openForReading(file.path()), query, options);
    }
    const MemoryFile file;
    {
        PageStore store = PageStore::openForUpdating(file.path());
        PageRecord page = {.key = u"k", .title = utf8({data + 4, length})};
        page.text = utf8(rest);
        store.put(page);
        page.key = u"l";
        page.text = String(std::u16string(page.text.view()).append(u" and a cup of tea"));
        store.put(page);
    }
    search(PageStore::openForReading(file.path()), query, options);
    return 0;
}
