#include <velmocore/storage/DSStore.h>

#include <sys/file.h>

#include <filesystem>
#include <set>
#include <thread>

#include "FolderStore.h"
#include "StoreFixture.h"
#include "storage/BigEndian.h"
#include "storage/DSStoreCache.h"

namespace velmo {
namespace {

using detail::bigEndian32;
using test::bigEndian;
using test::comment;
using test::dataOf;
using test::FolderStore;
using test::record;
using Lines = std::vector<std::string>;

std::optional<DSStore> opened(const std::string& bytes) {
    return DSStore::storeWithFile(DSStoreFile::fileWithData(dataOf(bytes)));
}

std::string shown(const DSStoreValue& value) {
    if (const auto* text = std::get_if<String>(&value)) return text->utf8();
    if (const auto* data = std::get_if<Data>(&value)) return std::to_string(data->size()) + " bytes";
    if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "true" : "false";
    return "none";
}
std::string shown(const DSStoreEntry& entry) {
    return entry.filename().utf8() + " " + stringOfDSStoreCode(entry.codec()).utf8() + " " + shown(entry.value());
}
Lines all(const std::string& bytes, std::size_t* damaged = nullptr) {
    Lines lines;
    const auto store = opened(bytes);
    const std::size_t count =
        store ? store->forEachEntry([&](const DSStoreEntry& entry) { return lines.push_back(shown(entry)), true; }) : 0;
    if (damaged) *damaged = count;
    return lines;
}

/// The slow, obvious reader: recursive, on the bytes as they are.
class Reference {
public:
    explicit Reference(const std::string& bytes) : bytes_(dataOf(bytes)), left_(bytes.size()) {
        const std::size_t root = number(8), blocks = number(4 + root);
        if (number(0) != 1 || number(4) != 0x42756431 || number(16) != root || bytes.size() < 20) return;
        rootEnd_ = 4 + root + number(12);
        if (rootEnd_ > bytes.size() || blocks == 0) return;
        table_ = 4 + root + 8;
        places_ = (blocks + 255) / 256 * 256;
        if (places_ * 4 > bytes.size() - 20 || table_ + places_ * 4 > rootEnd_) return;
        std::size_t entry = table_ + places_ * 4 + 4, head = SIZE_MAX;
        if (entry > rootEnd_) return;
        for (std::size_t count = number(entry - 4); count > 0 && entry < rootEnd_; --count) {
            const std::size_t length = bytes_[entry], end = entry + 1 + length;
            if (length == 0 || end > rootEnd_) break;
            const bool isAscii =
                std::all_of(&bytes[entry + 1], &bytes[entry + 1] + length, [](char c) { return c >= 0; });
            if (!isAscii) break;
            if (bytes.substr(entry + 1, length) == "DSDB") head = end + 4 <= rootEnd_ ? number(end) : 0;
            entry = end + 4;
        }
        const auto [start, end] = block(head);
        if (number(table_ + places_ * 4) > 0) read(end - start >= 4 ? number(start) : 0);
    }
    Lines lines;

private:
    std::size_t number(std::size_t at) const { return at + 4 <= bytes_.size() ? bigEndian32(&bytes_[at]) : 0; }
    std::pair<std::size_t, std::size_t> block(std::size_t index) const {
        const std::size_t place = index < places_ ? number(table_ + index * 4) : 0;
        const std::size_t start = 4 + (place & ~31u), end = start + (std::size_t{1} << (place & 31));
        return place == 0 || end > bytes_.size() ? std::pair<std::size_t, std::size_t>() : std::pair(start, end);
    }
    void read(std::size_t node) {
        const auto [start, end] = block(node);
        if (node >= places_ || end == 0 || end - start > left_ || !used_.insert(node).second) return;
        left_ -= end - start;
        const auto at = [this, end = end](std::size_t place) { return place + 4 <= end ? number(place) : 0; };
        const std::size_t next = at(start);
        std::size_t place = start + 8;
        for (std::size_t left = place <= end ? at(start + 4) : 0; left > 0 && place < end; --left) {
            if (next != 0 && at(place) != node) read(at(place));
            if (next != 0) place += 4;
            const std::size_t name = at(place) * 2, codec = place + 4 + name, value = codec + 8;
            if (name == 0 || value > end) break;
            const std::string type(&bytes_[codec + 4], &bytes_[codec + 4] + 4);
            const bool isCounted = type == "blob" || type == "ustr", isLong = type == "comp" || type == "dutc";
            const bool isShort = type == "long" || type == "shor" || type == "type";
            const std::size_t width = isCounted        ? 4 + at(value) * (type == "ustr" ? 2 : 1)
                                      : isLong         ? 8
                                      : isShort        ? 4
                                      : type == "bool" ? 1
                                                       : 0;
            if (value + (isCounted ? 4 : 0) > end || value + width > end) break;
            add(Bytes(bytes_).subspan(place + 4, name), codec, type, Bytes(bytes_).subspan(value, width));
            if (width == 0) break;
            place = value + width;
        }
        if (next != 0 && next != node) read(next);
    }
    void add(Bytes name, std::size_t codec, const std::string& type, Bytes value) {
        const auto text = [](Bytes units) {
            std::u16string out;
            for (std::size_t i = 0; i < units.size(); i += 2)
                out += static_cast<char16_t>(units[i] << 8 | units[i + 1]);
            return utf8(out);
        };
        std::uint64_t number = 0;
        for (const std::uint8_t byte : value) number = number << 8 | byte;
        std::string result = value.size() == 8 ? std::to_string(static_cast<std::int64_t>(number))
                                               : std::to_string(static_cast<std::int32_t>(number));
        if (type == "bool") result = number ? "true" : "false";
        if (type == "blob") result = std::to_string(value.size() - 4) + " bytes";
        if (type == "ustr") result = text(value.subspan(4));
        if (value.empty() || ((type == "blob" || type == "ustr") && value.size() == 4)) result = "none";
        lines.push_back(text(name) + " " + stringOfDSStoreCode(static_cast<std::uint32_t>(this->number(codec))).utf8() +
                        " " + result);
    }

