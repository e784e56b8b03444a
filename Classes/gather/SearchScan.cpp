// What is cheap comes first: the records of a page, its signature, and only then its text.
//
// In how many pages a word stands is made out from the signatures, since the texts of most pages are
// not looked at; so the scores do not depend on which pages these are. A signature that takes a word
// to stand in a text errs as often as its bits tell, and so much is taken off.
#include "gather/SearchScan.h"

#include <cmath>

#include "gather/PageSignature.h"
#include "gather/RecordKeys.h"
#include "storage/KeyedWalk.h"

namespace velmo::detail {
namespace {

/// A word in the title counts as so many more in the text.
constexpr double TitleWeight = 4;

constexpr double NoDate = -HUGE_VAL;

double secondsOf(const std::optional<Date>& date) {
    const double seconds = date ? date->time_since_epoch().count() : NoDate;
    return std::isnan(seconds) ? NoDate : seconds;
}

std::optional<int> yearOf(double seconds) {
    // Years that a calendar knows; what is damaged may be anything.
    if (!(std::abs(seconds) < 3e11)) return std::nullopt;
    const auto days = std::chrono::floor<std::chrono::days>(
        std::chrono::sys_seconds(std::chrono::seconds(static_cast<std::int64_t>(seconds))));
    return static_cast<int>(std::chrono::year_month_day(days).year());
}

}  // namespace

/// The work on one stretch.
class SearchScan::Pass {
public:
    Pass(const SearchScan& scan, const PageStretch& stretch) : scan_(scan), stretch_(stretch) {
        found_.matchesWithWord.resize(scan.query_.numberOfWords());
        found_.pagesWithWord.resize(scan.query_.numberOfWords());
    }

    StretchMatches run() {
        std::size_t number = stretch_.from;
        scan_.stores_[stretch_.store].forEachPage(stretch_.from, stretch_.to,
                                                  [&](const StoredPage& page) {
                                                      if (isStopped()) return false;
                                                      if (scan_.filter_.accepts(page))
                                                          look(page, {stretch_.store, number});
                                                      ++number;
                                                      return true;
                                                  });
        return std::move(found_);
    }

private:
    bool isStopped() {
        if (scan_.options_.shouldStop && scan_.options_.shouldStop()) found_.isComplete = false;
        return !found_.isComplete;
    }

    void look(const StoredPage& page, PagePlace place) {
        const std::uint32_t words = page.words();
        ++found_.pages;
        found_.words += words;
        if (!mayMatch(page)) return;
        ++found_.scanned;
        // The text is decoded only if its bytes have what the query needs.
        if (!mayHoldForBytesOf(page)) return;
        const String text = page.text();
        if (scan_.query_.holdsFor(text)) take(page, {place, words}, text);
    }

    bool mayMatch(const StoredPage& page) {
        const QuerySignature& asked = scan_.query_.signature();
        const PageSignature signature(page.signature());
        mayStand_.assign(asked.numberOfWords(), true);
        if (!signature.isWhole()) return true;
        asked.findWords(signature, mayStand_);
        for (std::size_t i = 0; i < found_.pagesWithWord.size(); ++i) {
            const std::size_t word = scan_.query_.signatureNumberOf(i);
            if (asked.isTold(word))
                found_.pagesWithWord[i] += asked.shareOf(word, signature, mayStand_[word]);
        }
        if (scan_.options_.useSignatures) return asked.mayHold(mayStand_, stack_);
        mayStand_.assign(asked.numberOfWords(), true);
        return true;
    }

    /// True too for a text that is compressed.
    bool mayHoldForBytesOf(const StoredPage& page) {
        const auto text = findRecord(page.block(), KeyedTag::Text, TextKey);
        const auto utf8 = text ? text->payload() : std::nullopt;
        return !utf8 || scan_.query_.signature().mayHoldFor(charsOf(*utf8), mayStand_, stack_);
    }

    void take(const StoredPage& page, PageMatch match, const String& text) {
        const String title = String::fromUTF8(page.title());
        for (std::size_t i = 0; i < scan_.query_.numberOfWords(); ++i) {
            const auto inText = static_cast<double>(scan_.query_.countOf(i, text));
            const auto inTitle = static_cast<double>(scan_.query_.countOf(i, title));
            found_.counts.push_back(inText + TitleWeight * inTitle);
            found_.matchesWithWord[i] += inText + inTitle > 0;
        }
        const SearchOrder order = scan_.options_.order;
        if (order == SearchOrder::Hits) match.hits = scan_.query_.hitsIn(text).size();
        if (order == SearchOrder::Newest) match.date = secondsOf(dateOfPage(page));
        if (order == SearchOrder::Address) match.key = page.key();
        if (scan_.options_.facets) countFacets(page);
        found_.matches.push_back(std::move(match));
    }

    void countFacets(const StoredPage& page) {
        ++found_.languages[String::fromUTF8(page.language())];
        ++found_.hosts[String::fromUTF8(hostOfAddress(page.address()))];
        if (const auto year = yearOf(secondsOf(dateOfPage(page)))) ++found_.years[*year];
    }

    const SearchScan& scan_;
    const PageStretch& stretch_;
    StretchMatches found_;
    std::vector<char> mayStand_, stack_;
};

StretchMatches SearchScan::scan(const PageStretch& stretch) const {
    return Pass(*this, stretch).run();
}

}  // namespace velmo::detail
