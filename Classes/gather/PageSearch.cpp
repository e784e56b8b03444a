// A search in two passes. The first goes through all pages, on several threads, and keeps a few
// numbers of those that match; the second makes what is told of the few that are. What the threads
// found is put together in the order of the pages, so that nothing depends on their number.
#include <velmocore/gather/PageSearch.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "gather/SearchScan.h"
#include "gather/SearchTelling.h"
#include "gather/WorkThreads.h"

namespace velmo {
namespace {

using namespace detail;

/// So many pages are handed to a thread at once: a few milliseconds of work.
constexpr std::size_t PagesOfStretch = 128;

// Of BM25: how soon more of a word adds nothing more, and how far long pages are marked down.
constexpr double Saturation = 1.2, LengthWeight = 0.75;

class Search {
public:
    Search(std::span<const PageStore> stores, const QueryTerms& query,
           const PageSearchOptions& options)
        : stores_(stores),
          options_(options),
          query_(query, options.comparison),
          matchesWithWord_(query_.numberOfWords()),
          pagesWithWord_(query_.numberOfWords()) {}

    SearchResult run() {
        scanAll();
        for (StretchMatches& found : found_) take(found);
        result_.matching = matches_.size();
        score();
        tell(inOrder());
        return std::move(result_);
    }

private:
    void scanAll() {
        std::vector<PageStretch> stretches;
        for (std::size_t store = 0; store < stores_.size(); ++store) {
            const std::size_t pages = stores_[store].numberOfPages();
            result_.pages += pages;
            for (std::size_t from = 0; from < pages; from += PagesOfStretch)
                stretches.push_back({store, from, std::min(from + PagesOfStretch, pages)});
        }
        const SearchScan scan(stores_, query_, options_);
        found_.resize(stretches.size());
        workOnThreads(stretches.size(), options_.threads,
                      [&](std::size_t i) { found_[i] = scan.scan(stretches[i]); });
    }

    void take(StretchMatches& found) {
        std::ranges::move(found.matches, std::back_inserter(matches_));
        counts_.insert(counts_.end(), found.counts.begin(), found.counts.end());
        pages_ += found.pages;
        words_ += found.words;
        result_.scanned += found.scanned;
        result_.isComplete = result_.isComplete && found.isComplete;
        for (std::size_t i = 0; i < query_.numberOfWords(); ++i) {
            pagesWithWord_[i] += found.pagesWithWord[i];
            matchesWithWord_[i] += found.matchesWithWord[i];
        }
        for (const auto& [language, count] : found.languages) result_.languages[language] += count;
        for (const auto& [host, count] : found.hosts) result_.hosts[host] += count;
        for (const auto& [year, count] : found.years) result_.years[year] += count;
        found = {};
    }

    /// BM25; docs/gather.md has it as a formula.
    void score() {
        const auto pages = static_cast<double>(pages_);
        const double average = std::max(static_cast<double>(words_) / std::max(pages, 1.0), 1.0);
        scores_.resize(matches_.size());
        for (std::size_t word = 0; word < query_.numberOfWords(); ++word) {
            const double having =
                std::clamp(pagesWithWord_[word], matchesWithWord_[word], std::max(pages, 1.0));
            const double weight = std::log(1 + (pages - having + 0.5) / (having + 0.5));
            for (std::size_t i = 0; i < matches_.size(); ++i) {
                const double count = counts_[i * query_.numberOfWords() + word];
                const double length = 1 - LengthWeight + LengthWeight * matches_[i].words / average;
                scores_[i] += weight * count * (Saturation + 1) / (count + Saturation * length);
            }
        }
    }

    bool isBefore(std::size_t one, std::size_t other) const {
        const PageMatch &a = matches_[one], &b = matches_[other];
        switch (options_.order) {
            case SearchOrder::Relevance:
                return scores_[one] > scores_[other];
            case SearchOrder::Newest:
                return a.date > b.date;
            case SearchOrder::Address:
                return a.key < b.key;
            case SearchOrder::Hits:
                return a.hits > b.hits;
            default:
                return false;
        }
    }

    /// The matches that are told, by their numbers.
    std::vector<std::size_t> inOrder() const {
        std::vector<std::size_t> numbers(matches_.size());
        std::iota(numbers.begin(), numbers.end(), std::size_t{0});
        const std::size_t first = std::min(options_.first, numbers.size());
        const std::size_t rest = numbers.size() - first;
        const std::size_t end = first + (options_.limit ? std::min(options_.limit, rest) : rest);
        // What is told alike stays as it was stored.
        std::partial_sort(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(end),
                          numbers.end(), [&](std::size_t one, std::size_t other) {
                              if (isBefore(one, other)) return true;
                              return one < other && !isBefore(other, one);
                          });
        numbers.resize(end);
        numbers.erase(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(first));
        return numbers;
    }

    void tell(const std::vector<std::size_t>& numbers) {
        result_.hits.resize(numbers.size());
        workOnThreads(numbers.size(), options_.threads, [&](std::size_t i) {
            const auto [store, page] = matches_[numbers[i]].place;
            stores_[store].forEachPage(page, page + 1, [&](const StoredPage& stored) {
                result_.hits[i] = hitOfPage(stored, query_, options_.excerptLength);
                return false;
            });
            result_.hits[i].score = scores_[numbers[i]];
            result_.hits[i].store = store;
        });
    }

    std::span<const PageStore> stores_;
    const PageSearchOptions& options_;
    const SearchQuery query_;
    std::vector<StretchMatches> found_;
    std::vector<PageMatch> matches_;
    std::vector<double> counts_;                           // by match and word
    std::vector<double> scores_;                           // by match
    std::size_t pages_ = 0;                                // that the filter accepts
    std::uint64_t words_ = 0;                              // of these
    std::vector<double> matchesWithWord_, pagesWithWord_;  // by word
    SearchResult result_;
};

}  // namespace

SearchResult searchPages(std::span<const PageStore> stores, const QueryTerms& query,
                         const PageSearchOptions& options) {
    if (query.isValid()) return Search(stores, query, options).run();
    SearchResult result;
    for (const PageStore& store : stores) result.pages += store.numberOfPages();
    return result;
}

}  // namespace velmo