    Data bytes_;
    std::size_t table_ = 0, places_ = 0, rootEnd_ = 0, left_;
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
        const std::string path = "dsstore/" + std::string(name) + ".DS_Store";
        std::size_t damaged = 1;
        EXPECT_EQ(all(test::readData(path), &damaged), expected);
        EXPECT_EQ(damaged, 0u);
        const auto store = DSStore::storeWithFile(DSStoreFile::fileAtPath(test::dataPath(path)));
        ASSERT_TRUE(store);
        EXPECT_EQ(store->records(), expected.size());
        for (const char16_t* file : {u"bar", u"notes.txt", u"Noot.app"}) {
            const auto entry = store->entryForFilename(file, 0x496C6F63);
            EXPECT_TRUE(!entry || std::ranges::count(expected, shown(*entry)) == 1);
        }
    }
    const auto store = opened(test::readData("dsstore/icon-locations.DS_Store"));
    const Data place = std::get<Data>(store->valueForFilename(u"bar", 0x496C6F63));
    EXPECT_EQ(bigEndian32(&place[0]), 256u);
    EXPECT_EQ(bigEndian32(&place[4]), 235u);
    EXPECT_EQ(store->description(),
              u"DSStore: 256 blocks, Root: DSStoreBlock: 2048 bytes at offset 4096, Entries:\n{\n    DSDB = 1;\n}");
}

// Trees of one, two and three levels, in files and in memory, beside the slow reader.
TEST_F(FolderMetadata, TreesOfAllSizes) {
    const std::size_t sizes[][2] = {{0, 9}, {1, 9}, {9, 9}, {10, 9}, {99, 9}, {900, 9}, {1000, 1}, {10128, 30}};
    for (const auto& [count, perNode] : sizes) {
        const Lines records = test::sortedComments(count);
        FolderStore made;
        const std::string bytes = made.file(made.addTree(records, perNode));
        std::size_t damaged = 1;
        const Lines found = all(bytes, &damaged);
        EXPECT_EQ(damaged, 0u);
        EXPECT_EQ(found.size(), count);
        EXPECT_EQ(found, Reference(bytes).lines) << count;
        write(".DS_Store", bytes);
        const auto store = DSStore::storeWithDirectory(folder_);
        ASSERT_TRUE(store);
        for (std::size_t i = 0; i < count; i += 1 + count / 9) {
            const std::string number = std::to_string(1'000'000 + i), name = "file " + number + ".txt";
            EXPECT_EQ(store->finderCommentForFilename(String::fromUTF8(name)).utf8(), "a comment on " + number);
            EXPECT_EQ(found[i], name + " cmmt a comment on " + number);
        }
        EXPECT_TRUE(store->finderCommentForFilename(u"FILE 1000000.txt").isAbsent());
        EXPECT_TRUE(store->finderCommentForFilename(u"").isAbsent());
    }
}

TEST_F(FolderMetadata, ValuesOfEveryType) {
    const std::u16string longName(600, u'n');
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"blob", bigEndian(3) + "abc", "3 bytes"},
        {"blob", bigEndian(0), "none"},
        {"bool", "\1", "true"},
        {"comp", bigEndian(~0ull - 4, 8), "-5"},
        {"dutc", bigEndian(1ull << 40, 8), "1099511627776"},
        {"long", bigEndian(~0u), "-1"},
        {"shor", bigEndian(7), "7"},
        {"type", "icnv", "1768124022"},
        {"ustr", test::counted(u"\u00E9\xD800"), "\xC3\xA9\xEF\xBF\xBD"},
        {"ustr", bigEndian(0), "none"},
        {"none", "", "none"},
    };
    const std::string last = comment(u"z", u"end");
    for (const auto& [type, value, expected] : cases) {
        const std::string own = record(longName, "code", type, value);
        FolderStore made;
        const std::uint32_t block = made.add(own + last);
        const auto store = opened(made.file(made.addNode(Lines{own, last})));
        const auto find = [](std::u16string_view name, DSStoreStream& stream) {
            const auto read = DSStoreEntry::valueForFilename(name, 0x636F6465, stream);
            return read.isWanted ? shown(read.value) : "other";
        };
        DSStoreStream streams[] = {*store->streamAtIndex(block), *store->streamAtIndex(block)};
        DSStoreBlock loaded = *store->blockAtIndex(block);
        EXPECT_EQ(find(longName, streams[0]), expected) << type;
        EXPECT_EQ(find(longName, loaded), expected);
        EXPECT_EQ(find(std::u16string(600, u'm'), streams[1]), "other");
        if (std::string(type) == "none") continue;
        for (DSStoreStream* stream : {&streams[0], &streams[1], static_cast<DSStoreStream*>(&loaded)}) {
            const auto entry = DSStoreEntry::entryForFilename(u"z", FinderCommentCodec, *stream);
            EXPECT_EQ(entry ? entry->description() : String(), u"DSStoreEntry <z>: cmmt:ustr") << type;
        }
        EXPECT_EQ(shown(store->valueForFilename(u"z", FinderCommentCodec)), "end");
    }
    // What is cut off at the end of its block is none, but as a number 0; it does not come among all.
    const std::pair<const char*, const char*> cut[] = {{"ustr\0\1\0", "none"}, {"long\1\1", "0"}};
    for (const auto& [value, expected] : cut) {
        FolderStore made;
        const std::string bytes = made.file(made.addNode(Lines{record(u"aaaaa", "code", {value, 6}, "")}));
        EXPECT_EQ(shown(opened(bytes)->entryForFilename(u"aaaaa", 0x636F6465).value()),
                  std::string("aaaaa code ") + expected);
        std::size_t damaged = 0;
        EXPECT_EQ(all(bytes, &damaged), Lines());
        EXPECT_EQ(damaged, 1u);
    }
}

