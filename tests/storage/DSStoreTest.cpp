#include <velmocore/storage/DSStore.h>

#include <sys/file.h>

#include <map>
#include <set>
#include <thread>

#include "../../bench/FolderStore.h"
#include "StoreFixture.h"
#include "storage/BigEndian.h"
#include "storage/DSStoreCache.h"

namespace velmo {
namespace {

using namespace bench;
using test::dataOf;
using Lines = std::vector<std::string>;

constexpr std::uint32_t Comment = FinderCommentCodec, Code = 0x636F6465;

std::optional<DSStore> opened(const std::string& bytes) {
    return DSStore::storeWithFile(DSStoreFile::fileWithData(dataOf(bytes)));
}

std::string shown(const DSStoreValue& value) {
    if (const auto* text = std::get_if<String>(&value)) return text->utf8();
    if (const auto* data = std::get_if<Data>(&value)) return std::to_string(data->size()) + " bytes";
    if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
    return std::holds_alternative<bool>(value) ? std::to_string(std::get<bool>(value)) : "none";
}
std::string shown(const DSStoreEntry& entry) {
    return entry.filename().utf8() + " " + stringOfDSStoreCode(entry.codec()).utf8() + " " + shown(entry.value());
}

struct All {
    Lines lines;
    std::size_t damaged = 0;
    explicit All(const std::string& bytes) {
        if (const auto store = opened(bytes))
            damaged = store->forEachEntry([&](const auto& entry) { return lines.push_back(shown(entry)), true; });
    }
};

/// The slow, obvious reader of nodes: recursive, on the bytes of a file whose table stands where it should.
class Reference {
public:
    explicit Reference(const std::string& bytes) : bytes_(bytes), left_(bytes.size()) {
        if (const auto store = opened(bytes)) places_ = store->numberOfBlocks(), read(store->rootnode());
    }
    Lines lines;

private:
    std::size_t number(std::size_t at, std::size_t end, std::size_t width = 4) const {
        std::size_t value = 0;
        for (std::size_t i = at; i < at + width && at + width <= end; ++i)
            value = value << 8 | static_cast<std::uint8_t>(bytes_[i]);
        return value;
    }
    std::string text(std::size_t from, std::size_t to) const {
        std::u16string units;
        for (; from < to; from += 2) units += static_cast<char16_t>(number(from, to, 2));
        return utf8(units);
    }
    void read(std::size_t node) {
        const std::size_t table = 4 + number(8, 12) + 8;
        const std::size_t place = node < places_ ? number(table + 4 * node, bytes_.size()) : 0;
        const std::size_t size = std::size_t{1} << (place & 31), start = 4 + (place & ~31u), end = start + size;
        if (place == 0 || end > bytes_.size() || size > left_ || !used_.insert(node).second) return;
        left_ -= size;
        const std::size_t next = number(start, end);
        std::size_t at = start + 8;
        for (std::size_t left = number(start + 4, end); left > 0 && at < end; --left) {
            if (next != 0 && number(at, end) != node) read(number(at, end));
            if (next != 0) at += 4;
            at = readRecord(at, end);
        }
        if (next != 0 && next != node) read(next);
    }
    /// Where the next one is; the end if there cannot be one.
    std::size_t readRecord(std::size_t at, std::size_t end) {
        const std::map<std::string, int> widths = {{"bool", 1}, {"comp", 8}, {"dutc", 8},
                                                   {"long", 4}, {"shor", 4}, {"type", 4}};
        const std::size_t name = 2 * number(at, end), codec = at + 4 + name, value = codec + 8;
        if (name == 0 || value > end) return end;
        const std::string type = bytes_.substr(codec + 4, 4);
        const std::size_t unit = type == "blob" ? 1 : type == "ustr" ? 2 : 0, count = unit * number(value, end);
        const std::size_t width = unit ? 4 + count : widths.contains(type) ? widths.at(type) : 0;
        if (value + (unit ? 4 : 0) > end || value + width > end) return end;
        const auto bits = static_cast<std::int64_t>(number(value, end, width % 9));
        std::string result = std::to_string(width == 4 ? static_cast<std::int32_t>(bits) : bits);
        if (unit) result = unit == 1 ? std::to_string(count) + " bytes" : text(value + 4, value + width);
        if (unit ? count == 0 : width == 0) result = "none";
        const auto code = static_cast<std::uint32_t>(number(codec, end));
        lines.push_back(text(at + 4, codec) + " " + stringOfDSStoreCode(code).utf8() + " " + result);
        return width == 0 ? end : value + width;
    }

