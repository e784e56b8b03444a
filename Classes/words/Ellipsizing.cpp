// Shortening looks no further than where it cuts, so that a menu item made of a long text costs no
// more than one of a short text. Nothing is written before it is sure that something is cut, as
// the text itself comes back otherwise.
#include <velmocore/words/Ellipsizing.h>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/words/Separators.h>

#include "words/EllipsizingWords.h"
#include "words/RunScan.h"
#include "words/WordText.h"

namespace velmo {
namespace {

constexpr std::u16string_view Ellipsis = u"...";

String ellipsizedAt(const String& text, std::size_t length) {
    StringBuilder out(length + Ellipsis.size());
    out.append(text.view().substr(0, length));
    out.append(Ellipsis);
    return out.finish();
}

}  // namespace

String stringByEllipsizingAfterNWords(const String& text, std::size_t n) {
    // No text has more words than units.
    if (n == 0 || text.length() <= n) return text;
    std::uint64_t words = 0;
    std::size_t cut = 0;
    detail::forEachRun(text, defaultWordSeparators(), [&](const detail::Run& run) {
        if (run.isMember) return true;
        // The scan goes on to the next word: only if there is one is anything cut off, as
        // separators alone behind the last word are nothing that a reader would miss.
        if (++words == n) cut = run.end;
        return words <= n;
    });
    return words > n ? ellipsizedAt(text, cut) : text;
}

String stringByEllipsizingAfterNCharacters(const String& text, std::size_t n) {
    return detail::ellipsizedAfterWord(text, n, nullptr);
}

String detail::ellipsizedAfterWord(const String& text, std::size_t n,
                                   const UnspacedScripts* unspaced) {
    if (n == 0 || text.length() <= n) return text;
    const WordText words{text, alphaNumCharacterSetRep(), unspaced};
    // The word in which the limit falls goes as a whole, and the separators in front of it too, so
    // that the dots stand right behind a word.
    std::size_t kept = words.startOfWord(n, 0);
    while (kept > 0 && !words.isTerm(kept - 1)) --kept;
    return kept > 0 ? ellipsizedAt(text, kept) : text;
}

String stringByEllipsizingNLines(const String& text, std::size_t lines, std::size_t n) {
    if (lines == 0 || text.isEmpty()) return text;
    String first;  // given back as it is if no other line follows
    StringBuilder out;
    const auto add = [&](std::size_t start, std::size_t end) {
        const String line =
            stringByEllipsizingAfterNCharacters(text.substring({start, end - start}), n);
        if (first.isAbsent()) {
            first = line;
        } else {
            if (out.isEmpty()) out.append(first);
            out.append(u'\n');
            out.append(line);
        }
        --lines;
    };
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.length() && lines > 0; ++i) {
        if (!isFeedUnit(text[i])) continue;
        // Empty lines take none of the lines that are shown.
        if (i > start) add(start, i);
        start = i + 1;
    }
    if (lines > 0 && start + 1 < text.length()) add(start, text.length());
    if (!out.isEmpty()) return out.finish();
    return first.isAbsent() ? String::empty() : first;
}

}  // namespace velmo
