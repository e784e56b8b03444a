// Where an item leads to, out of what its feed says of that.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

/// The link of an item by its guid and link, both of which may be empty. It is a part of one of
/// them, unless it had to be joined to the base; then it stands in joined.
/// @param joinsAll  whether links without a scheme are joined that do not begin with a / too
std::u16string_view linkOfItem(std::u16string_view guid, std::u16string_view link, const URL& base,
                               bool joinsAll, String& joined);

}  // namespace velmo::detail
