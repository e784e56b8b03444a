#pragma once

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// The two Czech encodings of old pages, one unit a byte. Every byte has a meaning, so that
// nothing can fail; no bytes give the empty string. Any thread.
//
//     stringWithKamenickyData("\x80");    // \u010C

[[nodiscard]] VELMO_API String stringWithKamenickyData(Bytes data);
[[nodiscard]] VELMO_API String stringWithKoi8cs2Data(Bytes data);

}  // namespace velmo