TEST_F(FolderMetadata, NodesThatCannotBeAreTold) {
    FolderStore made;
    const std::uint32_t leaf = made.addNode(Lines{comment(u"a", u"1")});
    const std::uint32_t self = made.nextIndex();
    made.addNode(Lines{comment(u"b", u"2")}, self, std::vector{self});
    const Lines own = {comment(u"c", u"3"), comment(u"d", u"4"), comment(u"e", u"5"), comment(u"f", u"6")};
    const std::uint32_t root = made.addNode(own, 0x80000000u, std::vector<std::uint32_t>{leaf, leaf, 256, self});
    const std::string bytes = made.file(root);
    testing::internal::CaptureStdout();
    EXPECT_EQ(shown(opened(bytes)->valueForFilename(u"b", FinderCommentCodec)), "2");
    EXPECT_TRUE(opened(bytes)->finderCommentForFilename(u"g").isAbsent());
    const std::string told = "Node 2 already used.\nInvalid node 256 (max 256).\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), told + told + "Invalid node -2147483648 (max 256).\n");
    std::size_t damaged = 0;
    EXPECT_EQ(all(bytes, &damaged), Reference(bytes).lines);
    EXPECT_EQ(damaged, 3u);
    // As deep as there are blocks, and many nodes in one place.
    FolderStore deep;
    for (std::uint32_t i = 0; i < 100'000; ++i) {
        const std::uint32_t node = deep.nextIndex();
        deep.addNode(Lines{comment(u"x", u"")}, node, std::vector{node + 1});
    }
    EXPECT_EQ(all(deep.file(2), &damaged).size(), 100'000u);
    FolderStore many;
    const auto endless = opened(many.file(many.add(bigEndian(0) + bigEndian(~0u) + comment(u"a", u"1"))));
    EXPECT_FALSE(endless->entryForFilename(u"a", 0) || endless->entryForFilename(u"b", FinderCommentCodec));
    EXPECT_EQ(damaged, 1u);
}

TEST_F(FolderMetadata, WhatIsNoStore) {
    FolderStore made;
    const std::string whole = made.file(made.addTree(test::sortedComments(3), 9));
    const std::pair<std::size_t, char> damages[] = {{3, 2}, {4, 'b'}, {11, 1}, {19, 1}, {36, 1}};
    for (const auto& [place, byte] : damages) {
        std::string damaged = whole;
        damaged[place] = byte;
        EXPECT_FALSE(opened(damaged)) << place;
    }
    EXPECT_FALSE(DSStore::storeWithDirectory(folder_) || DSStore::storeWithDirectory(at("none")) ||
                 DSStore::storeWithDirectory(Path()) || DSStore::storeWithFile(DSStoreFile()));
    write(".DS_Store", whole);
    EXPECT_FALSE(DSStore::storeWithDirectory(at(".DS_Store")));
    const int writer = ::open(at(".DS_Store").c_str(), O_RDWR);
    ::flock(writer, LOCK_EX);
    EXPECT_FALSE(DSStore::storeWithDirectory(folder_));
    ::flock(writer, LOCK_UN);
    {
        const auto reader = DSStore::storeWithDirectory(folder_), other = DSStore::storeWithDirectory(folder_);
        EXPECT_TRUE(reader && other);
        EXPECT_NE(::flock(writer, LOCK_EX | LOCK_NB), 0);
    }
    EXPECT_EQ(::flock(writer, LOCK_EX | LOCK_NB), 0);
    ::close(writer);
    std::filesystem::remove(at(".DS_Store"));
    std::filesystem::create_directory(at(".DS_Store"));
    EXPECT_FALSE(DSStore::storeWithDirectory(folder_));
    EXPECT_EQ(logged_, "Failed fdopen: " + at(".DS_Store") + " 22\n");
}

TEST_F(FolderMetadata, Blocks) {
    FolderStore made;
    std::string bytes = made.file(made.addTree(test::sortedComments(3), 9));
    bytes.replace(44 + 4 * 4, 8, bigEndian(0x1005) + bigEndian(0x2000 | 31));
    auto store = DSStoreAllocator::allocatorWithFile(DSStoreFile::fileWithData(dataOf(bytes)));
    ASSERT_TRUE(store);
    EXPECT_EQ(store->offsetAtIndex(4), 0x1000u);
    EXPECT_EQ(store->sizeAtIndex(4), 32u);
    EXPECT_EQ(store->sizeAtIndex(5), 1u << 31);
    EXPECT_EQ(store->sizeAtIndex(3) + store->sizeAtIndex(256) + store->offsetAtIndex(256), 0u);
    for (const std::size_t index : {3u, 4u, 5u, 256u}) EXPECT_FALSE(store->blockAtIndex(index)) << index;
    EXPECT_EQ(store->streamAtIndex(5)->readDataOfLength(1u << 30), std::nullopt);
    EXPECT_FALSE(store->streamAtIndex(256) || store->streamForEntryNamed("none") || store->blockForEntryNamed(""));
    EXPECT_EQ(store->indexOfEntryNamed("DSDB"), 1u);
    EXPECT_EQ(store->numberOfBlocks(), 256u);
    EXPECT_EQ(store->description(), u"DSStoreAllocator: 256 blocks, Entries:\n{\n    DSDB = 1;\n}");
    DSStoreBlock block = *store->blockForEntryNamed("DSDB");
    DSStoreStream stream = *store->streamForEntryNamed("DSDB");
    EXPECT_EQ(stream.readUInt64() * 2, block.readUInt64() * 2);
    EXPECT_TRUE(stream.isEqual(*store->streamAtIndex(1)) && !stream.isEqual(block));
    store->close();
    std::uint8_t room[] = {7};
    EXPECT_EQ(stream.readUInt32(), 0u);
    EXPECT_EQ(block.readUInt32(), 1u + 1);
    block.skipBytes(100);
    EXPECT_TRUE(block.isEOF() && block.readBytes(room) == 0 && room[0] == 0);
}

TEST_F(FolderMetadata, CommentsByPathAreKeptForAMinute) {
    const auto put = [&](std::u16string_view text) {
        FolderStore made;
        write(".DS_Store", made.file(made.addNode(Lines{comment(u"tea", text)})));
    };
    const auto get = [&](double now) { return detail::finderCommentAtPath(at("tea/"), now); };
    DSStore::setSpotlightReader([](const Path& path) { return path.string(); });
    EXPECT_EQ(get(0).utf8(), at("tea/"));
    EXPECT_TRUE(DSStore::finderCommentAtPath("tea").isAbsent() && DSStore::finderCommentAtPath(Path()).isAbsent());
    put(u"hot");
    EXPECT_EQ(get(0), u"hot");
    EXPECT_TRUE(detail::finderCommentAtPath(at("milk"), 0).isAbsent());
    std::filesystem::remove(at(".DS_Store"));
    put(u"cold");
    EXPECT_EQ(get(60), u"hot");
    std::thread([&] { EXPECT_EQ(get(60), u"cold"); }).join();
    EXPECT_EQ(get(60.5), u"cold");
    std::filesystem::remove(at(".DS_Store"));
    put(u"none left");
    DSStore::invalidateFinderCommentsCache();
    EXPECT_EQ(get(60.5), u"none left");
    EXPECT_EQ(detail::finderCommentAtPath("/", 61), u"/");
    DSStore::setSpotlightReader(nullptr);
    EXPECT_TRUE(DSStore::finderCommentAtPath("/tea").isAbsent());
}

// Beside the slow reader; searching must end as well.
TEST_F(FolderMetadata, EveryTruncationAndEveryByte) {
    FolderStore made;
    const std::string samples[] = {test::readData("dsstore/icon-locations.DS_Store"),
                                   made.file(made.addTree(test::sortedComments(20), 2))};
    testing::internal::CaptureStdout();
    for (const std::string& sample : samples) {
        const auto check = [&](const std::string& damaged, std::size_t place) {
            ASSERT_EQ(all(damaged), Reference(damaged).lines) << place;
            if (const auto store = opened(damaged)) (void)store->finderCommentForFilename(u"file 1000019.txt");
        };
        for (std::size_t length = 0; length < sample.size(); ++length) check(sample.substr(0, length), length);
        for (std::size_t place = 0; place < sample.size(); ++place)
            for (const int byte : {0, 1, 5, 0x7F, 0x80, 0xFF}) {
                std::string damaged = sample;
                damaged[place] = static_cast<char>(byte);
                check(damaged, place);
            }
    }
    testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace velmo
