// What the tests share: files of the data folder, and printing of the values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

namespace velmo {

inline void PrintTo(const String& string, std::ostream* out) {
    *out << (string.isAbsent() ? "absent" : "\"" + string.utf8() + "\"");
}
inline void PrintTo(const Range& range, std::ostream* out) {
    if (range.isFound())
        *out << '{' << range.location << ", " << range.length << '}';
    else
        *out << "no range";
}

namespace test {

inline std::string dataPath(const std::string& name) { return VELMO_TEST_DATA "/" + name; }

/// The bytes of a file; a missing one fails the test.
inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << "missing: " << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The words of a text, which stand one space apart: lists of cases without a line for each.
inline std::vector<std::u16string> wordsOf(std::u16string_view text) {
    std::vector<std::u16string> words;
    for (std::size_t start = 0, end; start <= text.size(); start = end + 1) {
        end = std::min(text.find(u' ', start), text.size());
        words.emplace_back(text.substr(start, end - start));
    }
    return words;
}

/// A file of the data folder.
inline std::string readData(const std::string& name) { return readFile(dataPath(name)); }

/// One of the real pages of the demo.
inline std::string readPage(const std::string& name) { return readFile(VELMO_PAGES "/" + name); }

}  // namespace test
}  // namespace velmo
