// A text is searched piece by piece, in one of two ways. Where units are characters by themselves
// (SimpleUnits.h) or the search is literal, units are compared in place, many at a time. Else the
// piece and the substring are rewritten character by character, each with its marks: decomposed,
// and folded as the options ask; the substring is sought in the rewritten text, and a hit counts
// if it begins and ends where characters do. So one mark or one character outside the plane costs
// a piece and not the whole text. Pieces overlap by as many characters as a hit can have; they are
// so much longer than this that the time stays linear.
#include "text/SubstringSearch.h"

#include <algorithm>
#include <string>
#include <vector>

#include <velmocore/text/Folding.h>

#include "platform/Surrogates.h"
#include "platform/Unicode.h"
#include "text/PatternScan.h"
#include "text/SimpleUnits.h"
#include "text/UnitFold.h"

namespace velmo::detail {
namespace {

using View = std::u16string_view;

constexpr char16_t FirstMark = 0x300;
constexpr char16_t FirstWidthForm = 0xFF00, LastWidthForm = 0xFFEE;

bool isMark(char16_t unit) {
    return unit >= FirstMark && (unicode::categoriesOf(unit) & unicode::Mark);
}

/// Whether a character begins at an index: a mark belongs to what stands before it.
bool isBoundary(View text, std::size_t index) {
    if (index == 0 || index >= text.size()) return true;
    return !isMark(text[index]) && !isPairAt(text, index - 1);
}

/// The end of the character that begins at the index.
std::size_t endOfCharacter(View text, std::size_t index) {
    do ++index;
    while (!isBoundary(text, index));
    return index;
}

std::u16string withUsualWidths(View character) {
    std::u16string result;
    for (const char16_t unit : character)
        if (unit >= FirstWidthForm && unit <= LastWidthForm)
            result += unicode::normalized(View(&unit, 1), unicode::Form::KC);
        else
            result += unit;
    return result;
}

std::u16string folded(View character, SearchOptions options) {
    // Most characters, even of pieces that need rewriting; nothing else but case changes them.
    if (character.size() == 1 && character[0] < 0x80) {
        std::u16string result(character);
        if (options & CaseInsensitiveSearch) result[0] = CaseFold{}(result[0]);
        return result;
    }
    std::u16string result(character);
    if (options & WidthInsensitiveSearch) result = withUsualWidths(result);
    if (!(options & LiteralSearch) || (options & DiacriticInsensitiveSearch))
        result = unicode::normalized(result, unicode::Form::D);
    // After decomposing, which is what makes marks of diacritics.
    if (options & DiacriticInsensitiveSearch) std::erase_if(result, isMark);
    if (options & CaseInsensitiveSearch)
        std::transform(result.begin(), result.end(), result.begin(), CaseFold{});
    return result;
}

/// A text rewritten, and where each of its characters begins in both forms; the ends are the
/// last entries.
struct Rewritten {
    std::u16string text;
    std::vector<std::size_t> starts, sources;

    Rewritten(View source, SearchOptions options) {
        for (std::size_t i = 0, end; i < source.size(); i = end) {
            end = options & LiteralSearch ? i + 1 : endOfCharacter(source, i);
            starts.push_back(text.size());
            sources.push_back(i);
            text += folded(source.substr(i, end - i), options);
        }
        starts.push_back(text.size());
        sources.push_back(source.size());
    }

    /// The place in the source of one in the text at which a character begins, or NotFound. A
    /// character of which nothing was left belongs to the one before it.
    std::uint64_t sourceOf(std::size_t place) const {
        const auto entry = std::upper_bound(starts.begin(), starts.end(), place) - 1;
        return *entry == place ? sources[static_cast<std::size_t>(entry - starts.begin())]
                               : NotFound;
    }
};

/// Gives the occurrences to the function, from the first or from the last on, those that overlap
/// too, until it accepts one.
template <class Accept>
void offerOccurrences(View text, View pattern, bool backwards, Accept accept) {
    const auto offer = [&](const auto& textUnit, const auto& patternUnit, auto startOf) {
        // Linear, also where nearly every start is a hit that ends within a character and is
        // refused.
        TwoWaySearch occurrences(textUnit, text.size(), patternUnit, pattern.size());
        std::uint64_t hit;
        do hit = occurrences.next();
        while (hit != NotFound && !accept(startOf(hit)));
    };
    const auto at = [](View units) { return [units](std::size_t i) { return units[i]; }; };
    const auto fromEnd = [](View units) {
        return [units](std::size_t i) { return units[units.size() - 1 - i]; };
    };
    if (backwards)
        offer(fromEnd(text), fromEnd(pattern),
              [&](std::uint64_t hit) { return text.size() - pattern.size() - hit; });
    else
        offer(at(text), at(pattern), [](std::uint64_t hit) { return hit; });
}

/// What is sought, in the forms that the two ways need.
class Sought {
public:
    Sought(View sought, SearchOptions options)
        : options_(options),
          foldsMore_(options & (DiacriticInsensitiveSearch | WidthInsensitiveSearch)),
          rewritten_(Rewritten(sought, options).text),
          units_(foldsMore_ ? rewritten_ : unicode::normalized(sought, unicode::Form::C)),
          hasUnits_(unitsSuffice(units_)) {}

