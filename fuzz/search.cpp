// The searches for a pattern against one that tries every start: a pattern that the input holds
// somewhere, or one beside it, in a text that repeats itself as the first bytes say.
#include <algorithm>

#include <velmocore/text/FastSearch.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Replacing.h>
#include <velmocore/text/StringRanges.h>

#include "Input.h"
#include "text/UnitFold.h"

using namespace velmo;
using fuzz::require;
using View = std::u16string_view;

namespace {

template <class Fold>
bool standsAt(View text, std::size_t start, View sought, const Fold& fold) {
    return start + sought.size() <= text.size() &&
           detail::sameUnits(text.data() + start, sought.data(), sought.size(), fold);
}

template <class Fold>
void compare(View text, View sought, Case letterCase, const Fold& fold) {
    std::uint64_t first = NotFound, last = NotFound;
    std::size_t count = 0, free = 0;
    for (std::size_t i = 0; i < text.size() && !sought.empty(); ++i) {
        if (!standsAt(text, i, sought, fold)) continue;
        first = std::min<std::uint64_t>(first, i);
        last = i;
        if (i < free) continue;
        ++count;
        free = i + sought.size();
    }
    require(containsSubstring(text, sought, letterCase) == (first != NotFound));
    require(countSubstring(text, sought, letterCase) == count);
    require(findString(text, sought, {0, 0}, {.letterCase = letterCase}).location == first);
    require(findString(text, sought, {text.size(), 0},
                       {.letterCase = letterCase, .direction = Direction::Backward})
                .location == last);
    std::u16string replaced(text);
    require(replaceString(replaced, sought, u"", letterCase) == count);
    require(replaced.size() == text.size() - count * sought.size());
    const auto options = letterCase == Case::Sensitive ? DefaultSearch : CaseInsensitiveSearch;
    require(findStrings(text, {String(sought)}, options | LiteralSearch) == first);
    // By characters, fewer hits count.
    const std::uint64_t whole = findStrings(text, {String(sought)}, options);
    if (std::ranges::all_of(text, [](char16_t unit) { return unit < 0x300; }) &&
        std::ranges::all_of(sought, [](char16_t unit) { return unit < 0x300; }))
        require(whole == first);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    const String units = fuzz::unitsOf(data + 3, std::min<std::size_t>(size - 3, 600));
    std::u16string text;
    for (unsigned times = 1 + data[0] % 8; times > 0; --times) text += units.view();
    const std::size_t start = std::min<std::size_t>(data[1], text.size());
    std::u16string sought(text.substr(start, data[2]));
    compare(text, sought, Case::Sensitive, detail::NoFold{});
    compare(text, sought, Case::Insensitive, detail::CaseFold{});
    if (!sought.empty()) sought[sought.size() / 2] ^= 0x20;
    compare(text, sought, Case::Sensitive, detail::NoFold{});
    compare(text, sought, Case::Insensitive, detail::CaseFold{});
    return 0;
}
