// Abbreviations of time zones, and how an offset is written.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace velmo::detail {

/// An abbreviation of up to five letters in upper case and the minutes east of Greenwich.
struct ZoneAbbreviation {
    std::string_view name;
    int minutes;
};
std::span<const ZoneAbbreviation> zoneAbbreviations();

/// An abbreviation that covers standard and daylight time, and a place where it is in use.
struct ZoneOfPlace {
    std::string_view name, place;
};
std::span<const ZoneOfPlace> zonesOfPlaces();

/// Reads +1, +01, +0100, +01:00 and the like, the whole of the text.
std::optional<std::chrono::seconds> offsetWritten(std::u16string_view text) noexcept;

}  // namespace velmo::detail
