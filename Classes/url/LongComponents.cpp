// Names that are too long for a file system are cut, and the checksum of the whole name keeps
// those apart that begin alike. It must be the same on every machine and for good: mirrors find
// their files again by it.
#include "url/LongComponents.h"

#include <fmt/format.h>

#include <velmocore/text/Checksums.h>

#include "platform/Surrogates.h"
#include "text/PathParts.h"

namespace velmo::detail {

String fittingComponent(const String& component, std::size_t room) {
    // In units; the difference is the eight digits.
    constexpr std::size_t Longest = 250, Kept = 242;
    if (component.length() + room <= Longest) return component;
    std::u16string result(component.view().substr(0, Kept - std::min(room, Kept)));
    // No file name can hold half a surrogate pair.
    if (!result.empty() && isHighSurrogate(result.back())) result.pop_back();
    for (char digit : fmt::format("{:08x}", crc32(component.view())))
        result += static_cast<char16_t>(digit);
    return result;
}

String pathOfComponents(std::u16string_view folder, std::span<const String> components) {
    std::u16string path(detail::withoutTrailingSlashes(folder));
    for (const String& component : components) {
        if (!path.empty() && !path.ends_with(u'/')) path += u'/';
        path += component;
    }
    return path;
}

}  // namespace velmo::detail
