// The language filter: its lists, its settings and the race of the languages for a text. The
// words of all lists are one table, so that a text is read once however many languages there
// are; what is counted comes from LanguageTally. The settings are copied once a scan, so that
// scans on several threads need no lock while they run.
//
// A text is rather left undecided than named wrongly, which does more harm: hence the limits on
// how many hits there must be, how different, and by how much more than any before.
#include <velmocore/words/LanguageFilter.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <mutex>
#include <optional>
#include <shared_mutex>

#include <velmocore/text/FastCompare.h>
#include <velmocore/text/StringFiles.h>
#include <velmocore/words/Words.h>

#include "platform/Assertion.h"
#include "platform/Files.h"
#include "platform/Unicode.h"
#include "words/LanguageTally.h"
#include "words/LanguageTeller.h"

namespace velmo {
namespace {

using detail::LanguageTally;
using detail::StopWordIndex;

constexpr std::string_view FilePrefix = "StopWords";
/// Below a folder of lists: those that only LanguageRules read.
constexpr std::string_view FolderOfRules = "web";
// Lengths are in units, the others in words of the text. One hit for forty words is little for a
// text in the language; the margin is what short texts, which reach that with one hit, need
// besides.
constexpr std::uint64_t LeastMinWordLen = 3;
constexpr std::uint64_t LeastMargin = 3;
constexpr std::uint64_t WordsForOneHit = 40;
// Words; a list of this length leaves the ratio as it is.
constexpr double PlainListLength = 750;

/// In the order of detail::Script.
const std::array<String, detail::NumberOfScripts>& scriptKeys() {
    static const std::array<String, detail::NumberOfScripts> keys = {u"**", u"RU", u"HE", u"EL",
                                                                     u"AR"};
    return keys;
}

/// Whether a file of the folder holds a list.
bool isList(std::string_view name) {
    return name.size() >= FilePrefix.size() &&
           fastCaseInsensitiveCompareChars(name.substr(0, FilePrefix.size()), FilePrefix) == 0 &&
           fastCaseInsensitiveCompareChars(name.substr(FilePrefix.size()), "Gen") != 0;
}

Error whyNoLists(const std::error_code& failure) {
    if (failure) return {u"posix", failure.value(), String::fromUTF8(failure.message())};
    return {u"velmo.language", 1, u"no lists of stop words"};
}

/// The names of the lists, sorted, as the order of the languages counts.
std::vector<std::string> listsInDirectory(const std::string& directory, Error* error) {
    std::vector<std::string> names;
    std::error_code failure;
    for (std::filesystem::directory_iterator it(directory, failure), end; !failure && it != end;
         it.increment(failure))
        if (std::string name = it->path().filename(); isList(name)) names.push_back(name);
    std::ranges::sort(names);
    // A folder that breaks off while it is read still gives what was read of it.
    if (error && names.empty()) *error = whyNoLists(failure);
    return names;
}

std::vector<String> wordsOfFile(const std::string& path) {
    const auto bytes = detail::readFile(path);
    if (!bytes) return {};
    return wordsUsingDefaultSeparation(stringWithData(*bytes, UTF8StringEncoding));
}

/// Keys and, parallel to them, their lists.
struct Lists {
    std::vector<String> keys;
    std::vector<std::vector<String>> words;

