#pragma once

#include <concepts>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// The path of a file or folder, as operations on files take it: made from a String or other
/// UTF-16 text, from a std::string or other 8-bit text, or from a std::filesystem::path. It
/// holds the bytes that the file system knows, so that a name that is not UTF-8 survives.
///
/// A path is *absent* if what it is made from is, and if no file can have that name: with a
/// zero unit in it, or a lone surrogate, which UTF-8 cannot hold. Operations on an absent path
/// give their neutral result and touch no file. Any thread may read a path that none changes.
///
///     Path("caf\xE9").string();                  // caf\uFFFD
///     Path(u"\xD800").isAbsent();               // true
///     for (const auto& entry : std::filesystem::directory_iterator("/etc/skel"))
///         print(stringWithContentsOfFile(entry.path(), UTF8StringEncoding).text);
class VELMO_API Path {
public:
    /// The absent path.
    Path() noexcept = default;

    /// Of UTF-16 text; what is absent or null gives the absent path.
    template <class Units>
    requires std::convertible_to<const Units&, std::u16string_view> Path(const Units& path)
        : Path(Utf16{std::u16string_view(path)}) {}
    Path(const char16_t* path)
        : Path(Utf16{path ? std::u16string_view(path) : std::u16string_view()}) {}

    /// Of the bytes of a name; a view without data() and null give the absent path.
    template <class Chars>
    requires(std::convertible_to<const Chars&, std::string_view> &&
             !std::convertible_to<const Chars&, std::u16string_view>) Path(const Chars& path)
        : Path(Narrow{std::string_view(path)}) {}
    Path(const char* path) : Path(Narrow{path ? std::string_view(path) : std::string_view()}) {}

    /// Of the same bytes.
    Path(const std::filesystem::path& path) : Path(Narrow{path.native()}) {}

    /// Whether it names nothing; see above. An empty path is not absent.
    [[nodiscard]] bool isAbsent() const noexcept { return isAbsent_; }
    /// Of a path that is absent because no file can have that name, the text that it was made from;
    /// else absent.
    [[nodiscard]] const String& unusableText() const noexcept VELMO_LIFETIME {
        return unusableText_;
    }
    /// The bytes, without a zero in them; empty if absent.
    [[nodiscard]] const std::string& bytes() const noexcept VELMO_LIFETIME { return bytes_; }
    [[nodiscard]] const char* c_str() const noexcept VELMO_LIFETIME { return bytes_.c_str(); }

    /// For people and for operations on strings: bytes that are not UTF-8 become U+FFFD.
    /// Absent if the path is.
    [[nodiscard]] String string() const { return isAbsent_ ? String() : String::fromUTF8(bytes_); }
    /// The same bytes; empty if absent.
    [[nodiscard]] std::filesystem::path filesystemPath() const { return bytes_; }

    friend bool operator==(const Path&, const Path&) noexcept = default;

private:
    struct Utf16 {
        std::u16string_view units;
    };
    struct Narrow {
        std::string_view bytes;
    };
    explicit Path(Utf16 path);
    explicit Path(Narrow path);

    std::string bytes_;
    String unusableText_;
    bool isAbsent_ = true;
};

}  // namespace velmo
