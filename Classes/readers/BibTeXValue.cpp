#include "readers/BibTeXValue.h"

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Replacing.h>
#include <velmocore/text/Trimming.h>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

using Position = const char16_t*;

/// A command ends with one unit behind its letters, which is mostly a blank or a brace.
Position behindCommand(Position at, Position to) {
    const CharacterSetRep& letters = alphaCharacterSetRep();
    while (at < to && letters.contains(*at)) ++at;
    return at < to ? at + 1 : to;
}

/// Appends what is plain text. Of mathematics that is what stands in braces.
void appendPlain(std::u16string& out, std::u16string_view value) {
    Position from = value.data();
    const Position to = from + value.size();
    bool isMath = false;
    for (std::size_t depth = 0; from < to;) {
        const bool isDropped = isMath && depth == 0;
        const Position sign = isDropped ? scan::findEither(from, to, u'$', u'{')
                                        : scan::findAnyOf<u'$', u'\\', u'{', u'}'>(from, to);
        if (!isDropped) out.append(from, sign);
        if (sign == to) return;
        from = sign + 1;
        switch (*sign) {
            case u'$':
                isMath = !isMath;
                depth = 0;
                break;
            case u'\\':
                from = behindCommand(from, to);
                break;
            case u'{':
                if (isMath) ++depth;
                break;
            default:
                if (isMath) --depth;
        }
    }
}

}  // namespace

String BibTeXValueCleaner::cleaned(std::u16string_view value) {
    text_.clear();
    appendPlain(text_, value);
    macros_.replaceIn(text_);
    replaceString(text_, u"''", u"\"");
    replaceString(text_, u"``", u"\"");
    trimWhiteSpaces(text_);
    removeMultipleWhiteSpaces(text_);
    return String(text_);
}

}  // namespace velmo::detail
