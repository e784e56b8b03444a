#include <velmocore/gather/PageRecord.h>
#include <velmocore/storage/KeyedDataEditing.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr PageRecordWriting Writings[] = {{}, {.compressText = true}, {.compressOthers = false}};

String longText() {
    std::u16string text;
    for (int i = 0; i < 300; ++i) text += u"Tea \u00E4\u20AC\U0001F375 is drunk from a cup. ";
    return text;
}

PageRecord fullPage() {
    PageRecord page;
    page.url = URL::URLWithString(u"http://www.h.org/a/");
    page.key = u"http://h.org/a";
    page.kind = PageKind::Feed;
    page.title = u"\u00DCber Tee";
    page.author = u"A. B.";
    page.description = u"cups";
    page.date = ReferenceDate + std::chrono::seconds(5);
    page.language = u"de";
    page.charset = u"utf-8";
    page.text = longText();
    page.words = 2400;
    page.links = {{URL::URLWithString(u"http://a.org/"), u"A", URL::URLWithString(u"http://a.org/t.png")},
                  {URL::URLWithString(u"http://b.org/"), {}, {}}};
    page.fetched = ReferenceDate + std::chrono::seconds(6);
    page.status = -1;
    page.isErrorPage = true;
    page.digest = digestOfText(page);
    page.bytes = Data(5000, 'x');
    return page;
}

/// Every field; what is absent and what is not.
void expectEqual(const PageRecord& a, const PageRecord& b) {
    const auto strings = [](const PageRecord& page) {
        Strings all = {page.url.absoluteString(), page.key,      page.title,   page.author,
                       page.description,          page.language, page.charset, page.text};
        for (const PageLink& link : page.links)
            for (const String& part : {link.url.absoluteString(), link.text, link.thumbnail.absoluteString()})
                all.push_back(part);
        return all;
    };
    EXPECT_EQ(strings(a), strings(b));
    EXPECT_EQ(a.text.isAbsent(), b.text.isAbsent());
    EXPECT_EQ(std::tuple(a.kind, a.date, a.fetched, a.words, a.status, a.isErrorPage, a.digest, a.bytes),
              std::tuple(b.kind, b.date, b.fetched, b.words, b.status, b.isErrorPage, b.digest, b.bytes));
}

TEST(PageRecord, ComesBack) {
    PageRecord least;
    least.key = u"k";
    least.digest = digestOfText(least);
    for (const PageRecordWriting& writing : Writings)
        for (const PageRecord& page : {fullPage(), least}) {
            const Data block = dataFromPageRecord(page, writing);
            EXPECT_TRUE(isValidKeyedData(block));
            const auto read = pageRecordFromData(block);
            ASSERT_TRUE(read);
            expectEqual(*read, page);
            EXPECT_EQ(StoredPage(block).key(), page.key.utf8());
        }
    EXPECT_LT(dataFromPageRecord(fullPage(), {.compressText = true}).size(), 2000u);
    EXPECT_GT(dataFromPageRecord(fullPage(), {.compressOthers = false}).size(),
              dataFromPageRecord(fullPage()).size() + 4000);
}

TEST(PageRecord, HoldsWhatUtf8CannotInItsWay) {
    PageRecord page;
    page.key = u"k";
    page.text = std::u16string(u"a\xD800 b\xDC00") + u'\0';
    page.title = page.text;
    page.author = u"";
    for (const PageRecordWriting& writing : Writings) {
        const auto read = pageRecordFromData(dataFromPageRecord(page, writing));
        const String expected = std::u16string(u"a\uFFFD b\uFFFD") + u'\0';
        EXPECT_EQ(read->text, expected);
        EXPECT_EQ(read->title, expected);
        EXPECT_TRUE(read->author.isAbsent()) << "empty is absent";
    }
    page.text = std::u16string(2000, u'\xDFFF');  // compressed
    EXPECT_EQ(pageRecordFromData(dataFromPageRecord(page, {.compressText = true}))->text,
              String(std::u16string(2000, u'\uFFFD')));
}

/// What is damaged is absent or another value, never a crash; bytes without a key are no page.
TEST(PageRecord, AnyBytesAreRead) {
    EXPECT_FALSE(pageRecordFromData({}));
    EXPECT_FALSE(pageRecordFromData(Bytes("<html>")));
    std::mt19937 random(5);
    for (const PageRecordWriting& writing : Writings) {
        const Data block = dataFromPageRecord(fullPage(), writing);
        std::size_t pages = 0;
        for (std::size_t length = 0; length < block.size(); length += 1 + length / 500)
            pages += pageRecordFromData(Bytes(block).first(length)).has_value();
        EXPECT_GT(pages, 0u);
        for (std::size_t at = 0; at < block.size(); at += 1 + at / 500) {
            Data damaged = block;
            damaged[at] = static_cast<std::uint8_t>(random());
            const auto page = pageRecordFromData(damaged);
            EXPECT_TRUE(!page || page->links.size() <= 2);
        }
    }
    const Data block = dataFromPageRecord(fullPage());
    EXPECT_FALSE(StoredPage(block, 0).isIntact());
    EXPECT_TRUE(StoredPage(block, 0).text().isAbsent());
    EXPECT_TRUE(StoredPage(block, 0).links().empty());
    EXPECT_FALSE(StoredPage(block, 0).bytes());
}

}  // namespace
}  // namespace velmo
