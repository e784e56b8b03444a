// One pass over the words of a text counts their units by script, looks the words up, and counts
// the letters beyond a to z. Of these, the script speaks first: most scripts are of one language.
// Among the languages that share one, each has points for the words of its list, more for those
// that few others have, loses some for a letter that it is not written with, and
// gains for one that few others are. That settles what lists of unlike length and care cannot:
// Czech and Slovak have most short words in common, but neither has all letters of the other.
//
// A language that is not known must not be named as a neighbour of it that is. So the leader needs a
// share of all words besides its lead; and there are lists for small languages, and for Latin, mostly
// as rivals: Latin on pages is nearly always filler, which is never named.
#include "words/LanguageTeller.h"

#include <algorithm>

#include <velmocore/text/Folding.h>

#include "words/AlphabetTables.h"
#include "words/ChineseFormTables.h"
#include "words/ScriptTables.h"
#include "words/StopWordScan.h"

namespace velmo::detail {
namespace {

// What the samples of docs/language.md gave; of words, points and letters.
constexpr std::int64_t LeastLead = 3;
constexpr std::int64_t LeadOneIn = 10;
constexpr std::int64_t PointsForFiveWords = 4;
constexpr std::int8_t PointsAgainst = 3, PointsOfRareLetter = 1;
constexpr std::ptrdiff_t FewLanguages = 10;
constexpr std::uint64_t LeastWeight = 6;

constexpr std::u16string_view Filler = u"LA";
/// Small languages that share most words with a large one, which a short text is far more often in.
/// What they have in points counts a tenth less.
constexpr std::u16string_view SmallSiblings[] = {
    u"AN", u"AST", u"BS", u"FUR", u"FY",  u"IA",  u"LIJ",
    u"NN", u"OC",  u"RM", u"SC",  u"SCO", u"SKR", u"SZL",
};
constexpr std::int64_t SiblingOneIn = 10;
constexpr std::uint16_t TraditionalSign = 1, SimplifiedSign = 2, FirstLetterSign = 3;

/// A word that many languages have says little about which of them it is, and nothing about
/// whether it is one that has no list.
std::uint64_t pointsOfWord(std::size_t languages) {
    if (languages == 1) return 4;
    if (languages <= 4) return 3;
    return languages <= 8 ? 2 : 1;
}

bool isAscii(std::u16string_view word) {
    return std::ranges::all_of(word, [](char16_t unit) { return unit < 128; });
}

/// The first row of the script of a row.
std::uint8_t firstRowOf(const ScriptRow& row) {
    const auto rows = scriptRows();
    const auto first = std::ranges::find_if(rows, [&](const ScriptRow& other) {
        return other.code == row.code && other.language == row.language;
    });
    return static_cast<std::uint8_t>(first - rows.begin() + 1);
}

}  // namespace

/// What the words of one language have. Each word of a text may count for dozens of languages, so
/// that this has no jump: whether there were different words is told by those that followed another.
struct LanguageTeller::Hits {
    std::uint64_t points = 0;
    std::uint64_t changes = 0;
    const std::uint32_t* last = nullptr;

    void add(StopWordIndex::Languages word, std::uint64_t count) {
        points += count;
        changes += last != word.data();
        last = word.data();
    }
    bool hasDifferentWords() const { return changes > 1; }
};

struct LanguageTeller::Signs {
    std::uint64_t words = 0;
    std::array<std::uint64_t, 64> weights{};  // by row of the table and 1
    std::vector<Hits> hits;                   // by language
    std::vector<std::uint32_t> counts;        // by sign
};

LanguageTeller::LanguageTeller(LanguageRules rules, std::span<const String> keys,
                               const StopWordIndex& index)
    : rules_(rules), keys_(keys), index_(index), signOf_(0x10000), letterPoints_(FirstLetterSign) {
    for (const ScriptRow& row : scriptRows())
        std::fill(scripts_.begin() + row.first / 16, scripts_.begin() + row.last / 16 + 1,
                  firstRowOf(row));
    for (char16_t unit : traditionalCharacters()) signOf_[unit] = TraditionalSign;
    for (char16_t unit : simplifiedCharacters()) signOf_[unit] = SimplifiedSign;
    if (rules.letters) addAlphabets();
    for (const String& key : keys)
        isSibling_.push_back(std::ranges::count(SmallSiblings, key.view()) != 0);
}

void LanguageTeller::addAlphabets() {
    std::vector<const Alphabet*> known;
    for (const String& key : keys_) {
        const auto found = std::ranges::find(alphabets(), key.view(), &Alphabet::key);
        known.push_back(found == alphabets().end() ? nullptr : &*found);
        if (known.back())
            for (char16_t letter : found->letters) addSign(letter);
    }
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (!known[i]) continue;  // a language of the caller's: nothing is known against it
        for (std::size_t sign = FirstLetterSign; sign < letterPoints_.size(); ++sign)
            letterPoints_[sign][i] = -PointsAgainst;
        for (char16_t letter : known[i]->letters) letterPoints_[signOf_[letter]][i] = 0;
    }
    for (std::vector<std::int8_t>& points : std::span(letterPoints_).subspan(FirstLetterSign)) {
        if (std::ranges::count(points, 0) > FewLanguages) continue;
        for (std::size_t i = 0; i < known.size(); ++i)
            if (known[i] && points[i] == 0) points[i] = PointsOfRareLetter;
    }
    const ConversionTable& lower = lowerCharsTable();
    for (std::size_t unit = 0x80; unit < signOf_.size(); ++unit)
        if (!signOf_[unit]) signOf_[unit] = signOf_[lower[static_cast<char16_t>(unit)]];
}

