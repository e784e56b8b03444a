// A signature tells which words and parts of words cannot stand in a text, so that a search need
// not look at it. It may err only to one side: of what stands there it never says that it does not,
// whatever comparison, pattern or set of term characters it is asked with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// A fact about a text: that a word, or some units in a row, stand in it.
struct SignatureFact {
    std::uint64_t hash;
    bool isWord;

    friend bool operator==(const SignatureFact&, const SignatureFact&) = default;
};

/// Whether an edge of a stretch is known to be an edge of a word.
struct StretchEdges {
    bool start = false, end = false;
};

/// Adds what must be true of a text in which these units stand in a row.
VELMO_API void addFactsOfStretch(std::vector<SignatureFact>& facts, std::u16string_view units,
                                 StretchEdges edges);

/// The signature of a text that is so many bytes long in UTF-8: less than the sixteenth part of
/// these, and nothing for a short one, which is as soon looked at.
VELMO_API Data signatureOfText(std::u16string_view text, std::size_t bytes);

/// A signature that is looked at. The bytes are not owned.
class VELMO_API PageSignature {
public:
    explicit PageSignature(Bytes bytes VELMO_LIFETIME);

    /// False if it is damaged or was made otherwise: it says nothing then.
    bool isWhole() const { return bitCount_ != 0; }
    /// False only if one of these cannot be true of its text.
    bool mayHave(std::span<const SignatureFact> facts) const;
    /// About how likely mayHave() is true where they are not.
    double errorRate(std::span<const SignatureFact> facts) const;

private:
    bool hasBit(std::uint32_t position) const {
        return (bits_[position >> 3] >> (position & 7)) & 1;
    }
    bool mayHave(const SignatureFact& fact) const;

    const std::uint8_t* bits_ = nullptr;
    std::uint32_t bitCount_ = 0;
    std::uint32_t probes_ = 0;  // of a word
    double fill_ = 0;           // the share of bits that are set
};

}  // namespace velmo::detail
