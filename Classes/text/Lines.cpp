#include <velmocore/text/Lines.h>

#include "text/LineScan.h"

namespace velmo {

using namespace detail;

std::size_t numberOfLines(std::u16string_view string) {
    std::size_t count = 0;
    forEachLine(string.data(), string.data() + string.size(),
                [&](const char16_t*, const char16_t*) { ++count; });
    return count;
}

std::vector<String> lines(std::u16string_view string) {
    std::vector<String> result;
    forEachLine(string.data(), string.data() + string.size(),
                [&](const char16_t* begin, const char16_t* end) {
                    result.emplace_back(std::u16string_view(begin, end));
                });
    return result;
}

String firstLine(const String& string) {
    const char16_t* const feed = Feeds{}.find(string.begin(), string.end());
    if (feed == string.end()) return string;
    return std::u16string_view(string.begin(), feed);
}

String feedOfLine(std::u16string_view string) {
    const std::u16string_view feeds = trailingFeeds(string);
    return feeds.empty() ? String::empty() : String(feeds);
}

bool hasFeedOfLine(std::u16string_view string) {
    return !string.empty() && isFeedUnit(string.back());
}

}  // namespace velmo
