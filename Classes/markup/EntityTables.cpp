// One list, and two ways into it that the compiler makes: by name a hash table of the names as
// numbers, by unit an array of rows. So nothing is set up at run time, and a reference costs one
// look.
#include "markup/EntityTables.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace velmo::detail {
namespace {

/// 246 names: the character references of HTML 4 but for amp, gt, lt and quot, which code
/// handles, and cedil and fnof, which are not recognised. The order is kept as it is: the
/// first hit decides.
constexpr EntityRow Rows[] = {
    {"AElig", 0x00C6},    {"aelig", 0x00E6},   {"Aacute", 0x00C1},  {"aacute", 0x00E1},
    {"Acirc", 0x00C2},    {"acirc", 0x00E2},   {"Agrave", 0x00C0},  {"agrave", 0x00E0},
    {"Aring", 0x00C5},    {"aring", 0x00E5},   {"Atilde", 0x00C3},  {"atilde", 0x00E3},
    {"Auml", 0x00C4},     {"auml", 0x00E4},    {"Ccedil", 0x00C7},  {"ccedil", 0x00E7},
    {"ETH", 0x00D0},      {"eth", 0x00F0},     {"Eacute", 0x00C9},  {"eacute", 0x00E9},
    {"Ecirc", 0x00CA},    {"ecirc", 0x00EA},   {"Egrave", 0x00C8},  {"egrave", 0x00E8},
    {"Euml", 0x00CB},     {"euml", 0x00EB},    {"Iacute", 0x00CD},  {"iacute", 0x00ED},
    {"Icirc", 0x00CE},    {"icirc", 0x00EE},   {"Igrave", 0x00CC},  {"igrave", 0x00EC},
    {"Iuml", 0x00CF},     {"iuml", 0x00EF},    {"Ntilde", 0x00D1},  {"ntilde", 0x00F1},
    {"Oacute", 0x00D3},   {"oacute", 0x00F3},  {"Ocirc", 0x00D4},   {"ocirc", 0x00F4},
    {"Ograve", 0x00D2},   {"ograve", 0x00F2},  {"Oslash", 0x00D8},  {"oslash", 0x00F8},
    {"Otilde", 0x00D5},   {"otilde", 0x00F5},  {"Ouml", 0x00D6},    {"ouml", 0x00F6},
    {"THORN", 0x00DE},    {"thorn", 0x00FE},   {"Uacute", 0x00DA},  {"uacute", 0x00FA},
    {"Ucirc", 0x00DB},    {"ucirc", 0x00FB},   {"Ugrave", 0x00D9},  {"ugrave", 0x00F9},
    {"Uuml", 0x00DC},     {"uuml", 0x00FC},    {"Yacute", 0x00DD},  {"yacute", 0x00FD},
    {"yuml", 0x00FF},     {"szlig", 0x00DF},   {"nbsp", 0x00A0},    {"iexcl", 0x00A1},
    {"cent", 0x00A2},     {"pound", 0x00A3},   {"curren", 0x00A4},  {"yen", 0x00A5},
    {"brvbar", 0x00A6},   {"sect", 0x00A7},    {"uml", 0x00A8},     {"copy", 0x00A9},
    {"ordf", 0x00AA},     {"laquo", 0x00AB},   {"not", 0x00AC},     {"shy", 0x00AD},
    {"reg", 0x00AE},      {"macr", 0x00AF},    {"deg", 0x00B0},     {"plusmn", 0x00B1},
    {"sup2", 0x00B2},     {"sup3", 0x00B3},    {"acute", 0x00B4},   {"micro", 0x00B5},
    {"para", 0x00B6},     {"middot", 0x00B7},  {"sup1", 0x00B9},    {"ordm", 0x00BA},
    {"raquo", 0x00BB},    {"frac14", 0x00BC},  {"frac12", 0x00BD},  {"frac34", 0x00BE},
    {"iquest", 0x00BF},   {"times", 0x00D7},   {"divide", 0x00F7},  {"Alpha", 0x0391},
    {"Beta", 0x0392},     {"Gamma", 0x0393},   {"Delta", 0x0394},   {"Epsilon", 0x0395},
    {"Zeta", 0x0396},     {"Eta", 0x0397},     {"Theta", 0x0398},   {"Iota", 0x0399},
    {"Kappa", 0x039A},    {"Lambda", 0x039B},  {"Mu", 0x039C},      {"Nu", 0x039D},
    {"Xi", 0x039E},       {"Omicron", 0x039F}, {"Pi", 0x03A0},      {"Rho", 0x03A1},
    {"Sigma", 0x03A3},    {"Tau", 0x03A4},     {"Upsilon", 0x03A5}, {"Phi", 0x03A6},
    {"Chi", 0x03A7},      {"Psi", 0x03A8},     {"Omega", 0x03A9},   {"alpha", 0x03B1},
    {"beta", 0x03B2},     {"gamma", 0x03B3},   {"delta", 0x03B4},   {"epsilon", 0x03B5},
    {"zeta", 0x03B6},     {"eta", 0x03B7},     {"theta", 0x03B8},   {"iota", 0x03B9},
    {"kappa", 0x03BA},    {"lambda", 0x03BB},  {"mu", 0x03BC},      {"nu", 0x03BD},
    {"xi", 0x03BE},       {"omicron", 0x03BF}, {"pi", 0x03C0},      {"rho", 0x03C1},
    {"sigmaf", 0x03C2},   {"sigma", 0x03C3},   {"tau", 0x03C4},     {"upsilon", 0x03C5},
    {"phi", 0x03C6},      {"chi", 0x03C7},     {"psi", 0x03C8},     {"omega", 0x03C9},
    {"thetasym", 0x03D1}, {"upsih", 0x03D2},   {"piv", 0x03D6},     {"bull", 0x2022},
    {"hellip", 0x2026},   {"prime", 0x2032},   {"Prime", 0x2033},   {"oline", 0x203E},
    {"frasl", 0x2044},    {"weierp", 0x2118},  {"image", 0x2111},   {"real", 0x211C},
    {"trade", 0x2122},    {"alefsym", 0x2135}, {"larr", 0x2190},    {"uarr", 0x2191},
    {"rarr", 0x2192},     {"darr", 0x2193},    {"harr", 0x2194},    {"crarr", 0x21B5},
    {"lArr", 0x21D0},     {"uArr", 0x21D1},    {"rArr", 0x21D2},    {"dArr", 0x21D3},
    {"hArr", 0x21D4},     {"forall", 0x2200},  {"part", 0x2202},    {"exist", 0x2203},
    {"empty", 0x2205},    {"nabla", 0x2207},   {"isin", 0x2208},    {"notin", 0x2209},
    {"ni", 0x220B},       {"prod", 0x220F},    {"sum", 0x2211},     {"minus", 0x2212},
    {"lowast", 0x2217},   {"radic", 0x221A},   {"prop", 0x221D},    {"infin", 0x221E},
    {"ang", 0x2220},      {"and", 0x2227},     {"or", 0x2228},      {"cap", 0x2229},
    {"cup", 0x222A},      {"int", 0x222B},     {"there4", 0x2234},  {"sim", 0x223C},
    {"cong", 0x2245},     {"asymp", 0x2248},   {"ne", 0x2260},      {"equiv", 0x2261},
    {"le", 0x2264},       {"ge", 0x2265},      {"sub", 0x2282},     {"sup", 0x2283},
    {"nsub", 0x2284},     {"sube", 0x2286},    {"supe", 0x2287},    {"oplus", 0x2295},
    {"otimes", 0x2297},   {"perp", 0x22A5},    {"sdot", 0x22C5},    {"lceil", 0x2308},
    {"rceil", 0x2309},    {"lfloor", 0x230A},  {"rfloor", 0x230B},  {"lang", 0x2329},
    {"rang", 0x232A},     {"loz", 0x25CA},     {"spades", 0x2660},  {"clubs", 0x2663},
    {"hearts", 0x2665},   {"diams", 0x2666},   {"OElig", 0x0152},   {"oelig", 0x0153},
    {"Scaron", 0x0160},   {"scaron", 0x0161},  {"Yuml", 0x0178},    {"circ", 0x02C6},
    {"tilde", 0x02DC},    {"ensp", 0x2002},    {"emsp", 0x2003},    {"thinsp", 0x2009},
    {"zwnj", 0x200C},     {"zwj", 0x200D},     {"lrm", 0x200E},     {"rlm", 0x200F},
    {"ndash", 0x2013},    {"mdash", 0x2014},   {"lsquo", 0x2018},   {"rsquo", 0x2019},
    {"sbquo", 0x201A},    {"ldquo", 0x201C},   {"rdquo", 0x201D},   {"bdquo", 0x201E},
    {"dagger", 0x2020},   {"Dagger", 0x2021},  {"permil", 0x2030},  {"lsaquo", 0x2039},
    {"rsaquo", 0x203A},   {"euro", 0x20AC},
};

constexpr std::size_t RowCount = std::size(Rows);
static_assert(RowCount == 246);
constexpr auto MinUnit = std::ranges::min(Rows, {}, &EntityRow::unit).unit;
constexpr auto MaxUnit = std::ranges::max(Rows, {}, &EntityRow::unit).unit;

/// A name in one word: no name has more than eight bytes.
constexpr std::uint64_t keyOf(std::string_view name) {
    std::uint64_t key = 0;
    for (char c : name) key = key << 8 | static_cast<unsigned char>(c);
    return key;
}

/// Names by key, in open addressing; half of the slots are free, so that a miss ends soon.
struct NameIndex {
    static constexpr unsigned Bits = 9;
    struct Slot {
        std::uint64_t key = 0;
        char16_t unit = 0;
    };
    std::array<Slot, 1u << Bits> slots{};

