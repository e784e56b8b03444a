#pragma once

namespace velmo {

/// What a LanguageFilter goes by beyond stop words and five scripts. All of it is ours and off
/// where nothing else is said; a filter without any of it answers as ever. A plain value, for the
/// constructor of a filter; any thread.
///
///     const LanguageFilter filter(velmoResourcesDirectory(), LanguageRules::today());
///     filter.languageOfText(u"\u3053\u308C\u306F\u65E5\u672C\u8A9E\u3067\u3059");    // "JA"
///     filter.languageTagOfText(u"\u9019\u662F\u4E2D\u6587\u7684\u66F8");  // "zh-Hant"
///     filter.languageOfText(u"Lorem ipsum dolor sit amet, consectetur adipiscing elit.");  // absent
struct LanguageRules {
    /// A script that one language is written in names that language, whatever the words: Thai TH,
    /// Hangul KO, Kana JA, Han without Kana ZH. One that several share, as Cyrillic does, names
    /// none by itself, and neither does a mixture without a majority.
    bool scripts = false;
    /// Words of every script and length are looked up, also in the lists of the folder "web" below
    /// that of the filter, which are of 115 languages; what few languages have counts more, and
    /// the winner must lead the true second. Two different words can decide.
    bool words = false;
    /// Letters that a language is not written with count against it, as \u0142 does against all but
    /// Polish and its neighbours.
    bool letters = false;

    /// Whether any of them is on.
    [[nodiscard]] constexpr bool any() const noexcept { return scripts || words || letters; }

    /// All of them.
    [[nodiscard]] static constexpr LanguageRules today() noexcept {
        return {.scripts = true, .words = true, .letters = true};
    }
};

}  // namespace velmo
