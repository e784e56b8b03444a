#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/storage/DSStoreStream.h>

namespace velmo {

/// What kind of value a record of folder metadata has: four characters as a number with the first
/// one on top. There may be others than these.
enum class DSStoreType : std::uint32_t {
    Blob = 0x626C6F62,   ///< "blob", bytes
    Bool = 0x626F6F6C,   ///< "bool"
    Comp = 0x636F6D70,   ///< "comp", 64 bits
    Dutc = 0x64757463,   ///< "dutc", 64 bits: a date, in 1/65536 seconds since 1904-01-01 UTC
    Long = 0x6C6F6E67,   ///< "long", 32 bits
    Short = 0x73686F72,  ///< "shor", 32 bits all the same
    Type = 0x74797065,   ///< "type", 32 bits: four characters
    Ustr = 0x75737472,   ///< "ustr", text
};

/// The codec of a Finder comment: "cmmt".
inline constexpr std::uint32_t FinderCommentCodec = 0x636D6D74;

/// Bytes, a truth, a signed number or text by the type; nothing for empty text, no bytes, and a
/// type that is not known.
using DSStoreValue = std::variant<std::monostate, bool, std::int64_t, String, Data>;

/// One record of folder metadata: what a folder's window knows of a file in it, or, under the file
/// name ".", of the folder itself. The codec says what it is, as four characters in a number.
///
///     DSStoreEntry entry(u"tea.txt", FinderCommentCodec, DSStoreType::Ustr, String(u"hot"));
///     entry.description();    // DSStoreEntry <tea.txt>: cmmt:ustr
///
/// An entry owns what it holds; any thread may read one.
class VELMO_API DSStoreEntry {
public:
    /// Of what it is to say; nothing is checked.
    DSStoreEntry(String filename, std::uint32_t codec, DSStoreType type, DSStoreValue value);
    /// The name in UTF-16, the highest byte first.
    [[nodiscard]] static DSStoreEntry initWithFilenameWithBytes(Bytes filename, std::uint32_t codec,
                                                                DSStoreType type,
                                                                DSStoreValue value);

    /// What it was made with.
    [[nodiscard]] const String& filename() const noexcept VELMO_LIFETIME { return _filename; }
    [[nodiscard]] std::uint32_t codec() const noexcept { return _codec; }
    [[nodiscard]] DSStoreType type() const noexcept { return _type; }
    [[nodiscard]] const DSStoreValue& value() const noexcept VELMO_LIFETIME { return _value; }
    /// For people: file name, codec and type.
    [[nodiscard]] String description() const;

    // Reading the record at which a stream stands. It stands behind the record then, whatever that
    // is; but at the value if the type is not known, as nobody can tell how long that is. Names are
    // compared unit by unit.

    /// What was read of a record.
    struct Reading {
        bool isWanted = false;  ///< the record has that name and codec
        DSStoreType type{};     ///< also if it is another one; 0 if the stream ended before
        DSStoreValue value{};   ///< of the one that is wanted; a number that is cut off is 0
    };
    static Reading valueForFilename(std::u16string_view filename, std::uint32_t codec,
                                    DSStoreStream& stream);
    static Reading valueForFilenameWithBytes(Bytes filename, std::uint32_t codec,
                                             DSStoreStream& stream);
    /// None if it is not the one asked for.
    static std::optional<DSStoreEntry> entryForFilename(std::u16string_view filename,
                                                        std::uint32_t codec, DSStoreStream& stream);
    static std::optional<DSStoreEntry> entryForFilenameWithBytes(Bytes filename,
                                                                 std::uint32_t codec,
                                                                 DSStoreStream& stream);
    /// Ours: whatever record it is. None if it has no name or is cut off.
    static std::optional<DSStoreEntry> nextEntry(DSStoreStream& stream);

private:
    String _filename;
    std::uint32_t _codec;
    DSStoreType _type;
    DSStoreValue _value;
};

/// Ours: the four characters of a codec or a type, one a byte.
///
///     stringOfDSStoreCode(FinderCommentCodec);    // cmmt
[[nodiscard]] VELMO_API String stringOfDSStoreCode(std::uint32_t code);

/// Ours: whether it is one of those above, whose values can be read.
[[nodiscard]] VELMO_API bool isKnownDSStoreType(DSStoreType type);

}  // namespace velmo