    static constexpr std::size_t home(std::uint64_t key) {
        // The golden ratio spreads keys that differ in few bits, as short names do.
        return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15u >> (64 - Bits));
    }
    static constexpr std::size_t next(std::size_t slot) { return (slot + 1) & ((1u << Bits) - 1); }

    constexpr NameIndex() {
        for (const EntityRow& row : Rows) {
            std::size_t slot = home(keyOf(row.name));
            while (slots[slot].key) slot = next(slot);
            slots[slot] = {keyOf(row.name), row.unit};
        }
    }
    constexpr char16_t find(std::uint64_t key) const {
        std::size_t slot = home(key);
        while (slots[slot].key && slots[slot].key != key) slot = next(slot);
        return slots[slot].unit;
    }
};

/// The row of each unit from the lowest to the highest of the list; -1 for those without.
constexpr auto makeUnitIndex() {
    std::array<std::int16_t, MaxUnit - MinUnit + 1> index{};
    index.fill(-1);
    // From the last on, so that the first of several names of a unit stays.
    for (std::size_t row = RowCount; row-- > 0;)
        index[Rows[row].unit - MinUnit] = static_cast<std::int16_t>(row);
    return index;
}

constexpr NameIndex Names;
constexpr auto Units = makeUnitIndex();

}  // namespace

std::span<const EntityRow> entityRows() noexcept { return Rows; }

char16_t unitOfEntity(std::string_view name) noexcept {
    // A leading NUL would vanish in the key.
    if (name.empty() || name.front() == 0 || name.size() > MaxEntityName) return 0;
    return Names.find(keyOf(name));
}

std::string_view entityOfUnit(char16_t unit) noexcept {
    if (unit < MinUnit || unit > MaxUnit) return {};
    const int row = Units[unit - MinUnit];
    return row < 0 ? std::string_view() : Rows[row].name;
}

}  // namespace velmo::detail
