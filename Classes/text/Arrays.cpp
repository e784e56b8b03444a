#include <velmocore/text/Arrays.h>

#include "text/Format.h"
#include "text/PathParts.h"

namespace velmo {

void appendFormat(std::vector<String>& array, std::u16string_view format,
                  std::initializer_list<FormatArgument> arguments) {
    if (!format.empty()) array.push_back(detail::formatted(format, arguments));
}

void minimumCoverOfPaths(std::vector<String>& paths) {
    // Sorted, a folder stands before all that lies in it, so one pass is enough. A path is
    // compared with the last one that was kept, and only with it: "a b" stands between "a" and
    // "a/x", and "a/x" then stays. Callers see this rule in what they get; a look further back
    // would change it.
    if (paths.size() < 2) return;
    std::sort(paths.begin(), paths.end());
    // The slashes at the end of a folder are looked at once, however many paths follow.
    String folder = paths.front();
    std::u16string_view name = detail::withoutSlashesAtEnd(folder);
    std::erase_if(paths, [&](const String& path) {
        if (!path.isIdenticalTo(folder) && detail::liesIn(path, name)) return true;
        folder = path;
        name = detail::withoutSlashesAtEnd(folder);
        return false;
    });
}

}  // namespace velmo
