#include <velmocore/url/PercentEscapes.h>

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "url/Escapes.h"
#include "url/Grammar.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

using escapes::escapeAt;

constexpr bool isIn(Units list, int value) {
    return list.find(static_cast<char16_t>(value)) != list.npos;
}

constexpr Units StandardDecoded = u"\t\n\r $%&'+/:;=@~";
constexpr Units StandardEscaped = u" #$%&+/:;=?@";

String stringByReplacing(const String& string, bool standard) {
    const std::size_t first = string.view().find(u'%');
    if (first == Units::npos) return string;
    StringBuilder out(string.length());
    out.append(string.view());
    out.truncate(convertPercentEscapesOfURL(out.data(), out.length(), standard));
    return out.length() == string.length() ? string : out.finish();
}

template <class NeedsEscape>
String stringByEscapingUnits(const String& string, NeedsEscape needsEscape) {
    const auto* first = std::find_if(string.begin(), string.end(), needsEscape);
    if (first == string.end()) return string;
    constexpr char16_t Digits[] = u"0123456789abcdef";
    StringBuilder out(string.length() + string.length() / 2 + 8);
    for (char16_t unit : string) {
        if (!needsEscape(unit)) {
            out.append(unit);
            continue;
        }
        const char16_t escape[] = {u'%', Digits[unit >> 4], Digits[unit & 15]};
        out.append(Units(escape, 3));
    }
    return out.finish();
}

bool isAlphanumeric(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || ((unit | 0x20) >= u'a' && (unit | 0x20) <= u'z');
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

/// Every run of white space as one blank.
String stringByRemovingMultipleWhiteSpaces(const String& string) {
    const CharacterSetRep& white = whiteCharacterSetRep();
    StringBuilder out(string.length());
    for (char16_t unit : string) {
        if (!white.contains(unit))
            out.append(unit);
        else if (out.isEmpty() || out.back() != u' ')
            out.append(u' ');
    }
    return string.isAbsent() ? string : out.finish();
}

}  // namespace

std::size_t convertPercentEscapesOfURL(char16_t* characters, std::size_t length,
                                       bool standard) noexcept {
    const Units text(characters, length);
    if (length < 3) return length;
    const bool decodesQuestionMark = standard && text.find(u'?') == text.npos;
    std::size_t write = std::min(text.find(u'%'), length);
    for (std::size_t read = write; read < length; ++read) {
        const int value = escapeAt(text, read);
        const bool decodes = standard ? value >= 0 && (isIn(StandardDecoded, value) ||
                                                       (value == u'?' && decodesQuestionMark))
                                      : value >= 0 && value < 128;
        if (decodes) {
            characters[write++] = static_cast<char16_t>(value);
            read += 2;
        } else {
            characters[write++] = characters[read];
        }
    }
    return write;
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
    return stringByEscapingUnits(string, [](char16_t unit) { return isIn(StandardEscaped, unit); });
}

String stringByAddingASCIIPercentEscapesToURL(const String& string) {
    return stringByEscapingUnits(string,
                                 [](char16_t unit) { return unit < 128 && !isAlphanumeric(unit); });
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
