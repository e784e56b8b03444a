#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

struct PropertyList;
/// A list, and a dictionary of values by their keys in the order of units.
using PropertyListArray = std::vector<PropertyList>;
using PropertyListDictionary = std::map<String, PropertyList, std::less<>>;

/// A value of a property list; std::monostate is absent. Owns all that it holds. The operations of
/// this header may be called on any thread.
///
///     const PropertyListDictionary location = {{u"URL", {String(u"http://a.b/")}}};
///     const auto bytes = dataFromPropertyList({location}, PropertyListFormat::Binary);
///     *propertyListFromData(*bytes)->string(u"URL");  // "http://a.b/"
struct PropertyList {
    /// What it is. Lists of other programs have these kinds and no other.
    std::variant<std::monostate, bool, std::int64_t, double, Date, String, Data, PropertyListArray,
                 PropertyListDictionary>
        value;

    /// The value if it is of that type, else null.
    template <class Type>
    [[nodiscard]] const Type* as() const noexcept VELMO_LIFETIME {
        return std::get_if<Type>(&value);
    }
    /// What a dictionary holds under a key; null for an unknown key and for any other list.
    [[nodiscard]] VELMO_API const PropertyList* valueForKey(std::u16string_view key) const noexcept
        VELMO_LIFETIME;
    /// The same if it is a string, else null.
    [[nodiscard]] VELMO_API const String* string(std::u16string_view key) const noexcept
        VELMO_LIFETIME;

    friend bool operator==(const PropertyList& a, const PropertyList& b) {
        return a.value == b.value;
    }
};

/// The two forms in which property lists are written.
enum class PropertyListFormat { XML, Binary };

/// The property list that the bytes hold, binary or XML; absent for what propertyListAsXML()
/// refuses. A number that refers to another object of an archive comes as that number, an
/// integer above 2^63 - 1 as the negative one of the same bits. Dates are right from 1933 to 2069.
[[nodiscard]] VELMO_API std::optional<PropertyList> propertyListFromData(Bytes bytes);

/// The bytes of a property list. Absent for what could not be read back: an absent value, a
/// string or key that is absent or holds U+0000, a date outside the years 1933 to 2069, lists
/// nested deeper than 256 levels and dictionaries of more than 16384 keys. A lone surrogate is
/// written as U+FFFD.
[[nodiscard]] VELMO_API std::optional<Data> dataFromPropertyList(const PropertyList& list,
                                                                 PropertyListFormat format);

/// Whether the bytes can be read as a property list, binary or XML, and if so the same
/// list as XML text in UTF-8; otherwise absent. Absent also for bytes that are damaged, lists
/// nested deeper than 256 levels, dictionaries of more than 16384 keys or with a key that holds
/// U+0000, and binary lists that share objects so that the text would be longer than 64 times their
/// size and a megabyte. The time is linear in the bytes.
[[nodiscard]] VELMO_API std::optional<Data> propertyListAsXML(Bytes bytes);

}  // namespace velmo
