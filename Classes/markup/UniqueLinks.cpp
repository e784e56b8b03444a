// Places in the list are looked up, and not strings: a link that the list has already is found without
// making a String of it, and most links of a page come more than once.
#include "markup/UniqueLinks.h"

#include "platform/UnitHash.h"
#include "text/ByteScan.h"
#include "text/SmallBuffer.h"

namespace velmo::detail {
namespace {

constexpr std::size_t LinksOfAPage = 64;  ///< for which there is room from the start

}  // namespace

UniqueLinks::UniqueLinks(std::vector<String>& links)
    : links_(links), places_(LinksOfAPage), seed_(hashSeed()) {}

std::size_t UniqueLinks::add(std::u16string_view link) {
    if (links_.empty()) links_.reserve(LinksOfAPage);
    const auto isSame = [&](std::size_t place) { return links_[place] == link; };
    const std::size_t place = places_.findOrAdd(hashOfUnits(link, seed_), links_.size(), isSame);
    if (place == links_.size()) links_.emplace_back(link);
    return place;
}

std::size_t UniqueLinks::add(std::string_view ascii) {
    SmallBuffer<char16_t> units(ascii.size());
    scan::widen(ascii, units.data());
    return add({units.data(), units.size()});
}

}  // namespace velmo::detail
