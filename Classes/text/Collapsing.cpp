// Both forms, the string and the text in place, share one look for the first unit that changes:
// what stands before it is copied in one piece or not at all, and a text that is clean comes back
// itself.
#include <velmocore/text/Collapsing.h>

#include "text/SmallBuffer.h"
#include "text/UnitClasses.h"
#include "text/WhiteRuns.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// Calls the function with the members of the class.
template <class Function>
auto withMembers(RunClass runs, Function function) {
    if (runs == RunClass::Feeds) return function(Feeds{});
    return function(spacesAndFeeds(runs == RunClass::WhiteSpaces));
}

/// Hands what collapsing leaves of the text to the function: the units that stay as they are,
/// then the others. Does not call it if all stay.
template <class Function>
void collapse(View text, RunClass runs, char16_t replacement, Function function) {
    withMembers(runs, [&](const auto& member) {
        const char16_t* const end = text.data() + text.size();
        const char16_t* const first = firstToCollapse(text.data(), end, member, replacement);
        if (first == end) return;
        function(View(text.data(), first), [&](char16_t* out) {
            return static_cast<std::size_t>(copyCollapsing(first, end, out, member, replacement) -
                                            out);
        });
    });
}

}  // namespace

String stringByRemovingMultipleWhiteSpaces(const String& string, RunClass runs,
                                           char16_t replacement) {
    String result = string;
    collapse(string, runs, replacement, [&](View settled, const auto& writeRest) {
        StringBuilder out(string.length());
        out.append(settled);
        out.commit(writeRest(out.prepare(string.length() - settled.size())));
        result = out.finish();
    });
    return result;
}

void removeMultipleWhiteSpaces(std::u16string& text, RunClass runs, char16_t replacement) {
    collapse(text, runs, replacement, [&](View settled, const auto& writeRest) {
        // A buffer of its own, as the kernel writes whole blocks and must not overlap what it
        // reads.
        SmallBuffer<char16_t> rest(text.size() - settled.size());
        const std::size_t length = writeRest(rest.data());
        text.replace(settled.size(), std::u16string::npos, rest.data(), length);
    });
}

}  // namespace velmo
