#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Keyed data: a flat buffer of small typed records, each named by a key of 32 bits. It is walked
// where it stands, without a parser, and is the same on every machine; docs/formats.md describes
// it byte by byte. Here it is read; KeyedDataEditing.h writes it, KeyedFiles.h loads it.
//
//     Data data;
//     addString(data, u"tea", 1);
//     addUnsigned(data, 42, 2);
//     stringForKey(data, 1);       // tea
//     unsignedForKey(data, 2);     // 42
//     unsignedForKey(data, 3);     // 0
//
// Several records may have the same type and key: a list of strings is stored so. Records of
// different types may share a key; each operation looks at its own type only. Damage is never
// told: a value that is not there is false, 0 or absent. isValidKeyedData() is the one check.
// A payload that would run past the end of the buffer is absent, whatever its length says.
//
// Nothing is shared: any thread may read a buffer that none changes meanwhile. Reading does not
// allocate, but for the string, copy or list that is asked for.

/// What a record holds: its first four bytes, as a number with the first byte on top.
enum class KeyedTag : std::uint32_t {
    Any = 0,  ///< no record's; stands for all of them where one is looked for

    Bool = 0x5657626C,              ///< "VWbl"
    Unsigned = 0x5657756E,          ///< "VWun", 32 bits
    Signed = 0x56577369,            ///< "VWsi", 32 bits
    UnsignedLongLong = 0x5657756C,  ///< "VWul", 64 bits
    SignedLongLong = 0x5657736C,    ///< "VWsl", 64 bits
    Float = 0x5657666C,             ///< "VWfl"
    Double = 0x56576462,            ///< "VWdb"
    Time = 0x56576461,              ///< "VWda", seconds since the reference date
    Blob = 0x56576474,              ///< "VWdt", bytes
    Text = 0x56577374,              ///< "VWst", UTF-8; URLs too
};

/// One row a type.
struct KeyedType {
    KeyedTag tag;             ///< by which it is known
    std::string_view name;    ///< the tag's four characters
    std::size_t valueBytes;   ///< how many bytes of the value field it uses
    bool hasPayload = false;  ///< whose length the value field tells
};
/// All types.
inline constexpr std::array<KeyedType, 10> KeyedTypes = {{
    {KeyedTag::Bool, "VWbl", 1},
    {KeyedTag::Unsigned, "VWun", 4},
    {KeyedTag::Signed, "VWsi", 4},
    {KeyedTag::UnsignedLongLong, "VWul", 8},
    {KeyedTag::SignedLongLong, "VWsl", 8},
    {KeyedTag::Float, "VWfl", 4},
    {KeyedTag::Double, "VWdb", 8},
    {KeyedTag::Time, "VWda", 8},
    {KeyedTag::Blob, "VWdt", 4, true},
    {KeyedTag::Text, "VWst", 4, true},
}};

/// Tag, key and value field of a record.
inline constexpr std::size_t KeyedHeaderSize = 16;

/// 2001-01-01 00:00:00 UTC, from which dates count their seconds.
inline constexpr Date ReferenceDate{std::chrono::seconds(978307200)};

/// The key that four characters make, as callers mostly choose them.
///
///     keyOfCode("STRI");    // 1398035017; that is 0x53545249
[[nodiscard]] constexpr std::uint32_t keyOfCode(const char (&code)[5]) {
    std::uint32_t key = 0;
    for (int i = 0; i < 4; ++i) key = key << 8 | static_cast<std::uint8_t>(code[i]);
    return key;
}

// --- Whatever the type ---

/// Whether a record of that tag and key exists.
[[nodiscard]] VELMO_API bool containsKeyedData(Bytes data, KeyedTag tag, std::uint32_t key);
/// Bytes from the start of the buffer to the first such record, or NotFound. A value of fixed
/// size can be replaced there by writing 16 bytes, in a file too.
[[nodiscard]] VELMO_API std::uint64_t offsetOfKeyedData(Bytes data, KeyedTag tag,
                                                        std::uint32_t key);

// --- Tests: whether there is a record of the type in the name ---

[[nodiscard]] inline bool containsBoolForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Bool, key);
}
[[nodiscard]] inline bool containsUnsignedForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Unsigned, key);
}
[[nodiscard]] inline bool containsSignedForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Signed, key);
}
[[nodiscard]] inline bool containsUnsignedLongLongForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::UnsignedLongLong, key);
}
[[nodiscard]] inline bool containsSignedLongLongForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::SignedLongLong, key);
}
[[nodiscard]] inline bool containsFloatForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Float, key);
}
[[nodiscard]] inline bool containsDoubleForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Double, key);
}
[[nodiscard]] inline bool containsDateForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Time, key);
}
[[nodiscard]] inline bool containsDataForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Blob, key);
}
[[nodiscard]] inline bool containsStringForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Text, key);
}
[[nodiscard]] inline bool containsURLForKey(Bytes data, std::uint32_t key) {
    return containsKeyedData(data, KeyedTag::Text, key);
}

