// The same for stores of pages. The writer puts pages, most of which replace an older version, and
// tells in shared memory which versions synchronize() has covered. After each kill a reader must find
// of each page that version or a later one, once, with its own text; and when the store has been open
// for updating, no block of an older version is left.
#include "PagesCrash.h"

#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <random>

#include <velmocore/gather/PageStore.h>
#include <velmocore/storage/KeyedStorage.h>

namespace velmo {
namespace {

using Version = std::uint32_t;

constexpr std::size_t Keys = 60;

/// What both processes see: of each key the version that was stored last, and the last of all.
struct Promises {
    volatile Version next;
    volatile Version stored[Keys];
};

[[noreturn]] void fail(std::size_t round, const std::string& what) {
    fmt::print(stderr, "crash: round {} of pages: {}\n", round, what);
    std::exit(1);
}

/// The text follows from the version, so that every page proves itself.
PageRecord pageOf(std::size_t key, Version version) {
    std::mt19937 random(version);
    PageRecord page;
    page.key = String::fromUTF8(fmt::format("http://h.org/{}", key));
    std::string text = std::to_string(version);
    for (std::size_t words = random() % (random() % 8 ? 50 : 20000); words > 0; --words)
        text += fmt::format(" {}", random());
    page.text = String::fromUTF8(text);
    page.status = version;
    return page;
}

void write(Promises& promises, const std::string& path, unsigned seed) {
    std::mt19937 random(seed);
    PageStore store = PageStore::openForUpdating(path);
    if (!store.isValid()) std::_Exit(3);
    std::map<std::size_t, Version> put;
    for (;;) {
        const std::size_t key = random() % Keys;
        const Version version = promises.next;
        promises.next = version + 1;
        if (store.put(pageOf(key, version)) == PutResult::Failed) std::_Exit(4);
        put[key] = version;
        if (random() % 8 != 0) continue;
        if (!store.synchronize()) std::_Exit(5);
        for (const auto& [of, stored] : put) promises.stored[of] = stored;
        put.clear();
    }
}

void killWriter(Promises& promises, const std::string& path, std::mt19937& random, std::size_t round) {
    const unsigned seed = static_cast<unsigned>(random()), microseconds = random() % 15000;
    const pid_t child = fork();
    if (child < 0) fail(round, "no process can be made");
    if (child == 0) write(promises, path, seed);
    ::usleep(microseconds);
    ::kill(child, SIGKILL);
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFSIGNALED(status))
        fail(round, fmt::format("an operation of the writer failed: {}", status));
}

std::size_t lookAtWhatIsLeft(const Promises& promises, const std::string& path, std::size_t round) {
    const PageStore store = PageStore::openForReading(path);
    std::map<String, Version> found;
    store.forEachPage([&](const StoredPage& page) {
        const auto record = pageRecordFromData(page.block());
        const auto version = static_cast<Version>(record->status);
        const std::size_t key = std::strtoul(record->key.utf8().substr(13).c_str(), nullptr, 10);
        if (page.isIntact() && pageOf(key, version).text != record->text) fail(round, "a text is wrong");
        if (page.isIntact() && !found.emplace(record->key, version).second) fail(round, "a page stands twice");
        return true;
    });
    for (std::size_t key = 0; key < Keys; ++key) {
        const auto page = found.find(pageOf(key, 0).key);
        if (promises.stored[key] > 0 && (page == found.end() || page->second < promises.stored[key]))
            fail(round, fmt::format("page {} is lost or old", key));
    }
    return found.size();
}

/// How many blocks the file has when it was open for updating.
std::size_t blocksAfterOpening(const std::string& path, std::size_t round) {
    if (!PageStore::openForUpdating(path).synchronize()) fail(round, "cannot be opened again");
    auto blocks = KeyedStorage::keyedStorageForReadingAtPath(path);
    std::size_t count = 0;
    while (blocks.nextAvailableBlock()) ++count;
    return count;
}

}  // namespace

std::size_t killGatherers(const std::string& folder, std::size_t rounds, std::mt19937& random) {
    constexpr std::size_t RoundsOfAStore = 20;
    void* memory = ::mmap(nullptr, sizeof(Promises), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) fail(0, "no memory can be shared");
    const std::string path = folder + "/pages";
    Promises* promises = nullptr;
    std::size_t looks = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        if (round % RoundsOfAStore == 0) {
            std::filesystem::remove(path);
            promises = new (memory) Promises{};
            promises->next = 1;
        }
        killWriter(*promises, path, random, round);
        if (!std::filesystem::exists(path)) continue;  // it died before there was a file
        const std::size_t pages = lookAtWhatIsLeft(*promises, path, round);
        if (blocksAfterOpening(path, round) != pages) fail(round, "an old version is left");
        looks += lookAtWhatIsLeft(*promises, path, round);
    }
    return looks;
}

}  // namespace velmo
