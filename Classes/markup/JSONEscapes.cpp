// Escapes of JSON and of scripts, both as pages have them and not as a parser would demand: what
// is broken gives a unit and not an error, as callers want the text. Runs without an escape are
// copied in one piece.
#include <velmocore/markup/JSONEscapes.h>

#include "markup/RewriteRuns.h"
#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;

/// Reads so many digits. Those that the end cuts off, and other units, count as 0.
char16_t readHex(const char16_t*& at, const char16_t* end, int digits) {
    unsigned value = 0;
    for (int i = 0; i < digits; ++i)
        // A unit that is no digit has the value 16, and counts as 0.
        value = value << 4 | (at < end ? ascii::hexValue(*at++) % 16 : 0);
    return static_cast<char16_t>(value);
}

/// Decodes the escape at a backslash. What is no escape loses its backslash, as scripts have it:
/// pages escape slashes and quotes that need none.
const char16_t* decodeEscape(const char16_t* at, const char16_t* end, StringBuilder& out,
                             bool isJavaScript) {
    if (at + 1 == end) {
        out.append(*at);
        return end;
    }
    char16_t unit = at[1];
    at += 2;
    switch (unit) {
        case u'b':
            unit = 8;
            break;
        case u'f':
            unit = 12;
            break;
        case u'n':
            unit = 10;
            break;
        case u'r':
            unit = 13;
            break;
        case u't':
            unit = 9;
            break;
        case u'u':
            unit = readHex(at, end, 4);
            break;
        case u'v':
            if (isJavaScript) unit = 11;
            break;
        case u'x':
            if (isJavaScript) unit = readHex(at, end, 2);
            break;
        case u'O':  // the letter; \0 is a plain 0
            if (isJavaScript) unit = 0;
            break;
        default:
            break;
    }
    out.append(unit);
    return at;
}

char16_t escapeLetter(char16_t unit) {
    switch (unit) {
        case 8:
            return u'b';
        case 9:
            return u't';
        case 10:
            return u'n';
        case 12:
            return u'f';
        case 13:
            return u'r';
        default:
            return unit;
    }
}

}  // namespace

String stringByConvertingJSONToCharacters(const String& string, bool isJavaScript) {
    return rewriteRuns(string, &scan::findAnyOf<u'\\'>,
                       [=](const char16_t* at, const char16_t* end, StringBuilder& out) {
                           return decodeEscape(at, end, out, isJavaScript);
                       });
}

String stringByConvertingJavaScriptToCharacters(const String& string) {
    return stringByConvertingJSONToCharacters(string, true);
}

String stringByConvertingCharactersToJSON(const String& string) {
    return rewriteRuns(string, &scan::findAnyOf<8, 9, 10, 12, 13, u'"', u'/', u'\\'>,
                       [](const char16_t* at, const char16_t*, StringBuilder& out) {
                           out.append(u'\\');
                           out.append(escapeLetter(*at));
                           return at + 1;
                       });
}

}  // namespace velmo
