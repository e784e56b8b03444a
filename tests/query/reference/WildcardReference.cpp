#include "query/reference/WildcardReference.h"

#include <algorithm>

#include <velmocore/query/Wildcards.h>

#include "query/reference/RunsReference.h"

namespace velmo::test {
namespace {

using View = std::u16string_view;

bool isOnlyStars(View wildcard) { return wildcard.find_first_not_of(u'*') == View::npos; }

bool matches(View s, View w, RefComparison comparison, bool sets);

/// The element that opens with [ and all behind it.
bool matchesSet(View s, View w, RefComparison comparison) {
    if (s.empty() || w.size() == 1) return false;
    const char16_t c = refFold(s[0], comparison);
    s.remove_prefix(1);
    std::size_t p = 1;
    const bool negated = w[p] == u'^';
    if (negated) ++p;
    while (p < w.size()) {
        const char16_t u = w[p++];
        bool holds = false;
        if (u == u'|') continue;
        if (u == u']') return negated && matches(s, w.substr(p), comparison, true);
        if (u == u'-') {
            if (p == w.size()) break;
            const char16_t low = w[p - 2], high = w[p++];
            holds = c <= high && c >= low;
        } else {
            holds = c == u;
        }
        if (!holds) continue;
        if (negated) return false;
        while (p < w.size() && w[p] != u']') ++p;
        return matches(s, w.substr(std::min(p + 1, w.size())), comparison, true);
    }
    return negated && s.empty();
}

bool matches(View s, View w, RefComparison comparison, bool sets) {
    if (w.empty()) return s.empty();
    if (w[0] == u'*') {
        w.remove_prefix(1);
        if (s.empty()) return isOnlyStars(w);
        if (w.empty()) return true;
        for (; !s.empty(); s.remove_prefix(1))
            if (matches(s, w, comparison, sets)) return true;
        return false;
    }
    if (sets && w[0] == u'[') return matchesSet(s, w, comparison);
    if (s.empty() || (w[0] != u'?' && refFold(s[0], comparison) != w[0])) return false;
    return matches(s.substr(1), w.substr(1), comparison, sets);
}

std::uint64_t elementsOf(View w) {
    std::uint64_t count = 0;
    for (std::size_t p = 0; p < w.size(); ++p) {
        if (w[p] == u'[')
            while (p < w.size() && w[p] != u']') ++p;
        if (p >= w.size() || w[p] != u'*') ++count;
    }
    return count;
}

bool wordMatches(View word, const RefOptimized& optimized, const RefSearch& in) {
    const View core = View(optimized.wildcard).substr(optimized.core.location, optimized.core.length);
    const std::uint64_t w = word.size(), length = core.size(), least = elementsOf(core);
    const auto same = [&](View part) { return matches(part, core, in.comparison, false); };
    const auto sets = [&](View part) { return matches(part, core, in.comparison, true); };
    switch (optimized.type) {
        case 0: {
            const double ratio = static_cast<double>(std::min(w, length)) / static_cast<double>(std::max(w, length));
            return ratio >= in.minAnalogy && refAnalogy(core, word, in.comparison) >= in.minAnalogy;
        }
        case 2:
            return w >= length && same(word.substr(0, length));
        case 3:
            return w >= length && same(word.substr(w - length));
        case 4:
            for (std::size_t i = 0; i + length <= w; ++i)
                if (same(word.substr(i, length))) return true;
            return false;
        case 5:
            return w >= least && same(word);
        case 6:
            return w >= least && sets(word);
        case 7:
            return w >= least && sets(word.substr(0, least));
        case 8:
            return w >= least && sets(word.substr(w - least));
        default:
            return w == least && sets(word);
    }
}

/// Whether all units of the core stand at a position.
bool standsAt(const RefSearch& in, std::uint64_t position, View core) {
    for (std::size_t i = 0; i < core.size(); ++i)
        if (core[i] != u'?' && refFold(in.text[position + i], in.comparison) != core[i]) return false;
    return true;
}

bool hasOpenRange(View core) {
    for (std::size_t i = 0; i < core.size(); ++i) {
        if (core[i] != u'[') continue;
        i += i + 1 < core.size() && core[i + 1] == u'^' ? 2 : 1;
        for (; i < core.size() && core[i] != u']'; ++i)
            if (core[i] == u'-' && ++i < core.size() && core[i] == u']') return true;
    }
    return false;
}

/// A search in scripts without spaces: all stretches of words are tried in the order in which
/// they are preferred.
struct RunSearch {
    const RefSearch& in;
    const RefOptimized& optimized;
    View core;
    RefWords words{in.text, true};
    // What stretches may be: of the searched range, less a word that it cuts at the one end.
    std::size_t from = in.start, to = in.end;

