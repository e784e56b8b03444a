// Components are words turned round: of the runs of RunScan.h those of separators count, as each
// of them ends a component. Only a stretch at the end of the text has none. All forms are small
// callables over one scan.
#include <velmocore/words/Components.h>

#include <string>

#include <velmocore/words/Separators.h>

#include "words/RunScan.h"

namespace velmo {
namespace {

using detail::Run;

/// Calls component(start, separators, end) for each component: its text is what stands
/// before the separators.
template <class Component>
void scanComponents(std::u16string_view text, const CharacterSetRep* separators,
                    Component component) {
    std::size_t start = 0;
    detail::forEachRun(text, separators ? *separators : defaultComponentSeparators(),
                       [&](const Run& run) {
                           // A text that begins with separators so has a first component of
                           // nothing else, which those that count and those that give ranges keep.
                           if (run.isMember) {
                               component(start, run.start, run.end);
                               start = run.end;
                           } else if (run.end == text.size()) {
                               component(run.start, run.end, run.end);
                           }
                           return true;
                       });
}

template <class Handler>
std::uint64_t parseComponents(std::u16string_view text, const CharacterSetRep* separators,
                              Handler handler) {
    std::uint64_t calls = 0;
    scanComponents(text, separators, [&](std::size_t start, std::size_t, std::size_t end) {
        handler(Range{start, end - start});
        ++calls;
    });
    return calls;
}

}  // namespace

std::vector<Range> componentsOfCharacters(std::u16string_view characters,
                                          const CharacterSetRep* separators) {
    std::vector<Range> ranges;
    parseComponents(characters, separators, [&](Range component) { ranges.push_back(component); });
    return ranges;
}

std::size_t parseComponentsWithHandler(std::u16string_view text, WordHandler handler,
                                       const CharacterSetRep* separators) {
    if (!handler) return 0;
    return parseComponents(text, separators, [&](Range component) { handler(text, component); });
}

std::size_t parseMutableComponentsWithHandler(std::u16string_view text, MutableWordHandler handler,
                                              const CharacterSetRep* separators) {
    if (!handler) return 0;
    // The text itself is scanned on: what the handler writes into the copy moves no component.
    std::u16string copy(text);
    return parseComponents(text, separators, [&](Range component) { handler(copy, component); });
}

std::vector<String> componentsUsingSeparators(const String& text, const ComponentOptions& options) {
    std::vector<String> components;
    components.reserve(text.length() / 16);
    scanComponents(text, options.separators,
                   [&](std::size_t start, std::size_t separators, std::size_t end) {
                       const std::size_t last = options.withSeparators ? end : separators;
                       // Without its separators a component may have no units; an empty string
                       // would say nothing.
                       if (last > start)
                           components.push_back(text.substring({start, last - start}));
                   });
    return components;
}

std::size_t numberOfComponentsUsingSeparators(std::u16string_view text,
                                              const CharacterSetRep* separators) {
    return parseComponents(text, separators, [](Range) {});
}

std::size_t numberOfComponentsInRange(std::u16string_view text, Range range,
                                      const CharacterSetRep* separators) {
    return numberOfComponentsUsingSeparators(detail::unitsInRange(text, range), separators);
}

ParagraphCount numberOfParagraphs(std::u16string_view text, Range range, std::uint64_t minLen) {
    return {numberOfComponentsInRange(text, range, &defaultLineSeparators()),
            numberOfWordsInRange(text, range, nullptr, minLen)};
}

}  // namespace velmo
