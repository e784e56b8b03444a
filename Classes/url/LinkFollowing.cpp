// How far a gatherer goes. Folders are compared as they are standardised, so that a way around by
// .. is no way out.
#include <velmocore/url/LinkFollowing.h>

#include <velmocore/url/URLPaths.h>
#include <velmocore/url/URLSchemes.h>

namespace velmo {

bool shouldFollowLink(const URL& link, std::int64_t mode, std::int64_t level, const URL& base) {
    switch (mode) {
        case FollowSameHost:
            return isHostEqualTo(link, base);
        case FollowSameFolder:
            return isHostEqualTo(link, base) &&
                   standardizedBaseDirectory(link) == standardizedBaseDirectory(base);
        case FollowSameFolders:
            return isHostEqualTo(link, base) && standardizedBaseDirectory(link).view().starts_with(
                                                    standardizedBaseDirectory(base));
        default:
            return shouldFollowLink(mode, level);
    }
}

bool shouldFollowLink(std::int64_t mode, std::int64_t level) {
    // Modes from FollowLevels on are counts: level 1 is what the first page links to.
    if (mode >= FollowLevels) return level <= mode - FollowEverything;
    return mode > FollowNothing;
}

}  // namespace velmo
