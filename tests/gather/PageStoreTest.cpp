#include <velmocore/gather/PageStore.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/KeyedStorage.h>

#include <map>

#include "FailingCalls.h"
#include "FolderFixture.h"

namespace velmo {
namespace {

using test::FailingCalls;
using Texts = std::map<String, String>;

PageRecord pageOf(const String& key, const String& text) {
    PageRecord page;
    page.key = key;
    page.url = URL::URLWithString(key);
    page.title = key;
    page.text = text;
    return page;
}

String numbered(const char* prefix, std::size_t number) { return String::fromUTF8(prefix + std::to_string(number)); }

class PageStoreTest : public test::FolderTest {
protected:
    PageStore updating() const { return PageStore::openForUpdating(at("s")); }
    PageStore reading() const { return PageStore::openForReading(at("s")); }

    /// What a reader finds: each page once, and the same by its key as by a walk.
    static Texts textsOf(const PageStore& store) {
        Texts texts;
        store.forEachPage([&](const StoredPage& page) {
            if (!page.isIntact()) {
                EXPECT_TRUE(page.text().isAbsent());
                return true;
            }
            const String key = String::fromUTF8(page.key());
            EXPECT_TRUE(texts.emplace(key, page.text()).second) << "twice: " << key.utf8();
            const auto record = store.page(key);
            EXPECT_TRUE(record && record->text == page.text()) << key.utf8();
            return true;
        });
        return texts;
    }
    Texts texts() const { return textsOf(reading()); }

    static std::vector<std::uint64_t> notesOf(const PageStore& store) {
        std::vector<std::uint64_t> notes;
        store.forEachNote([&](std::uint64_t, Bytes note) {
            notes.push_back(unsignedForKey(note, 1));
            return true;
        });
        return notes;
    }
};

Data noteOf(std::uint32_t value) {
    Data note;
    addUnsigned(note, value, 1);
    return note;
}

TEST_F(PageStoreTest, TellsWhatBecameOfAPage) {
    const struct {
        const char16_t *key, *text;
        PutResult result;
    } cases[] = {
        {u"http://a", u"tea", PutResult::Added},     {u"http://a", u"tea", PutResult::Unchanged},
        {u"http://b", u"tea", PutResult::Duplicate}, {u"http://b", u"milk", PutResult::Added},
        {u"http://b", u"tea", PutResult::Replaced},  // whose key stands there is never a duplicate
        {u"http://b", u"tea", PutResult::Unchanged}, {u"http://a", u"cocoa", PutResult::Replaced},
        {u"http://c", u"milk", PutResult::Added},  // nobody has that text any more
        {u"http://d", u"", PutResult::Added},        {u"http://e", u"", PutResult::Added},  // nobody's duplicate
        {u"http://e", u"", PutResult::Unchanged},    {u"", u"sugar", PutResult::Failed},
    };
    const Texts expected = {{u"http://a", u"cocoa"},
                            {u"http://b", u"tea"},
                            {u"http://c", u"milk"},
                            {u"http://d", String()},
                            {u"http://e", String()}};
    PageStore store = updating();
    for (const auto& row : cases) {
        EXPECT_EQ(store.put(pageOf(row.key, row.text)), row.result)
            << String(row.key).utf8() << String(row.text).utf8();
        if (row.result == PutResult::Replaced) store = {}, store = updating();
    }
    EXPECT_EQ(store.keyOfText(digestOfText(pageOf({}, u"milk"))), String(u"http://c"));
    EXPECT_TRUE(store.keyOfText(digestOfText(pageOf({}, u"coke"))).isAbsent());
    EXPECT_EQ(store.page(u"http://a")->text, String(u"cocoa"));
    EXPECT_FALSE(reading().isValid()) << "a writer has it alone";
    store = {};
    EXPECT_EQ(texts(), expected);
    EXPECT_EQ(reading().put(pageOf(u"http://f", u"x")), PutResult::Failed);
}

TEST_F(PageStoreTest, TellsWhyItCannotBeOpened) {
    std::filesystem::create_directory(at("folder"));
    Error error;
    EXPECT_FALSE(PageStore::openForReading(at("none"), &error).isValid());
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_FALSE(PageStore::openForReading(at("folder"), &error).isValid());
    EXPECT_EQ(error.code, EINVAL);
    const PageStore writer = updating();
    EXPECT_FALSE(PageStore::openForReading(at("s"), &error).isValid());
    EXPECT_EQ(error.code, EWOULDBLOCK);
    EXPECT_FALSE(PageStore::openForReading(Path(), &error).isValid());
}

/// A map and a list of numbers beside the store, over hundreds of changes and openings.
TEST_F(PageStoreTest, HoldsWhatWasPut) {
    std::mt19937 random(7);
    Texts expected;
    std::vector<std::uint64_t> notes, numbers;
    PageStore store = updating();
    for (std::size_t i = 0; i < 3000; ++i) {
        const String key = numbered("http://h.org/", random() % 200);
        if (random() % 20 == 0) {
            numbers.push_back(store.addNote(noteOf(static_cast<std::uint32_t>(i))).value());
            notes.push_back(i);
        } else if (!notes.empty() && random() % 20 == 0) {
            const std::size_t which = random() % notes.size();
            EXPECT_TRUE(store.removeNote(numbers[which]));
            EXPECT_FALSE(store.removeNote(numbers[which]));
            notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(which));
            numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(which));
        } else {
            const String text = numbered("text ", i);
            EXPECT_EQ(store.put(pageOf(key, text)), expected.contains(key) ? PutResult::Replaced : PutResult::Added);
            expected[key] = text;
        }
        if (i % 500 == 499) {
            EXPECT_TRUE(store.synchronize());
            store = {};
            ASSERT_EQ(texts(), expected);
            ASSERT_EQ(notesOf(reading()), notes);
            store = updating();
            ASSERT_EQ(notesOf(store), notes);
        }
    }
}

