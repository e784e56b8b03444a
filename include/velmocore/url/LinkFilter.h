#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

/// Whether a link of a page is not worth following: a lone mark as #, or a scheme that leads
/// to no document, as mailto:, javascript: and chat programs. Relative links, and an empty
/// one, are never filtered. Any thread.
///
///     filterLink(u"mailto:a@b.org");   // true
///     filterLink(u"feed:h/rss");       // false
[[nodiscard]] VELMO_API bool filterLink(std::u16string_view link);

}  // namespace velmo
