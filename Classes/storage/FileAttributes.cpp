// Each call exists twice, for a link's target and for the link itself; which one is meant is chosen
// where it is called, so that both go the same way.
#include "storage/FileAttributes.h"

#include <sys/xattr.h>

#include <velmocore/text/StringFiles.h>

namespace velmo::detail {
namespace {

constexpr std::string_view Namespace = "user.";

}  // namespace

bool FileAttributes::isUsable() const {
    if (path_.isAbsent()) errno = EINVAL;
    return !path_.isAbsent();
}

std::optional<Data> FileAttributes::list() const {
    if (!isUsable()) return std::nullopt;
    return readOfUnknownSize([this](std::uint8_t* bytes, std::size_t count) {
        return (follows_ ? ::listxattr : ::llistxattr)(path_.c_str(),
                                                       reinterpret_cast<char*>(bytes), count);
    });
}

std::optional<Data> FileAttributes::read(const std::string& name) const {
    if (!isUsable()) return std::nullopt;
    return readOfUnknownSize([&](std::uint8_t* bytes, std::size_t count) {
        return (follows_ ? ::getxattr : ::lgetxattr)(path_.c_str(), name.c_str(), bytes, count);
    });
}

bool FileAttributes::write(const std::string& name, Bytes value) const {
    return isUsable() && (follows_ ? ::setxattr : ::lsetxattr)(path_.c_str(), name.c_str(),
                                                               value.data(), value.size(), 0) == 0;
}

bool FileAttributes::remove(const std::string& name) const {
    return isUsable() &&
           (follows_ ? ::removexattr : ::lremovexattr)(path_.c_str(), name.c_str()) == 0;
}

std::optional<std::string> attributeNameOfKey(const String& key) {
    // What can be no path can be no name either.
    const Path name(key);
    if (name.isAbsent()) return std::nullopt;
    return std::string(Namespace) + name.bytes();
}

std::set<String> keysOfAttributeNames(Bytes names) {
    std::set<String> keys;
    for (std::string_view rest = charsOf(names); !rest.empty();) {
        const std::string_view name = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        if (!name.starts_with(Namespace)) continue;
        const String key = String::fromUTF8(name.substr(Namespace.size()));
        // Bytes that are not UTF-8 do not come back.
        if (key.utf8() == name.substr(Namespace.size())) keys.insert(key);
    }
    return keys;
}

}  // namespace velmo::detail
