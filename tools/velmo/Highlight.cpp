#include "Highlight.h"

#include <velmocore/query/WildcardSearch.h>

namespace velmo::tool {

std::string highlighted(std::u16string_view text, std::span<const String> wildcards,
                        WildcardComparison comparison, Colors colors) {
    std::string line;
    std::uint64_t shown = 0;
    forEachWildcard(text, wildcards,
                    [&](Range hit) {
                        line += printable(text.substr(shown, hit.location - shown));
                        line += colors.hit(printable(text.substr(hit.location, hit.length)));
                        shown = hit.end();
                        return true;
                    },
                    {.comparison = comparison});
    return line + printable(text.substr(shown));
}

}  // namespace velmo::tool
