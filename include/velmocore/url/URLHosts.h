#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

// The parts of a host between its full stops. Inverted they stand with the top-level domain
// first and in lower case, so that what belongs together is sorted together.
//
//     invertedHost(u"www.Example.org");                     // org.example.www
//     invertedHostComponents(u"a.b.example.org", 2)[1];   // example.b.a
//     hostComponents(u"").has_value();                     // false
//
// The forms of a URL look at its host; without one they answer as to an empty text, which an absent
// one is too. Any thread may call these.

/// The parts as they stand, empty ones too; none for an empty host.
[[nodiscard]] VELMO_API std::optional<std::vector<String>> hostComponents(std::u16string_view host);
[[nodiscard]] VELMO_API std::optional<std::vector<String>> hostComponents(const URL& url);

/// All parts, empty ones too; absent for an empty host.
[[nodiscard]] VELMO_API String invertedHost(std::u16string_view host);
[[nodiscard]] VELMO_API String invertedHost(const URL& url);

/// The parts that are not empty, at most so many: those that are too many stand in the last
/// one, with full stops between. A last one beyond 250 UTF-16 units is cut and gets a checksum. A
/// maximum of 0 is none.
[[nodiscard]] VELMO_API std::vector<String> invertedHostComponents(std::u16string_view host,
                                                                   std::size_t maximum = NotFound);
[[nodiscard]] VELMO_API std::vector<String> invertedHostComponents(const URL& url,
                                                                   std::size_t maximum = NotFound);

/// These parts of the host as folders below a path, which comes back as it is if there are
/// none or if it is absent.
[[nodiscard]] VELMO_API String stringByAppendingInvertedHostComponents(std::u16string_view host,
                                                                       std::size_t maximum,
                                                                       const String& toPath);
/// The same with all parts, however many.
[[nodiscard]] inline String stringByAppendingInvertedHostComponentsToPath(std::u16string_view host,
                                                                          const String& path) {
    return stringByAppendingInvertedHostComponents(host, NotFound, path);
}

}  // namespace velmo
