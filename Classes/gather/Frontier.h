// The pages that a crawl knows: those that it has seen, and of them those that are still to be
// loaded.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <velmocore/gather/SiteSource.h>

namespace velmo::detail {

/// A page among those of a crawl: the first bytes of the digest of its key. Two of a million are
/// one by chance once in forty million crawls.
using PageID = std::uint64_t;
[[nodiscard]] PageID idOfKey(const String& key);

/// A page that is to be loaded.
struct FrontierEntry {
    URL url = {};  ///< without credentials and anchor
    std::uint32_t level = 0;
    std::uint32_t start = 0;      ///< the number of the start that it was reached from
    std::uint32_t redirects = 0;  ///< on the way to it
    std::uint32_t tries = 0;
    // Of a crawl that goes on:
    bool isResumed = false;
    bool wasRead = false;  ///< and what it leads to was noted
};

class Frontier {
public:
    Frontier(const std::vector<URL>& starts, const SiteOptions& options);

    /// A link as the crawl keeps it: absent if it is none to load.
    [[nodiscard]] static URL cleaned(const URL& url);
    [[nodiscard]] PageID idOf(const URL& url) const;

    /// Whether links of the level of an entry are followed there.
    [[nodiscard]] bool mayFollow(const URL& url, std::uint32_t level, std::uint32_t start) const;
    /// Takes a page that nobody has seen; none if it was seen, or if there is no room.
    std::optional<PageID> add(const FrontierEntry& entry);
    /// Takes an entry as it was, in the place of one of the same page.
    PageID restore(const FrontierEntry& entry);

    [[nodiscard]] bool isWaiting(PageID id) const { return waiting_.contains(id); }
    [[nodiscard]] FrontierEntry& entry(PageID id) { return waiting_.at(id); }
    void setSeen(PageID id) { seen_.insert(id); }
    void setDone(PageID id) { waiting_.erase(id); }

    /// What a start stands for: where it redirects to.
    [[nodiscard]] const URL& base(std::uint32_t start) const { return bases_[start]; }
    void setBase(std::uint32_t start, const URL& base);
    [[nodiscard]] std::size_t numberOfStarts() const { return bases_.size(); }

    [[nodiscard]] const std::unordered_map<PageID, FrontierEntry>& waiting() const {
        return waiting_;
    }
    [[nodiscard]] const std::unordered_set<PageID>& seen() const { return seen_; }
    [[nodiscard]] std::size_t dropped() const { return dropped_; }

private:
    const SiteOptions& options_;
    std::vector<URL> bases_;
    std::unordered_map<PageID, FrontierEntry> waiting_;
    std::unordered_set<PageID> seen_;
    std::size_t dropped_ = 0;
};

}  // namespace velmo::detail
