// How sources and readers tell why there is no page.
#pragma once

#include <string_view>

#include <velmocore/platform/Error.h>

namespace velmo::detail {

/// The code of all errors of the domain u"velmo.gather": what they say is for people.
inline constexpr std::int64_t GatherErrorCode = 1;

inline Error gatherError(std::string_view text) {
    return {.domain = u"velmo.gather", .code = GatherErrorCode, .text = String::fromUTF8(text)};
}

}  // namespace velmo::detail
