// One state is shared by all copies of a page. It holds the text, and each part in a box that is
// filled once, by the first who asks. The tags are such a part too: whatever is asked for first,
// the page is scanned for all that follows, if it is not long.
#include <velmocore/markup/Page.h>

#include <atomic>
#include <mutex>
#include <optional>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/ErrorPages.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSchemes.h>
#include <velmocore/url/URLSimplification.h>

#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "platform/PlaceTable.h"

namespace velmo {
namespace {

/// A value that is made when it is first asked for. If that throws, the next one tries again.
template <class Value>
class Lazy {
public:
    template <class Make>
    const Value& get(Make make) const {
        // std::call_once() would wake up others at the end, of which there are hardly ever any.
        if (!isMade_.load(std::memory_order_acquire)) {
            const std::lock_guard lock(mutex_);
            if (!isMade_.load(std::memory_order_relaxed)) {
                value_.emplace(make());
                isMade_.store(true, std::memory_order_release);
            }
        }
        return *value_;
    }

private:
    mutable std::mutex mutex_;
    mutable std::atomic<bool> isMade_ = false;
    mutable std::optional<Value> value_;
};

/// What stands between the first title tag and its end. An image in the page may have titles of
/// its own.
String firstTitle(detail::TagWalk walk) {
    String title = String::empty();
    walk([&](const Tag& tag) {
        if (!tag.isNamed("TITLE") || !detail::endsElement(tag)) return false;
        title = stringByRemovingMultipleWhiteSpaces(stringByTrimmingWhiteSpaces(
            stringByConvertingEntitiesToCharacters(tag.text(), {.web = tag.web})));
        return true;
    });
    return title;
}

}  // namespace

struct Page::State {
    State(const String& text, StringEncoding used, URL from, WebRules rules)
        : markup(text.isAbsent() ? String::empty() : text),
          encoding(used),
          url(std::move(from)),
          web(rules) {}

    const detail::TagList& tags() const {
        return tags_.get([&] { return detail::TagList(markup, web); });
    }
    /// All that the head tells, and the frames.
    const HtmlReferences& references() const {
        return references_.get([&] { return detail::referencesOf(tags(), false, url); });
    }
    URL resolved(const String& reference) const {
        // Without a base a path would be taken for one of this machine.
        const URL& base = baseURL();
        if (base.isAbsent() && stringURLScheme(reference).isAbsent()) return {};
        const URL link = URLWithStringRelativeTo(reference, base, {.web = web});
        // A browser resolves scripts and mail links too, which lead to no page.
        return web.resolution && filterLink(link.absoluteString()) ? URL() : link;
    }
    const URL& baseURL() const {
        return baseOr([&] { return references().baseURL; });
    }
    /// The same where it is known already what the base tags say.
    template <class Find>
    const URL& baseOr(Find find) const {
        const URL& named = namedBase.get(find);
        return named.isAbsent() ? url : named;
    }

    /// The references as URLs, of which two may still be the same.
    template <class References>
    std::vector<URL> resolvedOf(const References& references) const {
        std::vector<URL> urls;
        detail::PlaceTable places;
        for (const String& reference : references) {
            URL link = resolved(reference);
            if (link.isAbsent()) continue;
            const auto isSame = [&](std::size_t place) { return urls[place] == link; };
            const std::size_t next = urls.size();
            if (places.findOrAdd(link.hash(), next, isSame) == next)
                urls.push_back(std::move(link));
        }
        return urls;
    }

    const String markup;
    const StringEncoding encoding;
    const URL url;
    const WebRules web;

