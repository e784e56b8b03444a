#pragma once

#include <memory>
#include <optional>
#include <ranges>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/storage/KeyedData.h>

namespace velmo {

namespace detail {
class FileMapping;
class KeyedStringsFile;
}  // namespace detail

// Files that hold one keyed buffer (KeyedData.h), and lists of strings in such files.
//
//     writeKeyedStringsToFile(std::vector<String>{u"tea", u"coffee"}, "drinks.keyed");
//     std::vector<String> drinks;
//     readKeyedStringsFromFile(drinks, "drinks.keyed");
//     drinks.back();                                       // coffee
//
// What cannot be read is absent; the content is not looked at. Any thread may call these.

/// All bytes of a file.
[[nodiscard]] VELMO_API std::optional<Data> dataWithKeyedFile(const Path& path);
/// The same, and the system need not keep the file in memory afterwards.
[[nodiscard]] VELMO_API std::optional<Data> dataWithUncachedKeyedFile(const Path& path);

/// The bytes of a file, mapped where that is safe: a regular file on a file system of this machine.
/// Others are read. A mapped file must not be cut short as long as this lives, as no program could
/// go on that reads there.
class VELMO_API MappedKeyedFile {
public:
    /// They live as long as this or a copy of it.
    [[nodiscard]] Bytes bytes() const noexcept VELMO_LIFETIME;
    operator Bytes() const noexcept VELMO_LIFETIME { return bytes(); }
    /// Whether they are mapped, and not read.
    [[nodiscard]] bool isMapped() const noexcept { return mapping_ != nullptr; }

private:
    friend VELMO_API std::optional<MappedKeyedFile> dataWithMappedKeyedFile(const Path& path);

    std::shared_ptr<const detail::FileMapping> mapping_;
    std::shared_ptr<const Data> data_;
};
/// Maps or reads a file.
[[nodiscard]] VELMO_API std::optional<MappedKeyedFile> dataWithMappedKeyedFile(const Path& path);

/// The key of the strings in a list: "STRI".
inline constexpr std::uint32_t KeyOfListedStrings = keyOfCode("STRI");

/// Replaces what is in the container by the strings of the file. False if it cannot be read; the
/// container is empty then.
template <class Container>
bool readKeyedStringsFromFile(Container& strings, const Path& path) {
    strings.clear();
    const std::optional<Data> data = dataWithKeyedFile(path);
    if (!data) return false;
    addStringsForKey(*data, KeyOfListedStrings, strings);
    return true;
}

namespace detail {
/// Takes strings one after the other and writes them in large portions.
class VELMO_API KeyedStringsFile {
public:
    explicit KeyedStringsFile(const Path& path);
    ~KeyedStringsFile();
    KeyedStringsFile(const KeyedStringsFile&) = delete;
    KeyedStringsFile& operator=(const KeyedStringsFile&) = delete;

    void add(std::u16string_view string);
    /// Whether all of it is stored.
    bool finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};
}  // namespace detail

/// Writes the strings to the file, which is created with its folders if need be, and has it stored.
/// The file is always written in place, atomically or not: after a crash it may hold a part of the
/// list. An empty string and one with a lone surrogate are left out. False if it could not be
/// written.
template <std::ranges::input_range Strings>
requires std::convertible_to<std::ranges::range_reference_t<Strings>, std::u16string_view>
bool writeKeyedStringsToFile(const Strings& strings, const Path& path,
                             [[maybe_unused]] bool atomically = false) {
    detail::KeyedStringsFile file(path);
    for (std::u16string_view string : strings) file.add(string);
    return file.finish();
}

}  // namespace velmo
