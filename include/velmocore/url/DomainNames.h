#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Internationalised names of hosts: in ASCII, as they stand in URLs and are looked up, and in the
// letters of people, by UTS 46 as the URL standard takes it (nontransitional; hyphens anywhere).
//
//     domainToASCII(u"B\u00FCcher.Example");         // "xn--bcher-kva.example"
//     domainToUnicode(u"xn--bcher-kva.example");     // "b\u00FCcher.example"
//     displayDomain(u"xn--80ak6aa92e.com");          // "xn--80ak6aa92e.com"
//
// These are ours. All give the absent string for what can be no host: the empty text, units as /,
// @ or : in it, letters that no name may have, and names beyond 1,000 units that are no ASCII. Any
// thread may call these.

/// The host of a web URL: in lower case and ASCII, escapes decoded, and an address as its numbers:
/// 0x7f.1 is 127.0.0.1, [0:0::1] is [::1].
[[nodiscard]] VELMO_API String domainToASCII(std::u16string_view domain);

/// The same host in the letters of people. A label that is none stays in ASCII.
[[nodiscard]] VELMO_API String domainToUnicode(std::u16string_view domain);

/// The same, but a label stays in ASCII too if it could be taken for another one: if it mixes
/// scripts that are not written together, or all of it looks like ASCII.
[[nodiscard]] VELMO_API String displayDomain(std::u16string_view domain);

}  // namespace velmo
