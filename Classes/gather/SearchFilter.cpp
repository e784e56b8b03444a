#include "gather/SearchFilter.h"

#include <algorithm>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

std::string lowered(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return ascii::toLower(c); });
    return lower;
}

}  // namespace

std::string hostOfAddress(std::string_view address) {
    const std::size_t scheme = address.find("://");
    if (scheme == address.npos) return {};
    std::string_view host = address.substr(scheme + 3);
    host = host.substr(0, host.find_first_of("/?#"));
    if (const std::size_t user = host.rfind('@'); user != host.npos) host.remove_prefix(user + 1);
    const bool isIPv6 = host.starts_with('[');
    host = host.substr(0, isIPv6 ? host.find(']') + 1 : host.find(':'));
    return lowered(host);
}

std::optional<Date> dateOfPage(const StoredPage& page) {
    const std::optional<Date> own = page.date();
    return own ? own : page.fetched();
}

SearchFilter::SearchFilter(const PageSearchOptions& options)
    : language_(lowered(options.language.utf8())),
      host_(lowered(options.host.utf8())),
      since_(options.since),
      before_(options.before) {}

bool SearchFilter::accepts(const StoredPage& page) const {
    return hasLanguage(page) && hasHost(page) && hasDate(page);
}

bool SearchFilter::hasLanguage(const StoredPage& page) const {
    return language_.empty() || lowered(page.language()) == language_;
}

bool SearchFilter::hasHost(const StoredPage& page) const {
    if (host_.empty()) return true;
    const std::string host = hostOfAddress(page.address());
    const bool isBelow = host.ends_with(host_) && host.size() > host_.size() &&
                         host[host.size() - host_.size() - 1] == '.';
    return host == host_ || isBelow;
}

bool SearchFilter::hasDate(const StoredPage& page) const {
    if (!since_ && !before_) return true;
    const std::optional<Date> date = dateOfPage(page);
    return date && (!since_ || *date >= *since_) && (!before_ || *date < *before_);
}

}  // namespace velmo::detail
