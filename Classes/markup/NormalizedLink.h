// A normalised reference without a String for it: most links of a page stand there in their
// normal form, and many stand there more than once.
#pragma once

#include <memory>
#include <string_view>

#include <velmocore/text/WebRules.h>

namespace velmo::detail {

struct LinkReading {
    bool decodePercentEscapes = false;
    WebRules web = {};
};

class NormalizedLink {
public:
    explicit NormalizedLink(std::u16string_view value, LinkReading reading = {});
    NormalizedLink(const NormalizedLink&) = delete;
    NormalizedLink& operator=(const NormalizedLink&) = delete;

    /// The reference: a part of the value, or units of this object. Its data() is null if
    /// nothing is left.
    std::u16string_view view() const noexcept { return link_; }

private:
    std::u16string_view normalized(std::u16string_view value, LinkReading reading);

    static constexpr std::size_t SmallSize = 256;

    char16_t small_[SmallSize];
    std::unique_ptr<char16_t[]> large_;
    std::u16string_view link_;
};

/// Whether a reference of ASCII is what would be made of it, and not empty.
bool isNormalLink(std::string_view ascii, LinkReading reading = {});

}  // namespace velmo::detail