    std::size_t wordEnd(std::size_t i) const {
        for (++i; i < in.end && !words.mayEnd(i);) ++i;
        return i;
    }
    std::size_t wordStart(std::size_t i) const {
        for (--i; i > in.start && !words.mayBegin(i);) --i;
        return i;
    }
    bool begins(std::size_t i) const { return words.isTerm(i) && (i == in.start || words.mayBegin(i)); }
    bool ends(std::size_t i) const { return words.isTerm(i - 1) && (i == in.end || words.mayEnd(i)); }

    Range find() {
        if (words.mayBegin(in.start)) {
        } else if (in.forward) {
            if (words.isTerm(from)) from = wordEnd(from);
        } else if (words.isTerm(to - 1)) {
            to = wordStart(to);
        }
        const bool direct = optimized.type == 1 || (optimized.type == 0 && !(in.comparison & 4));
        const auto isUnspaced = [](char16_t c) { return c >= 0xE00; };
        const bool byWords = hasOpenRange(core) || (optimized.type == 0 && std::ranges::none_of(core, isUnspaced));
        return direct ? findDirect() : byWords ? findWord() : findSpan();
    }

    Range findDirect() const {
        for (std::size_t k = from; k < to; ++k) {
            const std::size_t edge = in.forward ? k : to + from - k;
            if (!(in.forward ? begins(edge) : ends(edge))) continue;
            const std::size_t length = core.size();
            const bool fits = in.forward ? length <= in.end - edge : length <= edge - in.start;
            const std::size_t start = in.forward ? edge : edge - length, end = start + length;
            if (fits && (!in.forward || end == in.end || words.mayEnd(end)) && (in.forward || words.mayBegin(start)) &&
                standsAt(in, start, core))
                return {start, length};
            if (in.anchored) break;
        }
        return Range::none();
    }

    Range findWord() const {
        for (std::size_t k = from; k < to; ++k) {
            const std::size_t edge = in.forward ? k : to + from - k;
            if (!(in.forward ? begins(edge) : ends(edge))) continue;
            const std::size_t start = in.forward ? edge : wordStart(edge), end = in.forward ? wordEnd(edge) : edge;
            if (wordMatches(View(in.text).substr(start, end - start), optimized, in)) return {start, end - start};
            if (in.anchored) break;
        }
        return Range::none();
    }

