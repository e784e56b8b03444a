#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <velmocore/platform/String.h>

namespace velmo {

/// How QueryTerms::queryTermsForOperators() writes a query: any sum of these.
///
///     QueryTerms query(u"tea NEAR/5 cup -sugar");
///     query.queryTermsForOperators(RenderNear | RenderNegated)[0];              // tea NEAR/5 cup -sugar
///     query.queryTermsForOperators(RenderUpperCase)[0];                         // TEA CUP
enum QueryTermRendering : std::uint64_t {
    /// AND between terms; only together with RenderNotWord. Without it, a space.
    RenderAnd = 0x1,
    /// OR between terms, but not with RenderPlus. Without it, a space.
    RenderOr = 0x2,
    RenderXor = 0x4,          ///< XOR. Without it, an XOR is written as an OR.
    RenderNegated = 0x8,      ///< negated terms. Without it, they are left out.
    RenderQuotes = 0x10,      ///< phrases in quotes
    RenderBrackets = 0x20,    ///< groups of two terms and more in parentheses, below the top
    RenderNear = 0x40,        ///< NEAR with its distance. Without it, it is written as an AND.
    RenderAfter = 0x80,       ///< AFTER likewise
    RenderBefore = 0x100,     ///< BEFORE likewise
    RenderSubstring = 0x200,  ///< ~ before terms that may stand inside a longer word
    /// NEXT, if its distance is 1. Else, or without it, it is written as a BEFORE.
    RenderNext = 0x400,
    RenderAndNot = 0x800,      ///< ANDNOT before a negated term, instead of -
    RenderLowerCase = 0x1000,  ///< words in lower case
    RenderUpperCase = 0x2000,  ///< in upper case; wins over RenderLowerCase
    RenderPlus = 0x4000,       ///< + before required terms
    RenderNotWord = 0x8000,    ///< NOT before a negated term, unless it is ANDNOT
    RenderOrSign = 0x10000,    ///< | without spaces for OR
    RenderOptional = 0x20000,  ///< OPT. Without it, an optional term is left out.
    /// Distances such that they are read again as they are, which is ours: an unbounded one as
    /// the bare BEFORE or AFTER, and with NEAR the greatest number. Without it, a distance is
    /// written as 32 bits with a sign, and an unbounded one as -1.
    RenderWholeDistances = 0x40000,
};

/// What is to be written for an operator word, by that word: AND, OR, |, XOR, NOT, -,
/// ANDNOT, NEAR, NEXT, AFTER, BEFORE and OPT.
using OperatorDictionary = std::map<std::u16string, String, std::less<>>;

/// Which words the plus operations of QueryTerms take.
enum QueryWordKinds : std::uint32_t {
    WholeWords = 1,      ///< those that match whole words only
    SubstringWords = 2,  ///< those marked with ~
    AllWords = WholeWords | SubstringWords,
};

}  // namespace velmo
