// Looking for a pattern for one word. Most words of a text are ruled out at a glance: by two
// units of the pattern that stand at fixed places in it, which are looked for many units at a
// time, or, where there are no such units, by the length of the word and the unit at its edge.
// Only words that are left are compared by the test that is cheapest for the pattern's type.
#include "query/WildcardPattern.h"

#include <algorithm>

#include <velmocore/query/FuzzyAnalogy.h>

#include "query/FuzzyMeasure.h"
#include "query/PatternAnchors.h"
#include "query/PatternSpan.h"
#include "query/WildcardMatch.h"
#include "query/WildcardShape.h"
#include "text/UnitFold.h"
#include "words/RunScan.h"

namespace velmo::detail {

/// Looks at one word of a stretch.
template <class Fold>
struct PatternTest {
    const WildcardPattern& pattern;
    const WordText& text;
    std::uint64_t start, end;
    const Fold& fold;

    /// What is found at a word: for most patterns the word, if it matches.
    Range at(std::uint64_t from, std::uint64_t to, Direction direction) const {
        const std::uint64_t length = to - from;
        if (length < pattern.minLength_ || length > pattern.maxLength_) return Range::none();
        const bool hit = !pattern.isDirect_ ? matches(text.units.substr(from, length))
                         : direction == Direction::Backward ? standsBefore(to)
                                                            : standsAt(from);
        if (!hit) return Range::none();
        if (!pattern.isDirect_) return {from, length};
        const std::uint64_t units = pattern.core_.length;
        return {direction == Direction::Backward ? to - units : from, units};
    }

    /// Whether the core stands at a position, up to the end of the stretch or of a word.
    bool standsAt(std::uint64_t position) const {
        const std::uint64_t length = pattern.core_.length;
        if (end - position < length) return false;
        const std::uint64_t behind = position + length;
        return (behind == end || !text.isBeforeTerm(behind)) && sameAsCore(position);
    }
    /// Whether it ends at a position, from the start of a word on.
    bool standsBefore(std::uint64_t position) const {
        const std::uint64_t length = pattern.core_.length;
        if (position - start < length) return false;
        return !text.isAfterTerm(position - length) && sameAsCore(position - length);
    }

private:
    bool sameAsCore(std::uint64_t position) const {
        const char16_t* units = text.units.data() + position;
        const std::u16string_view core = pattern.core();
        if (pattern.type_ == WildcardType::Plain) return same(units, core);
        for (std::size_t i = 0; i < core.size(); ++i)
            if (core[i] != u'?' && fold(units[i]) != core[i]) return false;
        return true;
    }

    bool same(const char16_t* units, std::u16string_view core) const {
        for (std::size_t i = 0; i < core.size(); ++i)
            if (fold(units[i]) != core[i]) return false;
        return true;
    }

    bool matches(std::u16string_view word) const {
        using enum WildcardType;
        const std::u16string_view core = pattern.core();
        switch (pattern.type_) {
            case Plain:
                return isAnalogous(word, core);
            case Prefix:
                return same(word.data(), core);
            case Suffix:
                return same(word.data() + word.size() - core.size(), core);
            case Infix:
                return contains(word, core);
            case General:
                return matchesByLastStar<PlainLanguage>(word, core, fold);
            case GeneralSets:
                if (pattern.hasOpenRange_) return WildcardAutomaton(core).matches(word, fold);
                return matchesByLastStar<UnixLanguage>(word, core, fold);
            case SuffixSets:
                word.remove_prefix(word.size() - pattern.minLength_);
                break;
            default:
                word = word.substr(0, pattern.minLength_);
        }
        // Without a star there is only one way through the elements.
        return matchesByLastStar<UnixLanguage>(word, core, fold);
    }

    bool contains(std::u16string_view word, std::u16string_view core) const {
        const std::size_t last = word.size() - core.size();
        for (std::size_t i = 0; i <= last; ++i)
            if (same(word.data() + i, core)) return true;
        return false;
    }

    /// Each unit in common counts at most one, so that most words need not be measured.
    bool isAnalogous(std::u16string_view word, std::u16string_view core) const {
        const auto longer = static_cast<double>(std::max(word.size(), core.size()));
        std::size_t common = 0;
        for (char16_t unit : word) common += pattern.lowBytes_[fold(unit) & 0xFF];
        if (!(static_cast<double>(common) / longer >= pattern.minAnalogy_)) return false;
        SmallBuffer<char16_t> folded(word.size());
        std::ranges::transform(word, folded.data(), fold);
        return fuzzyAnalogy(core, {folded.data(), folded.size()}) >= pattern.minAnalogy_;
    }
};

/// Walks through the words of a stretch.
template <class Fold>
struct PatternSearch {
    const WildcardPattern& pattern;
    const WordText& text;
    std::uint64_t start, end;
    const Fold& fold;
    PatternTest<Fold> test;

    PatternSearch(const WildcardPattern& sought, const WordText& words, std::uint64_t from,
                  std::uint64_t to, const Fold& folding)
        : pattern(sought),
          text(words),
          start(from),
          end(to),
          fold(folding),
          test{sought, words, from, to, folding} {}

