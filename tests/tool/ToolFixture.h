// What the tests of the tool share: a folder of their own and running it as a user does.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

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
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string write(const std::string& name, const std::string& content) const {
        const std::string path = (folder_ / name).string();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    std::string read(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    Outcome run(const std::string& arguments, const std::string& input = "") const {
        const std::string in = write("in", input);
        const std::string command = VELMO_TOOL " " + arguments + " <" + in + " >" + (folder_ / "out").string() + " 2>" +
                                    (folder_ / "err").string();
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("out"), read("err")};
    }
    std::string pages() const { return VELMO_PAGES "/*html"; }

    std::filesystem::path folder_;
};

}  // namespace velmo