// --- Offsets of the first record of that type, in bytes; NotFound if there is none ---

[[nodiscard]] inline std::uint64_t offsetOfBoolForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Bool, key);
}
[[nodiscard]] inline std::uint64_t offsetOfUnsignedForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Unsigned, key);
}
[[nodiscard]] inline std::uint64_t offsetOfSignedForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Signed, key);
}
[[nodiscard]] inline std::uint64_t offsetOfUnsignedLongLongForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::UnsignedLongLong, key);
}
[[nodiscard]] inline std::uint64_t offsetOfSignedLongLongForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::SignedLongLong, key);
}
[[nodiscard]] inline std::uint64_t offsetOfFloatForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Float, key);
}
[[nodiscard]] inline std::uint64_t offsetOfDoubleForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Double, key);
}
[[nodiscard]] inline std::uint64_t offsetOfDateForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Time, key);
}
[[nodiscard]] inline std::uint64_t offsetOfDataForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Blob, key);
}
[[nodiscard]] inline std::uint64_t offsetOfStringForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Text, key);
}
[[nodiscard]] inline std::uint64_t offsetOfURLForKey(Bytes data, std::uint32_t key) {
    return offsetOfKeyedData(data, KeyedTag::Text, key);
}

// --- Values of fixed size: that of the first such record, or 0 ---

[[nodiscard]] VELMO_API bool boolForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API std::uint32_t unsignedForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API std::int32_t signedForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API std::uint64_t unsignedLongLongForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API std::int64_t signedLongLongForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API float floatForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API double doubleForKey(Bytes data, std::uint32_t key);
[[nodiscard]] VELMO_API std::optional<Date> dateForKey(Bytes data, std::uint32_t key);
/// Seconds since the ReferenceDate.
[[nodiscard]] VELMO_API double timeIntervalSinceReferenceDateForKey(Bytes data, std::uint32_t key);
/// The date in local time by a format of strftime(). Absent without such a record, and for a date
/// that no calendar holds.
[[nodiscard]] VELMO_API String descriptionWithCalendarFormat(Bytes data, const char* format,
                                                             std::uint32_t key);

// --- Bytes ---

/// A copy of the payload; absent if there is none.
[[nodiscard]] VELMO_API std::optional<Data> dataForKey(Bytes data, std::uint32_t key);
/// The payload where it stands, good as long as the buffer is there and unchanged; its data() is
/// null if there is none.
[[nodiscard]] VELMO_API Bytes dataNoCopyForKey(Bytes data VELMO_LIFETIME, std::uint32_t key);

// --- Strings ---

/// Absent also if the bytes are not UTF-8.
[[nodiscard]] VELMO_API String stringForKey(Bytes data, std::uint32_t key);
/// The same as UTF-8 where it stands, good as long as the buffer is there and unchanged; its
/// data() is null if it is absent.
[[nodiscard]] VELMO_API std::string_view stringNoCopyForKey(Bytes data VELMO_LIFETIME,
                                                            std::uint32_t key);
/// A copy of the payload, whatever it is.
[[nodiscard]] VELMO_API std::optional<Data> stringDataForKey(Bytes data, std::uint32_t key);
/// Whether any string of the key is exactly this; false for an absent or empty one.
[[nodiscard]] VELMO_API bool containsString(Bytes data, std::u16string_view string,
                                            std::uint32_t key);
/// Whether they are UTF-8 or not.
[[nodiscard]] VELMO_API std::size_t numberOfStringsForKey(Bytes data, std::uint32_t key);

/// All strings of the key that are UTF-8, in the order of the buffer; none if there is none.
[[nodiscard]] VELMO_API std::optional<std::vector<String>> stringsForKey(Bytes data,
                                                                         std::uint32_t key);
[[nodiscard]] VELMO_API std::optional<std::vector<std::string_view>> stringsNoCopyForKey(
    Bytes data VELMO_LIFETIME, std::uint32_t key);
/// Calls the handler for each of these strings; gives how many calls returned true.
VELMO_API std::size_t handleStringsForKey(Bytes data, std::uint32_t key,
                                          FunctionRef<bool(const String& string)> handler);
VELMO_API std::size_t handleStringsNoCopyForKey(Bytes data, std::uint32_t key,
                                                FunctionRef<bool(std::string_view utf8)> handler);
