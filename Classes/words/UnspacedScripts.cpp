// Whether a unit joins the one before it is a question of its category, not of its script; the
// few that no category tells stand in the tables.
#include "words/UnspacedScripts.h"

#include <velmocore/words/Separators.h>

#include "platform/Unicode.h"
#include "words/RunScan.h"
#include "words/UnspacedScriptTables.h"

namespace velmo::detail {
namespace {

void addAll(CharacterSetRep& set, std::span<const UnitRange> ranges) {
    for (const auto& [first, last] : ranges)
        for (unsigned unit = first; unit <= last; ++unit) set.add(static_cast<char16_t>(unit));
}

UnspacedScripts makeUnspacedScripts() {
    UnspacedScripts scripts;
    addAll(scripts.units, unspacedUnits());
    addAll(scripts.joinsBefore, unspacedJoinsBefore());
    addAll(scripts.joinsBehind, unspacedJoinsBehind());
    scripts.sentenceEnds = defaultSentenceSeparators();
    addAll(scripts.sentenceEnds, unspacedSentenceEnds());
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        if (unicode::categoriesOf(static_cast<char16_t>(unit)) & unicode::Mark)
            scripts.joinsBefore.add(static_cast<char16_t>(unit));
    return scripts;
}

}  // namespace

const UnspacedScripts& unspacedScripts() {
    static const UnspacedScripts scripts = makeUnspacedScripts();
    return scripts;
}

bool hasUnspacedScript(std::u16string_view text) {
    bool has = false;
    forEachBlock(text, unspacedScripts().units,
                 [&](std::size_t, std::uint64_t members, std::size_t) {
                     has = members != 0;
                     return !has;
                 });
    return has;
}

}  // namespace velmo::detail
