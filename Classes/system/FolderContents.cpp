#include <velmocore/system/FolderContents.h>

#include <fcntl.h>

#include <velmocore/platform/FunctionRef.h>
#include <velmocore/query/Wildcards.h>
#include <velmocore/text/Comparison.h>

#include "system/OpenFile.h"
#include "system/PathBytes.h"
#include "text/PathParts.h"

namespace velmo {
namespace {

using detail::FileCalls;
using Contents = std::optional<std::vector<Path>>;

Contents contents(const Path& path, ContentsOptions options,
                  FunctionRef<bool(std::u16string_view name)> matches) {
    if (!detail::isUsable(path)) return std::nullopt;
    const auto names = detail::namesInFolder(FileCalls::current(), AT_FDCWD, path.bytes());
    if (!names) return std::nullopt;
    std::vector<Path> paths;
    for (const std::string& name : *names)
        if (!matches || matches(String::fromUTF8(name)))
            paths.push_back(options.fullPath ? detail::joinedPath(path.bytes(), name) : name);
    return paths;
}

}  // namespace

Contents directoryContentsAtPath(const Path& path, ContentsOptions options) {
    return contents(path, options, nullptr);
}

Contents directoryContentsMatchingExtension(const Path& path, const String& extension,
                                            ContentsOptions options) {
    return contents(path, options, [&](std::u16string_view name) {
        return !extension.isAbsent() &&
               isEqualToStringNoCase(detail::extensionOfComponent(name), extension);
    });
}

Contents directoryContentsMatchingWildcard(const Path& path, const String& wildcard,
                                           ContentsOptions options) {
    return contents(path, options, [&](std::u16string_view name) {
        return isCaseInsensitiveLikeWildcard(name, wildcard);
    });
}

bool isVolumeMountedAtPath(const Path& path) {
    constexpr std::string_view Volumes = "/Volumes/";
    if (!detail::isUsable(path) || !path.bytes().starts_with(Volumes)) return false;
    // A slash at the end is a component itself, so that the folder of all volumes is one too.
    const std::size_t start = path.bytes().find_first_not_of('/', Volumes.size());
    const std::size_t end = path.bytes().find('/', start);
    return detail::infoBehindLinks(FileCalls::current(), path.bytes().substr(0, end)).has_value();
}

}  // namespace velmo
