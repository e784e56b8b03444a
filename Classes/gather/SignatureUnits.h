// Units as signatures see them: all that any comparison of a search takes for the same are one.
#pragma once

#include <cstdint>
#include <memory>

#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

struct SignatureUnits {
    /// By unit, the least of those that it may be taken for; 0 for what belongs to no word.
    char16_t classes[65536];
    /// The classes of scripts that put no spaces between words.
    CharacterSetRep unspaced;
    /// Of all of this. Where it is another one, as characters came to Unicode, signatures that
    /// were made with it say nothing.
    std::uint32_t fingerprint;
};

/// Made at first use, on whatever thread.
VELMO_API const SignatureUnits& signatureUnits();

}  // namespace velmo::detail
