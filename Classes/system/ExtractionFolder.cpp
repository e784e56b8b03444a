#include "system/ExtractionFolder.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <deque>

#include "system/ArchiveErrors.h"

namespace velmo::detail {
namespace {

constexpr int FolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
/// Without the rights that come with an owner, who is another one here.
constexpr mode_t GivenBits = 0777;
/// A target is looked up in so many steps at most, through other links too.
constexpr std::size_t MostSteps = 255;

std::vector<std::string> componentsOf(std::string_view path) {
    std::vector<std::string> components;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view component = path.substr(start, end - start);
        if (!component.empty() && component != ".") components.emplace_back(component);
        start = end + 1;
    }
    return components;
}

std::string joined(const EntryPath& path) {
    std::string text;
    for (const std::string& component : path) text += (text.empty() ? "" : "/") + component;
    return text;
}

[[noreturn]] void unsafe(std::string_view entry, std::string_view reason) {
    throw ArchiveFailure(ArchiveProblem::Unsafe, entry, reason);
}

/// False for what would be ".." where a backslash parts names too. Nothing is written there by us,
/// but what such a name is made for, is clear.
bool isHarmless(std::string_view component) {
    std::string text(component);
    std::ranges::replace(text, '\\', '/');
    return std::ranges::count(componentsOf(text), "..") == 0;
}

timespec timeOf(Date date) {
    const double seconds = date.time_since_epoch().count(), whole = std::floor(seconds);
    return {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
}

void setAttributes(const OpenFile& file, std::optional<mode_t> mode, std::optional<Date> modified,
                   std::string_view about) {
    if (modified) {
        const timespec times[2] = {{0, UTIME_OMIT}, timeOf(*modified)};
        demand(file.calls().futimens(file.number(), times) == 0, about);
    }
    if (mode) demand(file.calls().fchmod(file.number(), *mode & GivenBits) == 0, about);
}

}  // namespace

EntryPath entryPathOf(const std::string& name) {
    if (name.starts_with('/') || name.starts_with('\\')) unsafe(name, "has an absolute path");
    if (name.size() >= PATH_MAX) unsafe(name, "has too long a path");
    if (name.find('\0') != std::string::npos) unsafe(name, "has a NUL in its path");
    EntryPath path = componentsOf(name);
    if (!std::ranges::all_of(path, isHarmless)) unsafe(name, "leads out of the folder");
    return path;
}

ExtractionFolder::ExtractionFolder(OpenFile root) : root_(std::move(root)) {}

/// A folder in a folder, which is made if there is nothing. A link is none.
OpenFile ExtractionFolder::step(const OpenFile& from, const EntryPath& path, std::size_t index) {
    FileCalls& calls = root_.calls();
    const bool isNew = calls.mkdirat(from.number(), path[index].c_str(), 0777) == 0;
    if (!isNew && errno != EEXIST) demand(false, joined(path));
    OpenFile folder(calls, from.number(), path[index], FolderFlags);
    if (!folder && (errno == ELOOP || errno == ENOTDIR))
        unsafe(joined(path), "is to go through what is no folder");
    if (!folder) demand(false, joined(path));
    const auto info = isNew ? folder.info() : std::nullopt;
    if (info) made_.insert(info->st_ino);
    return folder;
}

bool ExtractionFolder::wasMade(const OpenFile& folder) const {
    const auto info = folder.info();
    return info && made_.contains(info->st_ino);
}

/// The folder of so many first names of a path.
const OpenFile& ExtractionFolder::folderOf(const EntryPath& path, std::size_t depth) {
    if (depth == 0) return root_;
    const EntryPath wanted(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(depth));
    if (wanted == last_) return lastFolder_;
    // Further down from the last one, or from the root.
    const bool isBelow = !last_.empty() && last_.size() < depth &&
                         std::equal(last_.begin(), last_.end(), wanted.begin());
    std::size_t index = isBelow ? last_.size() : 0;
    OpenFile folder = step(isBelow ? lastFolder_ : root_, path, index);
    while (++index < depth) folder = step(folder, path, index);
    lastFolder_ = std::move(folder);
    last_ = wanted;
    return lastFolder_;
}

void ExtractionFolder::makeFolder(const EntryPath& path) { folderOf(path, path.size()); }

void ExtractionFolder::makeFile(const EntryPath& path, FunctionRef<void(OpenFile& file)> write,
                                std::optional<mode_t> mode, std::optional<Date> modified) {
    const std::string name = joined(path);
    const OpenFile& folder = folderOf(path, path.size() - 1);
    NewPlace place(root_.calls(), folder.number());
    OpenFile file = place.makeFile(mode ? 0600 : 0666);
    demand(static_cast<bool>(file), name);
    write(file);
    setAttributes(file, mode, modified, name);
    demand(file.close() && place.become(path.back(), Occupied::IsReplaced), name);
}

void ExtractionFolder::addLink(const EntryPath& path, std::string target) {
    links_[joined(path)] = std::move(target);
}

void ExtractionFolder::addAttributes(const EntryPath& path, std::optional<mode_t> mode,
                                     std::optional<Date> modified) {
    attributes_[joined(path)] = {mode, modified};
}

/// Follows a link as the system will, name by name. Links of this archive are followed; one that
/// was there before may lead anywhere.
bool ExtractionFolder::staysInside(const std::string& link) const {
    std::string at = link.substr(0, link.rfind('/') == link.npos ? 0 : link.rfind('/'));
    std::deque<std::string> left;
    const auto follow = [&left](const std::string& target) {
        const auto components = componentsOf(target);
        left.insert(left.begin(), components.begin(), components.end());
        return !target.empty() && target.front() != '/';
    };
    if (!follow(links_.at(link))) return false;
    for (std::size_t steps = 0; !left.empty(); ++steps) {
        if (steps == MostSteps) return false;
        const std::string name = std::move(left.front());
        left.pop_front();
        const std::size_t above = at.rfind('/') == at.npos ? 0 : at.rfind('/');
        if (name == ".." && at.empty()) return false;
        if (name == "..") {
            at.resize(above);
            continue;
        }
        const std::string next = at.empty() ? name : at + "/" + name;
        if (const auto other = links_.find(next); other != links_.end()) {
            if (!follow(other->second)) return false;
            continue;
        }
        const auto info = infoOf(root_.calls(), root_.number(), next);
        if (info && S_ISLNK(info->st_mode)) return false;
        at = next;
    }
    return true;
}

void ExtractionFolder::makeLink(const std::string& name, const std::string& target) {
    if (!staysInside(name)) unsafe(name, "links out of the folder");
    const EntryPath path = componentsOf(name);
    const OpenFile& folder = folderOf(path, path.size() - 1);
    NewPlace place(root_.calls(), folder.number());
    demand(place.makeLink(target) && place.become(path.back(), Occupied::IsReplaced), name);
}

void ExtractionFolder::finish() {
    for (const auto& [name, target] : links_) makeLink(name, target);
    // The deepest first: what is above may forbid to go there.
    for (auto entry = attributes_.rbegin(); entry != attributes_.rend(); ++entry) {
        const EntryPath path = componentsOf(entry->first);
        const OpenFile& folder = folderOf(path, path.size());
        if (wasMade(folder))
            setAttributes(folder, entry->second.mode, entry->second.modified, entry->first);
    }
}

}  // namespace velmo::detail
