#include "gather/SiteLoading.h"

#include <velmocore/net/Networks.h>
#include <velmocore/net/UserAgents.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/text/Finding.h>
#include <velmocore/url/DownloadStatus.h>
#include <velmocore/url/MIMETypes.h>
#include <velmocore/url/URLVariants.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>

#include "net/Redirects.h"

namespace velmo::detail {
namespace {

/// As many as the thread of downloads has under way at once.
constexpr std::size_t MostHosts = 64;
/// Of a robots.txt, which is read no further than RobotsRules::LargestFile; a server that sends
/// more than this is not one to ask for pages.
constexpr std::size_t MostRulesBytes = std::size_t{1} << 23;

constexpr char16_t WantedTypes[] =
    u"text/html, application/xhtml+xml, application/rss+xml, application/atom+xml, "
    u"application/xml;q=0.9, text/*;q=0.8, */*;q=0.1";

/// Types that servers give to what they do not know.
constexpr std::u16string_view UnclearTypes[] = {u"application/octet-stream", u"binary/octet-stream",
                                                u"application/unknown"};

/// A contact as it may stand in a comment of a header.
String commentOf(const String& contact) {
    std::u16string plain(contact.view());
    std::erase_if(plain, [](char16_t c) { return c < u' ' || c > u'~' || c == u'(' || c == u')'; });
    return String(plain);
}

}  // namespace

void SiteAnswers::add(SiteAnswer&& answer) {
    const std::scoped_lock lock(mutex_);
    answers_.push_back(std::move(answer));
    condition_.notify_one();
}

std::deque<SiteAnswer> SiteAnswers::takeAll() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(answers_, {});
}

void SiteAnswers::wait(double seconds) {
    std::unique_lock lock(mutex_);
    condition_.wait_for(lock, std::chrono::duration<double>(seconds),
                        [this] { return !answers_.empty(); });
}

SiteLoading::SiteLoading(const std::vector<URL>& starts, const SiteOptions& options)
    : options_(options),
      most_(std::clamp<std::size_t>(options.hosts, 1, MostHosts)),
      answers_(std::make_shared<SiteAnswers>()) {
    for (const URL& start : starts) {
        networks_ = networks_ | networksOfHost(start) | networksOfHostName(start);
        if (!start.user().isEmpty())
            credentials_[serverOf(start)] = {start.user(), start.password()};
    }
}

URLRequest SiteLoading::requestFor(const URL& url) const {
    URLRequest request = {
        .url = url,
        .cachePolicy = RequestCachePolicy::ReloadIgnoringLocalCacheData,
        .timeoutInterval = options_.timeout,
        .limits = {
            .body = options_.pageBytes, .seconds = options_.pageSeconds, .networks = networks_}};
    setUserAgent(request, agentOf(options_));
    if (const auto known = credentials_.find(serverOf(url)); known != credentials_.end())
        request.url = URLWithSchemeHostUserPassword(url, url.scheme(), url.host(),
                                                    known->second.first, known->second.second);
    return request;
}

void SiteLoading::loadPage(Host& host, PageID id, const URL& url, const KnownVersion& known) {
    URLRequest request = requestFor(url);
    request.followsRedirects = false;
    request.headers.setValue(u"Accept", WantedTypes);
    request.headers.setValue(u"If-None-Match", known.entityTag);
    request.headers.setValue(u"If-Modified-Since", known.lastModified);
    load(request, {.host = &host, .id = id});
}

void SiteLoading::loadRules(Host& host, const URL& url) {
    URLRequest request = requestFor(RobotsRules::addressForPage(url));
    request.limits.body = MostRulesBytes;
    request.limits.redirects = RobotsRules::MostRedirects;
    load(request, {.host = &host, .server = serverOf(url)});
}

void SiteLoading::load(const URLRequest& request, SiteAnswer&& question) {
    ++underWay_;
    const bool isPage = question.server.isAbsent();
    const auto accepts = [isPage](const URLResponse& response) {
        return !isPage || !isHTTPStatusCodeOkay(response.statusCode) || isReadable(response);
    };
    session_.dataTaskWithRequest(
        request, accepts,
        [answers = answers_, question = std::move(question)](auto data, auto response, auto error) {
            SiteAnswer answer = question;
            answer.data = std::move(data);
            answer.response = std::move(response);
            answer.error = std::move(error);
            answers->add(std::move(answer));
        });
}

std::deque<SiteAnswer> SiteLoading::takeAnswers() {
    std::deque<SiteAnswer> answers = answers_->takeAll();
    underWay_ -= answers.size();
    return answers;
}

String agentOf(const SiteOptions& options) {
    const String contact = commentOf(options.contact);
    return contact.isEmpty() ? libraryUserAgent() : libraryUserAgent() + u" (+" + contact + u")";
}

bool isReadable(const URLResponse& response) {
    const String& type = response.MIMEType;
    if (type.isEmpty() || std::ranges::find(UnclearTypes, type.view()) != std::end(UnclearTypes))
        return true;
    // Office documents have XML in the names of their types.
    return isMarkupMIMEType(type) && !isStylesheetOrScriptMIMEType(type) &&
           !isMSOfficeMIMEType(type) && !isOpenOfficeMIMEType(type);
}

ContentKind kindOfAnswer(const SiteAnswer& answer) {
    const Bytes bytes = answer.data ? Bytes(*answer.data) : Bytes();
    const ContentKind found =
        contentKind(bytes.subspan(0, std::min(bytes.size(), ContentHeadSize)), {});
    const String& type = answer.response->MIMEType;
    if (found == ContentKind::Binary || isPlainTextMIMEType(type))
        return found == ContentKind::Binary ? found : ContentKind::Text;
    const bool isOtherText = isTextMIMEType(type) && !containsSubstring(type, u"ml");
    return found == ContentKind::Unclear && isOtherText ? ContentKind::Text : ContentKind::Page;
}

URL redirectOf(const URL& url, const URLResponse& response) {
    return isRedirect(response) ? redirectedRequest({.url = url}, response).url : URL();
}

std::optional<double> retryAfter(const URLResponse& response, Date now) {
    const std::string value = response.headers.value(u"Retry-After").utf8();
    double seconds = 0;
    const char* const end = value.data() + value.size();
    if (const auto read = std::from_chars(value.data(), end, seconds);
        read.ec == std::errc() && read.ptr == end)
        return std::isfinite(seconds) ? std::optional(std::max(seconds, 0.0)) : std::nullopt;
    const std::optional<Date> date =
        dateFromHTTPHeaderValue(response.headers.value(u"Retry-After"));
    if (!date) return std::nullopt;
    return std::max(std::chrono::duration<double>(*date - now).count(), 0.0);
}

}  // namespace velmo::detail