    Range last(bool anchored) const {
        std::uint64_t position = end;
        if (text.isAfterTerm(start)) position = text.startOfWord(position, start);
        if (pattern.findsSpans(text)) return span().last(position, anchored);
        for (;;) {
            while (position > start && !text.isTerm(position - 1)) --position;
            if (position == start) return Range::none();
            const std::uint64_t to = position;
            position = text.startOfWord(to, start);
            const Range hit = test.at(position, to, Direction::Backward);
            if (hit.isFound() || anchored) return hit;
        }
    }

    Range first(bool anchored) const {
        const std::uint64_t from = text.isAfterTerm(start) ? text.endOfWord(start, end) : start;
        if (pattern.findsSpans(text)) return span().first(from, anchored);
        if (anchored) return firstWord(from);
        if (pattern.anchors_.place == PatternAnchors::Nowhere)
            return text.unspaced ? firstByUnspacedWords(from) : firstByWords(from);
        return pattern.isDirect_ ? firstStanding(from) : firstAround(from);
    }

private:
    PatternSpan<Fold> span() const {
        using enum WildcardType;
        const WildcardType type = pattern.type_;
        return {pattern.core(),
                {.front = type == Suffix || type == SuffixSets || type == Infix,
                 .back = type == Prefix || type == PrefixSets || type == Infix},
                pattern.anchors_,
                text,
                start,
                end,
                fold};
    }

    Range firstWord(std::uint64_t from) const {
        while (from < end && !text.isTerm(from)) ++from;
        return from < end ? test.at(from, text.endOfWord(from, end), Direction::Forward)
                          : Range::none();
    }

    /// Word after word.
    Range firstByWords(std::uint64_t from) const {
        Range result = Range::none();
        const std::u16string_view stretch = text.units.substr(from, end - from);
        forEachRun(stretch, text.termCharacters, [&](const Run& run) {
            if (run.isMember && mayMatch(stretch, run))
                result = test.at(from + run.start, from + run.end, Direction::Forward);
            return !result.isFound();
        });
        return result;
    }

    /// The same where words are no runs.
    Range firstByUnspacedWords(std::uint64_t from) const {
        Range hit = Range::none();
        while (from < end && !hit.isFound()) {
            const std::uint64_t to = text.endOfWord(from, end);
            if (to > from) hit = test.at(from, to, Direction::Forward);
            from = std::max(to, from + 1);
        }
        return hit;
    }

    /// Rules most words out. One rare jump for both conditions is cheaper than one for each.
    bool mayMatch(std::u16string_view stretch, const Run& run) const {
        const char16_t unit = fold(stretch[pattern.edgeIsEnd_ ? run.end - 1 : run.start]);
        const bool fits =
            run.length() - pattern.minLength_ <= pattern.maxLength_ - pattern.minLength_;
        return fits & (((unit ^ pattern.edgeUnit_) & pattern.edgeMask_) == 0);
    }

    /// The next place from a position on where the anchors stand, or the end.
    std::uint64_t nextPlace(std::uint64_t from) const {
        const PatternAnchors& anchors = pattern.anchors_;
        if (end - from < anchors.length) return end;
        const std::size_t starts = end - from - anchors.length + 1;
        const std::size_t found =
            nextCandidate(text.units.data() + from, 0, starts, anchors.first, anchors.second);
        return found == starts ? end : from + found;
    }

    /// Where a direct pattern's anchors stand, from the start of a word on.
    Range firstStanding(std::uint64_t from) const {
        for (std::uint64_t place = from; (place = nextPlace(place)) < end; ++place) {
            const bool isEdge = text.isTerm(place) && (place == from || !text.isAfterTerm(place));
            if (isEdge && test.standsAt(place)) return {place, pattern.core_.length};
        }
        return Range::none();
    }

    /// The words around the places where the anchors stand, each only once.
    Range firstAround(std::uint64_t from) const {
        for (std::uint64_t place = from; (place = nextPlace(place)) < end;) {
            const Range word = wordAround(place, from);
            if (word.length == 0) {
                ++place;
                continue;
            }
            const Range hit = test.at(word.location, word.end(), Direction::Forward);
            if (hit.isFound()) return hit;
            place = word.end();
        }
        return Range::none();
    }

