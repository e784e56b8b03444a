// What the tests of the tool share: a folder of their own and running it as a user does.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "TestSupport.h"

namespace velmo {

using Json = nlohmann::json;

struct Outcome {
    int code;
    std::string out, err;
    std::vector<Json> lines() const {
        std::vector<Json> objects;
        std::istringstream stream(out);
        for (std::string line; std::getline(stream, line);) objects.push_back(Json::parse(line));
        return objects;
    }
};

class Tool : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / ("velmo-tool-" + std::to_string(getpid()));
        std::filesystem::create_directory(folder_);
    }
    void TearDown() override {
        std::filesystem::remove_all(folder_);
        for (const char* stream : {".in", ".out", ".err"}) std::filesystem::remove(folder_.string() + stream);
    }

    std::string write(const std::string& name, const std::string& content) const {
        const std::string path = (folder_ / name).string();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    std::string read(const std::string& name) const { return contentOf((folder_ / name).string()); }
    static std::string contentOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    Outcome run(const std::string& arguments, const std::string& input = "") const {
        return shell(VELMO_TOOL " " + arguments, input);
    }
    /// Runs a line of the shell in the folder of the test; $V is the tool.
    Outcome shell(const std::string& line, const std::string& input = "") const {
        std::ofstream(folder_.string() + ".in", std::ios::binary) << input;
        const std::string at = folder_.string(), command = "exec <" + at + ".in >" + at + ".out 2>" + at + ".err; cd " +
                                                           at + "; V=" VELMO_TOOL "; " + line;
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(at + ".out"), contentOf(at + ".err")};
    }
    std::string pages() const { return VELMO_PAGES "/*html"; }

    std::filesystem::path folder_;
};

}  // namespace velmo