    Range findSpan() const {
        View pieces = core;
        const int type = optimized.type;
        bool openFront = type == 3 || type == 8 || type == 4, openBack = type == 2 || type == 7 || type == 4;
        for (; pieces.starts_with(u'*'); pieces.remove_prefix(1)) openFront = true;
        for (; pieces.ends_with(u'*'); pieces.remove_suffix(1)) openBack = true;
        // Anchored, only stretches that begin, or end, in the first word, or last, will do.
        std::size_t low = from, high = to;
        if (in.anchored && in.forward) {
            while (low < to && !begins(low)) ++low;
            if (low == to) return Range::none();
            high = wordEnd(low);
        } else if (in.anchored) {
            while (high > from && !ends(high)) --high;
            if (high == from) return Range::none();
            low = wordStart(high) + 1;
        }
        const auto matchesAt = [&](std::size_t start, std::size_t end) {
            for (std::size_t i = start; i < end; ++i)
                if (!words.isTerm(i)) return false;
            return (openFront || begins(start)) && (openBack || ends(end)) &&
                   matches(View(in.text).substr(start, end - start), pieces, in.comparison, true);
        };
        const auto wordsOf = [&](std::size_t start, std::size_t end) {
            while (start > in.start && !words.mayBegin(start)) --start;
            while (end < in.end && !words.mayEnd(end)) ++end;
            return Range{start, end - start};
        };
        if (in.forward) {
            for (std::size_t end = low + 1; end <= to; ++end)
                for (std::size_t start = end; start-- > low;)
                    if ((!in.anchored || start < high) && matchesAt(start, end))
                        return wordsOf(in.anchored ? low : start, end);
        } else {
            for (std::size_t start = high; start-- > from;)
                for (std::size_t end = start + 1; end <= high; ++end)
                    if ((!in.anchored || end >= low) && matchesAt(start, end))
                        return wordsOf(start, in.anchored ? high : end);
        }
        return Range::none();
    }
};

}  // namespace

char16_t refFold(char16_t unit, RefComparison comparison) {
    if ((comparison & 2) && unit == u'\u00E4') unit = u'a';
    if ((comparison & 2) && unit == u'\u00C4') unit = u'A';
    if ((comparison & 1) && ((unit >= u'a' && unit <= u'z') || unit == u'\u00E4'))
        unit = static_cast<char16_t>(unit - 32);
    return unit;
}

bool refIsTerm(char16_t c) { return RefWords{std::u16string(1, c)}.isTerm(0); }

bool refMatchesPlain(View s, View w, RefComparison comparison) { return matches(s, w, comparison, false); }
bool refMatchesUnix(View s, View w, RefComparison comparison) { return matches(s, w, comparison, true); }

RefOptimized refOptimize(View wildcard, std::uint64_t minCharacters) {
    RefOptimized result;
    std::u16string out;
    std::size_t literals = 0, sets = 0, marks = 0, stars = 0;
    result.wildcard = wildcard;
    for (std::size_t i = 0; i < wildcard.size(); ++i) {
        const char16_t c = wildcard[i];
        if (c == u'*') {
            if (i > 0 && wildcard[i - 1] == u'*') continue;
            ++stars;
        } else if (c == u'?') {
            ++marks;
        } else if (c == u']') {
            return result;
        } else if (c == u'[') {
            std::u16string set = u"[";
            for (++i; i < wildcard.size() && wildcard[i] != u']'; ++i) {
                if (wildcard[i] == u'[') return result;
                if (wildcard[i] != u'|') set += wildcard[i];
            }
            if (i == wildcard.size()) return result;
            if (set.find_first_not_of(u"^-", 1) == set.npos) continue;
            out += set;
            ++sets;
            ++literals;
        } else {
            ++literals;
        }
        out += wildcard[i];
    }
    result.wildcard = out;
    result.core = {0, out.size()};
    const bool first = !out.empty() && out.front() == u'*', last = !out.empty() && out.back() == u'*';
    if (literals == 0 || (literals < minCharacters && stars > 0)) return result;
    if (sets > 0)
        result.type = stars == 0 ? 9 : stars == 1 && first ? 8 : stars == 1 && last ? 7 : 6;
    else if (stars == 0)
        result.type = marks > 0 ? 1 : 0;
    else if (marks > 0)
        result.type = 5;
    else
        result.type = stars == 2 && first && last ? 4 : stars == 1 && first ? 3 : stars == 1 && last ? 2 : 5;
    if (result.type == 2 || result.type == 7) result.core = {0, out.size() - 1};
    if (result.type == 3 || result.type == 8) result.core = {1, out.size() - 1};
    if (result.type == 4) result.core = {1, out.size() - 2};
    return result;
}

double refAnalogy(View first, View second, RefComparison comparison) {
    const View longer = first.size() > second.size() ? first : second;
    const View shorter = first.size() > second.size() ? second : first;
    std::vector<bool> used(longer.size());
    int matches = 0, displaced = 0, shift = 0;
    for (int i = 0; i < static_cast<int>(shorter.size()); ++i) {
        int chosen = -1;
        for (int j = 0; j < static_cast<int>(longer.size()); ++j) {
            const auto at = static_cast<std::size_t>(j);
            if (used[at] ||
                refFold(longer[at], comparison) != refFold(shorter[static_cast<std::size_t>(i)], comparison))
                continue;
            if (shift + j == i) {
                chosen = j;
                break;
            }
            if (chosen < 0) chosen = j;
        }
        if (chosen < 0) continue;
        used[static_cast<std::size_t>(chosen)] = true;
        ++matches;
        if (shift + chosen != i && i != 0) ++displaced;
        shift = i - chosen;
    }
    const auto n = static_cast<double>(longer.size());
    return matches * (1.0 - displaced / n) / n;
}

Range refFind(const RefSearch& in, View wildcard) {
    if (in.end <= in.start || wildcard.empty()) return Range::none();
    std::u16string folded(wildcard);
    for (char16_t& unit : folded) unit = refFold(unit, in.comparison);
    const RefOptimized optimized = refOptimize(folded, in.minCharacters);
    const View core = optimized.core.isFound()
                          ? View(optimized.wildcard).substr(optimized.core.location, optimized.core.length)
                          : View();
    const auto term = [&](std::int64_t i) { return refIsTerm(in.text[static_cast<std::size_t>(i)]); };
    const auto start = static_cast<std::int64_t>(in.start), end = static_cast<std::int64_t>(in.end);
    bool flag = start == 0 || !term(start - 1);
    const auto rangeOf = [](std::int64_t from, std::int64_t to) {
        return Range{static_cast<std::uint64_t>(from), static_cast<std::uint64_t>(to - from)};
    };
    const RefWords words{in.text, in.withinRuns};
    if (in.withinRuns) flag = words.mayBegin(in.start);
    if (in.acceptStar && core == u"*") {
        if (!in.starIsWord) return rangeOf(start, end);
        if (in.withinRuns && !in.forward)
            return flag && words.isTerm(in.start) ? rangeOf(start, start + 1) : Range::none();
        if (in.withinRuns) {
            std::size_t from = in.start;
            if (!flag && words.isTerm(from)) from = RunSearch{in, optimized, core}.wordEnd(from);
            while (from < in.end && !words.isTerm(from)) ++from;
            return from < in.end ? Range{from, RunSearch{in, optimized, core}.wordEnd(from) - from} : Range::none();
        }
        if (!in.forward) return flag && term(start) ? rangeOf(start, start + 1) : Range::none();
        for (std::int64_t i = start; i < end; ++i) {
            if (term(i) && flag) {
                std::int64_t behind = i;
                while (behind < end && term(behind)) ++behind;
                return rangeOf(i, behind);
            }
            flag = !term(i);
        }
        return Range::none();
    }
    if (optimized.type == 10) return Range::none();
    if (in.withinRuns) return RunSearch{in, optimized, core}.find();
    const bool direct = optimized.type == 1 || (optimized.type == 0 && !(in.comparison & 4));
    const auto length = static_cast<std::int64_t>(core.size());
    const std::int64_t step = in.forward ? 1 : -1;
    for (std::int64_t i = in.forward ? start : end - 1; i >= start && i < end;) {
        if (!term(i) || !flag) {
            flag = !term(i);
            i += step;
            continue;
        }
        if (direct) {
            const std::int64_t from = in.forward ? i : i + 1 - length, to = from + length;
            const bool fits =
                in.forward ? to <= end && (to == end || !term(to)) : from >= start && (from == 0 || !term(from - 1));
            if (fits && standsAt(in, static_cast<std::uint64_t>(from), core)) return rangeOf(from, to);
            if (in.anchored) return Range::none();
            flag = false;
            i += step;
            continue;
        }
        std::int64_t from = i, to = i + 1;
        while (in.forward && to < end && term(to)) ++to;
        while (!in.forward && from > start && term(from - 1)) --from;
        const Range word = rangeOf(from, to);
        if (wordMatches(View(in.text).substr(word.location, word.length), optimized, in)) return word;
        if (in.anchored) return Range::none();
        i = in.forward ? to : from - 1;
    }
    return Range::none();
}

Range refFindString(const RefSearch& search, View wildcard) {
    if (wildcard.empty()) return Range::none();
    RefSearch single = search;
    single.anchored = single.starIsWord = false;
    const std::u16string masked = search.withinRuns ? refMasked(wildcard) : std::u16string(wildcard);
    if (wildcard.size() < 3 || numberOfWordsUsingWildcardSeparation(masked) < 2) return refFind(single, wildcard);
    auto [words, hyphenated] = separatedWildcardWords(String(masked));
    std::size_t at = 0;
    for (String& word : words) {
        at = masked.find(word.view(), at);
        const std::size_t length = word.length();
        word = String(wildcard.substr(at, length));
        at += length;
    }
    RefSearch first = single, next = single;
    first.acceptStar = first.starIsWord = true;
    next.anchored = next.forward = next.acceptStar = next.starIsWord = true;
    for (;;) {
        const Range found = refFind(first, words[0]);
        if (!found.isFound()) break;
        Range hit = found;
        next.end = first.end;
        for (std::size_t i = 1; i < words.size() && hit.isFound(); ++i) {
            next.start = hit.end();
            hit = next.start < next.end ? refFind(next, words[i]) : Range::none();
        }
        if (hit.isFound()) return {found.location, hit.end() - found.location};
        (search.forward ? first.start : first.end) = search.forward ? found.end() : found.location;
    }
    if (!hyphenated) return Range::none();
    std::u16string joined;
    for (const String& word : words) joined += word.view();
    return refFind(single, joined);
}

Range refNearest(const RefSearch& search, const std::vector<std::u16string>& wildcards, bool firstHit) {
    RefSearch rest = search;
    Range best = Range::none();
    for (const std::u16string& wildcard : wildcards) {
        if (rest.start >= rest.end) break;
        const Range hit = refFindString(rest, wildcard);
        if (!hit.isFound()) continue;
        best = hit;
        if (firstHit) break;
        (search.forward ? rest.end : rest.start) = search.forward ? hit.location : hit.end();
    }
    return best;
}

}  // namespace velmo::test
