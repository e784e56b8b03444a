// The kernels on bytes beside what the standard library finds.
#include "text/ByteScan.h"

#include "TestSupport.h"

namespace velmo {
namespace {

namespace scan = detail::scan;

/// Texts of few letters, so that something stands everywhere.
std::string randomBytes(std::mt19937& random) {
    std::string bytes(random() % 70, ' ');
    for (char& byte : bytes) byte = "ab  ....c\xC3"[random() % 10];
    return bytes;
}

std::size_t endOr(std::size_t found, std::string_view text) { return std::min(found, text.size()); }

TEST(ByteScan, FindsWhatStandsThere) {
    std::mt19937 random(3);
    for (int i = 0; i < 20'000; ++i) {
        const std::string page = randomBytes(random);
        // A part of a page, behind which more may be read, or not.
        const std::size_t start = random() % (page.size() + 1);
        const std::string_view text = std::string_view(page).substr(start, random() % (page.size() - start + 1));
        const char *const from = text.data(), *const to = from + text.size();
        const char* const readable = random() % 2 ? page.data() + page.size() : to;
        const auto place = [&](const char* found) { return static_cast<std::size_t>(found - from); };
        EXPECT_EQ(place(scan::find(from, to, 'a')), endOr(text.find('a'), text));
        EXPECT_EQ(place(scan::findEither(from, to, 'a', 'c')), endOr(text.find_first_of("ac"), text));
        EXPECT_EQ(place(scan::findPair(from, to, 'a', 'b')), endOr(text.find("ab"), text));
        EXPECT_EQ(place(scan::findNonAscii(from, to)), endOr(text.find('\xC3'), text));
        EXPECT_EQ(place(scan::findWithin(from, to, readable, 'c')), endOr(text.find('c'), text));
        EXPECT_EQ(place(scan::findEitherWithin(from, to, readable, 'b', 'c')), endOr(text.find_first_of("bc"), text));
        EXPECT_EQ(scan::isAscii(text), text.find('\xC3') == text.npos);
    }
}

TEST(ByteScan, WidensASCII) {
    std::mt19937 random(4);
    for (int i = 0; i < 5'000; ++i) {
        std::string text = randomBytes(random);
        std::erase(text, '\xC3');
        std::u16string units(text.size(), u'?');
        scan::widen(text, units.data());
        EXPECT_EQ(units, std::u16string(text.begin(), text.end()));
        EXPECT_TRUE(scan::equalsWidened(units.data(), text));
        if (text.empty()) continue;
        units[random() % units.size()] |= random() % 2 ? 0x100 : 0x40;
        EXPECT_EQ(scan::equalsWidened(units.data(), text), units == std::u16string(text.begin(), text.end()));
    }
}

}  // namespace
}  // namespace velmo
