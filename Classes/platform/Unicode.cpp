// Every question to ICU about characters in one place. Operations on whole texts are run with a
// guess of the room and once more if that did not do, straight into the new string's array.
//
// No operation takes a locale: the same text must fold and compare alike on every machine, as it
// does in what was stored. What a single unit becomes is asked once and kept in tables; see
// text/ConversionTables.h.
#include "platform/Unicode.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <new>
#include <optional>

#include "platform/MarkRuns.h"

namespace velmo::detail::unicode {
namespace {

const UNormalizer2* normalizerOf(Form form) {
    UErrorCode status = U_ZERO_ERROR;
    switch (form) {
        case Form::D:
            return unorm2_getNFDInstance(&status);
        case Form::KD:
            return unorm2_getNFKDInstance(&status);
        case Form::C:
            return unorm2_getNFCInstance(&status);
        case Form::KC:
            return unorm2_getNFKCInstance(&status);
    }
    return nullptr;
}

/// Runs an ICU call that fills a buffer and tells the length it wants, twice if the
/// first buffer was too small.
template <class Fill>
String filled(std::size_t guess, Fill fill) {
    StringBuilder out;
    for (auto capacity = static_cast<std::int32_t>(std::min<std::size_t>(guess, INT32_MAX));;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            fill(out.prepare(static_cast<std::size_t>(capacity)), capacity, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            capacity = length;
            continue;
        }
        // Want of memory is what is left: the arguments are always right.
        if (U_FAILURE(status)) throw std::bad_alloc();
        out.commit(static_cast<std::size_t>(length));
        return out.finish();
    }
}

std::int32_t lengthOf(std::u16string_view text) {
    if (text.size() > INT32_MAX) throw std::bad_alloc();
    return static_cast<std::int32_t>(text.size());
}

/// The mapped unit if the call gave exactly one, else the unit itself.
template <class Map>
char16_t singleUnit(char16_t unit, Map map) noexcept {
    char16_t out[8];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = map(out, 8, &unit, 1, &status);
    return U_SUCCESS(status) && length == 1 ? out[0] : unit;
}

}  // namespace

std::uint32_t categoriesOf(char16_t unit) noexcept {
    switch (u_charType(unit)) {
        case U_UPPERCASE_LETTER:
        case U_TITLECASE_LETTER:
            return Letter | UppercaseOrTitle;
        case U_LOWERCASE_LETTER:
            return Letter | Lowercase;
        case U_MODIFIER_LETTER:
        case U_OTHER_LETTER:
            return Letter;
        case U_NON_SPACING_MARK:
        case U_ENCLOSING_MARK:
        case U_COMBINING_SPACING_MARK:
            return Mark;
        case U_DECIMAL_DIGIT_NUMBER:
            return Number | DecimalDigit;
        case U_LETTER_NUMBER:
        case U_OTHER_NUMBER:
            return Number;
        case U_SPACE_SEPARATOR:
            return SpaceSeparator;
        case U_LINE_SEPARATOR:
        case U_PARAGRAPH_SEPARATOR:
            return LineOrParagraph;
        case U_CONTROL_CHAR:
        case U_FORMAT_CHAR:
            return Control;
        case U_DASH_PUNCTUATION:
        case U_START_PUNCTUATION:
        case U_END_PUNCTUATION:
        case U_CONNECTOR_PUNCTUATION:
        case U_OTHER_PUNCTUATION:
        case U_INITIAL_PUNCTUATION:
        case U_FINAL_PUNCTUATION:
            return Punctuation;
        case U_MATH_SYMBOL:
        case U_CURRENCY_SYMBOL:
        case U_MODIFIER_SYMBOL:
        case U_OTHER_SYMBOL:
            return Symbol;
        case U_UNASSIGNED:
            return Unassigned;
        default:
            return 0;  // surrogates and private use
    }
}

char16_t lowerCase(char16_t unit) noexcept {
    return singleUnit(unit, [](char16_t* out, std::int32_t capacity, const char16_t* in,
                               std::int32_t length, UErrorCode* status) {
        return u_strToLower(out, capacity, in, length, "", status);
    });
}

char16_t upperCase(char16_t unit) noexcept {
    return singleUnit(unit, [](char16_t* out, std::int32_t capacity, const char16_t* in,
                               std::int32_t length, UErrorCode* status) {
        return u_strToUpper(out, capacity, in, length, "", status);
    });
}

char16_t withoutDiacritics(char16_t unit) noexcept {
    UErrorCode status = U_ZERO_ERROR;
    char16_t parts[32];
    const std::int32_t length =
        unorm2_getDecomposition(normalizerOf(Form::D), unit, parts, 32, &status);
    if (U_FAILURE(status) || length < 0) return unit;
    char16_t kept = 0;
    int count = 0;
    for (std::int32_t i = 0; i < length;) {
        UChar32 point;
        U16_NEXT(parts, i, length, point);
        if (u_charType(point) == U_NON_SPACING_MARK) continue;
        kept = static_cast<char16_t>(point);
        count += U16_LENGTH(point);
    }
    // A letter of which two would be left, or none, stays as it is: the tables map unit to unit.
    return count == 1 ? kept : unit;
}

String normalized(std::u16string_view text, Form form) {
    const std::optional<std::u16string> ordered = detail::withMarksInOrder(text);
    if (ordered) text = *ordered;
    const std::int32_t length = lengthOf(text);
    return filled(text.size() + text.size() / 32 + 8, [&](char16_t* out, std::int32_t capacity,
                                                          UErrorCode* status) {
        return unorm2_normalize(normalizerOf(form), text.data(), length, out, capacity, status);
    });
}

bool isNormalizedC(std::u16string_view text) noexcept {
    if (text.size() > INT32_MAX) return false;
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizationCheckResult result = unorm2_quickCheck(
        normalizerOf(Form::C), text.data(), static_cast<std::int32_t>(text.size()), &status);
    return U_SUCCESS(status) && result == UNORM_YES;
}

String lowerCase(std::u16string_view text) {
    const std::int32_t length = lengthOf(text);
    return filled(text.size() + 8, [&](char16_t* out, std::int32_t capacity, UErrorCode* status) {
        return u_strToLower(out, capacity, text.data(), length, "", status);
    });
}

String upperCase(std::u16string_view text) {
    const std::int32_t length = lengthOf(text);
    return filled(text.size() + 8, [&](char16_t* out, std::int32_t capacity, UErrorCode* status) {
        return u_strToUpper(out, capacity, text.data(), length, "", status);
    });
}

String titleCase(std::u16string_view text) {
    const std::int32_t length = lengthOf(text);
    return filled(text.size() + 8, [&](char16_t* out, std::int32_t capacity, UErrorCode* status) {
        return u_strToTitle(out, capacity, text.data(), length, nullptr, "", status);
    });
}

bool isWhiteSpaceOrNewline(char16_t unit) noexcept {
    if (unit < 0x80) return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20;
    return unit == 0x85 || (categoriesOf(unit) & (SpaceSeparator | LineOrParagraph)) != 0;
}

}  // namespace velmo::detail::unicode
