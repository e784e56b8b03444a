#include <velmocore/text/StringCreation.h>

#include <algorithm>

namespace velmo {

String stringWithCharacter(char16_t unit) { return std::u16string_view(&unit, 1); }

String stringWithComponents(std::span<const String> components) {
    const auto end = std::ranges::find_if(components, &String::isAbsent);
    // The list ends at the first absent string, so that callers can leave out parts they do not
    // have.
    if (end == components.begin()) return {};
    StringBuilder out;
    out.append(*components.begin());
    for (auto component = components.begin() + 1; component != end; ++component) {
        out.append(u'.');
        out.append(*component);
    }
    return out.finish();
}

}  // namespace velmo