    void addDirectory(const std::string& directory, Error* error) {
        for (const std::string& name : listsInDirectory(directory, error)) {
            keys.push_back(String::fromUTF8(name).substring({FilePrefix.size(), NotFound}));
            words.push_back(wordsOfFile(directory + '/' + name));
        }
    }
    /// Adds the words of the others to the languages that are here already.
    void merge(Lists&& others) {
        for (std::size_t i = 0; i < others.keys.size(); ++i) {
            const auto same = std::ranges::find(keys, others.keys[i]);
            if (same == keys.end()) {
                keys.push_back(others.keys[i]);
                words.push_back(std::move(others.words[i]));
            } else {
                std::vector<String>& list = words[static_cast<std::size_t>(same - keys.begin())];
                list.insert(list.end(), others.words[i].begin(), others.words[i].end());
            }
        }
    }
};

/// The languages in the order in which they are compared: English is asked first and wins
/// ties.
std::vector<std::size_t> orderOf(std::span<const String> keys) {
    std::vector<std::size_t> order(keys.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto english = std::ranges::find(keys, String(u"EN")) - keys.begin();
    const auto first = order.begin();
    // A rotation, and no swap: the others stay in the order of their names.
    if (english < std::ssize(keys)) std::rotate(first, first + english, first + english + 1);
    return order;
}

/// The race of the languages for a text. A language is known by the address of its key.
struct Race {
    const String* chosen = nullptr;  ///< whose count is kept, whether it wins or not
    const String* winner = nullptr;
    std::uint64_t best = 0;
    std::uint64_t previous = 0;  ///< the best before the winner came, not the second best
    std::uint64_t own = 0;

    // Equal counts change nothing, so the first of equals wins. A rival is what was best when the
    // winner came: later languages that come close do not make the answer less clear. Both depend
    // on the order of the languages, which is why it is fixed.
    void enter(const String* key, std::uint64_t count, bool mayWin) {
        if (key == chosen) own = count;
        if (!mayWin || count <= best) return;
        previous = best;
        best = count;
        winner = key;
    }
    void enterLanguages(const std::vector<String>& keys, const LanguageTally& tally) {
        for (std::size_t i = 0; i < keys.size(); ++i)
            enter(&keys[i], tally.languages[i].hits(), tally.languages[i].hasEnoughWords());
    }
    // Scripts come after the languages and must have more words than the best of these has hits.
    void enterScripts(const LanguageTally& tally) {
        const detail::WordCount all = tally.edgedByLetters();
        for (std::size_t i = 0; i < detail::NumberOfScripts; ++i)
            enter(&scriptKeys()[i], tally.scripts[i].words, tally.scripts[i].isHalfOf(all));
    }
    /// Whether the winner stands out among the words of the text and against a rival.
    bool isClear(const LanguageTally& tally, std::uint64_t rival) const {
        // The quotient is rounded down: below forty words any hit passes, and the margin decides
        // alone.
        return best > tally.all.words / WordsForOneHit && best >= rival + LeastMargin;
    }
};

}  // namespace

// All but the settings is constant once it is made, so that scans read it without a lock. It has
// one address for life, however the filter is moved: the settings and each race hold pointers to
// keys in it.
struct LanguageFilter::State {
    State(std::span<const String> given, std::span<const std::vector<String>> stopWords,
          bool ignore, LanguageRules rules = {})
        : order(orderOf(given)),
          keys(permuted(given)),
          ignoreUmlauts(ignore),
          looksAtAllWords(rules.words),
          index(listsOf(stopWords), ignore, rules.words ? 1 : LeastMinWordLen) {
        if (rules.any()) teller.emplace(rules, keys, index);
    }

    std::vector<String> permuted(std::span<const String> given) const {
        std::vector<String> result;
        for (std::size_t i : order) result.push_back(given[i]);
        return result;
    }
    std::vector<const std::vector<String>*> listsOf(
        std::span<const std::vector<String>> stopWords) const {
        std::vector<const std::vector<String>*> result;
        for (std::size_t i : order) result.push_back(&stopWords[i]);
        return result;
    }

    struct Settings {
        String language;
        const String* chosen = nullptr;  ///< its key, if it is known
        std::uint64_t minWordLen = LeastMinWordLen;
    };
    Settings settings() const {
        std::shared_lock lock(mutex);
        return current;
    }
    LanguageTally tallyOf(std::u16string_view text, const Settings& with) const {
        return detail::tallyOfText(text, index, keys.size(), with.minWordLen);
    }

    detail::ToldLanguage told(std::u16string_view text, const Settings& with) const {
        const bool isOwn = with.minWordLen > LeastMinWordLen || !looksAtAllWords;
        return teller->tell(text, isOwn ? with.minWordLen : 1);
    }

