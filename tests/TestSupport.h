// What the tests share: files of the data folder, and printing of the values.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

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

/// The bytes of a file of the data folder; a missing file fails the test.
inline std::string readData(const std::string& name) {
    std::ifstream file(dataPath(name), std::ios::binary);
    EXPECT_TRUE(file.good()) << "missing test data: " << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace test
}  // namespace velmo