    /// The word that has the pattern's elements at a place where they belong in it; else of
    /// length 0.
    Range wordAround(std::uint64_t place, std::uint64_t from) const {
        const PatternAnchors& anchors = pattern.anchors_;
        std::uint64_t inside = place + anchors.first.offset;
        if (anchors.place == PatternAnchors::AtStart) {
            if (place > from && text.isTerm(place - 1)) return {};
            inside = place;
        } else if (anchors.place == PatternAnchors::AtEnd) {
            const std::uint64_t behind = place + anchors.length;
            if (behind < end && text.isTerm(behind)) return {};
            inside = behind - 1;
        }
        if (!text.isTerm(inside)) return {};
        const std::uint64_t first = text.startOfWord(inside, from);
        return {first, text.endOfWord(inside, end) - first};
    }
};

WildcardPattern::WildcardPattern(std::u16string_view wildcard, WildcardComparison comparison,
                                 std::uint64_t minCharacters)
    : units_(wildcard.size()), table_(unicharTableForWildcardComparison(comparison)) {
    withFold(table_,
             [&](const auto& fold) { std::ranges::transform(wildcard, units_.data(), fold); });
    const WildcardShape shape = shapeWildcard(units_.data(), units_.size(), minCharacters);
    type_ = shape.optimized.type;
    core_ = shape.optimized.core.isFound() ? shape.optimized.core : Range{};
    isDirect_ =
        type_ == WildcardType::Marks || (type_ == WildcardType::Plain && !isFuzzy(comparison));
    if (type_ == WildcardType::Unusable) return;

    minLength_ = isDirect_ ? 1 : minWildcardLen(core());
    const bool hasStar = type_ != WildcardType::Sets && !isDirect_;
    maxLength_ = hasStar ? UnboundedWildcardLength : isDirect_ ? core_.length : minLength_;
    hasOpenRange_ = type_ >= WildcardType::GeneralSets && detail::hasOpenRange(core());
    if (type_ == WildcardType::Plain && isFuzzy(comparison))
        measureFuzzyLengths();
    else if (!hasOpenRange_)
        anchors_ = anchorsOf(core(), type_, table_);
    if (anchors_.place == PatternAnchors::Nowhere && !hasOpenRange_) chooseEdge();
}

void WildcardPattern::chooseEdge() {
    using enum WildcardType;
    const bool isFuzzyPlain = type_ == Plain && !isDirect_;
    if (isFuzzyPlain || type_ == Infix) return;
    edgeIsEnd_ = type_ == Suffix || type_ == SuffixSets;
    edgeUnit_ = edgeIsEnd_ ? core().back() : core().front();
    constexpr std::u16string_view NoUnits = u"*?[]";
    edgeMask_ = NoUnits.find(edgeUnit_) == NoUnits.npos ? 0xFFFF : 0;
}

/// A fuzzy pattern goes through the table once more, as both sides of the measure do.
void WildcardPattern::measureFuzzyLengths() {
    minAnalogy_ = minWildcardFuzzyAnalogy();
    for (std::size_t i = 0; i < core_.length; ++i) {
        if (table_) units_[i] = (*table_)[units_[i]];
        lowBytes_.set(units_[i] & 0xFF);
    }
    const auto length = static_cast<double>(core_.length);
    const auto agrees = [&](std::uint64_t other) {
        const auto units = static_cast<double>(other);
        return std::min(length, units) / std::max(length, units) >= minAnalogy_;
    };
    minLength_ = 1;
    maxLength_ = 0;
    if (!agrees(core_.length)) return;  // more than 1.0 is asked for
    // The quotients are rounded: begin a little off and go on to where they agree.
    minLength_ = static_cast<std::uint64_t>(std::max(length * minAnalogy_ - 1, 1.0));
    while (!agrees(minLength_)) ++minLength_;
    const double most = length / minAnalogy_ + 1;
    maxLength_ = UnboundedWildcardLength;
    if (!(most > 0 && most < 1e15)) return;
    maxLength_ = static_cast<std::uint64_t>(most);
    while (!agrees(maxLength_)) --maxLength_;
}

bool WildcardPattern::findsWords(const WordText& text) const {
    if (!isDirect_) return !findsSpans(text);
    if (type_ != WildcardType::Plain ||
        (table_ && &text.termCharacters != &alphaNumCharacterSetRep()))
        return false;
    return WordText{core(), text.termCharacters, text.unspaced}.isOneWord();
}

bool WildcardPattern::findsApart(const WordText& text) const {
    const WordText own{core(), text.termCharacters, text.unspaced};
    return findsWords(text) ||
           (isDirect_ && type_ == WildcardType::Plain && own.isApartFromItself());
}

bool WildcardPattern::findsSpans(const WordText& text) const {
    // Where an odd set ends depends on the unit, so such patterns are for single words.
    if (!text.unspaced || isDirect_ || hasOpenRange_) return false;
    // There is nothing to resemble where words are not told.
    const auto isUnspaced = [&](char16_t unit) { return text.unspaced->units.contains(unit); };
    return type_ != WildcardType::Plain || std::ranges::any_of(core(), isUnspaced);
}

Range WildcardPattern::find(const WordText& text, std::uint64_t start, std::uint64_t end,
                            WordChoice choice) const {
    if (start >= end || type_ == WildcardType::Unusable) return Range::none();
    return withFold(table_, [&](const auto& fold) {
        const PatternSearch search(*this, text, start, end, fold);
        return choice.direction == Direction::Backward ? search.last(choice.anchored)
                                                       : search.first(choice.anchored);
    });
}

Range WildcardPattern::findAtEnd(const WordText& text, std::uint64_t start,
                                 std::uint64_t end) const {
    if (text.unspaced) return find(text, start, end);
    if (!isDirect_) return find(text, text.startOfWord(end, start), end);
    if (end - start < core_.length) return Range::none();
    return find(text, end - core_.length, end);
}

}  // namespace velmo::detail
