// Kills a program at a random moment while it changes a store, over and over, and looks at what is
// left: velmo-crash [ROUNDS [SEED]].
//
// The writer tells in shared memory what it was promised: a block counts as stored when
// synchronizeFile() has said so. After each kill a reader must find every such block, nothing that
// was deleted, and never a block that holds something else than was written; then a block is
// appended, and all must be found again. Three kinds of writers take turns:
//
// - one that appends and rewrites the store safely,
// - one that updates and deletes besides, with a block size, so that no header lies across pages:
//   the one block that is being updated may be lost;
// - one that moves blocks down in place: the one in flight may be lost, and salvage finds the others.
#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <new>
#include <random>
#include <set>

#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedStorage.h>

#include "PagesCrash.h"

namespace velmo {
namespace {

using Id = std::uint32_t;

enum class Writer { Appends, Changes, Moves };
enum State : std::uint8_t { Unknown, Stored, InDoubt, Deleted };

constexpr std::size_t MostBlocks = 1 << 16;

/// What both processes see.
struct Promises {
    volatile Id next;
    volatile State states[MostBlocks];
};

/// The bytes of a block follow from its number, so that every block proves itself.
Data blockOf(Id id) {
    std::mt19937 random(id);
    Data data(8 + (random() % 8 ? random() % 700 : random() % 200000));
    for (std::size_t i = 4; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(random());
    std::memcpy(data.data(), &id, sizeof id);
    return data;
}

/// Tells what is wrong and ends the run.
[[noreturn]] void fail(std::size_t round, const std::string& what) {
    fmt::print(stderr, "crash: round {}: {}\n", round, what);
    std::exit(1);
}

/// The changes of one life of the writer.
class Changes {
public:
    Changes(Promises& promises, const std::string& path, Writer writer, unsigned seed)
        : promises_(promises), path_(path), writer_(writer), random_(seed) {}

    void run() {
        open();
        for (;;) {
            const unsigned what = random_() % 16;
            if (writer_ == Writer::Changes && what < 5)
                update();
            else if (writer_ == Writer::Changes && what < 8)
                remove();
            else if (writer_ == Writer::Moves && what < 4)
                remove();
            else if (writer_ == Writer::Moves && what < 6)
                compact();
            else if (writer_ != Writer::Moves && what == 15)
                optimize();
            else
                append();
        }
    }

private:
    void require(bool isDone) const {
        if (!isDone) std::_Exit(3);
    }

    void open() {
        store_ = KeyedStorage();  // which has the file for itself
        store_ = KeyedStorage::keyedStorageForUpdatingAtPath(path_);
        require(store_.isValid());
        store_.setBlockSize(writer_ == Writer::Changes ? 512 : 0);
        places_.clear();
        std::vector<std::uint64_t> twice;  // of a move that did not come to its end
        while (const auto block = store_.nextAvailableBlock()) {
            Id id;
            std::memcpy(&id, block->data(), sizeof id);
            if (places_.contains(id)) twice.push_back(places_[id]);
            places_[id] = store_.offsetOfLastBlock();
        }
        for (const std::uint64_t offset : twice) require(store_.deleteBlockAtFileOffset(offset));
    }

    Id newId() {
        const Id id = promises_.next;
        require(id < MostBlocks);
        promises_.next = id + 1;
        return id;
    }

    void append() {
        std::vector<Id> appended;
        store_.seekToEndOfFile();
        for (unsigned count = 1 + random_() % 6; count > 0; --count) {
            const Id id = newId();
            require(store_.appendBlock(blockOf(id)));
            places_[id] = store_.offsetOfAppendedBlock();
            appended.push_back(id);
        }
        require(store_.synchronizeFile());
        for (const Id id : appended) promises_.states[id] = Stored;
    }

    std::map<Id, std::uint64_t>::iterator any() {
        auto chosen = places_.begin();
        if (!places_.empty()) std::advance(chosen, random_() % places_.size());
        return chosen;
    }

    void update() {
        const auto chosen = any();
        if (chosen == places_.end()) return;
        const Id old = chosen->first, id = newId();
        promises_.states[old] = InDoubt;
        if (!store_.updateBlock(blockOf(id), chosen->second)) {
            promises_.states[old] = Stored;
            return;
        }
        require(store_.synchronizeFile());
        promises_.states[id] = Stored;
        promises_.states[old] = Deleted;
        places_[id] = chosen->second;
        places_.erase(old);
    }

    void remove() {
        const auto chosen = any();
        if (chosen == places_.end()) return;
        promises_.states[chosen->first] = InDoubt;
        require(store_.deleteBlockAtFileOffset(chosen->second) && store_.synchronizeFile());
        promises_.states[chosen->first] = Deleted;
        places_.erase(chosen);
    }

    void optimize() {
        require(store_.optimizeSafelyToPath(path_, false));
        open();
    }

    void compact() {
        std::uint64_t target = 0, next = 0;
        for (store_.seekToFileOffset(0);; store_.seekToFileOffset(next)) {
            const auto block = store_.copyOfNextAvailableBlock();
            if (!block) break;
            next = store_.offsetInFile();
            Id id;
            std::memcpy(&id, block->data(), sizeof id);
            promises_.states[id] = InDoubt;
            target = store_.optimizeLastBlock(*block, std::nullopt, target).nextOffset;
            promises_.states[id] = Stored;
        }
        require(store_.truncateFileAtOffset(target) && store_.synchronizeFile());
        open();
    }

    Promises& promises_;
    const std::string path_;
    const Writer writer_;
    std::mt19937 random_;
    KeyedStorage store_;
    std::map<Id, std::uint64_t> places_;
};

/// What a reader finds; everything must be what was written.
std::set<Id> found(const std::string& path, bool salvage, std::size_t round) {
    std::set<Id> ids;
    auto store = KeyedStorage::keyedStorageForReadingAtPath(path);
    const auto check = [&](Bytes data, std::uint64_t offset) {
        Id id = 0;
        if (data.size() >= sizeof id) std::memcpy(&id, data.data(), sizeof id);
        if (!std::ranges::equal(data, blockOf(id))) fail(round, fmt::format("wrong block at {}", offset));
        ids.insert(id);
    };
    if (!salvage)
        while (const auto block = store.nextAvailableBlock()) check(*block, store.offsetOfLastBlock());
    else
        store.forEachBlock(
            [&](const StorageBlock& block) {
                if (block.state == BlockState::Live) check(block.stored, block.offset);
                return true;
            },
            {.salvage = true});
    return ids;
}

void compare(const Promises& promises, const std::set<Id>& ids, std::size_t round) {
    for (Id id = 0; id < promises.next; ++id) {
        const bool isThere = ids.contains(id);
        if (promises.states[id] == Stored && !isThere) fail(round, fmt::format("block {} is lost", id));
        if (promises.states[id] == Deleted && isThere)
            fail(round, fmt::format("block {} was deleted and is there", id));
    }
}

/// One writer, from its start to its end by a signal.
void killWriter(Promises& promises, const std::string& path, Writer writer, std::mt19937& random, std::size_t round) {
    const unsigned seed = static_cast<unsigned>(random()), microseconds = random() % 12000;
    const pid_t child = fork();
    if (child < 0) fail(round, "no process can be made");
    if (child == 0) {
        Changes(promises, path, writer, seed).run();
        std::_Exit(0);
    }
    ::usleep(microseconds);
    ::kill(child, SIGKILL);
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFSIGNALED(status))
        fail(round, fmt::format("an operation of the writer failed: {}", status));
}

void lookAtWhatIsLeft(Promises& promises, const std::string& path, Writer writer, std::size_t round) {
    const bool salvage = writer == Writer::Moves;
    // The writer may have died before there was a file.
    const std::set<Id> before = std::filesystem::exists(path) ? found(path, salvage, round) : std::set<Id>();
    compare(promises, before, round);
    if (salvage && !before.empty()) {
        auto store = KeyedStorage::keyedStorageForReadingAtPath(path);
        if (!store.salvageToPath(path + ".saved").isWritten) fail(round, "cannot be salvaged");
        store.closeFile();
        std::filesystem::rename(path + ".saved", path);
    }
    auto store = KeyedStorage::keyedStorageForAppendingAtPath(path);
    const Id id = promises.next;
    promises.next = id + 1;
    if (!store.appendBlock(blockOf(id)) || !store.synchronizeFile() || store.closeFile() != 0)
        fail(round, "cannot be appended to");
    promises.states[id] = Stored;
    compare(promises, found(path, false, round), round);
}

std::size_t run(std::size_t rounds, unsigned seed) {
    constexpr std::size_t RoundsOfAStore = 10;
    const auto folder = std::filesystem::temp_directory_path() / fmt::format("velmo-crash-{}", ::getpid());
    const std::string path = folder / "store";
    void* memory = ::mmap(nullptr, sizeof(Promises), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) fail(0, "no memory can be shared");
    Promises* promises = nullptr;
    std::mt19937 random(seed);
    std::size_t stored = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        const Writer writer = static_cast<Writer>(round / RoundsOfAStore % 3);
        if (round % RoundsOfAStore == 0) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            promises = new (memory) Promises{};
        }
        killWriter(*promises, path, writer, random, round);
        lookAtWhatIsLeft(*promises, path, writer, round);
        stored += found(path, false, round).size();
    }
    std::filesystem::create_directories(folder);
    stored += killGatherers(folder, rounds / 2, random);
    std::filesystem::remove_all(folder);
    return stored;
}

}  // namespace
}  // namespace velmo

int main(int argc, char** argv) {
    const std::size_t rounds = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 2000;
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : std::random_device()();
    fmt::print("crash: {} rounds, seed {}\n", rounds, seed);
    std::fflush(stdout);
    velmo::setLogHandler([](std::string_view) {});  // torn ends are what this is about
    const auto start = std::chrono::steady_clock::now();
    const std::size_t looks = velmo::run(rounds, seed);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    fmt::print("crash: {} kills in {:.0f} s, {} looks at stored blocks and pages, none lost or wrong\n",
               rounds + rounds / 2, time.count(), looks);
    return looks > 0 ? 0 : 1;
}
