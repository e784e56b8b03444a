// Matching one string against one wildcard, in time of at most pattern times string.
//
// An element takes one unit of the string. Nearly always it then leads to one place in the
// wildcard, the next element, whatever the unit was. Under this condition the first place at
// which the elements between two stars fit is as good as any: it leaves the most of the
// string for the rest, and the star after them takes whatever lies between. So a mismatch
// goes back to the last star only, never to one before it, and all stars together cost no
// more than one pass of the elements over the string. What stands after the last star takes
// as many units as it has elements, so that starting it later cannot help once the string is
// used up.
//
// The exception is a range whose upper end is the bracket that seems to close its set, as in
// [a-]b]: the set runs on after that bracket, but a member before it that holds ends the
// set there. Where the match goes on then depends on the unit, and another way through an
// earlier star may be the only one that fits. Such wildcards are run as an automaton.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/SmallBuffer.h"

namespace velmo::detail {

inline constexpr std::size_t NoStep = static_cast<std::size_t>(-1);

/// The position after the next ], or the end.
inline std::size_t afterBracket(std::u16string_view wildcard, std::size_t position) {
    const std::size_t bracket = wildcard.find(u']', position);
    return bracket == wildcard.npos ? wildcard.size() : bracket + 1;
}

/// Where one unit leads from the set at a position, or NoStep.
inline std::size_t stepThroughSet(std::u16string_view wildcard, std::size_t position,
                                  char16_t unit) {
    if (++position == wildcard.size()) return NoStep;
    const bool negated = wildcard[position] == u'^';
    if (negated) ++position;
    while (position < wildcard.size()) {
        const char16_t member = wildcard[position++];
        if (member == u']') return negated ? position : NoStep;
        if (member == u'|') continue;
        bool holds = unit == member;
        if (member == u'-') {
            if (position == wildcard.size()) break;
            const char16_t low = wildcard[position - 2], high = wildcard[position++];
            holds = low <= unit && unit <= high;
        }
        if (holds) return negated ? NoStep : afterBracket(wildcard, position);
    }
    return negated ? wildcard.size() : NoStep;
}

/// Whether a range somewhere takes a ] for its upper end.
inline bool hasOpenRange(std::u16string_view wildcard) {
    bool inSet = false;
    for (std::size_t i = 0; i < wildcard.size(); ++i) {
        if (!inSet) {
            inSet = wildcard[i] == u'[';
            if (inSet && i + 1 < wildcard.size() && wildcard[i + 1] == u'^') ++i;
        } else if (wildcard[i] == u']') {
            inSet = false;
        } else if (wildcard[i] == u'-' && ++i < wildcard.size() && wildcard[i] == u']') {
            return true;
        }
    }
    return false;
}

struct PlainLanguage {
    static constexpr bool hasSets = false;
};
struct UnixLanguage {
    static constexpr bool hasSets = true;
};

/// Where one unit leads from the element at a position, which is no star, or NoStep.
template <class Language>
std::size_t stepThroughElement(std::u16string_view wildcard, std::size_t position, char16_t unit) {
    const char16_t element = wildcard[position];
    if (Language::hasSets && element == u'[') return stepThroughSet(wildcard, position, unit);
    return element == u'?' || element == unit ? position + 1 : NoStep;
}

template <class Language, class Fold>
bool matchesByLastStar(std::u16string_view string, std::u16string_view wildcard, const Fold& fold) {
    std::size_t at = 0, behindStar = NoStep, tried = 0;
    for (std::size_t i = 0; i < string.size();) {
        if (at < wildcard.size() && wildcard[at] == u'*') {
            if (++at == wildcard.size()) return true;
            behindStar = at;
            tried = i;
            continue;
        }
        const std::size_t next = at < wildcard.size()
                                     ? stepThroughElement<Language>(wildcard, at, fold(string[i]))
                                     : NoStep;
        if (next != NoStep) {
            at = next;
            ++i;
        } else if (behindStar != NoStep) {
            at = behindStar;
            i = ++tried;
        } else {
            return false;
        }
    }
    return wildcard.find_first_not_of(u'*', at) == wildcard.npos;
}

/// All positions of a wildcard that can be reached, unit by unit.
class WildcardAutomaton {
public:
    explicit WildcardAutomaton(std::u16string_view wildcard)
        : wildcard_(wildcard),
          behind_(wildcard.size() + 1),
          reads_(wildcard.size() + 1),
          reached_(wildcard.size() + 1, false),
          next_(wildcard.size() + 1) {
        for (std::size_t at = behind_[end()] = end(); at-- > 0;)
            behind_[at] = wildcard[at] == u']' ? at + 1 : behind_[at + 1];
    }

    template <class Fold>
    bool matches(std::u16string_view string, const Fold& fold) {
        reach(0);
        for (char16_t unit : string)
            if (!advance(fold(unit))) return false;
        return reached_[end()];
    }

private:
    /// What comes of reading a set's members from a position on: whether one holds, and
    /// where the match goes on.
    struct Read {
        bool holds;
        std::size_t next;
    };

    std::size_t end() const { return wildcard_.size(); }

    /// Marks a position and, as a star may take nothing, those after it.
    void reach(std::size_t at) {
        while (!reached_[at]) {
            reached_[at] = true;
            if (at == end() || wildcard_[at] != u'*') break;
            ++at;
        }
    }

    bool advance(char16_t unit) {
        readAll(unit);
        std::swap(reached_, next_);
        std::fill_n(reached_.data(), end() + 1, false);
        bool any = false;
        for (std::size_t at = 0; at < end(); ++at) {
            const std::size_t step = next_[at] ? stepFrom(at, unit) : NoStep;
            if (step == NoStep) continue;
            reach(step);
            any = true;
        }
        return any;
    }

    std::size_t stepFrom(std::size_t at, char16_t unit) const {
        if (wildcard_[at] == u'*') return at;
        if (wildcard_[at] != u'[') return stepThroughElement<PlainLanguage>(wildcard_, at, unit);
        if (at + 1 == end()) return NoStep;
        const bool negated = wildcard_[at + 1] == u'^';
        const Read& read = reads_[at + 1 + negated];
        return read.holds != negated ? read.next : NoStep;
    }

    /// Reads the members of all sets at once, from the last on: each read goes on where a
    /// later one began.
    void readAll(char16_t unit) {
        reads_[end()] = {false, end()};
        for (std::size_t at = end(); at-- > 0;) reads_[at] = read(at, unit);
    }
    Read read(std::size_t at, char16_t unit) const {
        const char16_t member = wildcard_[at];
        if (member == u']') return {false, at + 1};
        if (member == u'|') return reads_[at + 1];
        if (member != u'-') return unit == member ? Read{true, behind_[at + 1]} : reads_[at + 1];
        if (at == 0 || at + 1 == end()) return {false, end()};
        const bool holds = wildcard_[at - 1] <= unit && unit <= wildcard_[at + 1];
        return holds ? Read{true, behind_[at + 2]} : reads_[at + 2];
    }

    std::u16string_view wildcard_;
    SmallBuffer<std::size_t> behind_;  // the next ], from each position on
    SmallBuffer<Read> reads_;
    SmallBuffer<bool> reached_, next_;
};

/// Whether the whole string matches. The wildcard is folded already.
template <class Language, class Fold>
bool matchesWildcard(std::u16string_view string, std::u16string_view wildcard, const Fold& fold) {
    if (Language::hasSets && hasOpenRange(wildcard))
        return WildcardAutomaton(wildcard).matches(string, fold);
    return matchesByLastStar<Language>(string, wildcard, fold);
}

}  // namespace velmo::detail
