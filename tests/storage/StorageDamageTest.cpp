// What must hold whatever happens to a store: bits that flip, files that are cut, calls that fail.
#include <set>

#include <velmocore/text/Checksums.h>

#include "StoreFixture.h"
#include "storage/BlockIndex.h"

namespace velmo {
namespace {

using test::dataOf;
using test::FailingCalls;
using test::randomData;
using Blocks = std::vector<Data>;

class StorageDamage : public test::StoreTest {
protected:
    /// Fifty blocks of all kinds, with where each begins and ends.
    void makeStore(std::uint64_t blockSize) {
        std::mt19937 random(11);
        auto store = updating("s");
        store.setBlockSize(blockSize);
        for (int i = 0; i < 50; ++i) {
            const std::uint64_t offset = store.offsetInFile();
            store.setCompressed(i % 5 == 0);
            Data data =
                i % 5 ? randomData(random, 1 + random() % 40) : Data(40 + random() % 40, static_cast<std::uint8_t>(i));
            if (i == 7) data = randomData(random, 5000);
            ASSERT_TRUE(store.appendBlock(data));
            const std::uint64_t end = store.offsetInFile();
            store.setCompressed(false);
            const Data shorter = randomData(random, std::max<std::size_t>(1, data.size() / 2));
            if (i % 7 == 3 && store.updateBlock(shorter, offset)) data = shorter;
            if (i % 11 == 5) store.deleteBlockAtFileOffset(offset), data.clear();
            store.seekToFileOffset(end);
            places_.push_back({offset, end, data});
        }
        store.closeFile();
        file_ = bytes("s");
        all_ = liveOutside(0, 0);
        ASSERT_EQ(file_.size(), places_.back().end);
    }
    /// The live blocks that do not have a byte between the offsets, and all of them.
    std::set<Data> liveOutside(std::uint64_t from, std::uint64_t to) const {
        std::set<Data> live;
        for (const Place& place : places_)
            if (!place.data.empty() && (place.end <= from || place.offset >= to)) live.insert(place.data);
        return live;
    }
    void check(const std::string& damaged, std::uint64_t from, std::uint64_t to) const {
        const std::set<Data> undamaged = liveOutside(from, to);
        for (const bool salvage : {false, true}) {
            const Blocks found = this->found(damaged, salvage);
            const std::set<Data> unique(found.begin(), found.end());
            ASSERT_TRUE(std::ranges::includes(all_, unique)) << "wrong data from " << from << " on";
            ASSERT_TRUE(!salvage || std::ranges::includes(unique, undamaged)) << "lost from " << from << " on";
            ASSERT_EQ(found.size(), unique.size()) << from;
        }
    }