void LanguageTeller::addSign(char16_t letter) {
    if (signOf_[letter]) return;
    signOf_[letter] = static_cast<std::uint16_t>(letterPoints_.size());
    letterPoints_.emplace_back(keys_.size());
}

void LanguageTeller::readUnits(std::u16string_view word, Signs& signs) const {
    for (char16_t unit : word) {
        const std::size_t script = scripts_[unit / 16];
        if (!script) continue;
        signs.weights[script] += scriptRows()[script - 1].weight;
        ++signs.counts[signOf_[unit]];
    }
}

void LanguageTeller::addWord(StopWordIndex::Languages word, Signs& signs) {
    const std::uint64_t points = pointsOfWord(word.size());
    Hits* hits = signs.hits.data();
    for (std::uint32_t language : word) hits[language].add(word, points);
}

LanguageTeller::Signs LanguageTeller::read(std::u16string_view text, std::uint64_t minLen) const {
    Signs signs;
    signs.hits.resize(keys_.size());
    signs.counts.resize(letterPoints_.size());
    const std::size_t latin = scripts_['a' / 16];
    StopWordScan scan(text, index_, 1, minLen);
    scan.run([&](StopWordIndex::Languages word) { addWord(word, signs); },
             [&](std::u16string_view word) {
                 if (!scripts_[word.front() / 16] || !scripts_[word.back() / 16]) return;
                 ++signs.words;
                 if (isAscii(word))
                     signs.weights[latin] += word.size();
                 else
                     readUnits(word, signs);
                 if (word.size() >= minLen) addWord(index_.find(word), signs);
             });
    signs.words += scan.packed().words;
    signs.weights[latin] += scan.packed().units;
    return signs;
}

/// The row of the script that most of the text is in, and 1; 0 if there is none.
std::size_t LanguageTeller::mainScript(const Signs& signs) const {
    auto weights = signs.weights;
    const auto rows = scriptRows();
    for (std::size_t row = 1; row < rows.size(); ++row) {
        if (!rows[row].oneIn) continue;
        std::uint64_t &part = weights[scripts_[rows[row].first / 16]],
                      &other = weights[scripts_[rows[row - 1].first / 16]];
        const std::uint64_t both = part + other;
        const bool names = part && part * rows[row].oneIn >= both;
        part = names ? both : 0;
        other = names ? 0 : both;
    }
    std::uint64_t all = 0;
    for (const std::uint64_t weight : weights) all += weight;
    const auto most = std::ranges::max_element(weights);
    if (all < LeastWeight || *most * 2 < all) return 0;
    return static_cast<std::size_t>(most - weights.begin());
}

std::vector<std::int64_t> LanguageTeller::points(const Signs& signs) const {
    std::vector<std::int64_t> points;
    for (const Hits& hits : signs.hits) points.push_back(static_cast<std::int64_t>(hits.points));
    for (std::size_t sign = FirstLetterSign; sign < signs.counts.size(); ++sign)
        if (const std::int64_t count = signs.counts[sign])
            for (std::size_t i = 0; i < points.size(); ++i)
                points[i] += count * letterPoints_[sign][i];
    for (std::size_t i = 0; i < points.size(); ++i)
        if (isSibling_[i]) points[i] -= points[i] / SiblingOneIn;
    return points;
}

/// The language with most points, if it is clear.
String LanguageTeller::leader(const Signs& signs) const {
    const std::vector<std::int64_t> all = points(signs);
    if (all.empty()) return {};
    const auto first = std::ranges::max_element(all);
    const auto index = static_cast<std::size_t>(first - all.begin());
    // A small sibling that has less is no rival: it shares what is counted.
    const bool isSmall = isSibling_[index];
    std::int64_t second = 0;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (i != index && (isSmall || !isSibling_[i])) second = std::max(second, all[i]);
    const auto words = static_cast<std::int64_t>(signs.words);
    const bool leads = *first - second >= std::max(LeastLead, *first / LeadOneIn);
    const bool isUsual =
        signs.hits[index].hasDifferentWords() && *first * 5 >= words * PointsForFiveWords;
    return leads && isUsual && keys_[index] != Filler ? keys_[index] : String();
}

ToldLanguage LanguageTeller::tell(std::u16string_view text, std::uint64_t minLen) const {
    const Signs signs = read(text, minLen);
    const std::size_t script = mainScript(signs);
    if (!script && rules_.scripts) return {};
    const ScriptRow* row = script ? &scriptRows()[script - 1] : nullptr;
    const std::u16string_view named = rules_.scripts ? row->language : u"";
    if (named.empty() || row->isShared) {
        const String key = leader(signs);
        if (key.isAbsent() && !named.empty()) return {String(named), {}};
        return {key, key == u"SR" && script == scripts_['a' / 16] ? u"Latn" : u""};
    }
    const std::uint32_t traditional = signs.counts[TraditionalSign];
    const std::uint32_t simplified = signs.counts[SimplifiedSign];
    if (named != u"ZH" || traditional == simplified) return {String(named), {}};
    return {String(named), traditional > simplified ? u"Hant" : u"Hans"};
}

}  // namespace velmo::detail
