// What error pages say. Case counts nowhere; of wordings that are compared over a set, only the
// units of that set do. To add one, put it on a line of its own and mend the count.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

/// Wordings that the title or text of an error page begins with, over letters and digits, or
/// that its title ends in.
std::span<const std::u16string_view> errorPageTitles() noexcept;

/// Whole texts of pages that a site shows to those who ask too often; over letters.
std::span<const std::u16string_view> pageLoadNotices() noexcept;

/// Endings of the URLs of error pages.
std::span<const std::u16string_view> errorPageEndings() noexcept;

/// What the pages at those URLs say, in lower case.
std::span<const std::string_view> missingPageWordings() noexcept;

}  // namespace velmo::detail
