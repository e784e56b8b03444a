// What the tool writes for programs, beside the slowest way to write it: one unit at a time.
#include <map>

#include "ToolFixture.h"

namespace velmo {
namespace {

using JsonTool = Tool;

std::string escaped(char16_t unit) {
    constexpr const char* Digits = "0123456789abcdef";
    std::string out = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += Digits[unit >> shift & 15];
    return out;
}

/// A text in quotes: what JSON or a terminal must not get raw is escaped, and so is half a pair.
std::string inQuotes(View text) {
    static const std::map<char16_t, std::string> named = {{u'"', "\\\""}, {u'\\', "\\\\"}, {u'\b', "\\b"}};
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i], next = i + 1 < text.size() ? text[i + 1] : u'\0';
        const bool turns = (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000)
            out += String(text.substr(i++, 2)).utf8();
        else if (named.contains(unit))
            out += named.at(unit);
        else if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || turns || (unit >= 0xD800 && unit < 0xE000))
            out += escaped(unit);
        else
            out += String(text.substr(i, 1)).utf8();
    }
    return out + "\"";
}

TEST_F(JsonTool, WritesHostileTextsAsAWriterOfSingleUnitsDoes) {
    // Nothing white, which the text of a page would not keep.
    constexpr char16_t Units[] = {u'a',   u'"',   u'\\',  u'\b',  0x1,    0x1B,   0x1F,   0x7F,   0x80,   0x9B,
                                  0xE9,   0x202A, 0x202E, 0x2066, 0x2069, 0x200E, 0x2603, 0xD800, 0xD83D, 0xDBFF,
                                  0xDC00, 0xDE00, 0xDFFF, 0xE000, 0xFDD0, 0xFDEF, 0xFFFE, 0xFFFF};
    std::mt19937 random(1);
    // The longest are written in several pieces, the borders of which must split no pair.
    for (std::size_t length : {1u, 2u, 30u, 4095u, 4096u, 4097u, 12345u}) {
        std::u16string text;
        std::string page = "<p>";
        const std::size_t kinds = length % 2 ? std::size(Units) : 1;
        for (std::size_t i = 0; i < length; ++i)
            text += kinds == 1 ? (i ? u"\xD83D\xDE00"[i % 2] : u'a') : Units[random() % kinds];
        for (const char16_t unit : text) page += "&#" + std::to_string(unit) + ";";
        EXPECT_EQ(run("text --json -", page).out, "{\"file\":\"-\",\"text\":" + inQuotes(text) + "}\n") << length;
    }
}

TEST_F(JsonTool, WritesManyMembersInTheirOrder) {
    std::map<std::string, std::string> params;
    std::string url = "http://h/?";
    std::mt19937 random(2);
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "n" + std::to_string(random() % 2000), value = std::to_string(i);
        params[name] = value;
        url += (i ? "&" : "") + name + "=" + value;
    }
    std::string members;
    for (const auto& [name, value] : params)
        members += (members.empty() ? "" : ",") + ("\"" + name + "\":\"" + value + "\"");
    EXPECT_EQ(run("url params --json", url + "\n").out,
              "{\"url\":\"" + url + "\",\"params\":{" + members + "},\"count\":3000}\n");
}

}  // namespace
}  // namespace velmo
