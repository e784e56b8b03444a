// The short way of most links of pages: those that are written as they should be, and with which
// nothing of what RelativeURLs.cpp puts right can be wrong.
#pragma once

#include <optional>
#include <string_view>

#include <velmocore/url/URL.h>

namespace velmo::detail {

/// What URLRelativeTo() gives, standardized; none if the link is not plain enough to tell, or the
/// base has no host, or credentials.
std::optional<URL> plainURLRelativeTo(const URL& base, std::u16string_view link, bool trimAnchor);

/// The same as the URL standard reads the link, for a base that was read so, or a link of its own.
std::optional<URL> plainWebURLRelativeTo(const URL& base, std::u16string_view link,
                                         bool trimAnchor);

}  // namespace velmo::detail