    const std::string& bytes_;
    std::size_t places_ = 0, left_;
    std::set<std::size_t> used_;
};

class FolderMetadata : public test::StoreTest {};

TEST_F(FolderMetadata, RealFiles) {
    const std::pair<const char*, Lines> cases[] = {
        {"icon-locations", {"bam Iloc 16 bytes", "bar Iloc 16 bytes", "baz Iloc 16 bytes"}},
        {"comments-small",
         {". cmmt comment on the folder itself", "Annual report 2009.pdf cmmt Signed copy, see also the March minutes",
          "notes.txt Iloc 16 bytes", "notes.txt cmmt draft", "Plain.rtf Iloc 16 bytes"}},
        {"dmg-window",
         {". bwsp 249 bytes", ". icvl 1768124022", ". icvp 817 bytes", ". pBBk 664 bytes", ". vSrn 1",
          ".background Iloc 16 bytes", ".fseventsd Iloc 16 bytes", "Applications Iloc 16 bytes",
          "Noot.app Iloc 16 bytes"}},
    };
    for (const auto& [name, expected] : cases) {
        const std::string bytes = test::readData("dsstore/" + std::string(name) + ".DS_Store");
        EXPECT_EQ(All(bytes).lines, expected);
        EXPECT_EQ(All(bytes).damaged, 0u);
        EXPECT_EQ(opened(bytes)->records(), expected.size());
    }
    const auto store = opened(test::readData("dsstore/icon-locations.DS_Store"));
    const Data place = std::get<Data>(store->valueForFilename(u"bar", 0x496C6F63));
    EXPECT_EQ(detail::bigEndian64(place.data()), 256ull << 32 | 235);
    EXPECT_EQ(store->description(),
              u"DSStore: 256 blocks, Root: DSStoreBlock: 2048 bytes at offset 4096, Entries:\n{\n    DSDB = 1;\n}");
}

// Trees of one to many levels, in files and in memory, beside the slow reader.
TEST_F(FolderMetadata, TreesOfAllSizes) {
    const std::size_t sizes[][2] = {{0, 9}, {1, 9}, {9, 9}, {10, 9}, {99, 9}, {900, 9}, {1000, 1}, {10128, 30}};
    for (const auto& [count, perNode] : sizes) {
        FolderStore made;
        const std::string bytes = made.file(made.addTree(sortedComments(count), perNode));
        const All found(bytes);
        EXPECT_EQ(found.damaged, 0u);
        ASSERT_EQ(found.lines.size(), count);
        EXPECT_EQ(found.lines, Reference(bytes).lines) << count;
        write(".DS_Store", bytes);
        const auto store = DSStore::storeWithDirectory(folder_);
        ASSERT_TRUE(store);
        for (std::size_t i = 0; i < count; i += 1 + count / 9) {
            const std::string number = std::to_string(1'000'000 + i), name = "file " + number + ".txt";
            EXPECT_EQ(store->finderCommentForFilename(String::fromUTF8(name)).utf8(), "a comment on " + number);
            EXPECT_EQ(found.lines[i], name + " cmmt a comment on " + number);
        }
        EXPECT_FALSE(store->entryForFilename(u"FILE 1000000.txt", Comment) || store->entryForFilename(u"", Comment));
    }
}

TEST_F(FolderMetadata, ValuesOfEveryType) {
    const std::u16string name(600, u'n');
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"blob", bigEndian(3) + "abc", "3 bytes"},
        {"blob", bigEndian(0), "none"},
        {"bool", "\1", "1"},
        {"comp", bigEndian(~0ull - 4, 8), "-5"},
        {"dutc", bigEndian(1ull << 40, 8), "1099511627776"},
        {"long", bigEndian(~0u), "-1"},
        {"shor", bigEndian(7), "7"},
        {"type", "icnv", "1768124022"},
        {"ustr", counted(u"\u00E9\xD800"), "\xC3\xA9\xEF\xBF\xBD"},
        {"ustr", bigEndian(0), "none"},
    };
    for (const auto& [type, value, expected] : cases) {
        FolderStore made;
        const std::string last = comment(u"z", u"end"), own = record(name, "code", type, value);
        const std::uint32_t block = made.add(own + last);
        const auto store = opened(made.file(made.addNode(Lines{own, last})));
        EXPECT_EQ(shown(store->valueForFilename(u"z", Comment)), "end");
        DSStoreStream fromFile = *store->streamAtIndex(block), passing = fromFile;
        DSStoreBlock loaded = *store->blockAtIndex(block);
        EXPECT_EQ(shown(DSStoreEntry::valueForFilename(name, Code, fromFile).value), expected) << type;
        EXPECT_EQ(shown(DSStoreEntry::valueForFilename(name, Code, loaded).value), expected) << type;
        EXPECT_FALSE(DSStoreEntry::valueForFilename(std::u16string(600, u'm'), Code, passing).isWanted);
        for (DSStoreStream* stream : {&fromFile, &passing, static_cast<DSStoreStream*>(&loaded)}) {
            const auto next = DSStoreEntry::entryForFilename(u"z", Comment, *stream);
            EXPECT_EQ(next ? next->description() : String(), u"DSStoreEntry <z>: cmmt:ustr") << type;
        }
    }
    // Cut off at the end of its block it is none, or as a number 0, and an unknown type has none.
    const std::tuple<std::string, const char*, std::size_t> ends[] = {
        {{"ustr\0\1", 6}, "none", 0}, {"long\1\1", "0", 0}, {"some\1\1", "none", 1}};
    for (const auto& [end, expected, count] : ends) {
        FolderStore made;
        const std::string bytes = made.file(made.addNode(Lines{record(u"aaaaa", "code", end, "")}));
        EXPECT_EQ(shown(opened(bytes)->entryForFilename(u"aaaaa", Code)->value()), expected);
        EXPECT_EQ(All(bytes).lines.size(), count);
        EXPECT_EQ(All(bytes).damaged, 1u);
    }
}

