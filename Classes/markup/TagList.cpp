#include "markup/TagList.h"

#include "markup/TagScan.h"

namespace velmo::detail {

template <class Unit>
void TagListOf<Unit>::keepTags() {
    // Pages have a tag for every forty units or so; one that has more makes room once or twice.
    constexpr std::size_t UnitsOfATag = 48;
    tags_.reserve(text_.size() / UnitsOfATag + 1);
    const auto keep = [this](const AnyTag& tag) {
        tags_.push_back(kept(tag));
        return false;
    };
    scanTags(text_, keep, web_);
}

template <class Unit>
void TagListOf<Unit>::scan(Handler handler) const {
    scanTags(text_, handler, web_);
}

template class TagListOf<char16_t>;
template class TagListOf<char>;

}  // namespace velmo::detail
