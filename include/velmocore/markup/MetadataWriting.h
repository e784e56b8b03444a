#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// What is written back into the head of a page. All else stays unit for unit, and the page itself
// comes back if there is nothing to do. Time is linear in the page; nothing fails. Any thread. The
// rules of today, where they are on, count for tags and attributes.
//
//     stringByAddingBaseURL(u"<head></head>", u"http://h.org/?a&b");
//     // "<head><BASE href=\"http://h.org/?a&amp;b\"/>\n</head>"

/// The page with this URL as its base: in place of the first base tag with an HREF, else right
/// after the opening head tag if it has one. An empty URL takes that base tag away; an absent one
/// changes nothing. What stands behind the body tag is not looked at.
[[nodiscard]] VELMO_API String stringBySettingBaseURL(const String& page, const String& url,
                                                      const WebRules& web = {});

/// The same for a page that has no base yet; any other comes back as it is. An empty URL changes
/// nothing.
[[nodiscard]] VELMO_API String stringByAddingBaseURL(const String& page, const String& url,
                                                     const WebRules& web = {});

/// The page without the meta tags of that NAME in any case, in its body too. Absent for an absent
/// name.
[[nodiscard]] VELMO_API String stringByStrippingMetaAttributeWithName(const String& page,
                                                                      const String& name,
                                                                      const WebRules& web = {});

}  // namespace velmo
