// Words, components, sentences, shortening and languages.
#include <velmocore/platform/Resources.h>
#include <velmocore/words/Components.h>
#include <velmocore/words/Ellipsizing.h>
#include <velmocore/words/LanguageFilter.h>
#include <velmocore/words/Separators.h>
#include <velmocore/words/Words.h>

#include <set>

#include "Growth.h"

namespace velmo::growth {

namespace {

const LanguageFilter& languagesOfToday() {
    static const LanguageFilter filter(velmoResourcesDirectory(), LanguageRules::today());
    return filter;
}

const LanguageFilter& languages() {
    static const LanguageFilter filter(velmoResourcesDirectory());
    return filter;
}

constexpr Operation Rows[] = {
    {"words",
     [](const Input& in) {
         for (const bool wildcard : {false, true})
             for (const bool withSeparators : {false, true})
                 use(wordsOfCharacters(in.text,
                                       {.withSeparators = withSeparators, .wildcard = wildcard}));
         use(wordsOfCharacters(in.text, {.minLen = 5}));
     }},
    {"word counts",
     [](const Input& in) {
         for (const bool wildcard : {false, true})
             use(numberOfWordsOfCharacters(in.text, {.wildcard = wildcard}));
         use(numberOfWordsUsingDefaultSeparation(in.text, 3));
         use(numberOfWordsInRange(in.text, {1, in.text.length() / 2}));
     }},
    {"words as strings",
     [](const Input& in) {
         use(separatedWords(in.text));
         use(wordsUsingWhiteSeparation(in.text));
         use(wordsUsingSeparators<std::set<String>>(in.text));
     }},
    {"components",
     [](const Input& in) {
         for (const CharacterSetRep* separators :
              {&defaultComponentSeparators(), &defaultSentenceSeparators(),
               &defaultLineSeparators()}) {
             use(componentsOfCharacters(in.text, separators));
             use(numberOfComponentsUsingSeparators(in.text, separators));
             use(componentsUsingSeparators(in.text, {.separators = separators}));
         }
     }},
    {"paragraphs",
     [](const Input& in) {
         use(numberOfParagraphs(in.text, {0, in.text.length()}, 2));
     }},
    {"ellipsizing",
     [](const Input& in) {
         const std::size_t half = in.text.length() / 2;
         for (const std::size_t n : {std::size_t{10}, half}) {
             use(stringByEllipsizingAfterNWords(in.text, n));
             use(stringByEllipsizingAfterNCharacters(in.text, n));
             use(stringByEllipsizingNLines(in.text, 3, n));
         }
     }},
    {"language",
     [](const Input& in) {
         use(languages().languageOfText(in.text));
         use(languages().stopWordRatioOfText(in.text));
     }},
    {"language-web", [](const Input& in) { use(languagesOfToday().languageTagOfText(in.text)); }},
};

}  // namespace

std::span<const Operation> wordOperations() { return Rows; }

}  // namespace velmo::growth
