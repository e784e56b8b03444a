// Extended attributes by the calls of the system, under the names that it knows: those of programs
// with "user." in front.
#pragma once

#include <cerrno>
#include <optional>
#include <set>
#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Reads what tells its size first: call(bytes, count) gives the size for a count of 0, else fills
/// the bytes; below 0 is a failure with errno. What grew in between is asked for again, but not for
/// ever.
template <class Call>
std::optional<Data> readOfUnknownSize(Call call) {
    constexpr int MaxAttempts = 16;
    for (int attempt = 0; attempt < MaxAttempts; ++attempt) {
        const auto size = call(nullptr, std::size_t{0});
        if (size < 0) return std::nullopt;
        // Zero would ask for the size again.
        if (size == 0) return Data();
        Data data(static_cast<std::size_t>(size));
        const auto count = call(data.data(), data.size());
        if (count >= 0) {
            data.resize(static_cast<std::size_t>(count));
            return data;
        }
        if (errno != ERANGE) return std::nullopt;
    }
    return std::nullopt;
}

/// The attributes of a file or folder. What fails leaves errno.
class FileAttributes {
public:
    FileAttributes(const Path& path, bool traverseLink) : path_(path), follows_(traverseLink) {}

    /// The names of the system, each with a zero behind it.
    std::optional<Data> list() const;
    std::optional<Data> read(const std::string& name) const;
    bool write(const std::string& name, Bytes value) const;
    bool remove(const std::string& name) const;

private:
    bool isUsable() const;

    const Path& path_;
    bool follows_;
};

/// The system's name for a key; absent if it cannot have one, for a zero unit or a lone surrogate.
std::optional<std::string> attributeNameOfKey(const String& key);
/// The keys among the names of the system: those in the namespace of users that are UTF-8.
std::set<String> keysOfAttributeNames(Bytes names);

}  // namespace velmo::detail
