// What the tests of helpers share: a folder of sockets of their own, which must be empty at the end.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include <velmocore/system/NamedConnection.h>

#include "TestSupport.h"

namespace velmo::test {

class ServiceFixture : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(folder_);
        ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
    }
    void TearDown() override {
        EXPECT_EQ(sockets(), 0u);
        std::filesystem::remove_all(folder_);
        ::unsetenv("XDG_RUNTIME_DIR");
    }
    std::size_t sockets() const {
        const auto all = folder_ / "velmo";
        return std::filesystem::exists(all) ? std::distance(std::filesystem::directory_iterator(all), {}) : 0;
    }

    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("velmo-helpers-" + std::to_string(::getpid()));
};

inline std::string printed(const std::optional<PropertyList>& value, const Error& error) {
    if (!value) return error.domain.utf8() + " " + std::to_string(error.code) + " " + error.text.utf8();
    return "value";
}

}  // namespace velmo::test
