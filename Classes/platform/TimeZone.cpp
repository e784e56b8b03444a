// Names are looked up in this order: abbreviations and offsets, which are plain numbers and take
// no look at the zone data, then the names of the database. These are listed once, so that an
// unknown name, of which a hostile text may hold many, costs one binary search and loads nothing;
// the rules of a place are loaded when it is first asked for, and never freed, so that a TimeZone
// can point to them for ever.
#include <velmocore/platform/TimeZone.h>

#include <fmt/core.h>
#include <unicode/basictz.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include <velmocore/platform/String.h>

#include "platform/Ascii.h"
#include "platform/ZoneNames.h"

namespace velmo {

namespace ascii = detail::ascii;

/// A zone of the database.
struct TimeZone::Rules {
    explicit Rules(std::string id_) : id(std::move(id_)), key(id) {
        std::transform(key.begin(), key.end(), key.begin(), ascii::toLower<char>);
    }

    /// Must have been called before the zone is looked at.
    void load() const {
        std::call_once(loaded_, [this] {
            // All that it creates are of this kind; it has been so since the kind is there.
            zone_.reset(
                static_cast<icu::BasicTimeZone*>(icu::TimeZone::createTimeZone(id.c_str())));
            if (!zone_) throw std::bad_alloc();
        });
    }
    const icu::BasicTimeZone& zone() const noexcept { return *zone_; }

    std::string id, key;

private:
    mutable std::once_flag loaded_;
    mutable std::unique_ptr<icu::BasicTimeZone> zone_;
};

namespace detail {

/// The list of all names.
class ZoneDatabase {
public:
    static const ZoneDatabase& shared() {
        static const ZoneDatabase* const database = new ZoneDatabase;
        return *database;
    }

    std::optional<TimeZone> find(std::string_view key) const {
        const auto at = std::lower_bound(zones_.begin(), zones_.end(), key,
                                         [](const auto& a, auto b) { return a->key < b; });
        if (at == zones_.end() || (*at)->key != key) return {};
        (*at)->load();
        TimeZone zone;
        zone.rules_ = at->get();
        return zone;
    }

private:
    ZoneDatabase() {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::StringEnumeration> ids(
            icu::TimeZone::createTimeZoneIDEnumeration(UCAL_ZONE_TYPE_ANY, nullptr, nullptr,
                                                       status));
        while (const char* id = ids && U_SUCCESS(status) ? ids->next(nullptr, status) : nullptr)
            add(id);
        std::sort(zones_.begin(), zones_.end(),
                  [](const auto& a, const auto& b) { return a->key < b->key; });
    }

    /// Names of three letters are abbreviations, and mean other zones here than in the American
    /// and European texts that ours stand for: BST is Bangladesh.
    void add(std::string_view id) {
        if (id.size() > 3) zones_.push_back(std::make_unique<TimeZone::Rules>(std::string(id)));
    }

    std::vector<std::unique_ptr<TimeZone::Rules>> zones_;
};

}  // namespace detail

namespace {

constexpr std::size_t LongestName = 40;

bool isNamed(std::u16string_view text, std::string_view upper) {
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(),
                      [](char16_t a, char b) { return ascii::toUpper(a) == char16_t(b); });
}

std::optional<TimeZone> abbreviated(std::u16string_view name) {
    for (const auto& row : detail::zoneAbbreviations())
        if (isNamed(name, row.name)) return TimeZone::ofOffset(std::chrono::minutes(row.minutes));
    for (const auto& row : detail::zonesOfPlaces())
        if (isNamed(name, row.name)) return detail::ZoneDatabase::shared().find(row.place);
    return {};
}

std::optional<TimeZone> ofOffset(std::u16string_view name) {
    for (const std::string_view utc : {"GMT", "UTC", "UT"})
        if (name.size() > utc.size() && isNamed(name.substr(0, utc.size()), utc)) {
            name.remove_prefix(utc.size());
            break;
        }
    const auto east = detail::offsetWritten(name);
    return east ? std::optional(TimeZone::ofOffset(*east)) : std::nullopt;
}

std::optional<TimeZone> ofPlace(std::u16string_view name) {
    std::string key;
    for (const char16_t unit : name) {
        if (unit > 0x7e) return {};
        key += static_cast<char>(ascii::toLower(unit));
    }
    return detail::ZoneDatabase::shared().find(key);
}

/// ICU reads TZ and the files of the system, but may find a zone that is not in its database: a
/// rule of POSIX, of which the offset without daylight-saving time is taken.
TimeZone systemZone() {
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
    icu::UnicodeString id;
    std::string key;
    zone->getID(id).toUTF8String(key);
    if (const auto known = TimeZone::named(String::fromUTF8(key))) return *known;
    return TimeZone::ofOffset(std::chrono::seconds(zone->getRawOffset() / 1000));
}

/// Milliseconds as ICU counts them, within the years that calendars know.
UDate millisecondsOf(std::chrono::duration<double> time) {
    constexpr double Most = 4e11;  // seconds, beyond the year 9999 both ways
    const double seconds = time.count();
    return seconds >= -Most && seconds <= Most ? seconds * 1000 : 0;
}

}  // namespace

std::optional<std::chrono::seconds> detail::offsetWritten(std::u16string_view text) noexcept {
    if (text.size() < 2 || text.size() > 6 || (text[0] != '+' && text[0] != '-')) return {};
    const std::size_t colon = text.find(u':');
    const std::size_t digits = text.size() - 1 - (colon != text.npos);
    if (colon != text.npos && colon + 3 != text.size()) return {};
    int value = 0;
    for (std::size_t i = 1; i < text.size(); ++i)
        if (ascii::isDigit(text[i]))
            value = value * 10 + (text[i] - u'0');
        else if (i != colon)
            return {};
    if (digits <= 2) value *= 100;  // hours alone; with a colon there are minutes
    if (digits > 4 || (colon != text.npos && digits < 3) || value / 100 > 15 || value % 100 > 59)
        return {};
    const std::chrono::minutes east(value / 100 * 60 + value % 100);
    return text[0] == '-' ? -east : east;
}

TimeZone TimeZone::system() {
    static const TimeZone zone = systemZone();
    return zone;
}

std::optional<TimeZone> TimeZone::named(std::u16string_view name) {
    if (name.empty() || name.size() > LongestName) return {};
    if (const auto zone = abbreviated(name)) return zone;
    if (const auto zone = velmo::ofOffset(name)) return zone;
    return name.size() > 3 ? ofPlace(name) : std::nullopt;
}

std::chrono::seconds TimeZone::ruledOffsetAt(Date instant) const noexcept {
    std::int32_t raw = 0, daylight = 0;
    UErrorCode status = U_ZERO_ERROR;
    rules_->zone().getOffset(millisecondsOf(instant.time_since_epoch()), false, raw, daylight,
                             status);
    return std::chrono::seconds((raw + daylight) / 1000);
}

std::chrono::seconds TimeZone::ruledOffsetAt(LocalTime local) const noexcept {
    std::int32_t raw = 0, daylight = 0;
    UErrorCode status = U_ZERO_ERROR;
    rules_->zone().getOffsetFromLocal(millisecondsOf(local.time_since_epoch()),
                                      UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, raw, daylight,
                                      status);
    return std::chrono::seconds((raw + daylight) / 1000);
}

std::string TimeZone::name() const {
    if (rules_) return rules_->id;
    if (east_ == 0) return "UTC";
    const int minutes = (east_ < 0 ? -east_ : east_) / 60;
    return fmt::format("GMT{}{:02}:{:02}", east_ < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

}  // namespace velmo
