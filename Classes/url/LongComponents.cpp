#include "url/LongComponents.h"

#include <fmt/format.h>

#include <velmocore/text/Checksums.h>

namespace velmo::detail {

String fittingComponent(const String& component, std::size_t room) {
    constexpr std::size_t Longest = 250, Kept = 242;
    if (component.length() + room <= Longest) return component;
    std::u16string result(component.view().substr(0, Kept - std::min(room, Kept)));
    // No file name can hold half a surrogate pair.
    if (!result.empty() && (result.back() & 0xFC00) == 0xD800) result.pop_back();
    for (char digit : fmt::format("{:08x}", crc32(component.view())))
        result += static_cast<char16_t>(digit);
    return result;
}

}  // namespace velmo::detail
