// A million blocks of 500 bytes appended, read back and walked through a mapping, beside LevelDB's
// log and a bare walk; and a key found in a record, beside JSON. The bytes are random: nothing is
// compressed on either side.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <leveldb/db.h>
#include <leveldb/write_batch.h>
#include <libdeflate.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>

#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/KeyedStorage.h>

namespace velmo::bench {
namespace {

constexpr std::size_t Blocks = 1'000'000, Size = 500;

struct Folder {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("velmo-bench-" + std::to_string(getpid()));
    Folder() { std::filesystem::create_directory(path); }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

std::string at(const char* name) {
    static const Folder folder;
    return folder.path / name;
}

/// Ten thousand blocks, over and over.
const std::vector<std::string>& blocks() {
    static const std::vector<std::string> all = [] {
        std::mt19937 random(1);
        std::vector<std::string> made(10000, std::string(Size, '\0'));
        for (std::string& block : made)
            for (char& byte : block) byte = static_cast<char>(random());
        return made;
    }();
    return all;
}

void fill(const std::string& path) {
    std::filesystem::remove(path);
    auto store = KeyedStorage::keyedStorageForAppendingAtPath(path);
    for (std::size_t i = 0; i < Blocks; ++i) store.appendBlock(blocks()[i % blocks().size()]);
    if (!store.synchronizeFile()) std::abort();
}

const std::string& filled() {
    static const std::string path = [] {
        fill(at("filled"));
        return at("filled");
    }();
    return path;
}

std::unique_ptr<leveldb::DB> openLevelDB(const std::string& path) {
    leveldb::Options options;
    options.create_if_missing = true;
    options.compression = leveldb::kNoCompression;
    leveldb::DB* database = nullptr;
    if (!leveldb::DB::Open(options, path, &database).ok()) std::abort();
    return std::unique_ptr<leveldb::DB>(database);
}

void fillLevelDB(const std::string& path) {
    std::filesystem::remove_all(path);
    const auto database = openLevelDB(path);
    for (std::size_t i = 0; i < Blocks; ++i) {
        // The key is the running number, so that all goes to the end.
        std::uint64_t number = __builtin_bswap64(i);
        leveldb::WriteBatch batch;
        batch.Put({reinterpret_cast<const char*>(&number), sizeof number},
                  blocks()[i % blocks().size()]);
        leveldb::WriteOptions options;
        options.sync = i + 1 == Blocks;
        if (!database->Write(options, &batch).ok()) std::abort();
    }
}

const std::string& filledLevelDB() {
    static const std::string path = [] {
        fillLevelDB(at("filled-leveldb"));
        return at("filled-leveldb");
    }();
    return path;
}

void appendVelmo(benchmark::State& state) {
    for (auto _ : state) fill(at("appended"));
}
BENCHMARK(appendVelmo)->Name("store-append/velmo")->Unit(benchmark::kMillisecond);

void appendLevelDB(benchmark::State& state) {
    for (auto _ : state) fillLevelDB(at("appended-leveldb"));
}
BENCHMARK(appendLevelDB)->Name("store-append/leveldb")->Unit(benchmark::kMillisecond);

void readVelmo(benchmark::State& state) {
    std::size_t bytes = 0;
    const std::string path = filled();
    for (auto _ : state) {
        bytes = 0;
        auto store = KeyedStorage::keyedStorageForReadingAtPath(path);
        while (const auto block = store.nextAvailableBlock()) bytes += block->size();
    }
    if (bytes != Blocks * Size) state.SkipWithError("not all was read");
}
BENCHMARK(readVelmo)->Name("store-read/velmo")->Unit(benchmark::kMillisecond);

void readLevelDB(benchmark::State& state) {
    std::size_t bytes = 0;
    const auto database = openLevelDB(filledLevelDB());
    leveldb::ReadOptions options;
    options.verify_checksums = true;
    for (auto _ : state) {
        bytes = 0;
        const std::unique_ptr<leveldb::Iterator> at(database->NewIterator(options));
        for (at->SeekToFirst(); at->Valid(); at->Next()) bytes += at->value().size();
    }
    if (bytes != Blocks * Size) state.SkipWithError("not all was read");
}
BENCHMARK(readLevelDB)->Name("store-read/leveldb")->Unit(benchmark::kMillisecond);

void mapVelmo(benchmark::State& state) {
    std::size_t bytes = 0;
    const std::string path = filled();
    for (auto _ : state) {
        bytes = 0;
        auto store = KeyedStorage::keyedStorageForReadingAtPath(path);
        store.forEachBlock([&](const StorageBlock& block) {
            bytes += block.stored.size();
            return true;
        });
    }
    if (bytes != Blocks * Size) state.SkipWithError("not all was read");
}
BENCHMARK(mapVelmo)->Name("store-map/velmo")->Unit(benchmark::kMillisecond);

std::uint32_t bigEndianAt(const std::uint8_t* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return __builtin_bswap32(value);
}

void mapBare(benchmark::State& state) {
    std::size_t bytes = 0;
    const std::string path = filled();
    for (auto _ : state) {
        bytes = 0;
        const int file = ::open(path.c_str(), O_RDONLY);
        const std::size_t size = std::filesystem::file_size(path);
        void* memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        const auto* const start = static_cast<const std::uint8_t*>(memory);
        for (const std::uint8_t* block = start; block < start + size;) {
            const std::uint32_t length = bigEndianAt(block + 4);
            const std::uint32_t crc = ~libdeflate_crc32(0xFFFFFFFF, block + 16, length);
            if (crc == bigEndianAt(block + 12)) bytes += length;
            block += 16 + length + bigEndianAt(block + 8);
        }
        ::munmap(memory, size);
        ::close(file);
    }
    if (bytes != Blocks * Size) state.SkipWithError("not all was read");
}
BENCHMARK(mapBare)->Name("store-map/bare")->Unit(benchmark::kMillisecond);

void findVelmo(benchmark::State& state) {
    Data data;
    for (std::uint32_t key = 0; key < 10; ++key) {
        addString(data, u"a title of some length", key);
        addUnsigned(data, key, key);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(data.data());
        benchmark::DoNotOptimize(unsignedForKey(data, 9));
    }
}
BENCHMARK(findVelmo)->Name("keyed-find/velmo");

void findJson(benchmark::State& state) {
    nlohmann::json json;
    for (int key = 0; key < 10; ++key) {
        json["s" + std::to_string(key)] = "a title of some length";
        json["u" + std::to_string(key)] = key;
    }
    const std::string text = json.dump();
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::parse(text)["u9"].get<unsigned>());
}
BENCHMARK(findJson)->Name("keyed-find/nlohmann-json");

}  // namespace
}  // namespace velmo::bench
