#include <velmocore/text/Arrays.h>

#include <velmocore/text/Paths.h>

#include "text/Format.h"

namespace velmo {

void appendFormat(std::vector<String>& array, std::u16string_view format,
                  std::initializer_list<FormatArgument> arguments) {
    if (!format.empty()) array.push_back(detail::formatted(format, arguments));
}

void minimumCoverOfPaths(std::vector<String>& paths) {
    if (paths.size() < 2) return;
    std::sort(paths.begin(), paths.end());
    std::size_t kept = 1;
    for (std::size_t next = 1; next < paths.size(); ++next)
        if (!pathIsInDirectory(paths[next], paths[kept - 1])) std::swap(paths[kept++], paths[next]);
    paths.resize(kept);
}

}  // namespace velmo
