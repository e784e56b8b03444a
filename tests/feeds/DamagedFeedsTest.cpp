// What happens to real feeds on their way: other charsets, downloads that break off, lost tags.
#include <cstring>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/TagScanner.h>

#include "FeedSamples.h"

namespace velmo {
namespace {

struct Charset {
    const char* name;
    StringEncoding encoding;
    View words;  ///< that it has and few others
};

constexpr StringEncoding other(std::uint32_t text) { return 0x80000000u | text; }

constexpr Charset Charsets[] = {
    {"utf-8", UTF8StringEncoding, u"\u0434\u0430 \u65E5\u672C \U0001F600"},
    {"utf-16", UTF16StringEncoding, u"\u0434\u0430 \u65E5\u672C \U0001F600"},
    {"iso-8859-1", ISOLatin1StringEncoding, u"caf\u00E9 \u00DF"},
    {"iso-8859-2", ISOLatin2StringEncoding, u"\u017Elu\u0165ou\u010Dk\u00FD"},
    {"windows-1251", WindowsCP1251StringEncoding, u"\u041C\u043E\u0441\u043A\u0432\u0430"},
    {"koi8-r", other(2562), u"\u041C\u043E\u0441\u043A\u0432\u0430"},
    {"shift_jis", ShiftJISStringEncoding, u"\u65E5\u672C\u8868\u30BD"},
    {"euc-jp", JapaneseEUCStringEncoding, u"\u65E5\u672C\u8A9E"},
    {"iso-2022-jp", ISO2022JPStringEncoding, u"\u65E5\u672C\u8A9E"},
    {"gb2312", other(EUCCNTextEncoding), u"\u4E2D\u6587"},
    {"big5", other(Big5TextEncoding), u"\u4E2D\u6587\u529F"},
    {"euc-kr", other(2368), u"\uD55C\uAD6D"},
    {"windows-1252", WindowsCP1252StringEncoding, u"\u201Ccaf\u00E9\u201D"},
};

/// The item of a feed in its markup, from its opening tag to behind its closing one.
Range firstItem(View feed) {
    Range item = Range::none();
    GetTagsOfString(feed, [&](const Tag& tag) {
        if (!tag.isNamed("ITEM") && !tag.isNamed("ENTRY") && !tag.isNamed("RSS:ITEM")) return false;
        if (!tag.isClosing()) item.location = tag.tagLocation;
        item.length = tag.tagLocation + tag.tagLength - item.location;
        return tag.isClosing();
    });
    return item;
}

void replaceAll(std::u16string& text, View sought, View other) {
    for (std::size_t at = 0; (at = text.find(sought, at)) != text.npos; at += other.size())
        text.replace(at, sought.size(), other);
}

/// The feed with so many of its first item, each with a number and some words in its title.
std::u16string withItems(View feed, std::size_t count, View words) {
    std::u16string text(feed);
    const Range item = firstItem(text);
    if (!item.isFound()) return text;
    const std::u16string one = text.substr(item.location, item.length);
    std::u16string items;
    for (std::size_t i = 1; i <= count; ++i) {
        std::u16string next = one;
        const std::u16string number = {u'#', static_cast<char16_t>(u'0' + i), u' '};
        for (View end : {View(u"</title>"), View(u"</rss:title>")})
            replaceAll(next, end, number + std::u16string(words) + std::u16string(end));
        items += next;
    }
    return text.replace(item.location, item.length, items);
}

/// The feed with a declaration of the charset in place of its own.
std::u16string declared(std::u16string feed, const char* charset) {
    if (const std::size_t start = feed.find(u"<?xml"); start != feed.npos)
        feed.erase(start, feed.find(u"?>", start) + 2 - start);
    return u"<?xml version=\"1.0\" encoding=\"" + std::u16string(charset, charset + std::strlen(charset)) + u"\"?>" +
           feed;
}

std::vector<FeedItem> itemsOf(Bytes bytes) { return getItemsOfFeed(stringWithMarkupData(bytes)); }

bool sameItem(const FeedItem& a, const FeedItem& b) {
    return a.title == b.title && a.link == b.link && a.date == b.date;
}

/// The feeds with five items each, as text.
std::vector<std::pair<std::string, std::u16string>> longerFeeds(View words) {
    std::vector<std::pair<std::string, std::u16string>> feeds;
    for (const test::FeedSample& sample : test::feedSamples())
        if (!sample.items.empty())
            feeds.emplace_back(sample.file, withItems(stringWithMarkupData(sample.bytes), 5, words));
    return feeds;
}

TEST(DamagedFeeds, ReadTheSameInAllCharsets) {
    std::size_t count = 0, items = 0;
    for (const Charset& charset : Charsets)
        for (const auto& [file, feed] : longerFeeds(charset.words)) {
            const std::u16string text = declared(feed, charset.name);
            const std::optional<Data> bytes = dataUsingEncoding(text, charset.encoding);
            if (!bytes) continue;  // a sample with characters of its own
            const Feed expected = readFeed(text), found = readFeed(stringWithMarkupData(*bytes));
            ASSERT_EQ(found.items.size(), expected.items.size()) << file << " " << charset.name;
            EXPECT_EQ(found.title, expected.title);
            EXPECT_EQ(found.isComplete, expected.isComplete);
            for (std::size_t i = 0; i < found.items.size(); ++i)
                EXPECT_TRUE(sameItem(found.items[i], expected.items[i])) << file << " " << charset.name;
            items += found.items.size();
            ++count;
        }
    EXPECT_GT(count, 200u);
    EXPECT_GT(items, 1000u);
}

TEST(DamagedFeeds, KeepAllItemsBeforeTheirEnd) {
    std::size_t count = 0;
    for (const Charset& charset : Charsets)
        for (const auto& [file, feed] : longerFeeds(charset.words)) {
            const std::u16string text = declared(feed, charset.name);
            const std::optional<Data> bytes = dataUsingEncoding(text, charset.encoding);
            if (!bytes) continue;
            const std::vector<FeedItem> all = itemsOf(*bytes);
            const std::size_t unit = charset.encoding == UTF16StringEncoding ? 2 : 1;
            std::size_t whole = 0;
            std::string seen;  // one byte of each unit so far
            for (std::size_t end = 0; end < bytes->size(); ++end) {
                if (end % unit == 0 && end > 0) {
                    seen += static_cast<char>(std::max((*bytes)[end - 1], (*bytes)[end - unit]));
                    whole += seen.ends_with("</item>") || seen.ends_with("</entry>") || seen.ends_with("</rss:item>");
                }
                if (end % 64 != 0) continue;
                const std::vector<FeedItem> items = itemsOf(Bytes(*bytes).subspan(0, end));
                ASSERT_GE(items.size(), whole) << file << " " << charset.name << " at " << end;
                for (std::size_t i = 0; i < whole; ++i)
                    ASSERT_TRUE(sameItem(items[i], all[i])) << file << " " << charset.name << " at " << end;
                ++count;
            }
            EXPECT_EQ(whole, all.size()) << file;
        }
    EXPECT_GT(count, 5000u);
}

TEST(DamagedFeeds, LoseOneItemWithATag) {
    std::size_t count = 0, lost = 0;
    for (const auto& [file, feed] : longerFeeds(u"x")) {
        const std::vector<FeedItem> all = getItemsOfFeed(feed);
        bool isRoot = true;
        GetTagsOfString(feed, [&, &text = feed, &name = file](const Tag& tag) {
            if (isRoot || tag.tagLength == 0) {  // without its root it is no feed
                isRoot = tag.isNamed("XML") || tag.kind != TagKind::Element;
                return false;
            }
            std::u16string damaged = text;
            damaged.erase(tag.tagLocation, tag.tagLength);
            const std::vector<FeedItem> items = getItemsOfFeed(damaged);
            std::size_t kept = 0;
            for (const FeedItem& item : items)
                kept += std::ranges::any_of(all, [&](const FeedItem& each) { return sameItem(each, item); });
            EXPECT_GE(kept + 1, all.size()) << name << " without " << utf8(tag.whole());
            lost += all.size() - std::min(kept, all.size());
            ++count;
            return false;
        });
    }
    EXPECT_GT(count, 1000u);
    EXPECT_LT(lost * 2, count);
}

}  // namespace
}  // namespace velmo
