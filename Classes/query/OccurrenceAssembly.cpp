// Summaries: the sentences with a hit, up to a limit.
#include <velmocore/query/Occurrences.h>

#include <unordered_set>

#include <velmocore/words/Ellipsizing.h>

#include "query/OccurrenceSearch.h"

namespace velmo {
namespace {

class Assembly {
public:
    Assembly(std::u16string_view text, const AssemblyOptions& options)
        : units_(text, options.paragraphs),
          options_(options),
          separator_(options.separator.isAbsent() ? std::u16string_view(u" ")
                                                  : options.separator.view()),
          limit_(options.ellipsizeAfterNCharacters) {}

    /// The summary; absent if there is nothing in it.
    template <class Hits>
    String of(Hits&& hits) {
        for (std::uint64_t from = 0; from < units_.text.size();) {
            const Range hit = hits.next(from);
            if (!hit.isFound()) break;
            from = addWordToAssembly(hit);
        }
        return isEmpty_ ? String() : out_.finish();
    }

private:
    /// Where the search goes on; NotFound if the summary is full.
    std::uint64_t addWordToAssembly(Range hit) {
        const Excerpt excerpt = excerptAround(hit);
        const bool says = excerpt.start < excerpt.end && (!excerpt.bare || options_.singleWords);
        if (!says || !seen_.insert(viewOf(excerpt.start, excerpt.end)).second) return excerpt.next;
        if (!isEmpty_) out_.append(separator_);
        isEmpty_ = false;
        if (limit_ == 0 || out_.length() + (excerpt.end - excerpt.start) <= limit_) {
            out_.append(viewOf(excerpt.start, excerpt.end));
            const bool isFull = limit_ && out_.length() + separator_.size() >= limit_;
            return isFull ? NotFound : excerpt.next;
        }
        if (out_.length() < limit_) addPart(excerpt, hit.end());
        return NotFound;
    }

    struct Excerpt {
        std::uint64_t start, end;
        bool bare;           // nothing but the hit
        std::uint64_t next;  // where the sentence ends
    };

    /// The sentence of a hit, without what stands before its first and behind its last term
    /// unit.
    Excerpt excerptAround(Range hit) const {
        Excerpt excerpt{hit.location, hit.end(), true, hit.end()};
        for (std::uint64_t i = hit.location; i > 0 && !units_.isBoundary(i - 1); --i)
            if (units_.isTerm(i - 1)) excerpt.start = i - 1;
        std::uint64_t& i = excerpt.next;
        for (; i < units_.text.size() && !units_.isBoundary(i); ++i)
            if (units_.isTerm(i)) excerpt.end = i + 1;
        excerpt.bare = excerpt.start == hit.location && excerpt.end == hit.end();
        return excerpt;
    }

    /// As much of an excerpt as there is room for, from its start on if the hit can be read
    /// then, or else up to the hit, from the start of a word on.
    void addPart(const Excerpt& excerpt, std::uint64_t hitEnd) {
        const std::uint64_t room = limit_ - out_.length();
        if (excerpt.start + room >= hitEnd) {
            out_.append(viewOf(excerpt.start, excerpt.start + room));
        } else {
            std::uint64_t start = hitEnd - room;
            if (units_.isTerm(start))
                while (start > 0 && units_.isTerm(start - 1)) --start;
            out_.append(viewOf(start, hitEnd));
        }
        out_.append(u"...");
    }

    std::u16string_view viewOf(std::uint64_t start, std::uint64_t end) const {
        return units_.text.substr(start, end - start);
    }

    const detail::ExcerptUnits units_;
    const AssemblyOptions& options_;
    const std::u16string_view separator_;
    const std::uint64_t limit_;
    bool isEmpty_ = true;
    StringBuilder out_;
    std::unordered_set<std::u16string_view> seen_;
};

/// The part that does not depend on how hits are found.
template <class MakeHits>
String assemble(const String& text, bool isSought, MakeHits makeHits,
                const AssemblyOptions& options) {
    if (text.isEmpty()) return {};
    const std::uint64_t limit = options.ellipsizeAfterNCharacters;
    if (!options.onlyOccurrences && limit && text.length() <= limit) return text;
    if (isSought) {
        String summary = Assembly(text, options).of(makeHits());
        if (!summary.isAbsent()) return summary;
    }
    return options.onlyOccurrences ? String() : stringByEllipsizingAfterNCharacters(text, limit);
}

}  // namespace

String assembleOccurrencesOfWildcards(const String& text, std::span<const String> wildcards,
                                      const AssemblyOptions& options) {
    const auto makeHits = [&] {
        return detail::WildcardHits(text, wildcards, options.comparison, options.minCharacters);
    };
    return assemble(text, !wildcards.empty(), makeHits, options);
}

String assembleOccurrencesOfString(const String& text, std::u16string_view sought,
                                   const AssemblyOptions& options) {
    const auto makeHits = [&] { return detail::StringHits(text, sought, options.comparison); };
    return assemble(text, !sought.empty(), makeHits, options);
}

}  // namespace velmo
