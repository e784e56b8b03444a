// Summaries: the sentences with a hit, up to a limit.
// Each hit brings in the sentence around it, and the search goes on behind that sentence: so no
// sentence is read twice, however many hits it has, and the whole is linear. A sentence that stood
// in the summary before is left out, as pages repeat their headings and teasers.
#include <velmocore/query/Occurrences.h>

#include <algorithm>
#include <unordered_set>

#include "platform/Surrogates.h"
#include "query/OccurrenceSearch.h"
#include "words/EllipsizingWords.h"

namespace velmo {
namespace {

class Assembly {
public:
    Assembly(std::u16string_view text, const AssemblyOptions& options)
        : units_(text, options),
          options_(options),
          separator_(options.separator.isAbsent() ? std::u16string_view(u" ")
                                                  : options.separator.view()),
          gapSeparator_(options.gapSeparator.isAbsent() ? separator_ : options.gapSeparator.view()),
          limit_(options.ellipsizeAfterNCharacters) {}

    /// The summary; absent if there is nothing in it.
    template <class Hits>
    Summary of(Hits&& hits) {
        for (std::uint64_t from = 0; from < units_.text.size();) {
            const Range hit = hits.next(from);
            if (!hit.isFound()) break;
            from = addWordToAssembly(hit);
        }
        if (isEmpty_) return {};
        return {out_.finish(), std::move(parts_)};
    }

private:
    struct Excerpt {
        std::uint64_t start, end;
        bool bare;           // nothing but the hit
        std::uint64_t next;  // where the sentence ends
    };

    /// Where the search goes on; NotFound if the summary is full.
    std::uint64_t addWordToAssembly(Range hit) {
        const Excerpt excerpt =
            units_.words.unspaced ? excerptAround<true>(hit) : excerptAround<false>(hit);
        // A heading or a cell of a table that is the hit alone tells a reader nothing.
        const bool says = excerpt.start < excerpt.end && (!excerpt.bare || options_.singleWords);
        if (!says || !seen_.insert(viewOf(excerpt.start, excerpt.end)).second) return excerpt.next;
        if (!isEmpty_) out_.append(touchesLast(excerpt) ? separator_ : gapSeparator_);
        isEmpty_ = false;
        lastEnd_ = excerpt.end;
        if (limit_ == 0 || out_.length() + (excerpt.end - excerpt.start) <= limit_) {
            append(excerpt.start, excerpt.end);
            // Without room for more than a separator the rest need not be searched.
            const bool isFull = limit_ && out_.length() + separator_.size() >= limit_;
            return isFull ? NotFound : excerpt.next;
        }
        if (out_.length() < limit_) addPart(excerpt, hit.end());
        return NotFound;
    }

    /// Whether no word stands between an excerpt and the one before it.
    bool touchesLast(const Excerpt& excerpt) const {
        for (std::uint64_t i = lastEnd_; i < excerpt.start; ++i)
            if (units_.isTerm(i)) return false;
        return true;
    }

    /// The sentence of a hit, without what stands before its first and after its last term
    /// unit.
    template <bool Unspaced>
    Excerpt excerptAround(Range hit) const {
        Excerpt excerpt{hit.location, hit.end(), true, hit.end()};
        for (std::uint64_t i = hit.location; i > 0 && !units_.isBoundary(i - 1); --i)
            if (units_.isTermOf<Unspaced>(i - 1)) excerpt.start = i - 1;
        std::uint64_t& i = excerpt.next;
        for (; i < units_.text.size() && !units_.isBoundary(i); ++i)
            if (units_.isTermOf<Unspaced>(i)) excerpt.end = i + 1;
        excerpt.bare = excerpt.start == hit.location && excerpt.end == hit.end();
        return excerpt;
    }

    /// As much of an excerpt as there is room for, from its start on if the hit can be read
    /// then, or else up to the hit, from the start of a word on.
    void addPart(const Excerpt& excerpt, std::uint64_t hitEnd) {
        const std::uint64_t room = limit_ - out_.length();
        if (excerpt.start + room >= hitEnd) {
            append(excerpt.start, whole(excerpt.start + room, excerpt.start));
        } else {
            std::uint64_t start = whole(hitEnd - room, 0);
            if (units_.isTerm(start))
                while (start > 0 && units_.joinsTerms(start)) --start;
            append(start, hitEnd);
        }
        out_.append(u"...");
    }

