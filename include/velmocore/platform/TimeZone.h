#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>

namespace velmo {

namespace detail {
class ZoneDatabase;
}

/// What clocks on the wall show, in seconds with fractions, without saying where.
using LocalTime = std::chrono::local_time<std::chrono::duration<double>>;

/// A time zone: a fixed offset from UTC, or a place with its rules of daylight-saving time.
///
/// A small value that owns nothing; rules of places are loaded once and stay. UTC and fixed
/// offsets are arithmetic, places are asked of the time-zone data of the system. Any thread may
/// make and use zones.
///
///     TimeZone berlin = *TimeZone::named(u"Europe/Berlin");
///     berlin.offsetAt(Date{}).count();                      // 3600; in January 1970
///     TimeZone::named(u"GMT+1")->offsetAt(Date{}).count();  // 3600
///     TimeZone::named(u"Middle/Earth").has_value();         // false
class VELMO_API TimeZone {
public:
    /// UTC.
    constexpr TimeZone() noexcept = default;

    /// A fixed offset, in seconds east of Greenwich.
    [[nodiscard]] static constexpr TimeZone ofOffset(std::chrono::seconds east) noexcept {
        TimeZone zone;
        zone.east_ = static_cast<std::int32_t>(east.count());
        return zone;
    }

    /// The zone of the user, as it was when it was first asked for; UTC if none is set.
    [[nodiscard]] static TimeZone system();

    /// The zone of a name, in any case:
    ///
    /// - an abbreviation that is usual in America or Europe: UTC, GMT, Z, EST, EDT, CET, CEST,
    ///   MEZ, BST, MSK and their like are the fixed offsets that they stand for; ET, CT, MT, PT
    ///   and AT are the places where they are in use;
    /// - an offset below 16 hours: +1, +01, +0100, +01:00, also behind GMT, UTC or UT;
    /// - a name of the IANA time-zone database, such as America/New_York.
    ///
    /// Absent for all others.
    [[nodiscard]] static std::optional<TimeZone> named(std::u16string_view name);

    /// Seconds east of Greenwich at an instant.
    [[nodiscard]] std::chrono::seconds offsetAt(Date instant) const noexcept {
        return rules_ ? ruledOffsetAt(instant) : std::chrono::seconds(east_);
    }
    /// The same for what clocks show. An hour that the clocks run through twice is taken as the
    /// first of the two; one that they leave out with the offset that was in force before it.
    [[nodiscard]] std::chrono::seconds offsetAt(LocalTime local) const noexcept {
        return rules_ ? ruledOffsetAt(local) : std::chrono::seconds(east_);
    }

    /// When clocks of the zone show a time, by the offsetAt() told above; and what they show at an
    /// instant.
    [[nodiscard]] Date instantOf(LocalTime local) const noexcept {
        return Date(local.time_since_epoch() - offsetAt(local));
    }
    [[nodiscard]] LocalTime localTimeOf(Date instant) const noexcept {
        return LocalTime(instant.time_since_epoch() + offsetAt(instant));
    }

    /// The name in the database, or an offset such as GMT+01:00; UTC is UTC.
    [[nodiscard]] std::string name() const;

    friend bool operator==(const TimeZone&, const TimeZone&) noexcept = default;

private:
    friend class detail::ZoneDatabase;
    struct Rules;

    [[nodiscard]] std::chrono::seconds ruledOffsetAt(Date instant) const noexcept;
    [[nodiscard]] std::chrono::seconds ruledOffsetAt(LocalTime local) const noexcept;

    const Rules* rules_ = nullptr;
    std::int32_t east_ = 0;
};

}  // namespace velmo
