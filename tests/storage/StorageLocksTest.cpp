// Stores that many want at once.
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "StoreFixture.h"

namespace velmo {
namespace {

class StorageLocks : public test::StoreTest {};

// Writers in two processes and eight threads, and readers between them: each reader sees whole
// blocks only, and all that any writer was promised is there at the end.
TEST_F(StorageLocks, ReadersShareAndWritersHaveItAlone) {
    constexpr int Rounds = 15;
    const auto work = [&](unsigned seed, std::atomic<int>& promised) {
        std::mt19937 random(seed);
        for (int done = 0; done < Rounds;) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 500));
            if (random() % 8 == 0) {
                auto store = reading("s");
                while (const auto block = store.nextAvailableBlock()) {
                    if (std::ranges::adjacent_find(*block, std::not_equal_to<>()) != block->end()) return false;
                }
                continue;
            }
            auto store = appending("s");
            if (!store.isValid()) continue;
            if (!store.appendBlock(Data(1 + random() % 300, static_cast<std::uint8_t>(seed)))) return false;
            if (!store.synchronizeFile()) return false;
            ++promised, ++done;
        }
        return true;
    };
    const auto inThreads = [&](unsigned seed) {
        std::atomic<int> promised = 0;
        std::atomic<bool> isRight = true;
        {
            std::vector<std::jthread> threads;
            for (unsigned i = 0; i < 4; ++i)
                threads.emplace_back([&, i] {
                    if (!work(seed + i, promised)) isRight = false;
                });
        }
        return isRight && promised == 4 * Rounds;
    };
    appending("s").appendBlock("x");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(inThreads(100) ? 0 : 1);
    EXPECT_TRUE(inThreads(200));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(blocks("s").size(), 8u * Rounds + 1);
    EXPECT_EQ(logged_, "");
}

}  // namespace
}  // namespace velmo