TEST_F(PageStoreTest, TakesTheLaterOfTwo) {
    const Data first = dataFromPageRecord(pageOf(u"http://a", u"first")),
               second = dataFromPageRecord(pageOf(u"http://a", u"second"));
    std::uint64_t later = 0;
    {
        auto blocks = KeyedStorage::keyedStorageForUpdatingAtPath(at("s"));
        for (const Data& block : {first, dataFromPageRecord(pageOf(u"http://b", u"other")), second})
            ASSERT_TRUE(blocks.appendBlock(block));
        later = blocks.offsetOfAppendedBlock();
    }
    const std::string file = bytes("s");
    EXPECT_EQ(texts(), (Texts{{u"http://a", u"second"}, {u"http://b", u"other"}}));
    updating();
    const auto live = [&] {
        std::size_t blocks = 0;
        auto storage = KeyedStorage::keyedStorageForReadingAtPath(at("s"));
        while (storage.nextAvailableBlock()) ++blocks;
        return blocks;
    };
    EXPECT_EQ(live(), 2u) << "the older one is deleted";
    std::string damaged = file;
    damaged[later + second.size()] ^= 1;  // in its last records
    write("s", damaged);
    EXPECT_EQ(texts(), (Texts{{u"http://a", u"first"}, {u"http://b", u"other"}}));
}

/// To have hundreds of files stored on a disk takes long, and is not what is looked at.
class WithoutDisk : public detail::FileCalls {
    int fsync(int) override { return 0; }
};

