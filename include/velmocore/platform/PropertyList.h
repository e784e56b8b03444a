#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <variant>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

struct PropertyList;
using PropertyListArray = std::vector<PropertyList>;
using PropertyListDictionary = std::map<String, PropertyList>;

/// A value of a property list; std::monostate is absent.
struct PropertyList {
    std::variant<std::monostate, bool, std::int64_t, double, Date, String, Data, PropertyListArray,
                 PropertyListDictionary>
        value;
};

/// Whether the bytes can be read as a property list, binary or XML, and if so the same
/// list as XML text in UTF-8; otherwise absent. Absent also for bytes that are damaged, lists
/// nested deeper than 256 levels, dictionaries of more than 16384 keys, and binary lists that
/// share objects so that the text would be longer than 64 times their size and a megabyte.
/// The time is linear in the bytes.
[[nodiscard]] VELMO_API std::optional<Data> propertyListAsXML(Bytes bytes);

}  // namespace velmo
