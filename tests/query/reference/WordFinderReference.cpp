#include "query/reference/WordFinderReference.h"

#include <algorithm>

#include "query/reference/RewritingReference.h"

namespace velmo::test {
namespace {

using Units = std::u16string;

bool isTerm(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9'); }

Units folded(Units text, WildcardComparison comparison) {
    if (isCaseInsensitive(comparison))
        for (char16_t& c : text) c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
    return text;
}

/// The pattern p from i on against the string s from k on, with sets or without.
bool like(const Units& s, std::size_t k, const Units& p, std::size_t i, bool sets) {
    if (i == p.size()) return k == s.size();
    if (p[i] == u'*') {
        for (std::size_t j = k; j <= s.size(); ++j)
            if (like(s, j, p, i + 1, sets)) return true;
        return false;
    }
    if (k == s.size()) return false;
    if (!sets || p[i] != u'[') return (p[i] == u'?' || p[i] == s[k]) && like(s, k + 1, p, i + 1, sets);
    if (++i == p.size()) return false;
    const char16_t c = s[k];
    const bool negated = p[i] == u'^';
    if (negated) ++i;
    while (i < p.size()) {
        const char16_t u = p[i++];
        if (u == u']') return negated && like(s, k + 1, p, i, sets);
        bool holds = c == u;
        if (u == u'|') holds = false;
        if (u == u'-') {
            if (i == p.size()) break;
            holds = p[i - 2] <= c && c <= p[i];
            ++i;
        }
        if (!holds) continue;
        if (negated) return false;
        while (i < p.size() && p[i] != u']') ++i;
        return like(s, k + 1, p, std::min(i + 1, p.size()), sets);
    }
    return negated && like(s, k + 1, p, p.size(), sets);
}

struct Pattern {
    int type = 10;
    Units core;
    std::size_t elements = 0;
};

Pattern patternOf(const Units& wildcard) {
    Pattern unusable{10, wildcard, 0};
    Units out;
    std::size_t literals = 0, sets = 0, marks = 0, stars = 0;
    char16_t last = 0;
    for (std::size_t i = 0; i < wildcard.size(); ++i) {
        const char16_t c = wildcard[i];
        if (c == u']') return unusable;
        if (c == u'[') {
            const std::size_t close = wildcard.find(u']', i);
            if (close == wildcard.npos || wildcard.find(u'[', i + 1) < close) return unusable;
            Units set = wildcard.substr(i, close + 1 - i);
            std::erase(set, u'|');
            if (set.find_first_not_of(u"[]^-") != set.npos) {
                out += set;
                ++sets;
                ++literals;
            }
            i = close;
        } else if (c != u'*' || last != u'*') {
            out += c;
            ++(c == u'*' ? stars : c == u'?' ? marks : literals);
        }
        last = wildcard[i];
    }
    const std::size_t elements = literals + marks;
    const bool first = !out.empty() && out.front() == u'*', end = !out.empty() && out.back() == u'*';
    if (literals == 0) return {10, out, 0};
    if (sets > 0) {
        if (stars == 0) return {9, out, elements};
        if (stars == 1 && first) return {8, out.substr(1), elements};
        if (stars == 1 && end) return {7, out.substr(0, out.size() - 1), elements};
        return {6, out, elements};
    }
    if (stars == 0) return {marks ? 1 : 0, out, elements};
    if (marks) return {5, out, elements};
    if (stars == 2 && first && end) return {4, out.substr(1, literals), elements};
    if (stars == 1 && first) return {3, out.substr(1), elements};
    if (stars == 1 && end) return {2, out.substr(0, literals), elements};
    return {5, out, elements};
}

double analogy(const Units& first, const Units& second) {
    const Units& longer = first.size() > second.size() ? first : second;
    const Units& shorter = first.size() > second.size() ? second : first;
    const auto n = static_cast<double>(longer.size());
    std::vector<bool> used(longer.size());
    long shift = 0, matches = 0, displaced = 0;
    for (long i = 0; i < static_cast<long>(shorter.size()); ++i) {
        long best = -1;
        for (long j = 0; j < static_cast<long>(longer.size()); ++j) {
            if (used[static_cast<std::size_t>(j)] ||
                longer[static_cast<std::size_t>(j)] != shorter[static_cast<std::size_t>(i)])
                continue;
            if (shift + j == i || best < 0) best = j;
            if (shift + j == i) break;
        }
        if (best < 0) continue;
        used[static_cast<std::size_t>(best)] = true;
        ++matches;
        if (shift + best != i && i != 0) ++displaced;
        shift = i - best;
    }
    return static_cast<double>(matches) * (1.0 - static_cast<double>(displaced) / n) / n;
}

bool fits(const Pattern& p, const Units& w) {
    const std::size_t length = p.core.size(), n = p.elements;
    switch (p.type) {
        case 0: {
            const auto less = static_cast<double>(std::min(w.size(), length));
            const auto more = static_cast<double>(std::max(w.size(), length));
            return less / more >= 0.75 && analogy(p.core, w) >= 0.75;
        }
        case 2:
            return w.starts_with(p.core);
        case 3:
            return w.ends_with(p.core);
        case 4:
            return w.find(p.core) != w.npos;
        case 5:
            return w.size() >= n && like(w, 0, p.core, 0, false);
        case 6:
            return w.size() >= n && like(w, 0, p.core, 0, true);
        case 7:
            return w.size() >= n && like(w.substr(0, n), 0, p.core, 0, true);
        case 8:
            return w.size() >= n && like(w.substr(w.size() - n), 0, p.core, 0, true);
        default:
            return w.size() == n && like(w, 0, p.core, 0, true);
    }
}

struct Look {
    WildcardComparison comparison;
    bool anchored, acceptStar, starIsWord;
};

std::optional<RefHit> findOne(const Units& text, std::size_t start, std::size_t end, const Units& wildcard, Look look) {
    if (start >= end || wildcard.empty()) return {};
    const Pattern pattern = patternOf(folded(wildcard, look.comparison));
    const bool star = pattern.core == u"*" && look.acceptStar;
    if (star && !look.starIsWord) return RefHit{start, end - start};
    if (!star && pattern.type == 10) return {};
    const bool direct = pattern.type == 1 || (pattern.type == 0 && !isFuzzy(look.comparison));
    bool boundary = start == 0 || !isTerm(text[start - 1]);
    for (std::size_t at = start; at < end; ++at) {
        const bool edge = isTerm(text[at]) && boundary;
        boundary = !isTerm(text[at]);
        if (!edge) continue;
        std::size_t stop = at;
        while (stop < end && isTerm(text[stop])) ++stop;
        if (star) return RefHit{at, stop - at};
        bool hit = false;
        if (direct) {
            stop = at + pattern.core.size();
            hit = stop <= end && (stop == end || !isTerm(text[stop]));
            for (std::size_t i = 0; hit && i < pattern.core.size(); ++i)
                hit = (pattern.type == 1 && pattern.core[i] == u'?') ||
                      folded(Units(1, text[at + i]), look.comparison)[0] == pattern.core[i];
        } else {
            hit = fits(pattern, folded(text.substr(at, stop - at), look.comparison));
        }
        if (hit) return RefHit{at, stop - at};
        if (look.anchored) return {};
    }
    return {};
}

}  // namespace

std::optional<RefHit> refFindWildcard(const Units& text, std::size_t start, std::size_t end, const Units& wildcard,
                                      WildcardComparison comparison, bool acceptStar) {
    bool hyphenated = false;
    const auto words = refWildcardWords(wildcard, hyphenated);
    if (wildcard.size() < 3 || words.size() < 2)
        return findOne(text, start, end, wildcard, {comparison, false, acceptStar, false});
    for (std::size_t low = start;;) {
        const auto first = findOne(text, low, end, words[0], {comparison, false, true, true});
        if (!first) break;
        std::size_t behind = first->location + first->length;
        low = behind;
        bool all = true;
        for (std::size_t i = 1; all && i < words.size(); ++i) {
            const auto next = findOne(text, behind, end, words[i], {comparison, true, true, true});
            all = next.has_value();
            if (next) behind = next->location + next->length;
        }
        if (all) return RefHit{first->location, behind - first->location};
    }
    if (!hyphenated) return {};
    Units joined;
    for (const Units& word : words) joined += word;
    return findOne(text, start, end, joined, {comparison, false, acceptStar, false});
}

RefFind refWildcards(std::u16string_view text, WildcardComparison comparison) {
    return [text = Units(text), comparison](const RefNode& word, std::size_t start, std::size_t end) {
        return refFindWildcard(text, start, end, word.word, comparison, true);
    };
}

RefNextHit refNextWildcard(const Units& text, const std::vector<Units>& wildcards, WildcardComparison comparison) {
    return [=](std::size_t from) {
        std::optional<RefHit> best;
        std::size_t end = text.size();
        for (const Units& wildcard : wildcards) {
            if (from >= end) break;
            if (const auto hit = refFindWildcard(text, from, end, wildcard, comparison, false)) {
                best = hit;
                end = hit->location;
            }
        }
        return best;
    };
}

}  // namespace velmo::test
