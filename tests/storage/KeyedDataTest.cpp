#include <velmocore/storage/KeyedData.h>

#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedDataEditing.h>

#include <deque>
#include <set>

#include "TestSupport.h"
#include "storage/BigEndian.h"

namespace velmo {
namespace {

Data dataOf(std::string_view text) { return {text.begin(), text.end()}; }

Data joined(std::initializer_list<Data> parts) {
    Data all;
    for (const Data& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// A record with any tag, key, value field and payload.
Data record(std::string_view tag, std::uint32_t key, std::uint64_t value, std::string_view payload = {}) {
    Data bytes = dataOf(tag);
    bytes.resize(KeyedHeaderSize);
    detail::putBigEndian(bytes.data() + 4, key, 4);
    detail::putBigEndian(bytes.data() + 8, value, 8);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}
Data stringRecord(std::uint32_t key, std::string_view text) {
    return record("VWst", key, std::uint64_t{text.size()} << 32, text);
}

/// All types once, and what was put in.
Data everyType() {
    Data data;
    addBool(data, true, 1);
    addUnsigned(data, 0xFEDCBA98, 1);
    addSigned(data, -2, 1);
    addUnsignedLongLong(data, 0xFEDCBA9876543210, 1);
    addSignedLongLong(data, -3, 1);
    addFloat(data, -1.5F, 1);
    addDouble(data, 0.1, 1);
    addDate(data, ReferenceDate + std::chrono::duration<double>(86400.5), 1);
    addData(data, dataOf(std::string("a\0b", 3)), 1);
    addString(data, u"caf\u00E9", 1);
    return data;
}

TEST(KeyedData, IsTheSameByteByByte) {
    Data data;
    EXPECT_TRUE(addBool(data, true, 1));
    EXPECT_EQ(data, dataOf(std::string("VWbl\0\0\0\1\1\0\0\0\0\0\0\0", 16)));
    const std::pair<std::size_t, Data> expected[] = {
        {0, record("VWbl", 1, std::uint64_t{1} << 56)},
        {16, record("VWun", 1, 0xFEDCBA9800000000)},
        {32, record("VWsi", 1, 0xFFFFFFFE00000000)},
        {48, record("VWul", 1, 0xFEDCBA9876543210)},
        {64, record("VWsl", 1, 0xFFFFFFFFFFFFFFFD)},
        {80, record("VWfl", 1, 0xBFC0000000000000)},
        {96, record("VWdb", 1, 0x3FB999999999999A)},
        {112, record("VWda", 1, 0x40F5180800000000)},
        {128, record("VWdt", 1, std::uint64_t{3} << 32, std::string_view("a\0b", 3))},
        {147, stringRecord(1, "caf\xC3\xA9")},
    };
    const Data all = everyType();
    for (const auto& [offset, bytes] : expected)
        EXPECT_EQ(Data(all.begin() + static_cast<std::ptrdiff_t>(offset),
                       all.begin() + static_cast<std::ptrdiff_t>(offset + bytes.size())),
                  bytes)
            << offset;
    EXPECT_EQ(all.size(), 168u);
}

TEST(KeyedData, EveryTypeComesBackFromItsOwnRecordOnly) {
    const Data data = everyType();
    EXPECT_TRUE(boolForKey(data, 1));
    EXPECT_EQ(unsignedForKey(data, 1), 0xFEDCBA98);
    EXPECT_EQ(signedForKey(data, 1), -2);
    EXPECT_EQ(unsignedLongLongForKey(data, 1), 0xFEDCBA9876543210);
    EXPECT_EQ(signedLongLongForKey(data, 1), -3);
    EXPECT_EQ(floatForKey(data, 1), -1.5F);
    EXPECT_EQ(doubleForKey(data, 1), 0.1);
    EXPECT_EQ(timeIntervalSinceReferenceDateForKey(data, 1), 86400.5);
    EXPECT_EQ(dateForKey(data, 1), ReferenceDate + std::chrono::duration<double>(86400.5));
    EXPECT_EQ(dataForKey(data, 1), dataOf(std::string("a\0b", 3)));
    EXPECT_EQ(dataNoCopyForKey(data, 1).data(), data.data() + 144);
    EXPECT_EQ(stringForKey(data, 1), u"caf\u00E9");
    EXPECT_EQ(stringNoCopyForKey(data, 1), "caf\xC3\xA9");
    EXPECT_EQ(stringDataForKey(data, 1), dataOf("caf\xC3\xA9"));
    setenv("TZ", "UTC", 1);
    EXPECT_EQ(descriptionWithCalendarFormat(data, "%Y-%m-%d %H:%M:%S", 1), u"2001-01-02 00:00:00");
    EXPECT_EQ(descriptionWithCalendarFormat(data, "", 1), u"");
    EXPECT_TRUE(descriptionWithCalendarFormat(data, "%Y", 2).isAbsent());
    const std::uint64_t offsets[] = {offsetOfBoolForKey(data, 1),
                                     offsetOfUnsignedForKey(data, 1),
                                     offsetOfSignedForKey(data, 1),
                                     offsetOfUnsignedLongLongForKey(data, 1),
                                     offsetOfSignedLongLongForKey(data, 1),
                                     offsetOfFloatForKey(data, 1),
                                     offsetOfDoubleForKey(data, 1),
                                     offsetOfDateForKey(data, 1),
                                     offsetOfDataForKey(data, 1)};
    for (std::size_t i = 0; i < std::size(offsets); ++i) EXPECT_EQ(offsets[i], 16 * i);
    EXPECT_EQ(offsetOfStringForKey(data, 1), 147u);
    // Of another key there is nothing.
    EXPECT_EQ(offsetOfBoolForKey(data, 2), NotFound);
    EXPECT_FALSE(boolForKey(data, 2) || unsignedForKey(data, 2) || signedForKey(data, 2) ||
                 containsDateForKey(data, 2));
    EXPECT_EQ(doubleForKey(data, 2) + floatForKey(data, 2), 0);
    EXPECT_FALSE(dateForKey(data, 2) || dataForKey(data, 2) || stringDataForKey(data, 2));
    EXPECT_TRUE(stringForKey(data, 2).isAbsent() && URLForKey(data, 2).isAbsent() && !dataNoCopyForKey(data, 2).data());
    EXPECT_FALSE(stringsForKey(data, 2) || URLsForKey(data, 2) || stringsNoCopyForKey(data, 2));
}

TEST(KeyedData, SetsValuesOfFixedSizeInPlaceAndReplacesOthers) {
    Data data = everyType();
    data[9] = 0x77;  // no part of the value
    setBool(data, false, 1);
    setUnsigned(data, 7, 1);
    setSigned(data, 8, 1);
    setUnsignedLongLong(data, 9, 1);
    setSignedLongLong(data, 10, 1);
    setFloat(data, 11, 1);
    setDouble(data, 12, 1);
    setDate(data, ReferenceDate, 1);
    EXPECT_FALSE(setDate(data, std::nullopt, 1) || addDate(data, std::nullopt, 1));
    EXPECT_EQ(data.size(), everyType().size());
    EXPECT_EQ(data[9], 0x77);
    EXPECT_FALSE(boolForKey(data, 1));
    EXPECT_EQ(unsignedForKey(data, 1) + static_cast<unsigned>(signedForKey(data, 1)), 15u);
    EXPECT_EQ(unsignedLongLongForKey(data, 1) + static_cast<std::uint64_t>(signedLongLongForKey(data, 1)), 19u);
    EXPECT_EQ(floatForKey(data, 1) + doubleForKey(data, 1) + timeIntervalSinceReferenceDateForKey(data, 1), 23);
    EXPECT_TRUE(setString(data, u"x", 1) && setData(data, dataOf("yy"), 1));
    EXPECT_EQ(stringForKey(data, 1), u"x");
    EXPECT_EQ(data.size(), 128u + 17 + 18);
    EXPECT_EQ(offsetOfStringForKey(data, 1), 128u);  // behind what stayed
    // What cannot be added is removed all the same.
    EXPECT_FALSE(setString(data, u"", 1) || setData(data, {}, 1));
    EXPECT_FALSE(containsStringForKey(data, 1) || containsDataForKey(data, 1));
    setUnsigned(data, 1, 99);
    EXPECT_EQ(offsetOfUnsignedForKey(data, 99), 128u);
}

TEST(KeyedData, TakesPartsOfItself) {
    Data data;
    addData(data, dataOf(std::string(1000, 'q')), 1);
    data.shrink_to_fit();
    EXPECT_TRUE(addData(data, dataNoCopyForKey(data, 1), 2));
    EXPECT_EQ(dataForKey(data, 2), dataForKey(data, 1));
    EXPECT_TRUE(setData(data, dataNoCopyForKey(data, 1).subspan(1), 1));
    EXPECT_EQ(dataForKey(data, 1), dataOf(std::string(999, 'q')));
    EXPECT_TRUE(isValidKeyedData(data));
}

TEST(KeyedData, ListsOfStringsAndURLs) {
    Data data;
    EXPECT_TRUE(addStrings(data, Strings{u"b", u"", u"a", u"b"}, 5));
    EXPECT_FALSE(addStrings(data, Strings{}, 5));
    addString(data, u"other", 6);
    EXPECT_EQ(stringForKey(data, 5), u"b");
    EXPECT_EQ(stringsForKey(data, 5), (Strings{u"b", u"a", u"b"}));
    EXPECT_EQ(stringsNoCopyForKey(data, 5), (std::vector<std::string_view>{"b", "a", "b"}));
    EXPECT_EQ(numberOfStringsForKey(data, 5), 3u);
    EXPECT_EQ(numberOfStrings(data), 4u);
    std::set<String> unique;
    std::deque<String> row{u"first"};
    EXPECT_EQ(addStringsForKey(data, 5, unique) + addStringsForKey(data, 5, row), 6u);
    EXPECT_EQ(unique.size(), 2u);
    EXPECT_EQ(row.front(), u"first");
    EXPECT_EQ(handleStringsForKey(data, 5, [](const String& string) { return string == u"b"; }), 2u);
    EXPECT_EQ(handleStringsNoCopyForKey(data, 5, [](std::string_view utf8) { return utf8 == "a"; }), 1u);
    EXPECT_TRUE(containsString(data, u"a", 5));
    EXPECT_FALSE(containsString(data, u"a", 6) || containsString(data, u"", 5) || containsString(data, u"\xD800", 5));
    removeStringForKey(data, 5);
    EXPECT_EQ(stringsForKey(data, 5), (Strings{u"a", u"b"}));
    removeStringsForKey(data, 5);
    EXPECT_FALSE(stringsForKey(data, 5));
    EXPECT_EQ(stringForKey(data, 6), u"other");

    Data links;
    const URL feed = URL::URLWithString(u"feed://a");
    EXPECT_TRUE(addURLs(links, std::vector<URL>{feed}, 1) && addString(links, u"/tmp/x", 1));
    EXPECT_FALSE(addURL(links, URL(), 1) || setURL(links, URL(), 2));
    addString(links, u"no URL", 1);
    EXPECT_EQ(URLForKey(links, 1), feed);
    EXPECT_TRUE(containsURL(links, feed, 1) && containsURLForKey(links, 1));
    EXPECT_FALSE(containsURL(links, URL(), 1));
    EXPECT_EQ(URLsForKey(links, 1), (std::vector<URL>{feed, URL::fileURLWithPath(u"/tmp/x")}));
    EXPECT_EQ(numberOfURLsForKey(links, 1), 3u);
    std::vector<URL> urls;
    EXPECT_EQ(addURLsForKey(links, 1, urls), 2u);
    removeURLsForKey(links, 1);
    EXPECT_TRUE(links.empty());
}

TEST(KeyedData, HoldsAnyStringThatIsUTF8) {
    Data data;
    const String strings[] = {u"\uFEFFmark", u"\uFFFD", std::u16string(u"nul\0in", 6), u"\U0001F600",
                              test::repeated(u"\u4E2D", 5000)};
    for (const String& string : strings) EXPECT_TRUE(addString(data, string, 1));
    EXPECT_EQ(stringsForKey(data, 1), Strings(std::begin(strings), std::end(strings)));
    static std::string logged;
    setLogHandler([](std::string_view line) { logged = line; });
    EXPECT_FALSE(addString(data, u"half \xD83D", 2));
    setLogHandler(nullptr);
    EXPECT_EQ(logged, "Failed addStringToKeyedDataUsingEncoding: half \xEF\xBF\xBD");
    const Data broken = joined({stringRecord(1, "\xFF"), stringRecord(1, "ok"), stringRecord(2, "")});
    EXPECT_TRUE(stringForKey(broken, 1).isAbsent() && !stringNoCopyForKey(broken, 1).data());
    EXPECT_EQ(stringDataForKey(broken, 1), Data{0xFF});
    EXPECT_EQ(stringsForKey(broken, 1), Strings{u"ok"});
    EXPECT_EQ(numberOfStringsForKey(broken, 1), 2u);
    EXPECT_EQ(stringForKey(broken, 2), u"");
}

TEST(KeyedData, TheWalkEndsAsTheFormatHasIt) {
    const Data unsigned1 = record("VWun", 1, std::uint64_t{7} << 32), unknown = record("VWxx", 1, 0);
    const Data overrun = record("VWdt", 2, std::uint64_t{100} << 32, "short");
    struct {
        Data data;
        bool isValid, isSeen;  // key 1 of the last record
        std::size_t number;
    } const cases[] = {
        {{}, false, false, 0},
        {dataOf("VWun"), false, false, 0},
        {unsigned1, true, true, 1},
        {joined({unsigned1, Data(1)}), false, true, 1},
        {joined({unsigned1, Data(15)}), false, true, 1},
        {joined({stringRecord(9, "abc"), unsigned1}), true, true, 2},
        {joined({unknown, unsigned1}), false, false, 2},
        {joined({overrun, unsigned1}), false, false, 1},
        {joined({record("VWst", 1, 0xFFFFFFFF00000000), unsigned1}), false, false, 1},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& [data, isValid, isSeen, number] = cases[i];
        EXPECT_EQ(isValidKeyedData(data), isValid) << i;
        EXPECT_EQ(unsignedForKey(data, 1) == 7, isSeen) << i;
        EXPECT_EQ(numberOfKeyedData(data, KeyedTag::Any), number) << i;
    }
    // A header that is matched counts, but the payload is not there.
    EXPECT_TRUE(containsDataForKey(overrun, 2));
    EXPECT_FALSE(dataForKey(overrun, 2) || dataNoCopyForKey(overrun, 2).data());
    // Setting appends behind what cannot be read.
    Data data = joined({unknown, unsigned1});
    setUnsigned(data, 8, 1);
    EXPECT_EQ(data.size(), 48u);
}

TEST(KeyedData, RemovalCutsOffWhatNobodyReads) {
    const Data one = record("VWun", 1, 0), two = stringRecord(2, "text"), last = record("VWbl", 3, 0);
    const Data unknown = record("VWxx", 1, 0), overrun = record("VWst", 4, std::uint64_t{50} << 32, "x");
    const std::pair<Data, Data> cases[] = {
        {{}, {}},
        {Data(15), {}},
        {joined({one, two, last}), joined({two, last})},
        {joined({two, one, one, last}), joined({two, one, last})},
        {joined({two, last}), joined({two, last})},
        {joined({two, one, Data(10)}), two},
        {joined({two, unknown, one}), two},
        {joined({two, one, overrun}), two},
        {joined({one, two, last, overrun, Data(40)}), joined({two, last})},
        {overrun, {}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        Data data = cases[i].first;
        removeUnsignedForKey(data, 1);
        EXPECT_EQ(data, cases[i].second) << i;
    }
    Data data = joined({one, two, last, two});
    std::vector<std::uint32_t> seen;
    removeKeyedDataUsingHandler(data, [&](KeyedTag, std::uint32_t key) { return seen.push_back(key), key == 2; });
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 2, 3, 2}));
    EXPECT_EQ(data, joined({one, last}));
    Data torn = joined({one, Data(3)});
    removeKeyedDataUsingHandler(torn, nullptr);
    EXPECT_EQ(torn.size(), 19u);
}

TEST(KeyedData, HandsOutWhatIsAskedFor) {
    const Data data = joined({everyType(), stringRecord(3, "\xFF"), record("VWxx", 1, 0), record("VWbl", 9, 0)});
    const auto tagsOf = [&](KeyedHandling options) {
        std::string tags;
        handleKeyedDataUsingHandler(
            data,
            [&](KeyedTag tag, std::uint32_t, const KeyedValue&) {
                const auto row = std::ranges::find(KeyedTypes, tag, &KeyedType::tag);
                tags += row->name.substr(2);
                return true;
            },
            options);
        return tags;
    };
    EXPECT_EQ(tagsOf({}), "blunsiulslfldbda");
    EXPECT_EQ(tagsOf({.marker = KeyedTag::Signed}), "si");
    EXPECT_EQ(tagsOf({.marker = KeyedTag::Signed, .strings = true}), "sist");
    EXPECT_EQ(tagsOf({.strings = true, .noCopy = true}), "blunsiulslfldbdast");
    EXPECT_EQ(tagsOf({.marker = KeyedTag::Text, .strings = true}), "st");
    EXPECT_EQ(tagsOf({.marker = KeyedTag::Text}) + tagsOf({.marker = KeyedTag::Blob, .strings = true}), "");
    EXPECT_EQ(handleKeyedDataUsingHandler(data, nullptr), 0u);
    const auto isSignedMinusTwo = [](KeyedTag, std::uint32_t, const KeyedValue& value) {
        return value == KeyedValue(std::int32_t{-2});
    };
    EXPECT_EQ(handleKeyedDataUsingHandler(data, isSignedMinusTwo), 1u);
}

TEST(KeyedData, ComparesAsSetsOfRecords) {
    const Data one = record("VWun", 1, 5), two = stringRecord(2, "text"), other = stringRecord(2, "tex1");
    const Data unknown = record("VWxx", 1, 0), overrun = record("VWst", 4, std::uint64_t{50} << 32, "x");
    struct {
        Data a;
        std::optional<Data> b;
        KeyedTag marker;
        bool isEqual;
    } const cases[] = {
        {joined({one, two}), joined({two, one}), KeyedTag::Any, true},
        {one, std::nullopt, KeyedTag::Any, false},
        {{}, Data(), KeyedTag::Any, true},
        {{}, Data(3), KeyedTag::Any, false},
        {Data(5), Data(3), KeyedTag::Any, true},
        {joined({one, two}), joined({one, other}), KeyedTag::Any, false},
        {joined({one, two}), joined({one, other}), KeyedTag::Unsigned, true},
        {joined({one, two}), joined({one, other}), KeyedTag::Text, false},
        {joined({one, two}), two, KeyedTag::Text, true},
        {joined({one, two}), two, KeyedTag::Any, false},
        {joined({two, other}), joined({two, other}), KeyedTag::Any, false},
        {joined({two, two}), joined({two, two}), KeyedTag::Any, true},
        {joined({two, two}), joined({two, other}), KeyedTag::Any, true},
        {unknown, unknown, KeyedTag::Any, false},
        {joined({unknown, one}), joined({unknown, one}), KeyedTag::Unsigned, false},
        {overrun, overrun, KeyedTag::Any, false},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& [a, b, marker, isEqual] = cases[i];
        EXPECT_EQ(isEqualToKeyedData(a, b, marker), isEqual) << i;
    }
}

// Every truncation and a flip of every bit: nothing is read that is not there, what is valid stays
// readable as it is, and any removal leaves a buffer that is valid or empty.
TEST(KeyedData, DamageStaysWithinTheBuffer) {
    const Data whole = joined({everyType(), everyType()});
    const auto use = [](const Data& damaged) {
        std::size_t seen = 0;
        forEachKeyedRecord(damaged, [&](const KeyedRecord& record) {
            EXPECT_LE(record.offset + record.bytes.size(), damaged.size());
            if (const auto value = valueOfKeyedRecord(record)) ++seen;
            return true;
        });
        for (const std::uint32_t key : {1u, 0u}) {
            (void)stringsForKey(damaged, key), (void)dataForKey(damaged, key), (void)URLsForKey(damaged, key);
            Data edited = damaged;
            removeDataForKey(edited, key);
            EXPECT_TRUE(edited.empty() || isValidKeyedData(edited));
            EXPECT_TRUE(setString(edited, u"new", 77) && stringForKey(edited, 77) == u"new");
        }
        EXPECT_EQ(isEqualToKeyedData(damaged, damaged, KeyedTag::Bool),
                  isEqualToKeyedData(damaged, Data(damaged), KeyedTag::Bool));
        return seen;
    };
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_LE(use(Data(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))), 18u);
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        Data damaged = whole;
        damaged[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        use(damaged);
    }
}

}  // namespace
}  // namespace velmo