    Lazy<detail::TagList> tags_;
    Lazy<HtmlReferences> references_;
    Lazy<String> title, plainText;
    Lazy<HtmlMetadata> metadata;
    Lazy<HtmlMetaSummary> summary;
    Lazy<bool> isErrorPage;
    Lazy<URL> namedBase;  ///< of the base tags; absent if they name none
    Lazy<URL> favIcon, canonicalURL;
    Lazy<LinkThumbnails> linkThumbnails;
    Lazy<std::vector<URL>> links, frames, images, stylesheetsAndScripts, embeddedObjects;
};

Page::Page(Bytes bytes, const PageOptions& options) {
    MarkupDecoding decoded = decodeMarkup(bytes, {.contentType = options.contentType,
                                                  .defaultEncoding = options.defaultEncoding,
                                                  .web = options.web});
    state_ = std::make_shared<const State>(std::move(decoded.text), decoded.encoding, options.url,
                                           options.web);
}

Page Page::pageWithString(const String& markup, const URL& url, const WebRules& web) {
    return Page(std::make_shared<const State>(markup, UnknownStringEncoding, url, web));
}

const String& Page::markup() const noexcept { return state_->markup; }
StringEncoding Page::encoding() const noexcept { return state_->encoding; }
const URL& Page::url() const noexcept { return state_->url; }
const URL& Page::baseURL() const { return state_->baseURL(); }

const String& Page::title() const {
    return state_->title.get([this] { return firstTitle(state_->tags()); });
}

const String& Page::plainText() const {
    return state_->plainText.get([this] {
        return detail::plainTextOf(state_->markup, state_->tags(), {.web = state_->web}).text;
    });
}

const HtmlMetadata& Page::metadata() const {
    // The tags of the whole page are not wanted for this: many who ask for it want no more.
    return state_->metadata.get(
        [this] { return htmlMetadata(state_->markup, {.url = state_->url, .web = state_->web}); });
}

const HtmlMetaSummary& Page::summary() const {
    return state_->summary.get([this] { return detail::summaryOf(state_->tags()); });
}

bool Page::isErrorPage() const {
    return state_->isErrorPage.get([this] {
        // The title, which the plain text holds too, must not confirm itself.
        const String body =
            detail::plainTextOf(state_->markup, state_->tags(),
                                {.onlyBody = true, .removeJunk = true, .web = state_->web})
                .text;
        return isErrorPageTitle(title(), body, url().absoluteString());
    });
}

// The first tag or two tell it, so there is nothing to keep.
bool Page::isFeed() const { return velmo::isFeed(state_->markup, state_->web); }

const std::vector<URL>& Page::links() const {
    return state_->links.get([this] {
        auto [links, named] =
            detail::linksOf(state_->tags(), {.web = state_->web, .url = state_->url});
        const URL& base = state_->baseOr([&named = named] { return named; });
        // On a file base a # would be a part of the path; on others the anchor is cut anyway.
        if (base.isFileURL())
            for (String& link : links) link = stringURLWithoutAnchor(link);
        std::vector<URL> urls = state_->resolvedOf(links);
        std::erase_if(urls, [](const URL& url) { return !isWebKitURL(url); });
        return urls;
    });
}

const std::vector<URL>& Page::frames() const {
    return state_->frames.get(
        [this] { return state_->resolvedOf(state_->references().references); });
}

const std::vector<URL>& Page::images() const {
    return state_->images.get(
        [this] { return state_->resolvedOf(detail::imagesOf(state_->tags())); });
}

const std::vector<URL>& Page::stylesheetsAndScripts() const {
    return state_->stylesheetsAndScripts.get(
        [this] { return state_->resolvedOf(detail::stylesheetsAndScriptsOf(state_->tags())); });
}

const std::vector<URL>& Page::embeddedObjects() const {
    return state_->embeddedObjects.get(
        [this] { return state_->resolvedOf(detail::embeddedObjectsOf(state_->tags())); });
}

const URL& Page::favIcon() const {
    return state_->favIcon.get([this] { return state_->resolved(state_->references().favIcon); });
}

const URL& Page::canonicalURL() const {
    return state_->canonicalURL.get([this] { return state_->resolved(metadata().canonical); });
}

const LinkThumbnails& Page::linkThumbnails() const {
    return state_->linkThumbnails.get([this] {
        return detail::thumbnailsOf(state_->markup, state_->tags(),
                                    {.baseURL = baseURL(), .resolve = true, .web = state_->web});
    });
}

String Page::language(const LanguageFilter& filter) const {
    return filter.languageOfText(plainText());
}

}  // namespace velmo