class DamagedPageStore : public PageStoreTest {
protected:
    void SetUp() override {
        PageStoreTest::SetUp();
        PageStore store = updating();
        for (std::size_t i = 0; i < 8; ++i) {
            const PageRecord page = pageOf(numbered("http://h.org/", i), numbered("text ", i));
            ASSERT_EQ(store.put(page), PutResult::Added);
            pages_.push_back(page);
        }
        pages_[3].text = u"another text";
        ASSERT_EQ(store.put(pages_[3]), PutResult::Replaced);
        ASSERT_TRUE(store.synchronize());
        store = {};
        file_ = bytes("s");
        auto blocks = KeyedStorage::keyedStorageForReadingAtPath(at("s"));
        while (const auto block = blocks.nextAvailableBlock())
            ends_[stringForKey(*block, keyOfCode("PKEY"))] = {blocks.offsetOfLastBlock(),
                                                              blocks.offsetOfLastBlock() + blocks.lengthOfLastBlock()};
        ASSERT_EQ(ends_.size(), pages_.size());
    }
    /// What lies outside of the damage is found, what is found is right, and all can be put again.
    void check(const std::string& damaged, std::size_t from, std::size_t to) {
        std::filesystem::remove(at("s"));  // as a file that is cut and written again is stored at once
        write("s", damaged);
        const Texts found = texts();
        for (const PageRecord& page : pages_) {
            const auto [start, end] = ends_.at(page.key);
            const auto entry = found.find(page.key);
            ASSERT_TRUE(entry != found.end() || (start < to && from < end)) << "lost, damage at " << from;
            ASSERT_TRUE(entry == found.end() || entry->second == page.text) << "wrong, damage at " << from;
        }
        ASSERT_LE(found.size(), pages_.size());
        if (from % 7 != 0) return;
        PageStore store = updating();
        for (const PageRecord& page : pages_) ASSERT_NE(store.put(page), PutResult::Failed);
        store = {};
        ASSERT_EQ(texts().size(), pages_.size()) << from;
    }

    WithoutDisk calls_;
    const detail::FileCallsInstead these_{calls_};
    std::vector<PageRecord> pages_;
    std::string file_;
    std::map<String, std::pair<std::uint64_t, std::uint64_t>> ends_;
};

TEST_F(DamagedPageStore, IsReadWhereItIsWhole) {
    std::mt19937 random(3);
    for (std::size_t at = 0; at < file_.size(); ++at) {
        std::string damaged = file_;
        damaged[at] = static_cast<char>(damaged[at] + 1 + random() % 255);
        ASSERT_NO_FATAL_FAILURE(check(damaged, at, at + 1));
    }
}

TEST_F(DamagedPageStore, MayEndAnywhere) {
    for (std::size_t end = 0; end < file_.size(); ++end)
        ASSERT_NO_FATAL_FAILURE(check(file_.substr(0, end), end, file_.size()));
}

/// Each call of the system fails in each way: what was promised stands there, once, and right.
TEST_F(PageStoreTest, KeepsItsPromisesWhenCallsFail) {
    std::size_t failed = 0;
    for (const auto way : {FailingCalls::Way::Fails, FailingCalls::Way::IsShort, FailingCalls::Way::FindsDiskFull,
                           FailingCalls::Way::IsInterrupted})
        for (std::size_t failing = 0;; ++failing) {
            std::filesystem::remove(at("s"));
            FailingCalls calls;
            calls.failing = failing, calls.way = way;
            Texts put, promised;
            {
                const detail::FileCallsInstead these(calls);
                PageStore store = updating();
                for (std::size_t i = 0; store.isValid() && i < 12; ++i) {
                    const PageRecord page = pageOf(numbered("http://h.org/", i % 5), numbered("text ", i));
                    if (store.put(page) != PutResult::Failed) put[page.key] = page.text;
                    if (i % 3 == 2 && store.synchronize()) promised = put;
                }
            }
            const Texts found = std::filesystem::exists(at("s")) ? texts() : Texts();
            for (const auto& [key, text] : promised)
                ASSERT_TRUE(found.contains(key)) << "lost, call " << failing << " " << static_cast<int>(way);
            if (!calls.hasFailed) {
                ASSERT_EQ(found, put);
                break;
            }
            ++failed;
        }
    EXPECT_GT(failed, 40u);
}

}  // namespace
}  // namespace velmo
