#include "FileNames.h"

#include <sys/stat.h>

#include <algorithm>

#include <velmocore/platform/String.h>
#include <velmocore/system/FolderWalk.h>

#include "FileBytes.h"

namespace velmo::tool {
namespace {

std::vector<String> patternsOf(const std::vector<std::string>& patterns) {
    std::vector<String> strings;
    for (const std::string& pattern : patterns) strings.push_back(String::fromUTF8(pattern));
    return strings;
}

void addFolder(Session& session, const NameOptions& options, const std::string& folder,
               std::vector<FileName>& files) {
    FolderWalk walk(
        folder, {.include = patternsOf(options.include), .exclude = patternsOf(options.exclude)});
    while (const auto file = walk.next())
        if (file->error)
            session.fail(file->path.bytes(), file->error->text.utf8());
        else
            files.push_back({file->path.bytes(), folder});
}

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
            addFolder(session, options, path, files);
        else
            files.push_back({path});
    }
    return files;
}

}  // namespace velmo::tool