/// Puts them into a container, at its end if it has an order of its own; gives how many.
template <class Container>
std::size_t addStringsForKey(Bytes data, std::uint32_t key, Container& to) {
    return handleStringsForKey(data, key, [&](const String& string) {
        to.insert(to.end(), string);
        return true;
    });
}

// --- URLs: strings that are read as one ---

/// A file URL if the string begins with "/"; otherwise what the string is as a URL, absent if it
/// is none.
[[nodiscard]] VELMO_API URL URLForKey(Bytes data, std::uint32_t key);
/// Whether any string of the key is the URL's; false for an absent one.
[[nodiscard]] VELMO_API bool containsURL(Bytes data, const URL& url, std::uint32_t key);
[[nodiscard]] inline std::size_t numberOfURLsForKey(Bytes data, std::uint32_t key) {
    return numberOfStringsForKey(data, key);
}
/// Those that are URLs, in the order of the buffer; none if there is none.
[[nodiscard]] VELMO_API std::optional<std::vector<URL>> URLsForKey(Bytes data, std::uint32_t key);
/// Calls the handler for each of these URLs; gives how many calls returned true.
VELMO_API std::size_t handleURLsForKey(Bytes data, std::uint32_t key,
                                       FunctionRef<bool(const URL& url)> handler);
/// As addStringsForKey().
template <class Container>
std::size_t addURLsForKey(Bytes data, std::uint32_t key, Container& to) {
    return handleURLsForKey(data, key, [&](const URL& url) {
        to.insert(to.end(), url);
        return true;
    });
}

// --- The buffer as a whole ---

/// Whether the buffer is made of whole records of known types and nothing else, at least one.
[[nodiscard]] VELMO_API bool isValidKeyedData(Bytes data);
/// How many records have the tag; Any counts all. Tags are not tested: a record of an unknown one
/// counts as 16 bytes long.
[[nodiscard]] VELMO_API std::size_t numberOfKeyedData(Bytes data, KeyedTag tag);
[[nodiscard]] inline std::size_t numberOfStrings(Bytes data) {
    return numberOfKeyedData(data, KeyedTag::Text);
}

/// A value in the machine's own order. A date is the seconds since the ReferenceDate. A string
/// is a String, or UTF-8 within the buffer if no copy is wanted.
using KeyedValue = std::variant<bool, std::uint32_t, std::int32_t, std::uint64_t, std::int64_t,
                                float, double, String, std::string_view>;
/// Takes a record; what it returns is counted.
using KeyedDataHandler =
    FunctionRef<bool(KeyedTag tag, std::uint32_t key, const KeyedValue& value)>;

/// Which records are handed out, and how.
struct KeyedHandling {
    KeyedTag marker = KeyedTag::Any;  ///< the type of the values of fixed size that are handed out
    bool strings = false;             ///< strings too, whatever the marker is
    bool noCopy = false;              ///< strings as they stand in the buffer
};
/// Hands out the records in order and gives how many calls returned true. An unknown tag ends it.
/// Bytes are never handed out: their marker gives 0, and so do an empty handler and the marker of
/// strings without "strings". A string that is not UTF-8 is left out.
VELMO_API std::size_t handleKeyedDataUsingHandler(Bytes data, KeyedDataHandler handler,
                                                  KeyedHandling options = {});

/// Whether both hold the same records; their order does not count. With a marker, only records
/// of that type do. Each record is compared with the first one of its type and key on the other
/// side, so that lists of different strings under one key are not equal. A record of an unknown
/// type and a payload that is not all there equal nothing. Without another buffer it is false.
[[nodiscard]] VELMO_API bool isEqualToKeyedData(Bytes data, std::optional<Bytes> other,
                                                KeyedTag marker = KeyedTag::Any);

/// A record as it stands in its buffer.
struct KeyedRecord {
    const KeyedType& type;         ///< a row of KeyedTypes
    std::uint32_t key;             ///< as it was chosen
    std::uint64_t offset;          ///< from the start of the buffer
    std::optional<Bytes> payload;  ///< none if the type has none, or if it is not all there
    Bytes bytes;                   ///< header and payload, as far as they are there
};
/// Ours: calls the handler for each record that readers see, of any type, until it returns false.
VELMO_API void forEachKeyedRecord(Bytes data, FunctionRef<bool(const KeyedRecord& record)> handler);
/// Ours: the value of such a record; none for bytes, and for a string that is not UTF-8 or not all
/// there.
[[nodiscard]] VELMO_API std::optional<KeyedValue> valueOfKeyedRecord(const KeyedRecord& record,
                                                                     bool noCopy = false);

}  // namespace velmo
