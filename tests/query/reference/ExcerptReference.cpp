#include "query/reference/ExcerptReference.h"

#include <algorithm>

namespace velmo::test {
namespace {

bool isTerm(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9'); }
bool isLineEnd(char16_t c) { return c == u'\n' || c == u'\r' || c == u'\f' || c == 3; }
bool isBoundary(char16_t c, bool paragraphs) {
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
    for (std::size_t from = 0; from < text.size();) {
        const auto hit = next(from);
        if (!hit) break;
        const std::size_t hitEnd = hit->location + hit->length;
        std::size_t first = hit->location, last = hitEnd;
        while (first > 0 && !isBoundary(text[first - 1], how.paragraphs)) --first;
        while (last < text.size() && !isBoundary(text[last], how.paragraphs)) ++last;
        from = last;
        while (first < hit->location && !isTerm(text[first])) ++first;
        while (last > hitEnd && !isTerm(text[last - 1])) --last;
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
        if (end < hitEnd) {
            start = hitEnd - room;
            end = hitEnd;
            while (isTerm(text[start]) && start > 0 && isTerm(text[start - 1])) --start;
        }
        *result += text.substr(start, end - start) + u"...";
        break;
    }
    return result;
}

std::vector<RefRecord> refOccurrences(const std::u16string& text, const RefNextHit& next, bool paragraphs,
                                      std::size_t minWords) {
    std::vector<RefRecord> records;
    for (std::size_t from = 0; from < text.size();) {
        const auto hit = next(from);
        if (!hit) break;
        std::size_t start = hit->location, end = start + hit->length, words = 0, i = start;
        bool inWord = isTerm(text[start]), noted = false, front = false, back = false;
        for (; i > 0; --i) {
            const char16_t c = text[i - 1];
            if (isBoundary(c, paragraphs)) {
                if (words >= minWords) break;
                noted = true;
            }
            if (isTerm(c)) {
                if (!inWord) ++words;
                start = i - 1;
                front = noted;
            }
            inWord = isTerm(c);
        }
        words = 0;
        noted = false;
        inWord = isTerm(text[end - 1]);
        for (i = end; i < text.size(); ++i) {
            const char16_t c = text[i];
            if (isBoundary(c, paragraphs)) noted = true;
            if (!isTerm(c) && noted && words >= minWords) break;
            if (isTerm(c)) {
                if (!inWord) ++words;
                end = i + 1;
                back = noted;
            }
            inWord = isTerm(c);
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
