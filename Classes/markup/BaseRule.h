// What a base tag says about the base of a page.
#pragma once

#include <velmocore/markup/TagScanner.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

/// Sets the base that an opening base tag names: a URL of the web, else none, which is
/// logged where something else was meant to be one. A tag that names nothing changes nothing.
/// @param page  where the page comes from; only WebRules::relativeBase asks
void applyBaseRule(const Tag& tag, const URL& page, URL& baseURL);

}  // namespace velmo::detail
