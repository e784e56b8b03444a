// Lists of excerpts: each hit with the sentence around it, or more.
// A record reaches from sentence end to sentence end, or farther, until it has enough words on
// either side. The search goes on where it stopped: what one record shows is not looked at for
// another. Growing back ends at the sentence or with the words that are asked for, so that the
// whole costs no more than the text times these.
#include <velmocore/query/Occurrences.h>

#include "query/OccurrenceSearch.h"

namespace velmo {
namespace {

constexpr std::u16string_view Ellipsis = u"...";

/// One side of an excerpt, as it grows away from the hit. It reaches up to the last term
/// unit before it stops.
class Side {
public:
    Side(std::uint64_t edge, bool isInWord, std::uint64_t minWords)
        : edge_(edge), isInWord_(isInWord), minWords_(minWords) {}

    bool hasWords() const { return words_ >= minWords_; }
    bool isBehindBoundary() const { return isBehindBoundary_; }
    /// Where it ends, and whether that is across a boundary.
    std::uint64_t edge() const { return edge_; }
    bool isCut() const { return isCut_; }

    /// Takes one more unit. A word may end before it although both units are terms.
    void add(bool isBoundary, bool isTerm, bool isApart, std::uint64_t edge) {
        isBehindBoundary_ |= isBoundary;
        if (isTerm) {
            // A word counts when it is entered; the one that the hit itself stands in does not.
            words_ += !isInWord_ || isApart;
            edge_ = edge;
            isCut_ = isBehindBoundary_;
        }
        isInWord_ = isTerm;
    }

private:
    std::uint64_t edge_;
    bool isInWord_;
    std::uint64_t minWords_;
    std::uint64_t words_ = 0;
    bool isBehindBoundary_ = false, isCut_ = false;
};

class Records {
public:
    Records(std::u16string_view text, const OccurrenceOptions& options)
        : units_(text, options), minWords_(options.minEnclosingWords) {}

    template <class Hits>
    std::vector<Occurrence> of(Hits&& hits) {
        for (std::uint64_t from = 0; from < units_.text.size();) {
            const Range hit = hits.next(from);
            if (!hit.isFound()) break;
            from = units_.words.unspaced ? addWordToOccurrences<true>(hit)
                                         : addWordToOccurrences<false>(hit);
        }
        return std::move(records_);
    }

private:
    /// Where the search goes on.
    template <bool Unspaced>
    std::uint64_t addWordToOccurrences(Range hit) {
        Side front(hit.location, units_.isTerm(hit.location), minWords_);
        growBack<Unspaced>(front);
        Side back(hit.end(), units_.isTerm(hit.end() - 1), minWords_);
        const std::uint64_t next = growForward<Unspaced>(back);
        if (front.edge() < back.edge()) add(front, back);
        return next;
    }

    template <bool Unspaced>
    void growBack(Side& side) const {
        for (std::uint64_t i = side.edge(); i-- > 0;) {
            const bool isBoundary = units_.isBoundary(i);
            if (isBoundary && side.hasWords()) return;
            side.add(isBoundary, units_.isTermOf<Unspaced>(i), units_.isApart<Unspaced>(i + 1), i);
        }
    }

    /// Where it stops: at a boundary, or after one at the end of a word, once there are
    /// enough words.
    template <bool Unspaced>
    std::uint64_t growForward(Side& side) const {
        std::uint64_t i = side.edge();
        for (; i < units_.text.size(); ++i) {
            const bool isBoundary = units_.isBoundary(i), isTerm = units_.isTermOf<Unspaced>(i);
            const bool isApart = units_.isApart<Unspaced>(i);
            const bool mayStop = isBoundary || (side.isBehindBoundary() && (!isTerm || isApart));
            if (mayStop && side.hasWords()) break;
            side.add(isBoundary, isTerm, isApart, i + 1);
        }
        return i;
    }

    void add(const Side& front, const Side& back) {
        const Range range{front.edge(), back.edge() - front.edge()};
        StringBuilder out(range.length + 2 * Ellipsis.size());
        if (front.isCut()) out.append(Ellipsis);
        out.append(units_.text.substr(range.location, range.length));
        if (back.isCut()) out.append(Ellipsis);
        records_.push_back({range, lineAt(range.location), out.finish()});
    }

    /// The line of a position. Positions do not go back.
    std::uint64_t lineAt(std::uint64_t position) {
        const std::u16string_view text = units_.text;
        for (std::uint64_t& i = counted_; i < position; ++i) {
            if (!lineSeparators_.contains(text[i])) continue;
            ++line_;
            if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
        }
        return line_;
    }

    const detail::ExcerptUnits units_;
    const CharacterSetRep& lineSeparators_ = defaultLineSeparators();
    const std::uint64_t minWords_;
    std::uint64_t counted_ = 0, line_ = 0;  // line ends before counted_ have been counted
    std::vector<Occurrence> records_;
};

}  // namespace

std::vector<Occurrence> getOccurrencesOfWildcards(std::u16string_view text,
                                                  std::span<const String> wildcards,
                                                  const OccurrenceOptions& options) {
    if (text.empty() || wildcards.empty()) return {};
    return Records(text, options).of(detail::WildcardHits(text, wildcards, options));
}

std::vector<Occurrence> getOccurrencesOfHits(std::u16string_view text, std::span<const Range> hits,
                                             const OccurrenceOptions& options) {
    return Records(text, options).of(detail::KnownHits(hits));
}

std::vector<Occurrence> getOccurrencesOfQueryTerms(std::u16string_view text,
                                                   const QueryTerms& terms,
                                                   const OccurrenceOptions& options) {
    return getOccurrencesOfHits(text, detail::hitsOf(text, terms, options.comparison), options);
}

std::vector<Occurrence> getOccurrencesOfString(std::u16string_view text, std::u16string_view sought,
                                               const OccurrenceOptions& options) {
    if (text.empty() || sought.empty()) return {};
    return Records(text, options).of(detail::StringHits(text, sought, options.comparison));
}

}  // namespace velmo
