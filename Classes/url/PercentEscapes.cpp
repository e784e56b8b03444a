#include <velmocore/url/PercentEscapes.h>

#include <algorithm>
#include <array>

#include <velmocore/text/Collapsing.h>

#include "text/UnitScan.h"
#include "url/Escapes.h"
#include "url/Grammar.h"

namespace velmo {
namespace {

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

String stringByReplacing(const String& string, bool standard) {
    const std::size_t first = string.view().find(u'%');
    if (first == Units::npos) return string;
    StringBuilder out(string.length());
    out.append(string.view());
    out.truncate(convertPercentEscapesOfURL(out.data(), out.length(), standard));
    return out.length() == string.length() ? string : out.finish();
}

String stringByEscapingUnits(const String& string, const UnitTable& escaped) {
    const auto isEscaped = [&escaped](char16_t unit) { return unit < 256 && escaped[unit]; };
    const auto escapes = std::count_if(string.begin(), string.end(), isEscaped);
    if (escapes == 0) return string;
    constexpr char16_t Digits[] = u"0123456789abcdef";
    const std::size_t length = string.length() + 2 * static_cast<std::size_t>(escapes);
    StringBuilder out;
    char16_t* write = out.prepare(length);
    for (char16_t unit : string) {
        if (!isEscaped(unit)) {
            *write++ = unit;
            continue;
        }
        *write++ = u'%';
        *write++ = Digits[unit >> 4];
        *write++ = Digits[unit & 15];
    }
    out.commit(length);
    return out.finish();
}

/// Whether the units and their escapes are where a URL holds them: an escape, the # of the
/// fragment, the brackets of an IP literal.
class URLUnits {
public:
    URLUnits(Units text, const PercentEscapeOptions& options)
        : text_(text),
          leave_(options.leaveUnescaped),
          escape_(options.toBeEscaped.data() ? options.toBeEscaped : Units(u":?&;@")),
          fragment_(text.find(u'#')) {
        if (text.find(u'[') != text.npos) findHostBrackets();
    }

    bool keeps(std::size_t i) const {
        const char16_t unit = text_[i];
        if (isLegal(i)) return escape_.empty() || escape_.find(unit) == escape_.npos;
        return !leave_.empty() && leave_.find(unit) != leave_.npos;
    }

private:
    bool isLegal(std::size_t i) const {
        switch (text_[i]) {
            case u'%':
                return escapeAt(text_, i) >= 0;
            case u'#':
                return i == fragment_;
            case u'[':
            case u']':
                return i == open_ || i == close_;
            default:
                return grammar::isURLUnit(text_[i]);
        }
    }
    void findHostBrackets() {
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
    std::size_t fragment_;
    std::size_t open_ = Units::npos, close_ = Units::npos;
};

}  // namespace

std::size_t convertPercentEscapesOfURL(char16_t* characters, std::size_t length,
                                       bool standard) noexcept {
    const char16_t* const end = characters + length;
    const char16_t* read = scan::find(characters, end, u'%');
    if (end - read < 3) return length;
    const bool decodesQuestionMark = standard && scan::find(characters, end, u'?') == end;
    const UnitTable& decoded = standard ? StandardDecoded : ASCII;
    char16_t* write = characters + (read - characters);
    while (read < end) {
        const int value = escapeAt({read, static_cast<std::size_t>(end - read)}, 0);
        const bool decodes = value >= 0 && (decoded[static_cast<std::size_t>(value)] ||
                                            (value == u'?' && decodesQuestionMark));
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
    StringBuilder out(string.length() + string.length() / 2 + 16);
    if (!escapes::append(out, string, options.encoding,
                         [&](std::size_t i) { return units.keeps(i); }))
        return {};
    return out.finish();
}

String stringByFormattingQueryTerm(const String& term, StringEncoding encoding,
                                   bool defaultPercentEscapes) {
    // In a term, % and # stand for themselves.
    const String escaped = stringByAddingPercentEscapesToURL(
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
