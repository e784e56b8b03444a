#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// What a browser asks for. Texts are the bytes that it sent.
struct SiteRequest {
    std::string method = "GET";  ///< GET or HEAD; others are refused
    std::string target = "/";    ///< path and query, as "/?q=tea"
    std::string host = {};       ///< the value of its Host header
};

/// What it gets. Bodies are UTF-8.
struct SiteResponse {
    int status = 200;              ///< of HTTP
    std::string contentType = {};  ///< the value of its Content-Type header
    std::string body = {};         ///< made for HEAD too, which gets none of it
    /// Makes the rest of the body, which takes longer: what stands in body can be sent before. Null
    /// if there is no more.
    std::function<std::string()> rest = {};
    std::vector<std::pair<std::string_view, std::string>> headers = {};  ///< others
};

/// How a site answers.
struct SearchSiteOptions {
    /// The names under which the site is reached, as "127.0.0.1:8080": a request for another host
    /// is refused, so that no page of the web can ask through a name of its own. Empty allows all.
    std::vector<std::string> hosts = {};
    bool images = false;      ///< show thumbnails, whose servers then see who looks at them
    double seconds = 10;      ///< a search is cut off after so long, and says so
    std::size_t threads = 0;  ///< of a search; 0 for as many as the machine has
};

/// The pages of stores as a site for browsers: a search field, results with excerpts, counts by
/// language, host and year, the text of each page with its hits, and the results as a feed and as
/// JSON. Nothing needs a script, and nothing is loaded from elsewhere.
///
///     std::vector<PageStore> stores;
///     stores.push_back(PageStore::openForReading("pages.store"));
///     const SearchSite site(std::move(stores));
///     SiteResponse answer = site.respond({.target = "/?q=tea"});
///     answer.status;    // 200
///
/// All that comes from pages and from requests is text to a browser, and a strict content policy
/// stands behind that. No request changes anything. Any number of threads may ask at once; a
/// response, whose rest() may look at the stores, must not outlive the site.
class VELMO_API SearchSite {
public:
    /// Takes stores over that are open for reading.
    explicit SearchSite(std::vector<PageStore> stores, SearchSiteOptions options = {});
    SearchSite(SearchSite&&) noexcept;
    SearchSite& operator=(SearchSite&&) noexcept;
    ~SearchSite();

    /// GET and HEAD of "/", "/page", "/feed", "/search.json", "/style.css" and "/icon.svg"; all
    /// else gets a status that says why not, and so does a query of more than 1,000 UTF-16 units or
    /// 64 terms. Of a page 2,000,000 units of its text are shown, and 500 links.
    [[nodiscard]] SiteResponse respond(const SiteRequest& request) const;

private:
    struct State;
    std::unique_ptr<const State> state_;
};

}  // namespace velmo
