// Many files at once: folders with all that is in them, read and worked on by a pool of
// threads. What comes out stands in the order of the files, whatever the number of threads.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "OrderedRun.h"
#include "Session.h"

namespace CLI {
class App;
}

namespace velmo::tool {

/// Which files a command reads, and how.
struct WalkOptions {
    std::vector<std::string> paths;
    bool recursive = false;
    std::size_t jobs = defaultJobs();
};

/// Adds FILE..., --recursive and --jobs to a command. If there is no file, --recursive
/// stands for the current folder and everything else for standard input.
void addWalkOptions(CLI::App& command, WalkOptions& options);

/// What the work on one file has to say. It is kept until the files before it are done and
/// then goes to the session; see there for what the operations mean.
class Report {
public:
    explicit Report(bool printsJson = false) : json(printsJson) {}

    const bool json;
    void printLine(std::string_view line) { (out_ += line) += '\n'; }
    void printObject(const Json& object) { printLine(lineOf(object)); }
    void noteHit(bool hit) { (hit ? anyHit_ : anyMiss_) = true; }
    void fail(std::string_view file, std::string_view reason) {
        failures_.emplace_back(file, reason);
    }

    /// Tells the session all of it.
    void send(Session& session) const;

private:
    std::string out_;
    std::vector<std::pair<std::string, std::string>> failures_;
    bool anyHit_ = false, anyMiss_ = false;
};

/// The files to read: those that are named, and with recursive set those in the folders
/// that are named and in all folders below, sorted by name. Links in folders are not
/// followed, and what is no regular file there is left out.
std::vector<std::string> listFiles(Session& session, const WalkOptions& options);

/// Reads all files and calls the work for those that could be read, on several threads. It
/// may use nothing but its arguments and what any thread may read. A file that was found in
/// a folder is left out if it is binary: a zero byte near its start, and no page by its name.
void walkFiles(Session& session, const WalkOptions& options,
               const std::function<void(const std::string& file, const std::string& bytes,
                                        Report& report)>& work);

}  // namespace velmo::tool
