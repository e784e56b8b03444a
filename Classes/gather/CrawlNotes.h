// How far a crawl is, as notes in the store that it fills; docs/formats.md has their keys.
#pragma once

#include <optional>
#include <unordered_set>
#include <vector>

#include "gather/Frontier.h"

namespace velmo::detail {

/// What a crawl that did not come to its end has left.
struct CrawlState {
    std::optional<Date> begun = {};  ///< none if there is none
    std::vector<std::pair<std::uint32_t, URL>> bases = {};
    std::vector<FrontierEntry> found = {};  ///< a later one counts before an earlier one
    std::unordered_set<PageID> read = {};   ///< what was found in them is noted
    std::unordered_set<PageID> done = {};   ///< and these need nothing any more
};

/// The notes of one crawl; without a store they are nowhere.
///
/// What was found in a page is noted before anything else is done, but that a page is done only
/// when the store has synchronized it: so after a crash a page may stand in the store without being
/// done, but none is done that is not there. A crawl that goes on passes over those that stand
/// there.
class CrawlNotes {
public:
    CrawlNotes(PageStore* store, std::uint64_t crawl) : store_(store), crawl_(crawl) {}

    [[nodiscard]] CrawlState load();
    void begin(Date now);
    void addBase(std::uint32_t start, const URL& base);
    /// These are written by the next call of addRead() or flush().
    void addFound(const FrontierEntry& entry);
    void addRead(PageID id);
    void addDone(PageID id);
    void flush();
    /// Writes all notes anew, if most of what they tell is done.
    void tidy(const Frontier& frontier);
    /// Removes all of them.
    void end();

private:
    void startNote();
    void write();
    void synchronize();

    PageStore* const store_;
    const std::uint64_t crawl_;
    std::optional<Date> begun_ = {};
    Data note_ = {};  ///< not yet written
    std::vector<PageID> done_ = {};
    std::vector<std::uint64_t> numbers_ = {};  ///< of all notes that stand there
    std::size_t told_ = 0;                     ///< entries that they tell of
};

}  // namespace velmo::detail
