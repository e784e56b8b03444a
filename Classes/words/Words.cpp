// Words, in every form: each operation is a small callable over the runs of RunScan.h, and the
// modes are settled ahead of the loops.
//
// Words are ranges of the text; only the forms that promise strings make any. The text is not
// folded and no list is kept, so that counting the words of a text of any size takes no memory.
#include <velmocore/words/Words.h>

#include <string>

#include <velmocore/words/Separators.h>

#include "words/RunScan.h"

namespace velmo {
namespace {

using detail::Run;

const CharacterSetRep& setOrDefault(const CharacterSetRep* separators) {
    return separators ? *separators : defaultWordSeparators();
}

/// Calls handle(run) for each run; the modes are settled here, ahead of the loops.
template <class Handler>
void scanRuns(std::u16string_view text, const WordOptions& options, Handler handle) {
    const auto goOn = [&](const Run& run) {
        handle(run);
        return true;
    };
    if (options.wildcard)
        detail::forEachRunWithBrackets(text, setOrDefault(options.separators), goOn);
    else
        detail::forEachRun(text, setOrDefault(options.separators), goOn);
}

/// Calls entry(run) for each word that is long enough and, if asked for, for each run of
/// separators.
template <bool WithSeparators, class Entry>
void scanWords(std::u16string_view text, const WordOptions& options, Entry entry) {
    const std::size_t minLen = options.minLen ? options.minLen : 1;
    scanRuns(text, options, [&](const Run& run) {
        if (run.isMember ? WithSeparators : run.length() >= minLen) entry(run);
    });
}

template <class Entry>
void scanWords(std::u16string_view text, const WordOptions& options, Entry entry) {
    if (options.withSeparators)
        scanWords<true>(text, options, entry);
    else
        scanWords<false>(text, options, entry);
}

template <class Handler>
std::uint64_t parseWords(std::u16string_view text, const WordParseOptions& options,
                         Handler handler) {
    std::uint64_t calls = 0;
    scanWords<false>(text, {options.separators, false, options.minLen, options.wildcard},
                     [&](const Run& run) {
                         handler(run.range());
                         ++calls;
                     });
    return calls;
}

/// Whether the words kept so far read as one term.
/// Two guesses stand until something refutes them, so that no second look at the words is needed.
class TermShape {
public:
    void addSeparator(char16_t unit) {
        if (unit != u'.') dotted_ = false;
        if (unit != u'-') hyphens_ = false;
    }
    void addWord(std::u16string_view word) {
        ++words_;
        if (word.size() != 1 || !alphaCharacterSetRep().contains(word[0])) dotted_ = false;
    }
    bool isOneTerm() const { return words_ > 1 && (dotted_ || hyphens_); }

private:
    bool dotted_ = true, hyphens_ = true;
    std::size_t words_ = 0;
};

}  // namespace

std::vector<Range> wordsOfCharacters(std::u16string_view characters, const WordOptions& options) {
    std::vector<Range> ranges;
    scanWords(characters, options, [&](const Run& run) {
        ranges.push_back({run.start, run.length() | (run.isMember ? SeparatorMark : 0)});
    });
    return ranges;
}

std::size_t numberOfWordsOfCharacters(std::u16string_view characters, const WordOptions& options) {
    // Where every word counts, the edges of 64 units are counted in one step.
    if (options.minLen <= 1 && !options.withSeparators && !options.wildcard)
        return detail::countOfWordRuns(characters, setOrDefault(options.separators));
    std::size_t count = 0;
    scanWords(characters, options, [&](const Run&) { ++count; });
    return count;
}

std::size_t parseWordsWithHandler(std::u16string_view text, WordHandler handler,
                                  const WordParseOptions& options) {
    // Spares a scan in which no word could be long enough, and a copy below.
    if (!handler || text.size() < options.minLen) return 0;
    return parseWords(text, options, [&](Range word) { handler(text, word); });
}

std::size_t parseMutableWordsWithHandler(std::u16string_view text, MutableWordHandler handler,
                                         const WordParseOptions& options) {
    if (!handler || text.size() < options.minLen) return 0;
    std::u16string copy(text);
    return parseWords(text, options, [&](Range word) { handler(copy, word); });
}

SeparatedWords separatedWords(const String& text, const WordOptions& options) {
    SeparatedWords result;
    std::vector<String>& words = result.words;
    // Room for words of seven units and a separator. Where they are shorter the vector grows once
    // more, which moves handles and no text.
    words.reserve(text.length() / 8);
    TermShape shape;
    const auto unitsOf = [&](const Run& run) {
        return text.view().substr(run.start, run.length());
    };
    const std::size_t minLen = options.minLen ? options.minLen : 1;
    scanRuns(text, options, [&](const Run& run) {
        const bool kept = run.isMember ? options.withSeparators : run.length() >= minLen;
        if (run.isMember) {
            // Where the run is one entry, only its first unit tells.
            const std::size_t looked = options.withSeparators ? 1 : run.length();
            for (char16_t unit : unitsOf(run).substr(0, looked)) shape.addSeparator(unit);
        } else if (kept) {
            shape.addWord(unitsOf(run));
        }
        if (kept) words.push_back(text.substring(run.range()));
    });
    result.hyphenated = shape.isOneTerm();
    return result;
}

std::vector<String> wordsUsingSeparators(const String& text, const WordOptions& options) {
    return separatedWords(text, options).words;
}

std::vector<String> wordsUsingDefaultSeparation(const String& text, std::size_t minLen) {
    return wordsUsingSeparators(text, {.minLen = minLen});
}

std::vector<String> wordsUsingWhiteSeparation(const String& text, std::size_t minLen) {
    return wordsUsingSeparators(text, {.separators = &whiteCharacterSetRep(), .minLen = minLen});
}

std::size_t numberOfWordsUsingSeparators(std::u16string_view text,
                                         const CharacterSetRep* separators, std::size_t minLen,
                                         bool wildcard) {
    return numberOfWordsOfCharacters(text, {separators, false, minLen, wildcard});
}

std::size_t numberOfWordsUsingDefaultSeparation(std::u16string_view text, std::size_t minLen) {
    return numberOfWordsOfCharacters(text, {.minLen = minLen});
}

std::size_t numberOfWordsInRange(std::u16string_view text, Range range,
                                 const CharacterSetRep* separators, std::size_t minLen) {
    return numberOfWordsOfCharacters(detail::unitsInRange(text, range),
                                     {separators, false, minLen});
}

}  // namespace velmo
