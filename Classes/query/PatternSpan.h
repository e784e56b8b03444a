// Looks for a pattern with stars or sets in scripts without spaces, where it may match several
// words in a row: it is cut at its stars into pieces, and each is put down at the first place
// after the one before it. As a star takes any units, no other place could end earlier; and once
// a piece is not found in a run of terms, no later place of the first one helps. So a run is
// passed over once for each piece.
//
// What is found is the shortest of what ends first: from the end of the pieces back, each is put
// down again at the nearest place. A star at an end of the pattern takes no more than the rest of
// the word in which the pieces end.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Range.h>

#include "query/WildcardMatch.h"
#include "query/WildcardPattern.h"
#include "query/WildcardShape.h"
#include "text/PatternScan.h"
#include "text/SmallBuffer.h"

namespace velmo::detail {

/// At which ends of a pattern a star stands.
struct OpenEnds {
    bool front = false, back = false;
};

template <class Fold>
class PatternSpan {
public:
    /// The core is well-formed, and folded. All of these must outlive this.
    PatternSpan(std::u16string_view core, OpenEnds open, const PatternAnchors& anchors,
                const WordText& text, std::uint64_t start, std::uint64_t end, const Fold& fold)
        : core_(core),
          open_(open),
          anchors_(anchors),
          text_(text),
          start_(start),
          end_(end),
          fold_(fold),
          pieces_(core.size()) {
        cutIntoPieces();
    }

    /// What ends first from a position on; anchored, it must begin with the first word there.
    Range first(std::uint64_t from, bool anchored) const {
        for (;;) {
            from = anchored ? nextTerm(from) : nextRun(from);
            if (from == end_) return Range::none();
            const Place begin = put<Forward>(0, 0, from);
            if (anchored && begin.start >= text_.endOfWord(from, end_)) return Range::none();
            const Place last = begin.isFound ? put<Forward>(1, count_ - 1, begin.end) : begin;
            if (last.isFound && anchored) return words(begin.start, last.end);
            if (last.isFound) return words(put<Backward>(count_ - 1, 0, last.end).start, last.end);
            if (anchored) return Range::none();
            from = last.end;
        }
    }

    /// The same the other way: what begins last before a position.
    Range last(std::uint64_t to, bool anchored) const {
        for (;;) {
            while (to > start_ && !text_.isTerm(to - 1)) --to;
            if (to == start_) return Range::none();
            const Place begin = put<Backward>(count_ - 1, count_ - 1, to);
            if (anchored && begin.end <= text_.startOfWord(to, start_)) return Range::none();
            const Place first =
                begin.isFound && count_ > 1 ? put<Backward>(count_ - 2, 0, begin.start) : begin;
            if (first.isFound && anchored) return words(first.start, begin.end);
            if (first.isFound)
                return words(first.start, put<Forward>(0, count_ - 1, first.start).end);
            if (anchored) return Range::none();
            to = first.start;
        }
    }

private:
    /// Elements between two stars.
    struct Piece {
        std::size_t at, length;  // in the core
        std::size_t elements;
    };
    /// Where a row of pieces stands; if it does not, where the run ended.
    struct Place {
        std::uint64_t start, end;
        bool isFound;
    };
    enum Way { Forward, Backward };

    void cutIntoPieces() {
        while (core_.starts_with(u'*')) core_.remove_prefix(1), open_.front = true;
        while (core_.ends_with(u'*')) core_.remove_suffix(1), open_.back = true;
        Piece piece{0, 0, 0};
        for (std::size_t at = 0; at < core_.size();) {
            const std::size_t behind = afterElement(core_, at);
            if (core_[at] != u'*') {
                ++piece.elements;
                piece.length = behind - piece.at;
            } else {
                if (piece.elements > 0) pieces_[count_++] = piece;
                piece = {behind, 0, 0};
            }
            at = behind;
        }
        pieces_[count_++] = piece;
    }

    std::uint64_t nextTerm(std::uint64_t from) const {
        while (from < end_ && !text_.isTerm(from)) ++from;
        return from;
    }

    /// Where to begin in the next run of terms that may hold the pattern.
    std::uint64_t nextRun(std::uint64_t from) const {
        if (anchors_.place == PatternAnchors::Nowhere) return nextTerm(from);
        for (std::uint64_t place = from; end_ - place >= anchors_.length; ++place) {
            const std::size_t starts = end_ - place - anchors_.length + 1;
            const std::size_t found = nextCandidate(text_.units.data() + place, 0, starts,
                                                    anchors_.first, anchors_.second);
            if (found == starts) break;
            place += found;
            const bool isStart = anchors_.place == PatternAnchors::AtStart;
            std::uint64_t inside = isStart ? place : place + anchors_.first.offset;
            if (!text_.isTerm(inside)) continue;
            while (!isStart && inside > from && text_.isTerm(inside - 1)) --inside;
            return inside;
        }
        return end_;
    }

    /// Puts down the pieces from one to another, each as near as may be to a position or to the
    /// piece before it. No pieces stand at the position.
    template <Way W>
    Place put(std::size_t piece, std::size_t lastPiece, std::uint64_t at) const {
        Place place{at, at, true};
        const auto isDone = [&] { return W == Forward ? piece > lastPiece : piece < lastPiece; };
        for (bool isFirst = true; !isDone(); isFirst = false) {
            const std::size_t length = pieces_[piece].elements;
            while (!(W == Forward ? fits(piece, at)
                                  : at - start_ >= length && fits(piece, at - length))) {
                const bool isInRun = W == Forward ? at < end_ && text_.isTerm(at)
                                                  : at > start_ && text_.isTerm(at - 1);
                if (!isInRun) return {at, at, false};
                W == Forward ? ++at : --at;
            }
            const std::uint64_t start = W == Forward ? at : at - length;
            if (isFirst || W == Backward) place.start = start;
            if (isFirst || W == Forward) place.end = start + length;
            at = W == Forward ? place.end : place.start;
            if (piece == lastPiece) break;
            W == Forward ? ++piece : --piece;
        }
        return place;
    }

    bool fits(std::size_t index, std::uint64_t position) const {
        const Piece& piece = pieces_[index];
        if (end_ - position < piece.elements) return false;
        const std::uint64_t behind = position + piece.elements;
        if (index == 0 && !open_.front && position > start_ && text_.isAfterTerm(position))
            return false;
        if (index + 1 == count_ && !open_.back && behind < end_ && text_.isBeforeTerm(behind))
            return false;
        std::size_t at = piece.at;
        for (std::uint64_t i = position; i < behind; ++i) {
            if (!text_.isTerm(i)) return false;
            at = stepThroughElement<UnixLanguage>(core_, at, fold_(text_.units[i]));
            if (at == NoStep) return false;
        }
        return true;
    }

    /// The words that a stretch of terms lies in.
    Range words(std::uint64_t from, std::uint64_t to) const {
        while (from > start_ && text_.isAfterTerm(from)) --from;
        while (to < end_ && text_.isBeforeTerm(to)) ++to;
        return {from, to - from};
    }

    std::u16string_view core_;
    OpenEnds open_;
    const PatternAnchors& anchors_;
    const WordText& text_;
    const std::uint64_t start_, end_;
    const Fold& fold_;
    SmallBuffer<Piece, 16> pieces_;
    std::size_t count_ = 0;
};

}  // namespace velmo::detail
