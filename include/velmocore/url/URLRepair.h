#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// What people type and paste, made ready to become a URL. Nothing here parses: see
// url/URLConstruction.h for that. A text with nothing to change comes back as it is. Any thread may
// call these.
//
//     possibleInternetLocation(u" www.example.org\n");                // www.example.org
//     stringByFormattingURL(u"Ann Example <ann@example.org>");        // ann@example.org

/// The text without white space at its ends, if it can be an internet address: 4 to 1023
/// units without white space that hold "://" or begin with "mailto:", or that hold a full
/// stop and either begin with "www" or "ftp" or hold exactly one @. Otherwise absent. No
/// scheme is added. With removeFeedsAndTabs a text that was wrapped is joined first.
[[nodiscard]] VELMO_API String possibleInternetLocation(const String& string,
                                                        bool removeFeedsAndTabs = false);

/// A pasted URL without white space at its ends, without the <> around it and without feed
/// units and other <>. Of a name in front of a mail address in <> the address is left. What
/// begins with "message:" is trimmed only.
[[nodiscard]] VELMO_API String stringByFormattingURL(const String& string);

}  // namespace velmo