TEST_F(FolderMetadata, NodesThatCannotBe) {
    FolderStore made;
    const std::uint32_t leaf = made.addNode(Lines{comment(u"a", u"1")}), self = made.nextIndex();
    made.addNode(Lines{comment(u"b", u"2")}, self, std::vector{self});
    const Lines own(4, comment(u"c", u"3"));
    const std::vector<std::uint32_t> children = {leaf, leaf, 256, self};
    const std::string bytes = made.file(made.addNode(own, 0x80000000u, children));
    testing::internal::CaptureStdout();
    EXPECT_EQ(shown(opened(bytes)->valueForFilename(u"b", Comment)), "2");
    EXPECT_TRUE(opened(bytes)->finderCommentForFilename(u"g").isAbsent());
    const std::string told = "Node 2 already used.\nInvalid node 256 (max 256).\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), told + told + "Invalid node -2147483648 (max 256).\n");
    EXPECT_EQ(All(bytes).damaged, 3u);
    // As deep as there are blocks; many nodes in one place; and many records in a small block.
    FolderStore deep, many, heap;
    const std::uint32_t large = heap.addNode(sortedComments(100));
    const std::vector<std::uint32_t> same = {large, heap.addAgain(large), heap.addAgain(large), heap.addAgain(large)};
    EXPECT_EQ(All(heap.file(heap.addNode(own, large, same))).lines.size(), 104u);
    for (std::uint32_t i = 2; i < 100'000; ++i) deep.addNode(Lines{comment(u"x", u"")}, i, std::vector{i + 1});
    EXPECT_EQ(All(deep.file(2)).lines.size(), 100'000u - 2);
    const auto endless = opened(many.file(many.add(bigEndian(0) + bigEndian(~0u) + comment(u"a", u"1"))));
    EXPECT_FALSE(endless->entryForFilename(u"a", 0) || endless->entryForFilename(u"b", Comment));
}

TEST_F(FolderMetadata, WhatIsNoStore) {
    FolderStore made;
    const std::string whole = made.file(made.addTree(sortedComments(3), 9)), path = at(".DS_Store");
    const std::pair<std::size_t, char> damages[] = {{3, 2}, {4, 'b'}, {11, 1}, {19, 1}, {36, 1}};
    for (const auto& [place, byte] : damages) {
        std::string damaged = whole;
        damaged[place] = byte;
        EXPECT_FALSE(opened(damaged)) << place;
    }
    for (const Path& folder : {Path(folder_), Path(at("none")), Path()})
        EXPECT_FALSE(DSStore::storeWithDirectory(folder));
    write(".DS_Store", whole);
    const int writer = ::open(path.c_str(), O_RDWR);
    {
        const auto reader = DSStore::storeWithDirectory(folder_), other = DSStore::storeWithDirectory(folder_);
        EXPECT_TRUE(reader && other && ::flock(writer, LOCK_EX | LOCK_NB) != 0);
    }
    EXPECT_EQ(::flock(writer, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(DSStore::storeWithDirectory(folder_));
    ::close(writer);
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_FALSE(DSStore::storeWithDirectory(folder_));
    EXPECT_EQ(logged_, "Failed fdopen: " + path + " 22\n");
}

TEST_F(FolderMetadata, Blocks) {
    FolderStore made;
    std::string bytes = made.file(made.addTree(sortedComments(3), 9));
    const auto end = static_cast<std::uint32_t>(bytes.size() - 4);
    bytes.replace(44 + 4 * 4, 12, bigEndian(0x1005) + bigEndian(0x2000 | 31) + bigEndian(end | 2));
    auto store = DSStoreAllocator::allocatorWithFile(DSStoreFile::fileWithData(dataOf(bytes)));
    ASSERT_TRUE(store);
    const std::uint32_t expected[][3] = {{3, 0, 0}, {4, 0x1000, 32}, {5, 0x2000, 1u << 31}, {6, end, 4}, {256, 0, 0}};
    for (const auto& [index, offset, size] : expected) {
        EXPECT_EQ(store->offsetAtIndex(index), offset);
        EXPECT_EQ(store->sizeAtIndex(index), size);
        EXPECT_FALSE(store->blockAtIndex(index)) << index;
        EXPECT_EQ(store->streamAtIndex(index).has_value(), index < store->numberOfStreams());
    }
    EXPECT_EQ(store->streamAtIndex(5)->readDataOfLength(1u << 30), std::nullopt);
    EXPECT_EQ(store->indexOfEntryNamed("DSDB"), 1u);
    EXPECT_EQ(store->indexOfEntryNamed(""), NotFound);
    EXPECT_EQ(store->description(), u"DSStoreAllocator: 256 blocks, Entries:\n{\n    DSDB = 1;\n}");
    DSStoreBlock block = *store->blockForEntryNamed("DSDB");
    DSStoreStream stream = *store->streamForEntryNamed("DSDB");
    EXPECT_TRUE(stream.isEqual(*store->streamAtIndex(1)) && !stream.isEqual(block));
    EXPECT_EQ(stream.readUInt64(), block.readUInt64());
    store->close();
    std::uint8_t room[] = {7};
    EXPECT_EQ(block.readUInt32() + stream.readUInt32(), 2u);
    block.skipBytes(100);
    EXPECT_TRUE(block.isEOF() && block.readBytes(room) == 0 && room[0] == 0);
}

TEST_F(FolderMetadata, CommentsByPathAreKeptForAMinute) {
    const auto put = [&](std::u16string_view text) {
        FolderStore made;
        std::filesystem::remove(at(".DS_Store"));
        write(".DS_Store", made.file(made.addNode(Lines{comment(u"tea", text)})));
    };
    const auto get = [&](double now) { return detail::finderCommentAtPath(at("tea/"), now); };
    DSStore::setSpotlightReader([](const Path& path) { return path.string(); });
    EXPECT_EQ(get(0).utf8(), at("tea/"));
    put(u"hot");
    EXPECT_EQ(get(0), u"hot");
    EXPECT_TRUE(detail::finderCommentAtPath(at("milk"), 0).isAbsent());
    put(u"cold");
    EXPECT_EQ(get(60), u"hot");
    std::thread([&] { EXPECT_EQ(get(60), u"cold"); }).join();
    EXPECT_EQ(get(60.5), u"cold");
    put(u"none left");
    DSStore::invalidateFinderCommentsCache();
    EXPECT_EQ(get(60.5), u"none left");
    EXPECT_EQ(detail::finderCommentAtPath("/", 61), u"/");
    DSStore::setSpotlightReader(nullptr);
    for (const char* path : {"tea", "/tea", ""}) EXPECT_TRUE(DSStore::finderCommentAtPath(path).isAbsent());
}

// Beside the slow reader; searching must end as well.
TEST_F(FolderMetadata, EveryTruncationAndEveryByte) {
    FolderStore made;
    testing::internal::CaptureStdout();
    for (const std::string& sample :
         {test::readData("dsstore/icon-locations.DS_Store"), made.file(made.addTree(sortedComments(20), 2))}) {
        const auto check = [&](const std::string& damaged, std::size_t place) {
            ASSERT_EQ(All(damaged).lines, Reference(damaged).lines) << place;
            if (const auto store = opened(damaged)) (void)store->finderCommentForFilename(u"file 1000019.txt");
        };
        for (std::size_t place = 0; place < sample.size(); ++place) {
            check(sample.substr(0, place), place);
            for (const int byte : {0, 1, 5, 0x7F, 0x80, 0xFF})
                check(std::string(sample).replace(place, 1, 1, static_cast<char>(byte)), place);
        }
    }
    testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace velmo
