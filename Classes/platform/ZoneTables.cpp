// The abbreviations of time zones that dates in American and European texts carry. 50 rows, the
// most frequent first, as they are searched in order. Where one abbreviation is in use for several
// zones (BST, CST), the American or European one stands. IST is left out, as it is mostly neither,
// and so are single letters but Z, since programs have never agreed on their sign.
#include "platform/ZoneNames.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

constexpr ZoneAbbreviation Abbreviations[] = {
    {"GMT", 0},     {"UTC", 0},     {"Z", 0},      {"EST", -300},  {"EDT", -240},  {"PST", -480},
    {"PDT", -420},  {"CET", 60},    {"CEST", 120}, {"CST", -360},  {"CDT", -300},  {"MST", -420},
    {"MDT", -360},  {"BST", 60},    {"UT", 0},     {"UCT", 0},     {"ZULU", 0},    {"WET", 0},
    {"WEST", 60},   {"MEZ", 60},    {"MESZ", 120}, {"MET", 60},    {"MEST", 120},  {"EET", 120},
    {"EEST", 180},  {"OEZ", 120},   {"OESZ", 180}, {"WEZ", 0},     {"WESZ", 60},   {"TRT", 180},
    {"MSK", 180},   {"MSD", 240},   {"SAMT", 240}, {"AZOT", -60},  {"AZOST", 0},   {"AST", -240},
    {"ADT", -180},  {"NST", -210},  {"NDT", -150}, {"AKST", -540}, {"AKDT", -480}, {"HST", -600},
    {"HAST", -600}, {"HADT", -540}, {"BRT", -180}, {"BRST", -120}, {"ART", -180},  {"CLT", -240},
    {"CLST", -180}, {"COT", -300},
};
static_assert(std::size(Abbreviations) == 50);

constexpr ZoneOfPlace Places[] = {
    {"ET", "america/new_york"},    {"CT", "america/chicago"}, {"MT", "america/denver"},
    {"PT", "america/los_angeles"}, {"AT", "america/halifax"},
};

// clang-format on

}  // namespace

std::span<const ZoneAbbreviation> zoneAbbreviations() { return Abbreviations; }
std::span<const ZoneOfPlace> zonesOfPlaces() { return Places; }

}  // namespace velmo::detail
