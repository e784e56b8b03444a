#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/words/Words.h>

namespace velmo {

// A component is a stretch that ends with its separators: a clause, a sentence, a line. A
// run of separators is one end. A stretch without separators at the end of the text is one
// more component. A null set stands for defaultComponentSeparators(). All locations and
// lengths count UTF-16 units. An empty or absent text has no components. Any thread may call these.
//
//     componentsUsingDefaultSeparation(u"Yes. No?! Perhaps");    // Yes.,  No?!,  Perhaps
//     numberOfComponentsUsingSeparators(u"Yes, no. Perhaps", &defaultSentenceSeparators());    // 2

/// The components in their order; each range holds its separators.
[[nodiscard]] VELMO_API std::vector<Range> componentsOfCharacters(
    std::u16string_view characters, const CharacterSetRep* separators = nullptr);

/// Calls the handler for each component and gives the number of calls; 0 if there is no
/// handler. An exception out of the handler passes through.
VELMO_API std::size_t parseComponentsWithHandler(std::u16string_view text, WordHandler handler,
                                                 const CharacterSetRep* separators = nullptr);

/// The same on a private copy, which the handler may change; where the components stand does
/// not change with it.
VELMO_API std::size_t parseMutableComponentsWithHandler(
    std::u16string_view text, MutableWordHandler handler,
    const CharacterSetRep* separators = nullptr);

/// How a text is cut into strings.
struct ComponentOptions {
    const CharacterSetRep* separators = nullptr;  ///< null is defaultComponentSeparators()
    /// Whether a component keeps its separators. Without them empty components are left out.
    bool withSeparators = true;
};

/// The components as strings; a text that is one component comes back as it is.
[[nodiscard]] VELMO_API std::vector<String> componentsUsingSeparators(
    const String& text, const ComponentOptions& options = {});
/// The same in another collection, such as a std::set.
template <class Collection>
[[nodiscard]] Collection componentsUsingSeparators(const String& text,
                                                   const ComponentOptions& options = {}) {
    Collection components;
    for (String& component : componentsUsingSeparators(text, options))
        components.insert(components.end(), std::move(component));
    return components;
}
/// By defaultComponentSeparators(), which each keeps.
[[nodiscard]] inline std::vector<String> componentsUsingDefaultSeparation(const String& text) {
    return componentsUsingSeparators(text);
}

/// How many they are; makes no strings.
[[nodiscard]] VELMO_API std::size_t numberOfComponentsUsingSeparators(
    std::u16string_view text, const CharacterSetRep* separators = nullptr);
/// The range is cut at the end of the text; one that begins there, or no range, has none.
[[nodiscard]] VELMO_API std::size_t numberOfComponentsInRange(
    std::u16string_view text, Range range, const CharacterSetRep* separators = nullptr);
/// The same under another name.
[[nodiscard]] inline std::size_t numberOfComponentsOfCharacters(
    std::u16string_view characters, const CharacterSetRep* separators = nullptr) {
    return numberOfComponentsUsingSeparators(characters, separators);
}

/// What numberOfParagraphs() counts.
struct ParagraphCount {
    std::size_t paragraphs = 0;  ///< line ends at the start count as one too
    std::size_t words = 0;       ///< in all of them
};

/// The paragraphs of a part of the text, which are its components by defaultLineSeparators(),
/// so that empty lines between them do not count, and its words of at least minLen units. The range
/// is cut at the end of the text.
[[nodiscard]] VELMO_API ParagraphCount numberOfParagraphs(std::u16string_view text, Range range,
                                                          std::size_t minLen = 1);

}  // namespace velmo
