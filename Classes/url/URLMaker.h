// What only the URL itself may do otherwise: makes URLs of what is known already, and of texts that
// are no strings.
#pragma once

#include <string_view>

#include <velmocore/url/URL.h>

#include "url/PartedText.h"

namespace velmo::detail {

struct URLMaker {
    /// The URL of a text with its parts, which is not looked at; absent if that is.
    static URL made(String partedText) noexcept { return URL(std::move(partedText)); }
    /// The URL of a text with parts that stand elsewhere.
    static URL made(std::u16string_view text, const grammar::Tail& tail);

    /// As URLWithString(), for a text that is there.
    static URL cut(std::u16string_view text);
    static URL resolved(std::u16string_view text, const URL& base);

    /// Of a URL that is not absent.
    static const grammar::Tail& tailOf(const URL& url) noexcept {
        return grammar::tailOf(url.string_);
    }
    /// Whether it was made as the URL standard reads it. Such a URL may hold what the grammar of
    /// RFC 3986 does not.
    static bool isOfWeb(const URL& url) noexcept { return !url.isAbsent() && tailOf(url).isOfWeb; }
};

}  // namespace velmo::detail
