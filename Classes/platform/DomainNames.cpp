// ICU's UTS 46 tells all that is unusual of a name as bits; which of them make it no name is up to
// the caller. What is left out here, hyphens and lengths, is left out by the URL standard, because
// such names are met.
#include "platform/DomainNames.h"

#include <unicode/uidna.h>
#include <unicode/uspoof.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

namespace velmo::detail::domains {
namespace {

constexpr std::uint32_t Allowed = UIDNA_ERROR_EMPTY_LABEL | UIDNA_ERROR_LABEL_TOO_LONG |
                                  UIDNA_ERROR_DOMAIN_NAME_TOO_LONG | UIDNA_ERROR_LEADING_HYPHEN |
                                  UIDNA_ERROR_TRAILING_HYPHEN | UIDNA_ERROR_HYPHEN_3_4;

// ICU's objects are never closed: they are shared by all threads to the end.

const UIDNA* processor() {
    static const UIDNA* const made = [] {
        UErrorCode status = U_ZERO_ERROR;
        const UIDNA* const idna =
            uidna_openUTS46(UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ |
                                UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_NONTRANSITIONAL_TO_UNICODE,
                            &status);
        if (U_FAILURE(status)) throw std::bad_alloc();
        return idna;
    }();
    return made;
}

const USpoofChecker* spoofChecker() {
    static const USpoofChecker* const made = [] {
        UErrorCode status = U_ZERO_ERROR;
        USpoofChecker* const checker = uspoof_open(&status);
        uspoof_setAllowedChars(checker, uspoof_getRecommendedSet(&status), &status);
        uspoof_setRestrictionLevel(checker, USPOOF_HIGHLY_RESTRICTIVE);
        uspoof_setChecks(checker,
                         USPOOF_RESTRICTION_LEVEL | USPOOF_INVISIBLE | USPOOF_MIXED_NUMBERS |
                             USPOOF_CHAR_LIMIT | USPOOF_HIDDEN_OVERLAY,
                         &status);
        if (U_FAILURE(status)) throw std::bad_alloc();
        return checker;
    }();
    return made;
}

/// What a call of ICU's makes of a name, and what it found unusual.
struct Converted {
    String name;
    std::uint32_t errors = 0;
};

template <class Convert>
Converted converted(Convert convert, std::u16string_view name) {
    StringBuilder out;
    for (auto room = static_cast<std::int32_t>(name.size() * 2 + 64);;) {
        UIDNAInfo info = UIDNA_INFO_INITIALIZER;
        UErrorCode status = U_ZERO_ERROR;
        char16_t* const write = out.prepare(static_cast<std::size_t>(room));
        const std::int32_t length =
            convert(processor(), name.data(), static_cast<std::int32_t>(name.size()), write, room,
                    &info, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            room = length;
            continue;
        }
        if (U_FAILURE(status)) return {};
        out.commit(static_cast<std::size_t>(length));
        return {out.finish(), info.errors & ~Allowed};
    }
}

/// Whether all that the label shows are letters that look like ASCII ones.
bool looksLikeASCII(std::u16string_view label) {
    char16_t skeleton[LongestName];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length =
        uspoof_getSkeleton(spoofChecker(), 0, label.data(), static_cast<std::int32_t>(label.size()),
                           skeleton, static_cast<std::int32_t>(std::size(skeleton)), &status);
    return U_FAILURE(status) ||
           std::all_of(skeleton, skeleton + length, [](char16_t unit) { return unit < 0x80; });
}

}  // namespace

String toASCII(std::u16string_view name) {
    if (name.size() > LongestName) return {};
    const Converted made = converted(uidna_nameToASCII, name);
    return made.errors ? String() : made.name;
}

String toUnicode(std::u16string_view name) {
    if (name.size() > LongestName) return {};
    return converted(uidna_nameToUnicode, name).name;
}

bool isDeceptive(std::u16string_view label) {
    if (std::all_of(label.begin(), label.end(), [](char16_t unit) { return unit < 0x80; }))
        return false;
    if (label.size() > LongestName) return true;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t found = uspoof_check2(
        spoofChecker(), label.data(), static_cast<std::int32_t>(label.size()), nullptr, &status);
    return U_FAILURE(status) || found != 0 || looksLikeASCII(label);
}

}  // namespace velmo::detail::domains
