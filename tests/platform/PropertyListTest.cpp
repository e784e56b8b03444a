#include <velmocore/platform/PropertyList.h>

#include <functional>

#include "TestSupport.h"

namespace velmo {
namespace {

void appendNumber(std::string& bytes, std::uint64_t value, int size) {
    while (size-- > 0) bytes += static_cast<char>(value >> (8 * size));
}

/// A binary list of the objects, the first of which is its root. References have 4 bytes.
std::string binaryList(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::vector<std::size_t> offsets;
    for (const std::string& object : objects) {
        offsets.push_back(bytes.size());
        bytes += object;
    }
    const std::size_t table = bytes.size();
    for (std::size_t offset : offsets) appendNumber(bytes, offset, 4);
    appendNumber(bytes, 0x0404, 8);
    appendNumber(bytes, objects.size(), 8);
    appendNumber(bytes, 0, 8);
    appendNumber(bytes, table, 8);
    return bytes;
}

std::string arrayOf(const std::vector<std::uint32_t>& references) {
    std::string object = "\xAF\x12";
    appendNumber(object, references.size(), 4);
    for (std::uint32_t reference : references) appendNumber(object, reference, 4);
    return object;
}

/// Arrays in one another, each of which refers to the next that many times.
std::string nestedBinary(std::uint32_t levels, std::size_t times = 1) {
    std::vector<std::string> objects;
    for (std::uint32_t level = 1; level < levels; ++level)
        objects.push_back(arrayOf(std::vector<std::uint32_t>(times, level)));
    objects.push_back(arrayOf({}));
    return binaryList(objects);
}

std::string nestedXML(int levels, std::string_view open, std::string_view close) {
    std::string text = "<?xml version='1.0'?><plist version=\"1.0\">";
    for (int i = 0; i < levels; ++i) text += open;
    for (int i = 0; i < levels; ++i) text += close;
    return text + "</plist>";
}

bool isRead(std::string_view bytes) { return propertyListAsXML(Bytes(bytes)).has_value(); }

TEST(PropertyListAsXML, ReadsBothForms) {
    const std::string xml = test::readData("locations/pliststyle.webloc");
    const auto binary = propertyListAsXML(Bytes(test::readData("locations/oldstyle.webloc")));
    ASSERT_TRUE(binary);
    EXPECT_EQ(charsOf(*binary), xml);
    EXPECT_EQ(propertyListAsXML(Bytes(xml)), binary);
    EXPECT_FALSE(isRead("") || isRead("bplist00") || isRead("<html><p>no list</p></html>"));
}

TEST(PropertyListAsXML, RefusesWhatWouldRecurseOrUnfold) {
    EXPECT_TRUE(isRead(nestedBinary(256)));
    EXPECT_FALSE(isRead(nestedBinary(257)));
    EXPECT_FALSE(isRead(nestedBinary(100000)));
    EXPECT_TRUE(isRead(nestedBinary(8, 2)));
    EXPECT_FALSE(isRead(nestedBinary(40, 2)));  // 2 to the 40th arrays
    EXPECT_FALSE(isRead(binaryList({arrayOf({1}), arrayOf({0})})));
    EXPECT_FALSE(isRead(binaryList({arrayOf({7})})));
    const std::string megabyte = "\x5F\x12" + std::string("\x00\x10\x00\x00", 4) + std::string(1 << 20, 'x');
    EXPECT_TRUE(isRead(binaryList({arrayOf({1, 1}), megabyte})));
    EXPECT_FALSE(isRead(binaryList({arrayOf(std::vector<std::uint32_t>(1000, 1)), megabyte})));

    EXPECT_TRUE(isRead(nestedXML(256, "<array>", "</array>")));
    EXPECT_FALSE(isRead(nestedXML(257, "<array>", "</array>")));
    EXPECT_TRUE(isRead(nestedXML(256, "<dict><key>a</key>", "</dict>")) ||
                isRead(nestedXML(255, "<dict><key>a</key>", "</dict>")));
    for (std::string_view open : {"<array>", "<dict><key>a</key>", "<plist version=\"1.0\">"})
        EXPECT_FALSE(isRead(nestedXML(100000, open, ""))) << open;
}

// An array of one byte a reference, again and again the same object.
TEST(PropertyListAsXML, BoundsWhatIsWritten) {
    std::size_t read = 0;
    for (std::uint32_t levels = 1; levels <= 24; ++levels)
        for (std::size_t times : {2u, 5u, 12u}) {
            const std::string list = nestedBinary(levels, times);
            const auto xml = propertyListAsXML(Bytes(list));
            if (!xml) continue;
            ++read;
            EXPECT_LE(xml->size(), 64 * list.size() + (1 << 20)) << levels << ' ' << times;
        }
    EXPECT_GT(read, 20u);
    for (const std::string& leaf :
         {std::string("\x09"), "\x53" + std::string("&&&"), "\x43" + std::string("abc"), "\x80" + std::string("\x01"),
          "\x13" + std::string(8, '\xFF'), "\x23" + std::string("\xC1\x01\x01\x01\x01\x01\x01\x01")}) {
        const std::string list = binaryList({arrayOf(std::vector<std::uint32_t>(1000, 1)), leaf});
        const auto xml = propertyListAsXML(Bytes(list));
        if (xml) { EXPECT_LE(xml->size(), 64 * list.size() + (1 << 20)); }
    }
}

TEST(PropertyListAsXML, BoundsTheKeysOfADictionary) {
    for (const std::uint32_t keys : {16384u, 16385u}) {
        std::string xml = "<plist version=\"1.0\"><dict>", binary = "\xDF\x12";
        appendNumber(binary, keys, 4);
        std::vector<std::string> objects(1);
        for (std::uint32_t i = 0; i < keys; ++i) {
            const std::string key = std::to_string(100000 + i);
            xml += "<key>" + key + "</key><true/>";
            appendNumber(binary, objects.size(), 4);
            objects.push_back("\x56" + key);
        }
        for (std::uint32_t i = 0; i < keys; ++i) appendNumber(binary, 1, 4);
        objects[0] = binary;
        EXPECT_EQ(isRead(xml + "</dict></plist>"), keys == 16384);
        EXPECT_EQ(isRead(binaryList(objects)), keys == 16384);
    }
    const std::string dictionary("\xD1\0\0\0\1\0\0\0\2", 9);
    for (const std::string& key : {std::string("\x52\0a", 3), std::string("\x61\0", 3)})
        EXPECT_TRUE(isRead(binaryList({dictionary,
                                       "\x51"
                                       "a",
                                       key})) &&
                    !isRead(binaryList({dictionary, key,
                                        "\x51"
                                        "a"})));
}

// Long texts with entities are parted for the parser; what they say stays the same.
TEST(PropertyListAsXML, KeepsLongTextsWithEntities) {
    for (const auto& [before, entities, after] :
         {std::tuple(0, "&amp;", 0), std::tuple(0, "a&lt;b&#65;", 0), std::tuple(1500, "&gt;", 0),
          std::tuple(0, "&amp;", 3000), std::tuple(1021, "&quot;", 0)}) {
        const std::string part = std::string(before, 'x') + entities + std::string(after, 'y');
        std::string text;
        for (int i = 0; i < 3000; ++i) text += part;
        const std::string list =
            "<plist version=\"1.0\"><dict><key>" + text + "</key><string>" + text + "</string></dict></plist>";
        const auto xml = propertyListAsXML(Bytes(list));
        ASSERT_TRUE(xml) << part.substr(0, 20);
        std::string expected = text;
        for (const auto& [from, to] : {std::pair<std::string, std::string>{"&#65;", "A"}, {"&quot;", "\""}})
            for (std::size_t at; (at = expected.find(from)) != expected.npos;) expected.replace(at, from.size(), to);
        EXPECT_TRUE(charsOf(*xml).find("<string>" + expected + "</string>") != std::string_view::npos)
            << part.substr(0, 20);
        EXPECT_TRUE(charsOf(*xml).find("<key>" + expected + "</key>") != std::string_view::npos);
    }
    EXPECT_FALSE(isRead("<plist version=\"1.0\"><string>" + std::string(5000, '&') + "</string></plist>"));
}

// Closing tags that the parser does not see must not be counted.
TEST(PropertyListAsXML, IsNotFooledByHiddenTags) {
    for (std::string_view hidden :
         {"<!-- </array> -->", "<?x </array> ?>", "<?x '?></array>' ?>", "<?x \"?></array>\" ?>",
          "<!DOCTYPE x \"></array>\">", "<string><![CDATA[</array>]]></string>", "<string x=\"></array>\">a</string>",
          "</array >x", "<!DOCTYPE x [ </array> ]>"})
        EXPECT_FALSE(isRead(nestedXML(300, "<array>" + std::string(hidden), "</array>"))) << hidden;
    EXPECT_TRUE(isRead(nestedXML(100, "<array><!-- <array> --><string><![CDATA[<dict>]]></string>", "</array>")));
}

TEST(PropertyListAsXML, SurvivesDamage) {
    const std::string samples[] = {test::readData("locations/oldstyle.webloc"),
                                   test::readData("locations/pliststyle.webloc"),
                                   binaryList({arrayOf({1, 2, 2, 3}), arrayOf({3}),
                                               "\x53"
                                               "abc",
                                               "\x62" + std::string("\0a\xD8\0", 4)})};
    for (const std::string& sample : samples) {
        EXPECT_TRUE(isRead(sample));
        for (std::size_t i = 0; i < sample.size(); ++i) {
            isRead(std::string(sample, 0, i));
            for (int damage : {0x01, 0x0F, 0x10, 0x80, 0xFF}) {
                std::string damaged = sample;
                damaged[i] = static_cast<char>(damaged[i] ^ damage);
                isRead(damaged);
            }
        }
    }
}

TEST(PropertyListValues, ComeBackFromBothForms) {
    const Date date = std::chrono::sys_days(std::chrono::year(1999) / 12 / 31) + std::chrono::seconds(7);
    PropertyListDictionary values = {{u"yes", {true}},
                                     {u"no", {false}},
                                     {u"\u00FC <&>", {String(u"\U0001F600 <&> \"")}},
                                     {u"", {String::empty()}},
                                     {u"date", {date}},
                                     {u"none", {Data()}},
                                     {u"bytes", {Data{0, 1, 0xFF}}},
                                     {u"half", {0.5}}};
    for (const std::int64_t number : {std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN, std::int64_t{1} << 32})
        values[String::fromUTF8(std::to_string(number))] = {number};
    PropertyList nested = {values};
    for (int level = 1; level < 256; ++level) nested = {PropertyListArray{nested}};
    for (const auto format : {PropertyListFormat::XML, PropertyListFormat::Binary}) {
        for (const PropertyList& list : {PropertyList{values}, PropertyList{PropertyListArray{}}, nested}) {
            const auto bytes = dataFromPropertyList(list, format);
            ASSERT_TRUE(bytes);
            EXPECT_TRUE(propertyListFromData(*bytes) == list);
        }
        for (const PropertyList& refused :
             {PropertyList{}, PropertyList{String()}, PropertyList{String(std::u16string_view(u"a\0b", 3))},
              PropertyList{Date::max()}, PropertyList{PropertyListArray{nested}},
              PropertyList{PropertyListDictionary{{String(), {true}}}}})
            EXPECT_FALSE(dataFromPropertyList(refused, format));
    }
}

}  // namespace
}  // namespace velmo
