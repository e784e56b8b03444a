// The percent-encode sets of the URL standard: what is escaped differs from part to part.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo::detail {

/// A set, as one bit. In all of them are controls, DEL and what is no ASCII.
enum class EncodeSet : std::uint8_t {
    Control = 1,
    Fragment = 2,
    Query = 4,
    SpecialQuery = 8,  ///< of special schemes
    Path = 16,
    UserInfo = 32,
};

/// Appends units; those of the set as escapes of their UTF-8. Escapes stay, broken ones too. A lone
/// surrogate becomes U+FFFD.
void appendEncoded(StringBuilder& out, std::u16string_view units, EncodeSet set);

/// The same by another encoding; what this cannot hold becomes a numbered reference, escaped.
void appendEncoded(StringBuilder& out, std::u16string_view units, EncodeSet set,
                   StringEncoding encoding);

}  // namespace velmo::detail
