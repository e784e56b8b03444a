#include <velmocore/text/ConfigText.h>

#include <velmocore/text/Comparison.h>

#include "platform/Unicode.h"
#include "text/LeadingInteger.h"
#include "text/LineScan.h"
#include "text/Trim.h"

namespace velmo {

using namespace detail;
using View = std::u16string_view;

std::vector<String> configLines(View string) {
    std::vector<String> result;
    forEachLine(string.data(), string.data() + string.size(),
                [&](const char16_t* begin, const char16_t* end) {
                    // The line end goes with the white space.
                    const View line =
                        trimmedView(View(begin, end), Ends::Both, spacesAndFeeds(true));
                    // A setting has a key and something behind it, which one unit cannot be.
                    if (line.size() >= 2 && line.front() != u'#') result.emplace_back(line);
                });
    return result;
}

String configValueForKey(View line, View key) {
    if (line.size() <= key.size() || !hasPrefixNoCase(line, key)) return {};
    const View rest = line.substr(key.size());
    // Else the key is only the start of a longer one.
    if (!whiteCharacterSetRep().contains(rest.front())) return {};
    const View value = trimmedView(rest, Ends::Both, unicode::isWhiteSpaceOrNewline);
    return value.empty() ? String() : String(value);
}

std::uint64_t typedValueForKeys(View string, std::span<const View> keys) {
    for (std::size_t i = 0; i < keys.size() && keys[i].data(); ++i)
        if (isEqualToStringNoCase(string, keys[i])) return i;
    return NotFound;
}

bool boolValue(View string) {
    return leadingInteger(string) != 0 ||
           typedValueForKeys(string, {u"true", u"yes", u"on"}) != NotFound;
}

}  // namespace velmo
