#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <velmocore/gather/PageRecord.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// What came of a page that was put into a store.
enum class PutResult : std::uint8_t {
    Added,      ///< it is new
    Replaced,   ///< its text was another one
    Unchanged,  ///< it stands there already
    Duplicate,  ///< the same text stands there under another key; it is not kept
    Failed,     ///< it could not be written, or it has no key
};

/// Pages in a file: one block a page (storage/KeyedStorage.h), known by its key. One program writes
/// a store at a time, and none reads it meanwhile; any number read it together.
///
///     Error error;
///     PageStore store = PageStore::openForUpdating("pages.store", &error);
///     store.put({.key = u"http://h.org", .text = u"Tea"});     // PutResult::Added
///     store.put({.key = u"http://h.org", .text = u"Tea"});     // PutResult::Unchanged
///     store.page(u"http://h.org")->text;                       // Tea
///
/// Crashes: all that a successful synchronize() covered stands there after one, whatever page was
/// being written or replaced, and no page stands twice for those who read: the later block of a key
/// counts. Pages of a damaged store that are whole are found.
class VELMO_API PageStore {
public:
    /// Without a file.
    PageStore() noexcept;
    PageStore(PageStore&&) noexcept;
    PageStore& operator=(PageStore&&) noexcept;
    /// Synchronizes and closes.
    ~PageStore();

    // Not valid if the file cannot be opened, or is used by a program that writes (or, for
    // updating, by any); the error tells. Other blocks than pages are left alone.

    /// Can only be read.
    [[nodiscard]] static PageStore openForReading(const Path& path, Error* error = nullptr);
    /// Creates the file if there is none.
    [[nodiscard]] static PageStore openForUpdating(const Path& path, Error* error = nullptr);

    /// Whether it has an open file, whether that may be written, and its path.
    [[nodiscard]] bool isValid() const noexcept;
    [[nodiscard]] bool isOpenForUpdating() const noexcept;
    [[nodiscard]] const Path& path() const noexcept;
    /// Damaged ones too, if only their text is: no checksum is computed to open a store.
    [[nodiscard]] std::size_t numberOfPages() const noexcept;

    /// The page of a key; none if there is none, or if it is damaged. Any number of threads may ask
    /// a store that was opened for reading.
    [[nodiscard]] std::optional<PageRecord> page(std::u16string_view key) const;
    /// The key of a page whose text has that digest; absent if there is none.
    [[nodiscard]] String keyOfText(Bytes digest) const;
    /// Calls the handler for each page, in the order in which they were stored, until it returns
    /// false. Only a store that was opened for reading can be walked.
    void forEachPage(FunctionRef<bool(const StoredPage& page)> handler) const;
    /// The same for the pages from one number on up to before another, counted from 0 in that
    /// order: any number of threads may walk a store that was opened for reading.
    void forEachPage(std::size_t from, std::size_t to,
                     FunctionRef<bool(const StoredPage& page)> handler) const;

    // Writing; one thread at a time.

    /// A page whose key and digest stand there is left alone, if it is whole there; one whose key
    /// stands there is replaced. An empty text is nobody's duplicate.
    PutResult put(const PageRecord& page);
    /// The same with the block that dataFromPageRecord() made of the page, as other threads can do;
    /// its digest counts.
    PutResult put(const PageRecord& page, Bytes block);
    /// Has the system store all that was put, and then deletes what that replaced or what was
    /// removed. False if not all of it could be done: it is tried again with the next one.
    bool synchronize();

    // Notes: what a program keeps beside the pages, as how far it is. Each is keyed data without
    // the key of a page, and goes by a number.

    /// None if it could not be written.
    std::optional<std::uint64_t> addNote(Bytes note);
    /// The note is gone from the file with the next synchronize(), when all that was added before
    /// is stored: after a crash there may be the new one and the old one, but never none.
    bool removeNote(std::uint64_t number);
    /// In the order in which they were added, until the handler returns false.
    void forEachNote(FunctionRef<bool(std::uint64_t number, Bytes note)> handler) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace velmo
