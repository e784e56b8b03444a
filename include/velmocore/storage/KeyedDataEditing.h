#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <optional>
#include <ranges>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/storage/KeyedData.h>

namespace velmo {

// Writing of keyed data; see KeyedData.h for what it is.
//
//     Data data;
//     addStrings(data, std::vector<String>{u"tea", u"coffee"}, 1);
//     setBool(data, true, 1);
//     setBool(data, false, 1);
//     data.size();                         // 57
//     removeStringForKey(data, 1);
//     stringForKey(data, 1);               // coffee
//
// "add" appends a record, even if one with that key exists. "set" replaces the first such record
// or appends: a value of fixed size where it stands, others by removing and adding. "remove" takes
// off the first such record, and whatever makes the buffer invalid with it: from the first unknown
// tag or record that is not all there, everything is cut off, whether the record was found or not.
//
// What adds or sets gives true, or false if there is nothing to write. What is given may be a part
// of the buffer itself. One thread at a time uses a buffer that is changed.

// --- Values of fixed size ---

namespace detail {
/// The used bytes of the value field are the lowest of the bits.
VELMO_API bool addKeyedBits(Data& data, KeyedTag tag, std::uint64_t bits, std::uint32_t key);
VELMO_API bool setKeyedBits(Data& data, KeyedTag tag, std::uint64_t bits, std::uint32_t key);
VELMO_API void removeFirstKeyed(Data& data, KeyedTag tag, std::uint32_t key);
}  // namespace detail

inline bool addBool(Data& data, bool value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Bool, value, key);
}
inline bool addUnsigned(Data& data, std::uint32_t value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Unsigned, value, key);
}
inline bool addSigned(Data& data, std::int32_t value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Signed, static_cast<std::uint32_t>(value), key);
}
inline bool addUnsignedLongLong(Data& data, std::uint64_t value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::UnsignedLongLong, value, key);
}
inline bool addSignedLongLong(Data& data, std::int64_t value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::SignedLongLong, static_cast<std::uint64_t>(value),
                                key);
}
inline bool addFloat(Data& data, float value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Float, std::bit_cast<std::uint32_t>(value), key);
}
inline bool addDouble(Data& data, double value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Double, std::bit_cast<std::uint64_t>(value), key);
}
/// False for no date.
VELMO_API bool addDate(Data& data, std::optional<Date> value, std::uint32_t key);
/// A date as seconds since the ReferenceDate.
inline bool addTimeIntervalSinceReferenceDate(Data& data, double value, std::uint32_t key) {
    return detail::addKeyedBits(data, KeyedTag::Time, std::bit_cast<std::uint64_t>(value), key);
}

inline bool setBool(Data& data, bool value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Bool, value, key);
}
inline bool setUnsigned(Data& data, std::uint32_t value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Unsigned, value, key);
}
inline bool setSigned(Data& data, std::int32_t value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Signed, static_cast<std::uint32_t>(value), key);
}
inline bool setUnsignedLongLong(Data& data, std::uint64_t value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::UnsignedLongLong, value, key);
}
inline bool setSignedLongLong(Data& data, std::int64_t value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::SignedLongLong, static_cast<std::uint64_t>(value),
                                key);
}
inline bool setFloat(Data& data, float value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Float, std::bit_cast<std::uint32_t>(value), key);
}
inline bool setDouble(Data& data, double value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Double, std::bit_cast<std::uint64_t>(value), key);
}
/// False for no date.
VELMO_API bool setDate(Data& data, std::optional<Date> value, std::uint32_t key);
/// A date as seconds since the ReferenceDate.
inline bool setTimeIntervalSinceReferenceDate(Data& data, double value, std::uint32_t key) {
    return detail::setKeyedBits(data, KeyedTag::Time, std::bit_cast<std::uint64_t>(value), key);
}

// --- Bytes, strings and URLs: false if absent or empty ---

/// False also for 4 GB and more, whose length a record cannot tell.
VELMO_API bool addData(Data& data, Bytes value, std::uint32_t key);
inline bool addBytes(Data& data, Bytes value, std::uint32_t key) {
    return addData(data, value, key);
}
/// False also for a lone surrogate, which UTF-8 cannot hold; that is logged.
VELMO_API bool addString(Data& data, std::u16string_view value, std::uint32_t key);
/// Ours: a string that is UTF-8 already, which is not checked.
VELMO_API bool addUTF8String(Data& data, std::string_view value, std::uint32_t key);
VELMO_API bool addURL(Data& data, const URL& value, std::uint32_t key);

// Where adding fails, the old record is gone all the same.
VELMO_API bool setData(Data& data, Bytes value, std::uint32_t key);
inline bool setBytes(Data& data, Bytes value, std::uint32_t key) {
    return setData(data, value, key);
}
VELMO_API bool setString(Data& data, std::u16string_view value, std::uint32_t key);
VELMO_API bool setURL(Data& data, const URL& value, std::uint32_t key);

/// Adds each string of a container; false if it is empty, else true, whichever could be added.
template <std::ranges::input_range Strings>
requires std::convertible_to<std::ranges::range_reference_t<Strings>, std::u16string_view>
bool addStrings(Data& data, const Strings& strings, std::uint32_t key) {
    for (std::u16string_view string : strings) addString(data, string, key);
    return std::ranges::begin(strings) != std::ranges::end(strings);
}
/// The same with URLs.
template <std::ranges::input_range URLs>
requires std::convertible_to < std::ranges::range_reference_t<URLs>,
const URL& > bool addURLs(Data& data, const URLs& urls, std::uint32_t key) {
    for (const URL& url : urls) addURL(data, url, key);
    return std::ranges::begin(urls) != std::ranges::end(urls);
}

// --- Removing ---

inline void removeBoolForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Bool, key);
}
inline void removeUnsignedForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Unsigned, key);
}
inline void removeSignedForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Signed, key);
}
inline void removeUnsignedLongLongForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::UnsignedLongLong, key);
}
inline void removeSignedLongLongForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::SignedLongLong, key);
}
inline void removeFloatForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Float, key);
}
inline void removeDoubleForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Double, key);
}
inline void removeDateForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Time, key);
}
inline void removeDataForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Blob, key);
}
inline void removeStringForKey(Data& data, std::uint32_t key) {
    detail::removeFirstKeyed(data, KeyedTag::Text, key);
}
inline void removeURLForKey(Data& data, std::uint32_t key) { removeStringForKey(data, key); }

/// All strings of the key, those that are URLs too.
VELMO_API void removeStringsForKey(Data& data, std::uint32_t key);
inline void removeURLsForKey(Data& data, std::uint32_t key) { removeStringsForKey(data, key); }

/// Removes each record for which the handler returns true. An empty handler leaves the buffer as
/// it is.
VELMO_API void removeKeyedDataUsingHandler(
    Data& data, FunctionRef<bool(KeyedTag tag, std::uint32_t key)> handler);

}  // namespace velmo
