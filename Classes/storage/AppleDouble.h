// AppleDouble: what a file has besides its bytes on systems that know forks and types, in a second
// file "._name" beside it, as archives carry it to other systems. It is read and never written.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

/// The two entries that matter, as views of the file; empty if they are not there, or not whole.
struct AppleDouble {
    Bytes finderInfo, resourceFork;
};
/// Of bytes that are no such file, none. Linear in the number of entries.
VELMO_API AppleDouble appleDouble(Bytes file);

/// The bytes of the file that stands beside another; none if there is none.
Data appleDoubleBeside(const Path& path);

/// The type of a file as a string: its four characters between apostrophes. Absent if there is
/// none.
String typeOfFinderInfo(Bytes finderInfo);

/// The code in a type string; 0 if it is none.
std::uint32_t codeOfTypeString(std::u16string_view type);

}  // namespace velmo::detail
