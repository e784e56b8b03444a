// What the thumbnails of links are told by. To add a row, put it on a line of its own and mend
// the count in the comment and the assertion. The order makes a difference in titlePrefixes() only.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

// The endings of images that are no thumbnails, by the kind of image. They are compared
// without regard to case. Digits are taken off a GIF's or a JPEG's URL first, and a URL without
// any / gets one in front, so that a row with a / in front stands for whole names.

std::span<const std::string_view> thumbnailGifs() noexcept;
std::span<const std::string_view> thumbnailJpegs1() noexcept;
/// Thumbnails still, if the tag says that they are large enough.
std::span<const std::string_view> thumbnailJpegs2() noexcept;
std::span<const std::string_view> thumbnailPngs() noexcept;

/// What the URLs of GIFs hold that only count who looks, in capitals.
std::span<const std::string_view> trackerGifs() noexcept;

/// What the host of a search engine's page has in it, in capitals.
std::span<const std::string_view> searchPageHosts() noexcept;

/// How links begin that run a script to show an image, in capitals. The URL of the image comes
/// next, up to a single quote.
std::span<const std::string_view> scriptLinks() noexcept;

/// What programs put in front of a title; the first that fits is cut.
std::span<const std::u16string_view> titlePrefixes() noexcept;

}  // namespace velmo::detail
