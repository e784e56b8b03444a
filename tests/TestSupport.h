// What the tests share: short names, files of the data folder, texts made of parts or at random,
// and printing of the values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

namespace velmo {

using View = std::u16string_view;
using Strings = std::vector<String>;

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
inline std::vector<std::u16string> wordsOf(View text) {
    std::vector<std::u16string> words;
    for (std::size_t start = 0, end; start <= text.size(); start = end + 1) {
        end = std::min(text.find(u' ', start), text.size());
        words.emplace_back(text.substr(start, end - start));
    }
    return words;
}

inline std::u16string repeated(View part, std::size_t count) {
    std::u16string text;
    while (count-- > 0) text += part;
    return text;
}

inline std::u16string randomText(std::mt19937& random, View alphabet, std::size_t length) {
    std::u16string text(length, u' ');
    for (char16_t& unit : text) unit = alphabet[random() % alphabet.size()];
    return text;
}

/// A file of the data folder.
inline std::string readData(const std::string& name) { return readFile(dataPath(name)); }

/// One of the real pages of the demo.
inline std::string readPage(const std::string& name) { return readFile(VELMO_PAGES "/" + name); }

}  // namespace test
}  // namespace velmo
