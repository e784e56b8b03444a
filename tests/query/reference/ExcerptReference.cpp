#include "query/reference/ExcerptReference.h"

#include <algorithm>

#include "query/reference/RunsReference.h"

namespace velmo::test {
namespace {

bool isLineEnd(char16_t c) { return c == u'\n' || c == u'\r' || c == u'\f' || c == 3; }
bool isBoundary(char16_t c, bool paragraphs, bool withinRuns) {
    if (withinRuns && !paragraphs && (c == 0x3002 || c == 0xFF01 || c == 0xFF1F)) return true;
    return isLineEnd(c) || (!paragraphs && (c == u'.' || c == u':' || c == u'!' || c == u'?'));
}

}  // namespace

RefNextHit refNextString(const std::u16string& text, std::u16string_view sought, Case letterCase) {
    const auto same = [=](char16_t a, char16_t b) {
        const auto low = [](char16_t c) { return c >= u'A' && c <= u'Z' ? c + 32 : int{c}; };
        return a == b || (letterCase == Case::Insensitive && low(a) == low(b));
    };
    return [=](std::size_t from) -> std::optional<RefHit> {
        for (; from + sought.size() <= text.size(); ++from)
            if (std::equal(sought.begin(), sought.end(), text.begin() + static_cast<std::ptrdiff_t>(from), same))
                return RefHit{from, sought.size()};
        return {};
    };
}

std::optional<std::u16string> refAssemble(const std::u16string& text, const RefNextHit& next, const RefAssembly& how) {
    std::optional<std::u16string> result;
    std::vector<std::u16string> seen;
    const RefWords words{text, how.withinRuns};
    // A place to cut at that is inside no character.
    const auto whole = [&](std::size_t position, std::size_t floor) {
        const auto isInside = [&](std::size_t i) {
            return how.withinRuns && i < text.size() &&
                   (text[i] == 0x0301 || text[i] == 0x0E35 || (text[i] >= 0xDC00 && text[i] < 0xE000));
        };
        std::size_t edge = position;
        while (edge > floor && isInside(edge)) --edge;
        return edge > floor ? edge : position;
    };
    for (std::size_t from = 0; from < text.size();) {
        const auto hit = next(from);
        if (!hit) break;
        const std::size_t hitEnd = hit->location + hit->length;
        std::size_t first = hit->location, last = hitEnd;
        while (first > 0 && !isBoundary(text[first - 1], how.paragraphs, how.withinRuns)) --first;
        while (last < text.size() && !isBoundary(text[last], how.paragraphs, how.withinRuns)) ++last;
        from = last;
        while (first < hit->location && !words.isTerm(first)) ++first;
        while (last > hitEnd && !words.isTerm(last - 1)) --last;
        if (first == hit->location && last == hitEnd && !how.singleWords) continue;
        const std::u16string excerpt = text.substr(first, last - first);
        if (std::ranges::count(seen, excerpt)) continue;
        seen.push_back(excerpt);
        if (result)
            *result += how.separator;
        else
            result.emplace();
        if (how.limit == 0 || result->size() + excerpt.size() <= how.limit) {
            *result += excerpt;
            if (how.limit && result->size() + how.separator.size() >= how.limit) break;
            continue;
        }
        if (result->size() >= how.limit) break;
        const std::size_t room = how.limit - result->size();
        std::size_t start = first, end = first + room;
        if (end >= hitEnd) {
            end = whole(end, first);
        } else {
            start = whole(hitEnd - room, 0);
            end = hitEnd;
            if (words.isTerm(start))
                while (start > 0 && !words.mayBegin(start)) --start;
        }
        *result += text.substr(start, end - start) + u"...";
        break;
    }
    return result;
}

std::vector<RefRecord> refOccurrences(const std::u16string& text, const RefNextHit& next, bool paragraphs,
                                      std::size_t minWords, bool withinRuns) {
    std::vector<RefRecord> records;
    const RefWords units{text, withinRuns};
    for (std::size_t from = 0; from < text.size();) {
        const auto hit = next(from);
        if (!hit) break;
        std::size_t start = hit->location, end = start + hit->length, words = 0, i = start;
        bool inWord = units.isTerm(start), noted = false, front = false, back = false;
        for (; i > 0; --i) {
            const char16_t c = text[i - 1];
            if (isBoundary(c, paragraphs, withinRuns)) {
                if (words >= minWords) break;
                noted = true;
            }
            const bool term = units.isTerm(i - 1);
            if (term) {
                if (!inWord || units.isApart(i)) ++words;
                start = i - 1;
                front = noted;
            }
            inWord = term;
        }
        words = 0;
        noted = false;
        inWord = units.isTerm(end - 1);
        for (i = end; i < text.size(); ++i) {
            const char16_t c = text[i];
            if (isBoundary(c, paragraphs, withinRuns)) noted = true;
            const bool term = units.isTerm(i);
            if ((!term || units.isApart(i)) && noted && words >= minWords) break;
            if (term) {
                if (!inWord || units.isApart(i)) ++words;
                end = i + 1;
                back = noted;
            }
            inWord = term;
        }
        from = i;
        std::size_t line = 0;
        for (std::size_t k = 0; k < start; ++k)
            if (isLineEnd(text[k]) && !(text[k] == u'\n' && k > 0 && text[k - 1] == u'\r')) ++line;
        records.push_back({start, end - start, line,
                           (front ? u"..." : u"") + text.substr(start, end - start) + (back ? u"..." : u"")});
    }
    return records;
}

}  // namespace velmo::test