    void append(std::uint64_t start, std::uint64_t end) {
        parts_.push_back({{start, end - start}, out_.length()});
        out_.append(viewOf(start, end));
    }

    /// A position to cut at, or the one before it where it would cut a pair; in scripts without
    /// spaces, one before it and behind the other where it would cut a character.
    std::uint64_t whole(std::uint64_t position, std::uint64_t start) const {
        std::uint64_t edge = position;
        while (edge > start && edge < units_.text.size() && units_.cutsCharacter(edge)) --edge;
        if (edge > start) position = edge;
        const std::u16string_view text = units_.text;
        const bool cutsPair = (options_.keepsPairs || units_.words.unspaced) && position > 0 &&
                              position < text.size() &&
                              detail::isHighSurrogate(text[position - 1]) &&
                              detail::isLowSurrogate(text[position]);
        return position - cutsPair;
    }

    std::u16string_view viewOf(std::uint64_t start, std::uint64_t end) const {
        return units_.text.substr(start, end - start);
    }

    const detail::ExcerptUnits units_;
    const AssemblyOptions& options_;
    const std::u16string_view separator_, gapSeparator_;
    const std::uint64_t limit_;
    bool isEmpty_ = true;
    std::uint64_t lastEnd_ = 0;  // of the excerpt before
    StringBuilder out_;
    std::vector<SummaryPart> parts_;
    std::unordered_set<std::u16string_view> seen_;
};

/// A text as its own summary, or the beginning of it.
Summary beginningOf(const String& text, String string) {
    const std::u16string_view units = text, shown = string;
    // The dots at its end are no part of the text.
    const auto same = std::ranges::mismatch(units, shown).in1 - units.begin();
    return {std::move(string), {{{0, static_cast<std::uint64_t>(same)}, 0}}};
}

/// The part that does not depend on how hits are found.
template <class MakeHits>
Summary assemble(const String& text, bool isSought, MakeHits makeHits,
                 const AssemblyOptions& options) {
    if (text.isEmpty()) return {};
    const std::uint64_t limit = options.ellipsizeAfterNCharacters;
    // A text that fits is its own best summary, whatever is found in it.
    if (!options.onlyOccurrences && limit && text.length() <= limit) return beginningOf(text, text);
    if (isSought) {
        Summary summary = Assembly(text, options).of(makeHits());
        if (!summary.string.isAbsent()) return summary;
    }
    if (options.onlyOccurrences) return {};
    return beginningOf(text,
                       detail::ellipsizedAfterWord(
                           text, limit, options.withinRuns ? &detail::unspacedScripts() : nullptr));
}

}  // namespace

Summary summaryOfWildcards(const String& text, std::span<const String> wildcards,
                           const AssemblyOptions& options) {
    const auto makeHits = [&] { return detail::WildcardHits(text, wildcards, options); };
    return assemble(text, !wildcards.empty(), makeHits, options);
}

String assembleOccurrencesOfWildcards(const String& text, std::span<const String> wildcards,
                                      const AssemblyOptions& options) {
    return summaryOfWildcards(text, wildcards, options).string;
}

Summary summaryOfHits(const String& text, std::span<const Range> hits,
                      const AssemblyOptions& options) {
    return assemble(
        text, !hits.empty(), [&] { return detail::KnownHits(hits); }, options);
}

std::vector<Range> hitsInSummary(const Summary& summary, std::span<const Range> hits) {
    std::vector<Range> shown;
    for (const auto& [range, start] : summary.parts) {
        auto hit = std::ranges::lower_bound(hits, range.location, {}, &Range::location);
        for (; hit != hits.end() && hit->location < range.end(); ++hit)
            if (hit->end() <= range.end())
                shown.push_back({hit->location - range.location + start, hit->length});
    }
    return shown;
}

String assembleOccurrencesOfHits(const String& text, std::span<const Range> hits,
                                 const AssemblyOptions& options) {
    return summaryOfHits(text, hits, options).string;
}

String assembleOccurrencesOfQueryTerms(const String& text, const QueryTerms& terms,
                                       const AssemblyOptions& options) {
    return assembleOccurrencesOfHits(text, detail::hitsOf(text, terms, options.comparison),
                                     options);
}

String assembleOccurrencesOfString(const String& text, std::u16string_view sought,
                                   const AssemblyOptions& options) {
    const auto makeHits = [&] { return detail::StringHits(text, sought, options.comparison); };
    return assemble(text, !sought.empty(), makeHits, options).string;
}

}  // namespace velmo
