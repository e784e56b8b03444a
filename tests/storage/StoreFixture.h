// What the tests of stores share: a folder of their own, blocks at random, and calls that fail.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include <velmocore/platform/Log.h>
#include <velmocore/storage/KeyedStorage.h>

#include "TestSupport.h"
#include "storage/StoreFile.h"

namespace velmo::test {

inline Data dataOf(std::string_view text) { return {text.begin(), text.end()}; }

inline Data randomData(std::mt19937& random, std::size_t length) {
    Data data(length);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random());
    return data;
}

/// The calls of the system, of which the one with that number fails.
class FailingCalls : public detail::FileCalls {
public:
    enum class Way { Fails, IsShort, FindsDiskFull, IsInterrupted };

    std::size_t calls = 0, failing = SIZE_MAX;
    Way way = Way::Fails;
    bool hasFailed = false;

    int close(int file) override { return failed() ? (FileCalls::close(file), -1) : FileCalls::close(file); }
    ssize_t pread(int file, void* bytes, std::size_t count, off_t offset) override {
        if (!failed()) return FileCalls::pread(file, bytes, count, offset);
        return way == Way::IsShort ? FileCalls::pread(file, bytes, (count + 1) / 2, offset) : -1;
    }
    ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t offset) override {
        const bool wasFull = hasFailed;
        if (!failed()) return FileCalls::pwrite(file, bytes, count, offset);
        // A disk becomes full between two of its blocks; a call that fails has written nothing.
        const bool isPart = way == Way::IsShort || (way == Way::FindsDiskFull && !wasFull && count > 512);
        return isPart ? FileCalls::pwrite(file, bytes, (count + 1) / 2, offset) : -1;
    }
    int fstat(int file, struct stat& info) override { return failed() ? -1 : FileCalls::fstat(file, info); }
    int ftruncate(int file, off_t length) override { return failed() ? -1 : FileCalls::ftruncate(file, length); }
    int fsync(int file) override { return failed() ? -1 : FileCalls::fsync(file); }
    int rename(const char* from, const char* to) override { return failed() ? -1 : FileCalls::rename(from, to); }

private:
    bool failed() {
        const bool isBroken = way == Way::FindsDiskFull ? calls >= failing : calls == failing;
        ++calls;
        if (isBroken) hasFailed = true, errno = way == Way::IsInterrupted ? EINTR : way == Way::Fails ? EIO : ENOSPC;
        return isBroken;
    }
};

class StoreTest : public testing::Test {
protected:
    void SetUp() override {
        static int serial = 0;
        folder_ = std::filesystem::temp_directory_path() /
                  ("velmo-store-" + std::to_string(getpid()) + "-" + std::to_string(serial++));
        std::filesystem::create_directory(folder_);
        logged_.clear();
        setLogHandler([](std::string_view line) { logged_ += std::string(line) + "\n"; });
    }
    void TearDown() override {
        setLogHandler(nullptr);
        std::filesystem::remove_all(folder_);
    }

    std::string at(const char* name) const { return (folder_ / name).string(); }
    std::string bytes(const char* name) const { return readFile(at(name)); }
    void write(const char* name, std::string_view content) const {
        std::ofstream(at(name), std::ios::binary) << content;
    }
    KeyedStorage reading(const char* name) const { return KeyedStorage::keyedStorageForReadingAtPath(at(name)); }
    KeyedStorage updating(const char* name) const { return KeyedStorage::keyedStorageForUpdatingAtPath(at(name)); }
    KeyedStorage appending(const char* name) const { return KeyedStorage::keyedStorageForAppendingAtPath(at(name)); }

    /// All that a reader gets, over blocks that cannot be read.
    static std::vector<Data> blocksOf(KeyedStorage store) {
        std::vector<Data> blocks;
        while (const auto block = store.nextAvailableBlock()) blocks.emplace_back(block->begin(), block->end());
        return blocks;
    }
    std::vector<Data> blocks(const char* name) const { return blocksOf(reading(name)); }
    static std::vector<Data> found(Bytes store, bool salvage) {
        std::vector<Data> blocks;
        forEachStorageBlock(store,
                            [&](const StorageBlock& block) {
                                if (block.state == BlockState::Live)
                                    blocks.push_back(block.unpacked().value_or(Data()));
                                return true;
                            },
                            {.salvage = salvage});
        return blocks;
    }

    std::filesystem::path folder_;
    inline static std::string logged_;
};

}  // namespace velmo::test
