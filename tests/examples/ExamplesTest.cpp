#include "examples/Examples.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace velmo::examples {
namespace {

/// What a comment writes as \n, \uXXXX or \".
std::string unescaped(std::string_view text) {
    std::u16string units;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            units += static_cast<char16_t>(text[i]);
        } else if (text[++i] == 'u') {
            units += static_cast<char16_t>(std::stoi(std::string(text.substr(i + 1, 4)), nullptr, 16));
            i += 4;
        } else {
            units += text[i] == 'n' ? u'\n' : static_cast<char16_t>(text[i]);
        }
    }
    return utf8(units);
}

std::string withoutQuotes(std::string_view text) {
    if (text.size() > 1 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    return unescaped(text);
}

}  // namespace

std::string shown(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", value);
    return digits;
}

void compare(const std::string& value, std::string_view expected, const char* header, int line) {
    if (value == expected || value == withoutQuotes(expected)) return;
    for (std::string_view mark : {"; ", ": "})
        if (const std::size_t end = expected.find(mark); end != expected.npos)
            if (value == withoutQuotes(expected.substr(0, end))) return;
    ADD_FAILURE() << header << ':' << line << " says " << expected << ", but it is " << value;
}

TEST(Examples, OfAllHeadersRunAndTellTheTruth) {
    // Some write files.
    const std::filesystem::path before = std::filesystem::current_path();
    const auto folder = std::filesystem::temp_directory_path() / ("velmo-examples-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::filesystem::current_path(folder);
    runAll([](const char* place, void (*example)()) {
        SCOPED_TRACE(place);
        EXPECT_NO_THROW(example());
    });
    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
    EXPECT_GE(Count, 245);
    EXPECT_GE(Values, 405);
    EXPECT_GE(Calls, 200);
}

}  // namespace velmo::examples
