// The hosts that search engines have. How to add a row: see url/ClassificationTables.h.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

/// Hosts of search engines, directories and portals. A row stands for itself, anywhere in a
/// host that was folded to lower case.
std::span<const std::string_view> searchEngineHosts() noexcept;

/// A host of a search engine that serves other things too, and what the URLs of those
/// hold; nothing if all of its URLs do. Both in capitals.
struct HostPage {
    std::string_view host, fragment;
};
std::span<const HostPage> googlePages() noexcept;
std::span<const HostPage> yahooPages() noexcept;

}  // namespace velmo::detail
