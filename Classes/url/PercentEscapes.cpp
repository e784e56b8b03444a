// Most texts have nothing to decode or escape, which is found out before anything is copied. What
// is to be done with a unit is looked up in tables of its value; only %, # and brackets need their
// place in the text as well, since the same unit is legal in one and not in another.
//
// The loops that write have no branch on what a unit is where they can do without: in URLs escapes
// come and go too irregularly for the machine to foretell.
#include <velmocore/url/PercentEscapes.h>

#include <algorithm>
#include <array>

#include <velmocore/text/Collapsing.h>

#include "text/UnitScan.h"
#include "url/Escapes.h"
#include "url/Grammar.h"

namespace velmo {
namespace {

namespace escapes = detail::escapes;
namespace grammar = detail::grammar;
using Units = std::u16string_view;

using escapes::escapeAt;
using namespace std::string_view_literals;

/// Some of the first 256 units.
using UnitTable = std::array<bool, 256>;
constexpr UnitTable tableOf(Units units) {
    UnitTable table{};
    for (char16_t unit : units) table[unit] = true;
    return table;
}

constexpr UnitTable StandardDecoded = tableOf(u"\t\n\r $%&'+/:;=@~");
constexpr UnitTable StandardEscaped = tableOf(u" #$%&+/:;=?@");

constexpr UnitTable ASCII = [] {
    UnitTable table{};
    std::fill_n(table.begin(), 128, true);
    return table;
}();
constexpr UnitTable ASCIIEscaped = [] {
    UnitTable table = ASCII;
    for (char16_t unit : u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"sv)
        table[unit] = false;
    return table;
}();

bool containsUnit(Units text, char16_t unit) {
    const char16_t* const end = text.data() + text.size();
    return detail::scan::find(text.data(), end, unit) != end;
}

/// Which escapes of a text are decoded, by their values.
class Decoding {
public:
    Decoding(Units text, bool standard)
        : table_(standard ? StandardDecoded : ASCII),
          // Where a query has begun, an escaped question mark is part of a name or value.
          questionMark_(standard && !containsUnit(text, u'?') ? u'?' : -1) {}

    bool decodes(int value) const {
        return static_cast<bool>(table_[static_cast<std::size_t>(value)] |
                                 (value == questionMark_));
    }

private:
    const UnitTable& table_;
    int questionMark_;  ///< its value if it is decoded
};

String stringByReplacing(const String& string, bool standard) {
    const Units text = string;
    if (!containsUnit(text, u'%')) return string;
    const Decoding decoding(text, standard);
    escapes::Room room(text.size() + escapes::CopySlack);
    const char16_t* const end = escapes::copyReplacing(
        text, room.units(), [&](int value, const char16_t*& read, char16_t*& write) {
            // Without a branch: whether an escape stays is hard to foretell.
            const std::size_t decodes = decoding.decodes(value);
            const char16_t first[] = {u'%', static_cast<char16_t>(value)};
            write[0] = first[decodes];
            write[1] = read[1];
            write[2] = read[2];
            write += 3 - 2 * decodes;
            read += 3;
            return true;
        });
    // Every escape that is decoded shortens the text, so the length tells.
    const bool isSame = end == room.units() + text.size();
    return isSame ? string : room.finish(end);
}

String stringByEscapingUnits(const String& string, const UnitTable& escaped) {
    const auto isEscaped = [&escaped](char16_t unit) { return unit < 256 && escaped[unit]; };
    const auto escapes = std::count_if(string.begin(), string.end(), isEscaped);
    if (escapes == 0) return string;
    constexpr char16_t Digits[] = u"0123456789abcdef";
    const std::size_t length = string.length() + 2 * static_cast<std::size_t>(escapes);
    StringBuilder out;
    char16_t* write = out.prepare(length + 2);
    for (char16_t unit : string) {
        // Without a branch: the digits are written in any case, and gone over by what follows.
        const std::size_t isEscape = isEscaped(unit);
        const char16_t first[] = {unit, u'%'};
        write[0] = first[isEscape];
        write[1] = Digits[unit >> 4 & 15];
        write[2] = Digits[unit & 15];
        write += 1 + 2 * isEscape;
    }
    out.commit(length);
    return out.finish();
}

/// What becomes of a unit.
enum class Fate : std::uint8_t { Escaped = 0, Kept = 1, ByPlace = 2 };
using Fates = std::array<Fate, 128>;

/// Those of a URL. A % is one of an escape, a # that of the fragment and a bracket that of an
/// IP literal only by its place.
const Fates& urlFates() {
    static const Fates made = [] {
        Fates fates{};
        for (char16_t unit = 0; unit < 128; ++unit)
            if (grammar::isURLUnit(unit)) fates[unit] = Fate::Kept;
        for (char16_t unit : u"%#[]"sv) fates[unit] = Fate::ByPlace;
        return fates;
    }();
    return made;
}

/// Which units of a text stay as they are.
class URLUnits {
public:
    URLUnits(Units text, const PercentEscapeOptions& options)
        : text_(text),
          leave_(options.leaveUnescaped),
          escape_(options.toBeEscaped.data() ? options.toBeEscaped : Units(u":?&;@")) {
        for (char16_t unit : leave_)
            if (unit < 128 && !isIn(escape_, unit)) fates_[unit] = Fate::Kept;
        for (char16_t unit : escape_)
            if (unit < 128) fates_[unit] = fateOfListed(unit);
        if (fates_[u'#'] == Fate::ByPlace) fragment_ = text.find(u'#');
        if (fates_[u'['] == Fate::ByPlace || fates_[u']'] == Fate::ByPlace) findHostBrackets();
    }

    bool keeps(std::size_t i) const {
        const char16_t unit = text_[i];
        // A list, as there is mostly none of these; the table is for ASCII.
        if (unit >= 128) return isIn(leave_, unit);
        const Fate fate = fates_[unit];
        return fate == Fate::ByPlace ? keepsByPlace(i) : static_cast<bool>(fate);
    }

private:
    /// Of a unit that is to be escaped, if it is legal, but may be one to leave, if it is not.
    Fate fateOfListed(char16_t unit) const {
        if (!isIn(leave_, unit)) return Fate::Escaped;
        const Fate fate = urlFates()[unit];
        return fate == Fate::Escaped ? Fate::Kept : fate == Fate::Kept ? Fate::Escaped : fate;
    }
    static bool isIn(Units list, char16_t unit) { return list.find(unit) != list.npos; }

    bool keepsByPlace(std::size_t i) const {
        const char16_t unit = text_[i];
        const bool isLegal = unit == u'%'   ? escapeAt(text_, i) >= 0
                             : unit == u'#' ? i == fragment_
                                            : i == open_ || i == close_;
        return isLegal ? !isIn(escape_, unit) : isIn(leave_, unit);
    }
    void findHostBrackets() {
        if (!containsUnit(text_, u'[')) return;
        const std::size_t slashes = text_.find(u"//");
        if (slashes == text_.npos) return;
        const Units authority = text_.substr(0, text_.find_first_of(u"/?#", slashes + 2));
        const std::size_t open = authority.find(u'[', slashes + 2);
        const std::size_t close = authority.find(u']', slashes + 2);
        if (open == text_.npos || close == text_.npos) return;
        if (open > slashes + 2 && text_[open - 1] != u'@') return;
        open_ = open;
        close_ = close;
    }

    Units text_, leave_, escape_;
    Fates fates_ = urlFates();
    std::size_t fragment_ = Units::npos;
    std::size_t open_ = Units::npos, close_ = Units::npos;
};

}  // namespace

std::size_t convertPercentEscapesOfURL(char16_t* characters, std::size_t length,
                                       bool standard) noexcept {
    const char16_t* const end = characters + length;
    const char16_t* read = detail::scan::find(characters, end, u'%');
    // No escape fits behind the first %.
    if (end - read < 3) return length;
    const Decoding decoding({characters, length}, standard);
    char16_t* write = characters + (read - characters);
    while (read < end) {
        const int value = escapeAt({read, static_cast<std::size_t>(end - read)}, 0);
        const bool decodes = value >= 0 && decoding.decodes(value);
        *write++ = decodes ? static_cast<char16_t>(value) : *read;
        read += decodes ? 3 : 1;
    }
    return static_cast<std::size_t>(write - characters);
}

String stringByReplacingStandardPercentEscapesOfURL(const String& string) {
    return stringByReplacing(string, true);
}

String stringByReplacingASCIIPercentEscapesOfURL(const String& string) {
    return stringByReplacing(string, false);
}

String stringByReplacingPercentEscapesOfURL(const String& string, StringEncoding encoding) {
    return escapes::decoded(string, encoding);
}

String stringByAddingStandardPercentEscapesToURL(const String& string) {
    return stringByEscapingUnits(string, StandardEscaped);
}

String stringByAddingASCIIPercentEscapesToURL(const String& string) {
    return stringByEscapingUnits(string, ASCIIEscaped);
}

String stringByAddingPercentEscapesToURL(const String& string,
                                         const PercentEscapeOptions& options) {
    const URLUnits units(string, options);
    std::size_t first = 0;
    while (first < string.length() && units.keeps(first)) ++first;
    if (first == string.length()) return string;
    return escapes::escaped(string, options.encoding,
                            [&units](std::size_t i) { return units.keeps(i); });
}

String stringByFormattingQueryTerm(const String& term, StringEncoding encoding,
                                   bool defaultPercentEscapes) {
    // In a term, % and # stand for themselves.
    String escaped = stringByAddingPercentEscapesToURL(
        stringByRemovingMultipleWhiteSpaces(term), {.encoding = encoding, .toBeEscaped = u"%#"});
    if (!defaultPercentEscapes || escaped.isEmpty()) return escaped;
    StringBuilder out(escaped.length());
    for (std::size_t i = 0; i < escaped.length(); ++i) {
        if (escaped[i] == u'+') {
            out.append(u"%2B");
        } else if (escapeAt(escaped, i) == u' ') {
            out.append(u'+');
            i += 2;
        } else {
            out.append(escaped[i]);
        }
    }
    return out.finish();
}

}  // namespace velmo
