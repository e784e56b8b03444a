// Words, components, shortening and the language filter on any text. The first byte chooses how
// a text is cut. Words and separators make up the text again, counts are those of the lists,
// what is shortened is a beginning of the text, and a filter made of the text's own words
// answers only with its own languages, also when it is read from files.
#include <velmocore/platform/Resources.h>
#include <velmocore/words/Components.h>
#include <velmocore/words/Ellipsizing.h>
#include <velmocore/words/LanguageFilter.h>
#include <velmocore/words/Separators.h>
#include <velmocore/words/Words.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

String joined(const std::vector<String>& parts) {
    StringBuilder out;
    for (const String& part : parts) out.append(part.view());
    return out.finish();
}

void cut(const String& text, std::uint8_t choice) {
    const WordOptions options{.withSeparators = choice % 2 == 1,
                              .minLen = choice / 2u % 4,
                              .wildcard = choice / 8 % 2 == 1};
    const std::vector<Range> ranges = wordsOfCharacters(text, options);
    require(ranges.size() == numberOfWordsOfCharacters(text, options));
    require(ranges.size() == wordsUsingSeparators(text, options).size());
    for (const Range range : ranges) require(withoutSeparatorMark(range).end() <= text.length());
    if (!text.isEmpty() && options.minLen <= 1)
        require(joined(wordsUsingSeparators(text, {.withSeparators = true})) == text);

    require(componentsOfCharacters(text).size() == numberOfComponentsUsingSeparators(text));
    if (!text.isEmpty()) require(joined(componentsUsingDefaultSeparation(text)) == text);
}

void shorten(const String& text, std::uint64_t n) {
    for (const String& shorter :
         {stringByEllipsizingAfterNWords(text, n), stringByEllipsizingAfterNCharacters(text, n)}) {
        if (shorter.isIdenticalTo(text)) continue;
        const std::u16string_view kept = shorter.view().substr(0, shorter.length() - 3);
        require(shorter.view().ends_with(u"...") && text.view().starts_with(kept));
    }
    const String lines = stringByEllipsizingNLines(text, n, n);
    require(n == 0 || static_cast<std::uint64_t>(std::ranges::count(lines.view(), u'\n')) < n);
}

void tellLanguage(const String& text, bool ignoreUmlauts) {
    const std::vector<String> words = wordsUsingDefaultSeparation(text);
    const auto half = words.begin() + static_cast<std::ptrdiff_t>(words.size() / 2);
    const std::vector<String> keys = {u"XA", u"XB"};
    const std::vector<std::vector<String>> lists = {{words.begin(), half}, {half, words.end()}};
    LanguageFilter filter(keys, lists, ignoreUmlauts);
    const String language = filter.languageOfText(text);
    const bool isScript = !std::ranges::count(filter.languages(), language);
    require(language.isAbsent() || !isScript || language.length() == 2);
    filter.setLanguage(u"xa");
    require(!filter.filterText(text) || language != u"XA");
    require(filter.stopWordRatioOfText(text) >= 0);
}

/// Each choice of rules over the lists that are shipped.
void tellLanguageByRules(const String& text, std::uint8_t choice) {
    static const auto filters = [] {
        std::vector<LanguageFilter> made;
        for (unsigned i = 0; i < 8; ++i)
            made.emplace_back(velmoResourcesDirectory(),
                              LanguageRules{i % 2 == 1, i / 2 % 2 == 1, i / 4 == 1});
        return made;
    }();
    const LanguageFilter& filter = filters[choice % filters.size()];
    const String key = filter.languageOfText(text), tag = filter.languageTagOfText(text);
    require(key.isAbsent() ? tag.isAbsent() : choice % 8 == 0 || tag.length() >= key.length());
    require(key != u"LA" || choice % 8 == 0);
}

/// The bytes as a list that is read from a file.
void readList(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path folder = [] {
        std::string name = (std::filesystem::temp_directory_path() / "velmo-lists-XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr);
        return std::filesystem::path(name);
    }();
    std::ofstream(folder / "StopWordsXA", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const LanguageFilter filter(folder.string());
    require(filter.languages().size() == 1);
    filter.languageOfText(String::fromUTF8({reinterpret_cast<const char*>(data), size}));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const String text = fuzz::unitsOf(data + 1, size - 1);
    cut(text, data[0]);
    shorten(text, data[0] / 8);
    tellLanguage(text, data[0] % 2 == 1);
    tellLanguageByRules(text, data[0]);
    if (data[0] % 16 == 0) readList(data + 1, size - 1);
    return 0;
}
