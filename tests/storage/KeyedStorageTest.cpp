#include <velmocore/storage/KeyedStorage.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <map>

#include <velmocore/storage/Compression.h>
#include <velmocore/text/Checksums.h>

#include "StoreFixture.h"
#include "storage/BigEndian.h"

namespace velmo {
namespace {

using test::dataOf;
using test::randomData;
using Blocks = std::vector<Data>;

class Storage : public test::StoreTest {};

std::string header(std::uint32_t marker, std::size_t length, std::size_t padding, std::uint32_t checksum) {
    std::uint8_t bytes[16];
    detail::putBigEndian(bytes, marker, 4);
    detail::putBigEndian(bytes + 4, length, 4);
    detail::putBigEndian(bytes + 8, padding, 4);
    detail::putBigEndian(bytes + 12, checksum, 4);
    return {bytes, bytes + 16};
}
std::string block(std::string_view text, std::uint32_t marker = 0x31415926, std::size_t padding = 0) {
    return header(marker, text.size(), padding, CRC32(Bytes(text))) + std::string(text) + std::string(padding, '\0');
}

TEST_F(Storage, WritesBlocksByteByByte) {
    auto store = appending("a");
    ASSERT_TRUE(store.isValid());
    EXPECT_EQ(store.path(), Path(at("a")));
    EXPECT_TRUE(store.appendBlock("one"));
    store.setBlockSize(512);
    EXPECT_TRUE(store.appendBlock(std::string(10, 'x')) && store.appendBlock(std::string(496, 'y')));
    EXPECT_FALSE(store.appendBlock({}) || store.appendCompressedBlock({}));
    store.setBlockSize(0);
    store.setCompressed(true);
    const std::string compressible(1000, 'z');
    EXPECT_TRUE(store.appendBlock(compressible) && store.appendBlock("abc"));
    EXPECT_TRUE(store.appendUncompressedBlock(compressible));
    EXPECT_EQ(store.offsetOfLastBlock() + store.lengthOfLastBlock(), 0u);
    EXPECT_EQ(store.closeFile(), 0);
    EXPECT_EQ(store.closeFile(), 1);
    EXPECT_FALSE(store.appendBlock("late"));
    const Data packed = *dataByDeflatingData(Bytes(compressible), 1);
    EXPECT_EQ(bytes("a"), block("one") + block(std::string(10, 'x'), 0x31415926, 486) + block(std::string(496, 'y')) +
                              block(charsOf(packed), 0x98765432) + block("abc") + block(compressible));
    EXPECT_EQ(blocks("a").at(3), dataOf(compressible));
    EXPECT_EQ(logged_, "");
}

TEST_F(Storage, ReadsWhatItCanAndTellsWhatItCannot) {
    std::string damaged = block("damaged");
    damaged[20] ^= 4;
    const std::string dead = header(0x31415926, 0, 9, 0) + "old bytes", good = block("good");
    struct {
        std::string file;
        Blocks read;
        const char* logged;
    } const cases[] = {
        {"", {}, ""},
        {good + dead + block("second", 0x53545354, 3), {dataOf("good"), dataOf("second")}, ""},
        {good + good.substr(0, 15), {dataOf("good")}, "Invalid header at 20\n"},
        {good + std::string(16, '?'), {dataOf("good")}, "Invalid header at 20\n"},
        {good + good.substr(0, 19), {dataOf("good")}, "Truncated data at 20\n"},
        {damaged + good, {dataOf("good")}, "Invalid checksum at 0\n"},
        {header(0x31415926, 0xFFFFFFFF, 0xFFFFFFFF, 0), {}, "Truncated data at 0\n"},
        {block("not zlib", 0x98765432) + good, {}, ""},
        {block("cut", 0x31415926, 4).substr(0, 20), {dataOf("cut")}, ""},
    };
    for (const auto& [file, read, logged] : cases) {
        write("s", file);
        logged_.clear();
        EXPECT_EQ(blocks("s"), read) << logged;
        EXPECT_EQ(logged_, logged);
    }
    // Behind a block that cannot be inflated, and a header that is none, reading goes on.
    write("s", block("not zlib", 0x98765432) + std::string(16, '?') + good);
    auto store = reading("s");
    EXPECT_FALSE(store.nextAvailableBlock());
    EXPECT_FALSE(store.copyOfNextAvailableBlock());
    EXPECT_EQ(store.copyOfNextAvailableBlock(), dataOf("good"));
    EXPECT_EQ(store.offsetOfLastBlock(), 40u);
    EXPECT_EQ(store.lengthOfLastBlock(), 20u);
    EXPECT_EQ(store.offsetInFile(), 60u);
    EXPECT_EQ(store.lengthOfFile(), 60u);
    EXPECT_FALSE(store.appendBlock("x") && store.synchronizeFile());
}

TEST_F(Storage, UpdatesAndDeletesInPlace) {
    {
        auto store = updating("s");
        store.setBlockSize(512);
        store.appendBlock("first");
        store.setBlockSize(0);
        store.appendBlock("second");
        EXPECT_TRUE(store.updateBlock("changed", 0));
        EXPECT_FALSE(store.updateBlock("secondX", 512) || store.updateBlock({}, 0) || store.updateBlock("x", 534));
        EXPECT_TRUE(store.updateBlock("2nd", 512));
        EXPECT_EQ(logged_, "");
        EXPECT_FALSE(store.updateBlock("x", 3) || store.updateBlock("x", 530));
        EXPECT_EQ(logged_, "Invalid header at 3\nInvalid header at 530\n");
    }
    EXPECT_EQ(bytes("s"), block("changed", 0x31415926, 489) + block("2nd", 0x31415926, 3).substr(0, 19) + "ond");
    auto store = updating("s");
    EXPECT_TRUE(store.deleteBlockAtFileOffset(0) && store.deleteBlockAtFileOffset(0));
    EXPECT_FALSE(store.deleteBlockAtFileOffset(534) || store.deleteBlockAtFileOffset(9));
    EXPECT_TRUE(store.seekToFileOffset(0));
    EXPECT_EQ(store.copyOfNextAvailableBlock(), dataOf("2nd"));
    EXPECT_EQ(bytes("s").substr(0, 23), header(0x31415926, 0, 496, 0) + "changed");
    EXPECT_TRUE(store.updateBlock(std::string(496, 'r'), 0));
    EXPECT_EQ(store.seekToEndOfFile(), 534u);
    EXPECT_TRUE(store.appendBlock("third"));
    EXPECT_TRUE(store.seekToFileOffset(0));
    EXPECT_EQ(Blocks({dataOf(std::string(496, 'r')), dataOf("2nd"), dataOf("third")}), blocksOf(std::move(store)));
}

TEST_F(Storage, OpensOnlyWhatItCanHaveForItself) {
    EXPECT_FALSE(reading("none").isValid());
    EXPECT_FALSE(std::filesystem::exists(at("none")));
    for (const Path& path : {Path(), Path(""), Path(u"\xD800"), Path(folder_), Path("/dev/null")})
        EXPECT_FALSE(KeyedStorage::keyedStorageForUpdatingAtPath(path).isValid());
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(reading("pipe").isValid() || appending("pipe").isValid());
    {
        const auto first = updating("s");
        EXPECT_TRUE(first.isValid());
        EXPECT_FALSE(updating("s").isValid() || appending("s").isValid() || reading("s").isValid());
    }
    {
        const auto first = reading("s"), second = reading("s");
        EXPECT_TRUE(first.isValid() && second.isValid());
        EXPECT_FALSE(appending("s").isValid());
    }
    EXPECT_TRUE(appending("s").isValid());
    KeyedStorage closed = reading("none");
    EXPECT_EQ(closed.offsetInFile() + closed.lengthOfFile(), 0u);
    EXPECT_FALSE(closed.seekToFileOffset(0) || closed.truncateFileAtOffset(0) || closed.synchronizeFile() ||
                 closed.nextAvailableBlock() || closed.updateBlock("x", 0) || closed.deleteBlockAtFileOffset(0) ||
                 closed.optimizeToPath(at("x"), true) || closed.optimizeLastBlock("x", {}, 0).isMoved);
    EXPECT_TRUE(closed.path().isAbsent());
    auto taken = KeyedStorage::initWithFile(::open(at("s").c_str(), O_RDWR | O_CLOEXEC), at("s"), false);
    EXPECT_TRUE(taken.appendBlock("taken"));
    EXPECT_EQ(taken.closeFile(), 0);
    EXPECT_EQ(blocks("s"), Blocks{dataOf("taken")});
    testing::internal::CaptureStdout();
    taken.setBlockSize(100);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Classes/KeyedStorage:172: Failed debug assertion `(blockSize%512)==0'\n");
    EXPECT_EQ(taken.blockSize(), 100u);
}

struct Choice : KeyedStorageHandler {
    std::vector<std::uint64_t> keys;
    std::size_t stopAfter = SIZE_MAX, seen = 0;

    bool handleData(KeyedStorage&, Data& data, std::uint64_t key) override {
        keys.push_back(key);
        if (data == dataOf("leave")) return false;
        data.push_back('!');
        return true;
    }
    bool shouldCancelIterationOfStorage(KeyedStorage&) override { return ++seen == stopAfter; }
};

TEST_F(Storage, OptimizesIntoAnotherFile) {
    const std::string packed = [] {
        const Data data = *dataByDeflatingData(Bytes(std::string(100, 'p')), 1);
        return block(charsOf(data), 0x98765432, 7);
    }();
    std::string bad = block("bad");
    bad.back() ^= 1;
    const std::string file =
        block("one", 0x31415926, 20) + header(0x31415926, 0, 4, 0) + "dead" + packed + block("leave");
    write("s", file);
    Choice choice;
    EXPECT_TRUE(reading("s").optimizeToPath(at("t"), false, &choice));
    EXPECT_EQ(blocks("t"), (Blocks{dataOf("one!"), dataOf(std::string(100, 'p') + "!")}));
    EXPECT_EQ(choice.keys, (std::vector<std::uint64_t>{0, 20, 137}));
    {
        auto compressed = reading("s");
        compressed.setCompressed(true);
        compressed.setBlockSize(512);
        EXPECT_TRUE(compressed.optimizeToPath(at("t"), false, &choice));
    }
    EXPECT_EQ(bytes("t").size(), 1024u);
    EXPECT_EQ(blocks("t"), (Blocks{dataOf("one!"), dataOf(std::string(100, 'p'))}));
    Choice cancel;
    cancel.stopAfter = 1;
    EXPECT_FALSE(reading("s").optimizeToPath(at("t"), false, &cancel));
    EXPECT_EQ(blocks("t"), Blocks{dataOf("one!")});
    EXPECT_FALSE(reading("s").optimizeToPath(at("S"), false) || reading("s").optimizeToPath(Path(), false));
    EXPECT_FALSE(appending("s").optimizeToPath(at("t"), false));

    write("s", block("one") + bad + block("two") + block("three"));
    EXPECT_FALSE(reading("s").optimizeToPath(at("t"), false));
    EXPECT_EQ(blocks("t"), (Blocks{dataOf("one"), dataOf("two")}));
    EXPECT_TRUE(reading("s").optimizeToPath(at("t"), true));
    EXPECT_EQ(blocks("t").size(), 3u);
    write("s", block("one") + bad.substr(0, 18));
    EXPECT_TRUE(reading("s").optimizeToPath(at("t"), false));
    EXPECT_EQ(blocks("t").size(), 1u);
    // A destination that another has locked takes nothing, and that is told.
    const auto other = updating("t");
    EXPECT_FALSE(reading("s").optimizeToPath(at("t"), true));
    write("empty", "");
    EXPECT_TRUE(reading("empty").optimizeToPath(at("t"), true));
}

TEST_F(Storage, OptimizesSafelyOntoItself) {
    write("s", block("one", 0x31415926, 20) + header(0x31415926, 0, 4, 0) + "dead" + block("two"));
    std::filesystem::permissions(at("s"), std::filesystem::perms(0640));
    EXPECT_FALSE(reading("s").optimizeSafelyToPath(at("s"), false));
    {
        auto store = updating("s");
        EXPECT_TRUE(store.optimizeSafelyToPath(at("s"), false));
        EXPECT_FALSE(reading("s").isValid());  // the new file is locked too
        EXPECT_EQ(store.copyOfNextAvailableBlock(), dataOf("one"));
        store.seekToEndOfFile();
        EXPECT_TRUE(store.appendBlock("three"));
    }
    EXPECT_EQ(bytes("s"), block("one") + block("two") + block("three"));
    EXPECT_EQ(std::filesystem::status(at("s")).permissions(), std::filesystem::perms(0640));
    // What stands behind a wrong header is not left out, whatever may be skipped.
    const std::string hidden = block("one") + std::string(20, '?') + block("two");
    write("s", hidden);
    EXPECT_FALSE(updating("s").optimizeSafelyToPath(at("s"), true));
    EXPECT_EQ(bytes("s"), hidden);
    EXPECT_EQ(reading("s").salvageToPath(at("t")).blocks, 2u);
    EXPECT_EQ(blocks("t"), (Blocks{dataOf("one"), dataOf("two")}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
}

// Blocks of random sizes, some deleted, are moved down one after the other.
TEST_F(Storage, CompactsInPlace) {
    std::mt19937 random(3);
    for (const std::uint64_t blockSize : {0u, 512u})
        for (const bool compressed : {false, true}) {
            Blocks expected;
            auto store = updating("s");
            EXPECT_TRUE(store.truncateFileAtOffset(0));
            store.seekToFileOffset(0);
            store.setBlockSize(blockSize);
            store.setCompressed(compressed);
            for (int i = 0; i < 300; ++i) {
                const std::uint64_t offset = store.offsetInFile();
                const Data data = i % 3 ? randomData(random, 1 + random() % 9000) : Data(1 + random() % 9000, 'c');
                ASSERT_TRUE(store.appendBlock(data));
                const std::uint64_t end = store.offsetInFile();
                if (random() % 3 == 0)
                    EXPECT_TRUE(store.deleteBlockAtFileOffset(offset));
                else
                    expected.push_back(data);
                store.seekToFileOffset(end);
            }
            const std::uint64_t before = store.lengthOfFile();
            std::uint64_t target = 0;
            for (std::uint64_t next = 0; store.seekToFileOffset(next);) {
                const auto copy = store.mutableCopyOfNextAvailableBlockWithCompressed();
                if (!copy) break;
                next = store.offsetInFile();
                target = store.optimizeLastBlock(copy->data, copy->compressed, target).nextOffset;
            }
            EXPECT_TRUE(store.truncateFileAtOffset(target));
            EXPECT_LT(store.lengthOfFile(), before);
            store.seekToFileOffset(0);
            EXPECT_EQ(blocksOf(std::move(store)), expected) << blockSize << compressed;
        }
    EXPECT_EQ(logged_, "");
}

// All operations by turns, beside a list of what should be there.
TEST_F(Storage, DoesWhatASimpleModelDoes) {
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        std::filesystem::remove(at("s"));
        std::map<std::uint64_t, std::pair<Data, std::uint64_t>> model;  // what is there and its room
        auto store = updating("s");
        store.setBlockSize(round % 2 ? 512 : 0);
        for (int step = 0; step < 200; ++step) {
            const Data data = randomData(random, 1 + random() % (step % 50 == 7 ? 1500000 : 600));
            auto chosen = model.begin();
            if (!model.empty()) std::advance(chosen, random() % model.size());
            const unsigned what = random() % 8;
            if (what < 4 || model.empty()) {
                const std::uint64_t offset = store.seekToEndOfFile();
                ASSERT_TRUE(store.appendBlock(data));
                model[offset] = {data, store.offsetInFile() - offset - 16};
            } else if (what == 4) {
                const bool fits = data.size() <= chosen->second.second;
                ASSERT_EQ(store.updateBlock(data, chosen->first), fits);
                if (fits) chosen->second.first = data;
            } else if (what == 5) {
                ASSERT_TRUE(store.deleteBlockAtFileOffset(chosen->first));
                chosen->second.first.clear();
            } else if (what == 6 && random() % 4 == 0) {
                store = KeyedStorage();
                store = updating("s");
            } else {
                store.seekToFileOffset(chosen->first);
                while (chosen != model.end() && chosen->second.first.empty()) ++chosen;
                const auto block = store.nextAvailableBlock();
                ASSERT_EQ(block.has_value(), chosen != model.end());
                EXPECT_EQ(block ? Data(block->begin(), block->end()) : Data(),
                          chosen == model.end() ? Data() : chosen->second.first);
            }
        }
        Blocks expected;
        for (const auto& [offset, entry] : model)
            if (!entry.first.empty()) expected.push_back(entry.first);
        EXPECT_EQ(store.synchronizeFile(), true);
        Blocks mapped;
        EXPECT_TRUE(store.forEachBlock([&](const StorageBlock& block) {
            if (block.state == BlockState::Live) mapped.push_back(*block.unpacked());
            return true;
        }));
        EXPECT_EQ(mapped, expected);
        store.seekToFileOffset(0);
        EXPECT_EQ(blocksOf(std::move(store)), expected);
    }
}

TEST_F(Storage, AppendingTakesOffATornTailAndNothingElse) {
    const std::string two = block("one") + block("two", 0x31415926, 12);
    for (std::size_t cut = 1; cut < 19 + 12; ++cut)
        for (const bool updates : {false, true}) {
            write("s", two.substr(0, two.size() - cut));
            {
                auto store = updates ? updating("s") : appending("s");
                store.seekToEndOfFile();
                EXPECT_TRUE(store.appendBlock("new") && store.appendBlock("er"));
            }
            EXPECT_EQ(bytes("s"), block("one") + block("new") + block("er")) << cut;
        }
    write("s", two + std::string(100, '\0'));
    EXPECT_TRUE(appending("s").appendBlock("new"));
    EXPECT_EQ(bytes("s"), two + block("new"));
    // A length that is wrong in the middle hides what is behind it. Nothing of that is cut off.
    std::string wrong = two + block("three");
    wrong[4] = 0x10;
    for (const std::string& file : {wrong, std::string("no store at all, but a text")}) {
        write("s", file);
        EXPECT_TRUE(appending("s").appendBlock("new"));
        EXPECT_EQ(bytes("s"), file + block("new"));
    }
}

TEST_F(Storage, AlignsBlocksAndFindsThemByOffset) {
    write("s", block("odd"));
    auto store = updating("s");
    store.setAlignment(16);
    store.seekToEndOfFile();
    EXPECT_TRUE(store.appendBlock("one") && store.appendBlock("two"));
    const std::uint64_t two = store.offsetOfAppendedBlock(), end = store.offsetInFile();
    EXPECT_EQ(std::pair(two % 16, end - two), std::pair(0ul, 32ul));
    EXPECT_EQ(charsOf(store.blockAtFileOffset(two).value()), "two");
    EXPECT_EQ(charsOf(store.blockAtFileOffset(0).value()), "odd");
    EXPECT_FALSE(store.blockAtFileOffset(1) || store.blockAtFileOffset(end));
    EXPECT_EQ(store.offsetInFile(), end);
    EXPECT_TRUE(store.deleteBlockAtFileOffset(two));
    EXPECT_FALSE(store.blockAtFileOffset(two));
    EXPECT_TRUE(store.removeTornEnd() && store.closeFile() == 0);
    EXPECT_EQ(bytes("s").size(), end);
    EXPECT_EQ(logged_, "");
    write("s", bytes("s") + "\x31");
    EXPECT_TRUE(updating("s").removeTornEnd());
    EXPECT_EQ(bytes("s").size(), end);
    EXPECT_FALSE(KeyedStorage().removeTornEnd());
}

}  // namespace
}  // namespace velmo
