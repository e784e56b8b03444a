// The units that have a meaning of their own in a query.
#pragma once

namespace velmo::detail {

constexpr bool isDoubleQuote(char16_t unit) {
    return unit == u'"' || (unit >= 0x201C && unit <= 0x201F);
}

/// Whether a unit ends the part of a query before it; white space does as well. A [ of a
/// wildcard begins a set, and is asked for elsewhere.
constexpr bool endsQueryPart(char16_t unit, bool startsPart, bool wildcard) {
    switch (unit) {
        case u'(':
        case u')':
        case u'&':
        case u'^':
        case u'|':
        case u'!':
        case u'~':
            return true;
        case u'-':
        case u'+':
            return startsPart;
        case u'[':
        case u']':
            return !wildcard;
        default:
            return isDoubleQuote(unit);
    }
}

}  // namespace velmo::detail
