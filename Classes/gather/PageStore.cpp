// A store is either mapped, and then any number of threads look at it, or written, and then only an
// index of hashes is held in memory. What an index says is never the last word: before a page is
// called unchanged or a duplicate, its block is read, its checksum computed and what it holds
// compared. So a page that is damaged is simply stored anew.
//
// A page that is replaced is appended first; the old block is deleted when the new one is stored. In
// between both stand there, and the later one counts for all who open the store.
#include <velmocore/gather/PageStore.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <velmocore/storage/KeyedData.h>
#include <velmocore/storage/KeyedStorage.h>

#include "gather/PageScan.h"
#include "storage/StoreFile.h"
#include "system/FileErrors.h"

namespace velmo {
namespace {

using detail::PageIndex;

/// Keeps headers within one sector, so that a deletion is one step.
constexpr std::uint64_t HeaderAlignment = 16;
/// How many blocks wait to be deleted before what replaces them is stored.
constexpr std::size_t MostOutdated = 1000;

Error openingError(const Path& path) {
    const int number = path.bytes().empty() ? ENOENT : errno;
    Error error = detail::systemError(number, path.bytes());
    error.path = path.string();
    error.reason = String::fromUTF8(std::generic_category().message(number));
    if (number == EWOULDBLOCK) error.reason = u"another program has it open";
    if (number == EINVAL) error.reason = u"not a regular file";
    return error;
}

/// A page that is looked for, and what was found.
struct Incoming {
    Bytes key, digest;
    std::uint64_t keyHash;
    std::optional<std::size_t> number = {};  // in the index
    bool isSame = false;                     // it has that digest, and is whole
};

bool holds(Bytes block, Bytes digest) {
    return std::ranges::equal(StoredPage(block).digest(), digest);
}

}  // namespace

struct PageStore::State {
    Path path;
    detail::FoundPages found = {};
    // Open for reading:
    std::unique_ptr<detail::BufferedFile> file = nullptr;
    std::unique_ptr<detail::FileMapping> mapping = nullptr;
    // Open for updating:
    KeyedStorage storage = {};

    explicit State(const Path& itsPath) : path(itsPath) {}
    ~State() {
        if (storage.isValid()) synchronize();
    }

    Bytes bytes() const { return mapping ? mapping->bytes() : Bytes(); }

    /// The block at an offset, good until the next operation; none if it is damaged.
    std::optional<Bytes> block(std::uint64_t offset) {
        if (!mapping) return storage.blockAtFileOffset(offset);
        const StoredPage page = detail::pageAt(bytes(), offset);
        return page.isIntact() ? std::optional(page.block()) : std::nullopt;
    }

    Incoming incoming(Bytes key, Bytes digest) const {
        return {key, digest, found.pages.hashOf(key)};
    }

    std::optional<std::size_t> numberOf(Incoming& page) {
        return found.pages.findKey(page.keyHash, [&](const PageIndex::Entry& entry) {
            const auto block = this->block(entry.offset);
            page.isSame = block && holds(*block, page.digest);
            // What is damaged may well be that page, and is replaced then.
            return !block ||
                   std::ranges::equal(detail::bytesOf(StoredPage(*block).key()), page.key);
        });
    }

    std::optional<std::size_t> numberOfText(Bytes digest) {
        return found.pages.findDigest(found.pages.hashOf(digest),
                                      [&](const PageIndex::Entry& entry) {
                                          const auto block = this->block(entry.offset);
                                          return block && holds(*block, digest);
                                      });
    }

    /// What a page is without anything to write.
    std::optional<PutResult> standing(Incoming& page, bool hasText) {
        page.number = numberOf(page);
        if (page.number) return page.isSame ? std::optional(PutResult::Unchanged) : std::nullopt;
        return hasText && numberOfText(page.digest) ? std::optional(PutResult::Duplicate)
                                                    : std::nullopt;
    }

    PutResult append(const Incoming& page, Bytes block) {
        if (!storage.appendBlock(block)) return PutResult::Failed;
        const PageIndex::Entry entry = {page.keyHash, found.pages.hashOf(page.digest),
                                        storage.offsetOfAppendedBlock()};
        if (!page.number) {
            found.pages.add(entry);
            return PutResult::Added;
        }
        found.outdated.push_back(found.pages.entry(*page.number).offset);
        found.pages.replace(*page.number, entry);
        return synchronizeIfMany() ? PutResult::Replaced : PutResult::Failed;
    }

    /// What deletes also moves the position, which has to be the end again for what is appended.
    bool deleteOutdated() {
        std::erase_if(found.outdated, [&](std::uint64_t offset) {
            return storage.deleteBlockAtFileOffset(offset);
        });
        storage.seekToEndOfFile();
        return found.outdated.empty();
    }

    bool synchronize() {
        return storage.synchronizeFile() && (found.outdated.empty() || deleteOutdated());
    }