    struct Place {
        std::uint64_t offset, end;
        Data data;
    };
    std::vector<Place> places_;
    std::set<Data> all_;
    std::string file_;
};

TEST_F(StorageDamage, EveryBitAndEveryTruncation) {
    for (const std::uint64_t blockSize : {0u, 64u}) {
        places_.clear();
        std::filesystem::remove(at("s"));
        testing::internal::CaptureStdout();  // complaints about the block size
        makeStore(blockSize);
        testing::internal::GetCapturedStdout();
        for (std::uint64_t bit = 0; bit < file_.size() * 8; bit += blockSize ? 13 : 1) {
            const std::uint64_t byte = bit / 8, inLarge = byte - places_[7].offset;
            if (byte > places_[7].offset && inLarge > 64 && inLarge < 5000 && inLarge % 97) continue;
            std::string damaged = file_;
            damaged[byte] = static_cast<char>(damaged[byte] ^ 1 << bit % 8);
            check(damaged, byte, byte + 1);
        }
        for (std::size_t length = 0; length < file_.size(); length += length % 1000 == 999 ? 13u : 1u)
            check(file_.substr(0, length), length, file_.size());
    }
}

TEST_F(StorageDamage, CheckFindsNothingInWholeStoresAndSalvageFindsAllWithJunkBetween) {
    makeStore(0);
    std::mt19937 random(2);
    std::string junked;
    for (const Place& place : places_) {
        junked += file_.substr(place.offset, place.end - place.offset);
        const Data junk = randomData(random, random() % 100);
        junked.append(junk.begin(), junk.end());
    }
    check(junked, 0, 0);
    forEachStorageBlock(file_, [](const StorageBlock& block) {
        EXPECT_TRUE(block.state == BlockState::Live || block.state == BlockState::Dead);
        return true;
    });
}

// The checksum of a stretch from those of two beginnings, beside the plain one.
TEST_F(StorageDamage, ChecksumsOfStretches) {
    std::mt19937 random(4);
    const Data data = randomData(random, 50000);
    detail::StretchChecksums checksums(data);
    for (int i = 0; i < 300; ++i) {
        const std::size_t start = random() % data.size(), length = random() % (data.size() - start + 1);
        EXPECT_EQ(checksums.of(start, length), CRC32(Bytes(data).subspan(start, length)));
    }
}

// Each call of each operation fails in turn, in each way. What was stored before is there and right,
// and an operation that says that it went well has done so.
TEST_F(StorageDamage, EveryCallThatFailsIsTold) {
    const Blocks before = {dataOf("one"), Data(3000, 'b'), dataOf("three")};
    std::mt19937 random(6);
    const Blocks more = {randomData(random, 2000), randomData(random, 1100000), randomData(random, 10),
                         randomData(random, 10)};
    const auto prepare = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) std::filesystem::remove(entry.path());
        auto store = appending("s");
        for (const Data& data : before) store.appendBlock(data);
        EXPECT_EQ(store.closeFile(), 0);
    };
    struct Result {
        bool isDone;
        Blocks expected;
        const char* name = "s";
    };
    using Work = std::function<Result(FailingCalls&)>;
    const auto open = [&](FailingCalls& calls, detail::StoreAccess access) {
        return KeyedStorage(detail::openStoreFile(calls, at("s"), access), at("s"),
                            access == detail::StoreAccess::Append);
    };
    const auto appendAll = [&](KeyedStorage store) -> Result {
        Blocks expected = before;
        store.setBlockSize(512);
        for (const Data& data : more)
            if (store.appendBlock(data)) expected.push_back(data);
        const bool isStored = store.synchronizeFile();
        return {isStored && store.closeFile() == 0, expected};
    };
    const Work works[] = {
        [&](FailingCalls& calls) { return appendAll(open(calls, detail::StoreAccess::Append)); },
        [&](FailingCalls& calls) {
            auto store = open(calls, detail::StoreAccess::ReadAndWrite);
            return store.seekToEndOfFile() ? appendAll(std::move(store)) : Result{false, before};
        },
        [&](FailingCalls& calls) {
            const bool isDone = open(calls, detail::StoreAccess::Read).optimizeToPath(at("t"), false);
            return Result{isDone, before, "t"};
        },
        [&](FailingCalls& calls) {
            const bool isDone = open(calls, detail::StoreAccess::ReadAndWrite).optimizeSafelyToPath(at("s"), false);
            return Result{isDone, before};
        },
        [&](FailingCalls& calls) {
            const bool isDone = open(calls, detail::StoreAccess::Read).salvageToPath(at("t")).isWritten;
            return Result{isDone, before, "t"};
        },
        [&](FailingCalls& calls) {
            auto store = open(calls, detail::StoreAccess::ReadAndWrite);
            const bool isDone =
                store.deleteBlockAtFileOffset(19) && store.updateBlock("new", 19) && store.synchronizeFile();
            return Result{isDone, {before[0], isDone ? dataOf("new") : before[1], before[2]}};
        },
    };
    std::size_t tried = 0;
    for (const Work& work : works)
        for (const auto way : {FailingCalls::Way::Fails, FailingCalls::Way::IsShort, FailingCalls::Way::FindsDiskFull,
                               FailingCalls::Way::IsInterrupted}) {
            bool hasFailed = true;
            for (std::size_t failing = 0; hasFailed && failing < 500; ++failing, ++tried) {
                const std::string where =
                    std::to_string(&work - works) + " " + std::to_string(int(way)) + " " + std::to_string(failing);
                SCOPED_TRACE(where);
                prepare();
                FailingCalls calls;
                calls.failing = failing;
                calls.way = way;
                const Result result = work(calls);
                hasFailed = calls.hasFailed;
                const Blocks now = blocks("s");
                const bool isInPlace = &work == std::end(works) - 1;
                // Before, there was a prefix; an update in place may lose its own block only.
                if (isInPlace)
                    EXPECT_TRUE(now.size() >= 2 && now.front() == before[0] && now.back() == before[2]) << failing;
                else
                    EXPECT_TRUE(now.size() >= 3 && std::equal(before.begin(), before.end(), now.begin())) << failing;
                EXPECT_TRUE(!result.isDone || blocks(result.name) == result.expected) << failing;
                EXPECT_TRUE(calls.hasFailed || result.isDone);
                std::size_t left = 0;
                for (const auto& entry : std::filesystem::directory_iterator(folder_))
                    left += entry.path().filename().string().starts_with(".velmo");
                EXPECT_TRUE(left == 0 || calls.hasFailedToRemove) << "a new file was left behind";
            }
        }
    EXPECT_GT(tried, 250u);
}

// A block that could not be written is off the file again with the next one that can.
TEST_F(StorageDamage, AppendingGoesOnBehindAFailure) {
    FailingCalls calls;
    KeyedStorage store(detail::openStoreFile(calls, at("s"), detail::StoreAccess::Append), at("s"), true);
    ASSERT_TRUE(store.appendBlock("kept"));
    calls.way = FailingCalls::Way::IsShort;
    calls.failing = calls.calls + 1;
    const Data large(3000000, 'l');
    EXPECT_TRUE(store.appendBlock(large));  // one short write alone is made good
    calls.way = FailingCalls::Way::Fails;
    calls.failing = calls.calls + 1;
    EXPECT_FALSE(store.appendBlock(large));
    EXPECT_TRUE(store.appendBlock("next") && store.synchronizeFile());
    EXPECT_EQ(store.closeFile(), 0);
    EXPECT_EQ(blocks("s"), (Blocks{dataOf("kept"), large, dataOf("next")}));
    EXPECT_EQ(logged_, "");
}

}  // namespace
}  // namespace velmo