    bool isEmpty() const { return rewritten_.empty(); }
    /// Whether marks are characters too, which a hit may hold any number of.
    bool isLiteral() const { return options_ & LiteralSearch; }
    /// Else a hit has at most so many characters.
    std::size_t characters() const { return rewritten_.size(); }

    /// Whether units are characters in a text, and comparing them says all.
    bool unitsSuffice(View text) const {
        return foldsMore_ ? isAsciiString(text) : areSimpleUnits(text);
    }

    /// The first occurrence in a piece, or the last one backwards.
    Range in(View piece, bool isSimple) const { return isSimple ? inUnits(piece) : inText(piece); }

    Range inUnits(View piece) const {
        // What is no such text itself does not occur in one.
        if (!hasUnits_) return Range::none();
        return searchUnits(piece, units_, options_);
    }

    static Range searchUnits(View text, View sought, SearchOptions options) {
        return withFold(options & CaseInsensitiveSearch ? Case::Insensitive : Case::Sensitive,
                        [&](const auto& fold) {
                            const std::uint64_t hit = options & BackwardsSearch
                                                          ? lastOccurrence(text, sought, fold)
                                                          : firstOccurrence(text, sought, fold);
                            return hit == NotFound ? Range::none() : Range{hit, sought.size()};
                        });
    }

private:
    Range inText(View piece) const {
        const Rewritten text(piece, options_);
        Range range = Range::none();
        offerOccurrences(text.text, rewritten_, options_ & BackwardsSearch, [&](std::size_t hit) {
            const std::uint64_t start = text.sourceOf(hit);
            const std::uint64_t end = text.sourceOf(hit + rewritten_.size());
            // A hit that takes only some marks of its last character is none: "e" is not found in
            // a decomposed "e" with an accent.
            if (start == NotFound || end == NotFound) return false;
            range = {start, end - start};
            return true;
        });
        return range;
    }

    SearchOptions options_;
    bool foldsMore_;
    std::u16string rewritten_;
    String units_;
    bool hasUnits_;
};

/// A part of a text, in which hits that begin before a place are looked for.
struct Piece {
    std::size_t start, next, end;
    bool isSimple;
};

/// Units: enough that making a piece costs little beside searching it, and small beside a text of
/// which only one place is hard.
constexpr std::size_t LeastPiece = 4096;

Piece pieceAt(View text, std::size_t start, const Sought& sought) {
    // Four times what hits of two pieces share, so that no character is in more than two.
    const std::size_t length =
        sought.isLiteral() ? text.size() : std::max(LeastPiece, 4 * sought.characters());
    Piece piece{start, start + std::min(length, text.size() - start), 0, false};
    piece.isSimple = sought.unitsSuffice(text.substr(start, piece.next - start));
    if (!piece.isSimple) {
        std::size_t end = start, characters = 0;
        for (; end < text.size() && (end < piece.next || characters < length / 4); ++characters)
            end = endOfCharacter(text, end);
        piece.next = end;
    } else if (!isBoundary(text, piece.next)) {
        --piece.next;  // the last unit has a mark
    }
    piece.end = piece.next;
    for (std::size_t i = 0; i < sought.characters() && piece.end < text.size(); ++i)
        piece.end = endOfCharacter(text, piece.end);
    piece.isSimple &= sought.unitsSuffice(text.substr(piece.next, piece.end - piece.next));
    return piece;
}

Range searchIn(View text, const Piece& piece, const Sought& sought) {
    Range hit = sought.in(text.substr(piece.start, piece.end - piece.start), piece.isSimple);
    if (hit.isFound()) hit.location += piece.start;
    return hit;
}

Range searchCharacters(View text, View soughtText, SearchOptions options) {
    const Sought sought(soughtText, options);
    if (sought.isEmpty()) return Range::none();
    std::vector<Piece> pieces;  // backwards they are searched from the last one on
    for (std::size_t start = 0; start < text.size(); start = pieces.back().next) {
        pieces.push_back(pieceAt(text, start, sought));
        if (options & BackwardsSearch) continue;
        const Range hit = searchIn(text, pieces.back(), sought);
        if (hit.isFound()) return hit;
    }
    if (options & BackwardsSearch)
        for (; !pieces.empty(); pieces.pop_back()) {
            const Range hit = searchIn(text, pieces.back(), sought);
            if (hit.isFound()) return hit;
        }
    return Range::none();
}

}  // namespace

Range rangeOfString(View text, View sought, Range range, SearchOptions options) {
    const View part = text.substr(range.location, range.length);
    if (sought.empty() || part.empty()) return Range::none();
    const bool foldsMore = options & (DiacriticInsensitiveSearch | WidthInsensitiveSearch);
    Range hit = !foldsMore && (options & LiteralSearch) ? Sought::searchUnits(part, sought, options)
                                                        : searchCharacters(part, sought, options);
    if (hit.isFound()) hit.location += range.location;
    return hit;
}

}  // namespace velmo::detail
