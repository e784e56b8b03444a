#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/words/LanguageRules.h>

namespace velmo {

/// Tells in which language a text is written, by the stop words it holds. Languages are
/// named by keys of two upper-case letters, as "EN". Five results need no words but only a script:
/// RU for Cyrillic, AR for Arabic, HE for Hebrew, EL for Greek and ** for any other that is not
/// Latin.
///
///     LanguageFilter filter(velmoResourcesDirectory());
///     const String text = u"Der Hund ist nicht im Haus, und die Katze war auch nicht bei uns.";
///     filter.languageOfText(text);           // DE
///     filter.languageOfText(u"Nine");        // absent; it is not clear
///     filter.setLanguage(u"EN");
///     filter.filterText(text);               // true; it is in another language
///
/// A word counts if it has minWordLen() units at least and begins and ends with a letter. A
/// language wins by more hits than those before it in languages(), of at least four
/// different words; a script by more words than that, and half of all words or of their
/// units. The answer stands if the hits are more than one word in forty and exceed the best
/// before by three.
///
/// The words never change; a scan keeps its state on its own stack and allocates nothing for
/// a word. Any number of threads may use one filter at once: language and minimum length,
/// which can be set, are read once a scan.
class VELMO_API LanguageFilter {
public:
    LanguageFilter() = delete;  // there is nothing to tell languages by

    /// Reads a folder of lists: UTF-8 files, named "StopWords" and the key, with words in
    /// lower case between any of defaultWordSeparators(). The key "Gen" is skipped, and a
    /// file that cannot be read as UTF-8 makes a language without words. With ignoreUmlauts, words
    /// are compared without diacritics.
    ///
    /// A folder without lists makes a filter that knows no language. The error then tells why:
    /// the folder cannot be read (domain u"posix"), or holds no list (u"velmo.language", 1).
    explicit LanguageFilter(const Path& directory, bool ignoreUmlauts = false,
                            Error* error = nullptr);

    /// Keys and, parallel to them, lists of words in lower case; the program is stopped if
    /// there are not as many of both. A word of less than three units, or with an apostrophe
    /// or a full stop, is left out. EN is moved to the front, if it is there.
    LanguageFilter(std::span<const String> keys, std::span<const std::vector<String>> stopWords,
                   bool ignoreUmlauts = false);

    /// Ours: the same folder under rules. Their words are read from its folder "web" besides,
    /// if there is one; languages() then has those languages too. Under any rule,
    /// languageOfText() gives keys of two letters, or of three where there are none of two, and
    /// never **; and filterText() is true where that is another than the chosen one.
    explicit LanguageFilter(const Path& directory, const LanguageRules& rules,
                            Error* error = nullptr);

    LanguageFilter(LanguageFilter&&) noexcept;
    LanguageFilter& operator=(LanguageFilter&&) noexcept;
    ~LanguageFilter();

    /// Writes each list as "StopWords" and its key, one word a line, sorted. False if one of
    /// them could not be written.
    bool writeToDirectory(const Path& directory) const;

    /// The keys of all lists.
    [[nodiscard]] const std::vector<String>& languages() const VELMO_LIFETIME;
    /// Whether words are compared without diacritics.
    [[nodiscard]] bool ignoreUmlauts() const;

    /// The chosen language; absent if none.
    [[nodiscard]] String language() const;
    /// Chooses a language or a script by its key, in any case. A key that is not two units
    /// long chooses none; one that is unknown is kept, but filters nothing.
    void setLanguage(const String& key);

    /// The two upper-case letters of a key as one number: 0x454E for EN. 0 if it is not two units
    /// long.
    [[nodiscard]] static std::uint16_t ISOCodeForLanguage(std::u16string_view key);
    /// That number of the chosen language, and of a text's; 0 if there is none.
    [[nodiscard]] std::uint16_t ISOLanguageCode() const { return ISOCodeForLanguage(language()); }
    [[nodiscard]] std::uint16_t ISOLanguageCodeOfText(std::u16string_view text) const {
        return ISOCodeForLanguage(languageOfText(text));
    }

    /// The shortest word that is looked at, 3 at first and never less.
    [[nodiscard]] std::size_t minWordLen() const;
    void setMinWordLen(std::size_t length);

    /// The key of the text's language; absent if it is not clear, as for an empty text.
    [[nodiscard]] String languageOfText(std::u16string_view text) const;

    /// Ours: the same as a tag of BCP 47, as the lang of pages has it, with the form of writing
    /// where it tells something: "de", "zh-Hant", "zh-Hans", "sr-Latn". Absent also for **.
    [[nodiscard]] String languageTagOfText(std::u16string_view text) const;

    /// Whether the text is clearly in another language than the chosen one. False if none is
    /// chosen.
    [[nodiscard]] bool filterText(std::u16string_view text) const;

    /// The share of stop words of the language that has most of them in the text, divided by
    /// the square root of its list's length over 750, so that long lists and short ones
    /// compare. 0 if no language has enough.
    [[nodiscard]] double stopWordRatioOfText(std::u16string_view text) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace velmo
