// Bytes as a record of a page, and as a store of pages: opened, walked, asked for pages, written to
// and opened again.
#include <velmocore/gather/PageStatistics.h>
#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedDataEditing.h>

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Input.h"
#include "system/FileCalls.h"

using namespace velmo;
using fuzz::require;

namespace {

/// Nothing is to survive a crash of the machine here.
class WithoutDisk : public detail::FileCalls {
    int fsync(int) override { return 0; }
};

/// A file without a name, and a path that leads to it.
class MemoryFile {
public:
    explicit MemoryFile(Bytes bytes) : file_(::memfd_create("pages", MFD_CLOEXEC)) {
        require(file_ >= 0);
        require(::write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    }
    ~MemoryFile() { ::close(file_); }
    Path path() const { return "/proc/self/fd/" + std::to_string(file_); }

private:
    int file_;
};

/// What is read can be written, and is then read as the same.
void checkRecord(Bytes block) {
    const auto page = pageRecordFromData(block);
    if (!page) return;
    const Data written = dataFromPageRecord(*page);
    const auto again = pageRecordFromData(written);
    require(again && again->key == page->key && again->links.size() == page->links.size());
    require(page->text.isEmpty() || again->text == page->text);
    require(dataFromPageRecord(*again) == written);
}

/// Every page that is whole is also the one that is found by its key.
std::size_t checkPages(const PageStore& store) {
    std::size_t whole = 0;
    store.forEachPage([&](const StoredPage& page) {
        if (!page.isIntact()) {
            require(page.text().isAbsent() && page.links().empty());
            return true;
        }
        ++whole;
        checkRecord(page.block());
        const auto found = store.page(String::fromUTF8(page.key()));
        require(found.has_value());
        return true;
    });
    store.forEachNote([](std::uint64_t, Bytes note) { return isValidKeyedData(note); });
    const PageStatistics statistics = pageStatistics(store);
    require(statistics.pages == whole && whole + statistics.damaged == store.numberOfPages());
    return whole;
}

void putInto(PageStore& store, const char16_t* key, const char16_t* text) {
    PageRecord page;
    page.key = key;
    page.text = text;
    require(store.put(page) != PutResult::Failed);
    require(store.put(page) != PutResult::Added);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    WithoutDisk calls;
    const detail::FileCallsInstead these(calls);
    const Bytes bytes(data, size);
    checkRecord(bytes);
    const MemoryFile file(bytes);
    const std::size_t whole = checkPages(PageStore::openForReading(file.path()));
    Data note;
    addUnsigned(note, 7, 1);
    {
        PageStore store = PageStore::openForUpdating(file.path());
        require(store.isValid());
        putInto(store, u"http://h.org/a", u"first");
        putInto(store, u"http://h.org/a", u"second");
        putInto(store, u"http://h.org/b", u"third");
        const auto number = store.addNote(note);
        require(number && store.removeNote(*number) && store.addNote(note));
        require(store.synchronize());
    }
    const PageStore store = PageStore::openForReading(file.path());
    require(checkPages(store) + 1 >= whole);  // one may have been torn
    const auto page = store.page(u"http://h.org/a");
    require(page && page->text == String(u"second"));
    bool isThere = false;
    store.forEachNote([&](std::uint64_t, Bytes found) {
        return !(isThere = isThere || unsignedForKey(found, 1) == 7);
    });
    require(isThere);
    return 0;
}