    const std::vector<std::size_t> order;
    const std::vector<String> keys;
    const bool ignoreUmlauts;
    const bool looksAtAllWords;
    const StopWordIndex index;
    std::optional<const detail::LanguageTeller> teller;  // if there are rules
    mutable std::shared_mutex mutex;                     // of the settings
    Settings current;
};

LanguageFilter::LanguageFilter(const Path& path, bool ignoreUmlauts, Error* error) {
    Lists lists;
    lists.addDirectory(path.bytes(), error);
    state_ = std::make_unique<State>(lists.keys, lists.words, ignoreUmlauts);
}

LanguageFilter::LanguageFilter(const Path& path, const LanguageRules& rules, Error* error) {
    Lists lists;
    lists.addDirectory(path.bytes(), error);
    if (rules.words && !lists.keys.empty()) {
        Lists ofRules;
        ofRules.addDirectory(path.bytes() + '/' + std::string(FolderOfRules), nullptr);
        lists.merge(std::move(ofRules));
    }
    state_ = std::make_unique<State>(lists.keys, lists.words, false, rules);
}

LanguageFilter::LanguageFilter(std::span<const String> keys,
                               std::span<const std::vector<String>> stopWords, bool ignoreUmlauts) {
    detail::require(stopWords.size() == keys.size(), "Classes/LanguageFilter", __LINE__,
                    "cnt==[keys count]");
    state_ = std::make_unique<State>(keys, stopWords, ignoreUmlauts);
}

LanguageFilter::LanguageFilter(LanguageFilter&&) noexcept = default;
LanguageFilter& LanguageFilter::operator=(LanguageFilter&&) noexcept = default;
LanguageFilter::~LanguageFilter() = default;

bool LanguageFilter::writeToDirectory(const Path& path) const {
    const std::string& directory = path.bytes();
    bool all = true;
    for (std::size_t i = 0; i < state_->keys.size(); ++i) {
        std::string lines;
        for (std::u16string_view word : state_->index.wordsOf(i)) {
            if (!lines.empty()) lines += '\n';
            lines += utf8(word);
        }
        const std::string name = std::string(FilePrefix) + state_->keys[i].utf8();
        all &= detail::writeFile(directory + '/' + name, Bytes(lines), true);
    }
    return all;
}

const std::vector<String>& LanguageFilter::languages() const { return state_->keys; }
bool LanguageFilter::ignoreUmlauts() const { return state_->ignoreUmlauts; }
String LanguageFilter::language() const { return state_->settings().language; }
std::size_t LanguageFilter::minWordLen() const { return state_->settings().minWordLen; }

void LanguageFilter::setLanguage(const String& key) {
    String language;
    const String* chosen = nullptr;
    if (key.length() == 2) {
        language = detail::unicode::upperCase(key);
        for (std::span<const String> keys :
             {std::span<const String>(scriptKeys()), std::span<const String>(state_->keys)})
            if (const auto found = std::ranges::find(keys, language); found != keys.end())
                chosen = &*found;
    }
    std::unique_lock lock(state_->mutex);
    state_->current.language = language;
    state_->current.chosen = chosen;
}

void LanguageFilter::setMinWordLen(std::size_t length) {
    std::unique_lock lock(state_->mutex);
    state_->current.minWordLen = std::max(length, LeastMinWordLen);
}

std::uint16_t LanguageFilter::ISOCodeForLanguage(std::u16string_view key) {
    if (key.size() != 2) return 0;
    return static_cast<std::uint16_t>(toUpper(key[0]) << 8 | (toUpper(key[1]) & 0xFF));
}

String LanguageFilter::languageOfText(std::u16string_view text) const {
    if (state_->keys.empty()) return {};
    if (state_->teller) return state_->told(text, state_->settings()).key;
    const LanguageTally tally = state_->tallyOf(text, state_->settings());
    Race race;
    race.enterLanguages(state_->keys, tally);
    race.enterScripts(tally);
    return race.winner && race.isClear(tally, race.previous) ? *race.winner : String();
}

String LanguageFilter::languageTagOfText(std::u16string_view text) const {
    detail::ToldLanguage told;
    if (state_->teller)
        told = state_->told(text, state_->settings());
    else
        told.key = languageOfText(text);
    if (told.key.isAbsent() || told.key == scriptKeys()[0]) return {};
    std::u16string tag(told.key.view());
    for (char16_t& unit : tag) unit = toLower(unit);
    if (!told.form.empty()) tag.append(u"-").append(told.form);
    return tag;
}

bool LanguageFilter::filterText(std::u16string_view text) const {
    const State::Settings settings = state_->settings();
    if (state_->teller) {
        const String key = state_->told(text, settings).key;
        return !settings.language.isAbsent() && !key.isAbsent() && key != settings.language;
    }
    if (!settings.chosen || state_->keys.empty()) return false;
    const LanguageTally tally = state_->tallyOf(text, settings);
    // The chosen language starts as the winner with nothing, so that a text without any hit is in
    // no other language; its own count is the rival.
    Race race{.chosen = settings.chosen, .winner = settings.chosen};
    race.enterLanguages(state_->keys, tally);
    race.enterScripts(tally);
    return race.winner != race.chosen && race.isClear(tally, race.own);
}

double LanguageFilter::stopWordRatioOfText(std::u16string_view text) const {
    const LanguageTally tally = state_->tallyOf(text, state_->settings());
    Race race;
    race.enterLanguages(state_->keys, tally);
    if (!race.winner) return 0;
    const auto listLength = static_cast<double>(
        state_->index.numberOfWords(static_cast<std::size_t>(race.winner - state_->keys.data())));
    // A winner has four words of its list in the text, so that neither number is 0.
    return static_cast<double>(race.best) / static_cast<double>(tally.all.words) /
           std::sqrt(listLength / PlainListLength);
}

}  // namespace velmo
