#include "gather/Frontier.h"

#include <velmocore/storage/Digests.h>
#include <velmocore/url/FileKinds.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLSchemes.h>
#include <velmocore/url/URLVariants.h>

namespace velmo::detail {
namespace {

/// In units. Longer ones are made by sites that run in circles.
constexpr std::size_t LongestURL = 2048;

/// What is not worth a request, as its address tells that it is no page.
bool isWorthLoading(const URL& url) {
    return !isBinaryFileType(url.pathExtension()) && !stringURLIsAdvertisement(url);
}

}  // namespace

PageID idOfKey(const String& key) {
    PageID id = 0;
    const auto digest = SHA1Digest(key.utf8());
    for (std::size_t i = 0; i < sizeof id; ++i) id = id << 8 | digest[i];
    return id;
}

Frontier::Frontier(const std::vector<URL>& starts, const SiteOptions& options)
    : options_(options), bases_(starts) {}

URL Frontier::cleaned(const URL& url) {
    if (!isHTTPURL(url) || url.host().isEmpty()) return {};
    if (url.absoluteString().length() > LongestURL) return {};
    return URLWithoutAnchor(URLWithoutCredentials(url));
}

PageID Frontier::idOf(const URL& url) const { return idOfKey(pageKey(url, options_.keys)); }

bool Frontier::mayFollow(const URL& url, std::uint32_t level, std::uint32_t start) const {
    return level <= options_.depth &&
           shouldFollowLink(url, options_.follow, level, bases_[start]) && isWorthLoading(url);
}

std::optional<PageID> Frontier::add(const FrontierEntry& entry) {
    const PageID id = idOf(entry.url);
    if (seen_.contains(id)) return std::nullopt;
    if (waiting_.size() >= options_.waiting) {
        ++dropped_;
        return std::nullopt;
    }
    seen_.insert(id);
    waiting_.emplace(id, entry);
    return id;
}

PageID Frontier::restore(const FrontierEntry& entry) {
    const PageID id = idOf(entry.url);
    seen_.insert(id);
    waiting_.insert_or_assign(id, entry);
    return id;
}

void Frontier::setBase(std::uint32_t start, const URL& base) {
    if (start < bases_.size()) bases_[start] = base;
}

}  // namespace velmo::detail