    bool synchronizeIfMany() { return found.outdated.size() < MostOutdated || synchronize(); }
};

PageStore::PageStore() noexcept = default;
PageStore::PageStore(PageStore&&) noexcept = default;
PageStore& PageStore::operator=(PageStore&&) noexcept = default;
PageStore::~PageStore() = default;

PageStore PageStore::openForReading(const Path& path, Error* error) {
    PageStore store;
    auto file = detail::openStoreFile(detail::FileCalls::current(), path,
                                      detail::BufferedFile::Access::Read);
    auto mapping = file ? std::make_unique<detail::FileMapping>(file->descriptor()) : nullptr;
    if (!mapping || !mapping->isWhole()) {
        if (error) *error = openingError(path);
        return store;
    }
    store.state_ = std::make_unique<State>(path);
    store.state_->file = std::move(file);
    store.state_->mapping = std::move(mapping);
    detail::findPages(store.state_->found, store.state_->bytes(), detail::ScanMemory::IsKept);
    return store;
}

PageStore PageStore::openForUpdating(const Path& path, Error* error) {
    PageStore store;
    auto state = std::make_unique<State>(path);
    errno = 0;
    state->storage = KeyedStorage::keyedStorageForUpdatingAtPath(path);
    // What is torn goes first: it would go with the first page that is appended, and must not be
    // counted before.
    const bool isRead =
        state->storage.removeTornEnd() && state->storage.readMapped([&](Bytes bytes) {
            detail::findPages(state->found, bytes, detail::ScanMemory::IsReleased);
        });
    if (!isRead) {
        if (error) *error = openingError(path);
        state->storage = {};
        return store;
    }
    state->storage.setAlignment(HeaderAlignment);
    store.state_ = std::move(state);
    return store;
}

bool PageStore::isValid() const noexcept { return state_ != nullptr; }

bool PageStore::isOpenForUpdating() const noexcept { return state_ && state_->storage.isValid(); }

const Path& PageStore::path() const noexcept {
    static const Path None;
    return state_ ? state_->path : None;
}

std::size_t PageStore::numberOfPages() const noexcept {
    return state_ ? state_->found.pages.size() : 0;
}

std::optional<PageRecord> PageStore::page(std::u16string_view key) const {
    if (!state_) return std::nullopt;
    const std::string utf8 = velmo::utf8(key);
    Incoming wanted = state_->incoming(detail::bytesOf(utf8), {});
    const auto number = state_->numberOf(wanted);
    const auto block =
        number ? state_->block(state_->found.pages.entry(*number).offset) : std::nullopt;
    return block ? pageRecordFromData(*block) : std::nullopt;
}

String PageStore::keyOfText(Bytes digest) const {
    const auto number = state_ ? state_->numberOfText(digest) : std::nullopt;
    const auto block =
        number ? state_->block(state_->found.pages.entry(*number).offset) : std::nullopt;
    return block ? String::fromUTF8(StoredPage(*block).key()) : String();
}

void PageStore::forEachPage(FunctionRef<bool(const StoredPage& page)> handler) const {
    forEachPage(0, numberOfPages(), handler);
}

void PageStore::forEachPage(std::size_t from, std::size_t to,
                            FunctionRef<bool(const StoredPage& page)> handler) const {
    if (!state_ || !state_->mapping) return;
    for (to = std::min(to, numberOfPages()); from < to; ++from)
        if (!handler(detail::pageAt(state_->bytes(), state_->found.pages.entry(from).offset)))
            return;
}

PutResult PageStore::put(const PageRecord& page) {
    if (!isOpenForUpdating() || page.key.isEmpty()) return PutResult::Failed;
    const std::string key = page.key.utf8();
    const auto digest = digestOfText(page);
    Incoming incoming = state_->incoming(detail::bytesOf(key), digest);
    const auto result = state_->standing(incoming, !page.text.isEmpty());
    return result ? *result : state_->append(incoming, dataFromPageRecord(page));
}

PutResult PageStore::put(const PageRecord& page, Bytes block) {
    const StoredPage ready(block);
    const std::string key = page.key.utf8();
    if (!isOpenForUpdating() || key.empty() || ready.key() != key) return PutResult::Failed;
    Incoming incoming = state_->incoming(detail::bytesOf(key), ready.digest());
    const auto result = state_->standing(incoming, !page.text.isEmpty());
    return result ? *result : state_->append(incoming, block);
}

bool PageStore::synchronize() { return isOpenForUpdating() && state_->synchronize(); }

std::optional<std::uint64_t> PageStore::addNote(Bytes note) {
    if (!isOpenForUpdating() || !detail::isNote(note)) return std::nullopt;
    if (!state_->storage.appendBlock(note)) return std::nullopt;
    return state_->found.notes.emplace_back(state_->storage.offsetOfAppendedBlock());
}

bool PageStore::removeNote(std::uint64_t number) {
    if (!isOpenForUpdating()) return false;
    std::vector<std::uint64_t>& notes = state_->found.notes;
    const auto note = std::ranges::lower_bound(notes, number);
    if (note == notes.end() || *note != number) return false;
    notes.erase(note);
    state_->found.outdated.push_back(number);
    return state_->synchronizeIfMany();
}

void PageStore::forEachNote(FunctionRef<bool(std::uint64_t number, Bytes note)> handler) const {
    if (!state_) return;
    for (const std::uint64_t number : std::vector(state_->found.notes)) {
        const auto block = state_->block(number);
        // A copy, as the handler may change the store.
        if (block && !handler(number, Data(block->begin(), block->end()))) return;
    }
}

}  // namespace velmo
