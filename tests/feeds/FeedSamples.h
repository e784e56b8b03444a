// The real feeds of tests/data/feeds with what an XML parser reads of them.
#pragma once

#include <sstream>

#include <velmocore/markup/FeedRecognition.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>

#include "TestSupport.h"

namespace velmo::test {

struct FeedSample {
    std::string file, dialect, title, bytes;
    std::vector<std::pair<std::string, std::string>> items;  ///< titles and links
};

inline std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    for (std::size_t start = 0, end; start <= line.size(); start = end + 1) {
        end = std::min(line.find('\t', start), line.size());
        fields.push_back(line.substr(start, end - start));
    }
    return fields;
}

/// See scripts/feed-samples.
inline std::vector<FeedSample> feedSamples() {
    std::vector<FeedSample> samples;
    std::istringstream lines(readData("feeds/expected.tsv"));
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields[0].empty())
            samples.back().items.emplace_back(fields[1], fields[2]);
        else
            samples.push_back({fields[0], fields[1], fields[2], readData("feeds/" + fields[0]), {}});
    }
    return samples;
}

inline const char* nameOf(FeedDialect dialect) {
    constexpr const char* Names[] = {"none", "rss", "rdf", "atom"};
    return Names[static_cast<int>(dialect)];
}

/// A text on one line.
inline std::string flat(const String& text) {
    return stringByRemovingMultipleWhiteSpaces(stringByTrimmingSpacesAndFeeds(text, true)).utf8();
}

}  // namespace velmo::test
