// What an object of the bus protocol tells of itself.
#pragma once

#include <functional>
#include <set>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

/// The operations of the helper's interface in an introspection, which is XML; none if it is
/// damaged or something else. Linear in the text.
VELMO_API std::set<String, std::less<>> operationsOfIntrospection(std::string_view xml);

}  // namespace velmo::detail
