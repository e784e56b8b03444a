// Names are cut as the bytes that they are, since one that is not UTF-8 has no units; its odd bytes
// count as one unit each.
#include <velmocore/system/UniqueNames.h>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <vector>

#include <velmocore/platform/TimeZone.h>
#include <velmocore/system/FileMoving.h>
#include <velmocore/system/FolderContents.h>

#include "system/OpenFile.h"
#include "system/PathBytes.h"

namespace velmo {
namespace {

using detail::FileCalls;

constexpr std::size_t MostUnits = 250;

bool isTaken(const std::string& path) {
    return detail::infoOf(FileCalls::current(), AT_FDCWD, path).has_value();
}

/// Bytes of the character that begins at an offset: of UTF-8, or a single odd one.
std::size_t lengthOfCharacter(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    const std::string_view rest = text.substr(at, length).substr(1);
    const auto follows = [](char byte) { return (byte & 0xC0) == 0x80; };
    return rest.size() == length - 1 && std::ranges::all_of(rest, follows) ? length : 1;
}

/// As much of a text as has so many units and bytes, in whole characters.
std::string_view cut(std::string_view text, std::size_t units, std::size_t bytes) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t length = lengthOfCharacter(text, end), own = length == 4 ? 2 : 1;
        if (own > units || length > bytes - end) break;
        units -= own;
        end += length;
    }
    return text.substr(0, end);
}

std::size_t unitsOf(std::string_view text) {
    std::size_t units = 0;
    for (std::size_t i = 0, length; i < text.size(); i += length) {
        length = lengthOfCharacter(text, i);
        units += length == 4 ? 2 : 1;
    }
    return units;
}

std::size_t minus(std::size_t a, std::size_t b) { return a > b ? a - b : 0; }

/// A file name as its stem, and its extension with the full stop.
struct Name {
    explicit Name(std::string_view name) {
        const std::size_t dot = name.rfind('.');
        const bool hasDot = dot != name.npos && dot != 0;
        stem = hasDot ? name.substr(0, dot) : name;
        // A full stop at the end is none of an extension, and goes.
        if (hasDot && dot + 1 < name.size()) extension = name.substr(dot);
    }
    std::string numbered(std::size_t number) const {
        const std::string end = fmt::format("-{}{}", number, extension);
        // The bytes are looked at behind the units: a name that has few enough is as it was.
        return std::string(cut(stem, minus(MostUnits, unitsOf(end)), minus(NAME_MAX, end.size()))) +
               end;
    }

    std::string_view stem, extension;
};

struct Archive {
    timespec time;
    Path path;
};

bool isOlder(const Archive& a, const Archive& b) {
    if (a.time.tv_sec != b.time.tv_sec) return a.time.tv_sec < b.time.tv_sec;
    if (a.time.tv_nsec != b.time.tv_nsec) return a.time.tv_nsec < b.time.tv_nsec;
    return a.path.bytes() < b.path.bytes();  // their names tell when they were made
}

std::vector<Archive> archivesIn(const Path& path, const String& prefix) {
    std::vector<Archive> archives;
    std::u16string wildcard(prefix);
    const auto found = directoryContentsMatchingWildcard(path, wildcard + u"*", {.fullPath = true});
    for (const Path& archive : found.value_or(std::vector<Path>()))
        if (const auto info = detail::infoOf(FileCalls::current(), AT_FDCWD, archive.bytes()))
            archives.push_back({info->st_mtim, archive});
    std::ranges::sort(archives, isOlder);
    return archives;
}

}  // namespace

Path nonExistingFilenameAtPath(const Path& path) {
    if (!detail::isUsable(path) || !isTaken(path.bytes())) return path;
    const std::string_view folder = detail::parentOf(path.bytes());
    const Name name(detail::nameOf(path.bytes()));
    for (std::size_t number = 1;; ++number) {
        std::string candidate = detail::joinedPath(folder, name.numbered(number));
        if (!isTaken(candidate)) return candidate;
    }
}

String archiveDirectoryContentsAtPath(const Path& path, const String& prefix,
                                      std::size_t maxNumberOfArchives) {
    if (!detail::isUsable(path) || prefix.length() == 0) return {};
    const std::vector<Archive> archives = archivesIn(path, prefix);
    for (std::size_t i = 0; i + maxNumberOfArchives < archives.size(); ++i)
        removePath(archives[i].path);
    const auto now = std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
    const LocalTime local = TimeZone::system().localTimeOf(now);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(local.time_since_epoch());
    const auto time = fmt::gmtime(static_cast<std::time_t>(seconds.count()));
    return String(std::u16string(prefix) +
                  std::u16string(String::fromUTF8(fmt::format(" {:%Y-%m-%d %H-%M-%S}", time))));
}

}  // namespace velmo
