#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

namespace detail {
class KnownParameters;
}

/// Parameters of queries that tell where a visitor came from and not what is shown. A name is
/// known whole, or by its beginning, in any case; many only on the hosts that use it so, because
/// elsewhere they may choose a page.
///
///     TrackingParameters::common().contains(u"fbclid", u"h.org");     // true
///     TrackingParameters::common().contains(u"si", u"youtu.be");      // true
///     TrackingParameters::common().contains(u"si", u"h.org");         // false
///     TrackingParameters(u"visit*\nfrom h.org").contains(u"from", u"www.h.org");  // true
///
/// Copies share their rows. Threads: may be read on any thread.
class VELMO_API TrackingParameters {
public:
    /// The built-in table alone.
    [[nodiscard]] static const TrackingParameters& common();

    /// The built-in table and rows of one's own, one a line: a name, or a beginning with a * behind
    /// it, and after white space the hosts on which it counts, which stand for their subdomains
    /// too; "name.*" is a host of that name under any ending. Lines that are empty or begin with #
    /// say nothing; so do rows whose name is longer than 64 units or has a * elsewhere.
    explicit TrackingParameters(std::u16string_view rows);

    /// Whether a parameter is known on a host, which is given in lower case. The name is taken as
    /// it stands: escapes are not decoded.
    [[nodiscard]] bool contains(std::u16string_view name, std::u16string_view host) const;

    /// The lines that gave no row though they seemed to be one.
    [[nodiscard]] std::size_t numberOfRejectedLines() const noexcept;

private:
    friend class detail::KnownParameters;

    std::shared_ptr<const detail::KnownParameters> known_;
};

}  // namespace velmo
