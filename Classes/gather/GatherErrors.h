// How sources and readers tell why there is no page.
#pragma once

#include <string_view>

#include <velmocore/gather/PageSource.h>
#include <velmocore/platform/Error.h>

namespace velmo::detail {

inline Error gatherError(std::string_view text, GatherProblem problem = GatherProblem::Page) {
    return {.domain = u"velmo.gather",
            .code = static_cast<std::int64_t>(problem),
            .text = String::fromUTF8(text)};
}

/// The same for what ends a source.
inline Error sourceError(std::string_view text) { return gatherError(text, GatherProblem::Source); }

}  // namespace velmo::detail
