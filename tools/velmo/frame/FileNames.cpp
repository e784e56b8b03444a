// One walker for all commands. It goes by the calls of the system: each folder and each entry
// can fail for itself, and is then the one that is named.
#include "FileNames.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

#include <velmocore/platform/String.h>
#include <velmocore/query/Wildcards.h>

#include "FileBytes.h"

namespace velmo::tool {
namespace {

std::string message(int number) { return std::generic_category().message(number); }

bool matchesAny(const std::string& name, const std::vector<std::string>& patterns) {
    return std::ranges::any_of(patterns, [&](const std::string& pattern) {
        return isLikeUnixWildcard(String::fromUTF8(name), String::fromUTF8(pattern));
    });
}

/// The names in a folder, the last first, as a stack takes them.
std::vector<std::string> entriesOf(Session& session, const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
    if (!open) {
        session.fail(folder, message(errno));
        return names;
    }
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(open.get());
        if (!entry) break;
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    if (errno != 0) session.fail(folder, message(errno));
    std::ranges::sort(names, std::greater());
    return names;
}

class Walk {
public:
    Walk(Session& session, const NameOptions& options, std::vector<FileName>& files)
        : session_(session), options_(options), files_(files) {}

    void addFolder(const std::string& folder) {
        push(folder);
        while (!stack_.empty()) {
            const std::string path = std::move(stack_.back());
            stack_.pop_back();
            visit(path, folder);
        }
    }

private:
    void push(const std::string& folder) {
        const char* const slash = folder.ends_with('/') ? "" : "/";
        for (const std::string& name : entriesOf(session_, folder))
            if (!matchesAny(name, options_.exclude)) stack_.push_back(folder + slash + name);
    }

    void visit(const std::string& path, const std::string& folder) {
        struct stat status = {};
        // Links within folders are not followed, so that no walk goes in circles.
        if (lstat(path.c_str(), &status) != 0) return session_.fail(path, message(errno));
        if (S_ISDIR(status.st_mode)) return push(path);
        const bool isWanted = options_.include.empty() ||
                              matchesAny(path.substr(path.rfind('/') + 1), options_.include);
        // A pipe or device in a folder would be waited for without end; one that is named is read.
        if (S_ISREG(status.st_mode) && isWanted) files_.push_back({path, folder});
    }

    Session& session_;
    const NameOptions& options_;
    std::vector<FileName>& files_;
    std::vector<std::string> stack_;
};

/// The names that a file holds, one after the other.
void addNames(Session& session, const NameOptions& options, std::vector<std::string>& paths) {
    try {
        const Data bytes = readFile(options.filesFrom);
        for (std::string_view rest = charsOf(bytes); !rest.empty();) {
            const std::size_t end = rest.find(options.hasNuls ? '\0' : '\n');
            if (end > 0) paths.emplace_back(rest.substr(0, end));
            rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
        }
    } catch (const InputError& error) {
        session.fail(options.filesFrom, error.what());
    }
}

bool isFolder(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::vector<FileName> listFiles(Session& session, const NameOptions& options) {
    std::vector<std::string> paths = options.paths;
    if (!options.filesFrom.empty())
        addNames(session, options, paths);
    else if (paths.empty())
        paths.push_back(options.recursive ? "." : "-");
    std::vector<FileName> files;
    for (const std::string& path : paths) {
        if (options.recursive && isFolder(path))
            Walk(session, options, files).addFolder(path);
        else
            files.push_back({path});
    }
    return files;
}

}  // namespace velmo::tool
