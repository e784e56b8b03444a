// Resources: small pieces of data under a type of four characters, in the fork of a file that
// AppleDouble carries.
#pragma once

#include <cstdint>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// The data of the first resource of a type, where it stands in the fork; none if there is no such
/// resource, or not all of it. Linear in the number of types.
VELMO_API std::optional<Bytes> firstResource(Bytes fork, std::uint32_t type);

}  // namespace velmo::detail
