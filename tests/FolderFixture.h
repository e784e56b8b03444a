// A folder of its own for a test, and what was logged meanwhile.
#pragma once

#include <unistd.h>

#include <filesystem>

#include <velmocore/platform/Log.h>

#include "TestSupport.h"

namespace velmo::test {

class FolderTest : public testing::Test {
protected:
    void SetUp() override {
        static int serial = 0;
        folder_ = std::filesystem::temp_directory_path() /
                  ("velmo-test-" + std::to_string(getpid()) + "-" + std::to_string(serial++));
        std::filesystem::create_directory(folder_);
        logged_.clear();
        setLogHandler([](std::string_view line) { logged_ += std::string(line) + "\n"; });
    }
    void TearDown() override {
        setLogHandler(nullptr);
        std::filesystem::remove_all(folder_);
    }

    std::string at(std::string_view name) const { return folder_ / name; }
    std::string bytes(std::string_view name) const { return readFile(at(name)); }
    void write(std::string_view name, std::string_view content) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(at(name), std::ios::binary) << content;
    }
    bool isThere(std::string_view name) const {
        return std::filesystem::symlink_status(folder_ / name).type() != std::filesystem::file_type::not_found;
    }

    std::filesystem::path folder_;
    inline static std::string logged_;
};

/// All that a folder holds, sorted: what there is, its path in the folder, its permissions and what is in it.
inline std::vector<std::string> treeOf(const std::filesystem::path& folder) {
    std::vector<std::string> tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto status = entry.symlink_status();
        const std::string mode = std::to_string(static_cast<int>(status.permissions()));
        std::string line = entry.path().lexically_relative(folder).string();
        if (entry.is_symlink())
            line += " -> " + std::filesystem::read_symlink(entry.path()).string();
        else
            line += entry.is_directory() ? "/ " + mode : " " + mode + " " + readFile(entry.path());
        tree.push_back(line);
    }
    std::ranges::sort(tree);
    return tree;
}

}  // namespace velmo::test
