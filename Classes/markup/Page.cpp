// One state is shared by all copies of a page. It holds the text, and each part in a box that is
// filled once, by the first who asks. The tags are such a part too: whatever is asked for first,
// the page is scanned for all that follows, if it is not long.
//
// A page in UTF-8 stays in its bytes: all parts are read from these, and units are made of the whole
// page only for those who ask for its markup.
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

#include "markup/MarkupReading.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "platform/PlaceTable.h"

namespace velmo {

using namespace detail;

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
String firstTitle(TagWalk walk) {
    String title = String::empty();
    walk([&](const Tag& tag) {
        if (!tag.isNamed("TITLE") || !endsElement(tag)) return false;
        title = stringByRemovingMultipleWhiteSpaces(stringByTrimmingWhiteSpaces(
            stringByConvertingEntitiesToCharacters(tag.text(), {.web = tag.web})));
        return true;
    });
    return title;
}

}  // namespace

struct Page::State {
    State(const String& markup, StringEncoding used, const URL& from, const WebRules& rules)
        : text(markup.isAbsent() ? String::empty() : markup),
          encoding(used),
          url(from),
          web(rules) {}
    /// Of a page that is UTF-8 from that byte on, and has at least one such.
    State(Data&& page, std::size_t start, StringEncoding used, const URL& from,
          const WebRules& rules)
        : bytes(std::move(page)),
          utf8(charsOf(bytes).substr(start)),
          encoding(used),
          url(from),
          web(rules) {}

    bool isUTF8() const { return utf8.data() != nullptr; }
    const String& markup() const {
        if (!isUTF8()) return text;
        return decoded_.get([this] { return String::fromUTF8(utf8); });
    }

    /// Its tags, as often as they are walked.
    const TagList& tags() const {
        return tags_.get([this] { return TagList(text, web); });
    }
    const ByteTagList& byteTags() const {
        return byteTags_.get([this] { return ByteTagList(utf8, web); });
    }
    /// What is made of its tags in units, of which these parts are wanted.
    template <class Make>
    auto made(TagParts parts, Make make) const {
        return isUTF8() ? make(TagWalk(widened(byteTags(), parts))) : make(TagWalk(tags()));
    }
    HtmlPlainText plainTextBy(const PlainTextOptions& options) const {
        return isUTF8() ? plainTextOf(utf8, byteTags(), options)
                        : plainTextOf(text, tags(), options);
    }
    /// All that the head tells, and the frames.
    const HtmlReferences& references() const {
        return references_.get([this] {
            return made(WithTitles,
                        [this](TagWalk walk) { return referencesOf(walk, false, url); });
        });
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
        urls.reserve(references.size());
        detail::PlaceTable places(references.size());
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

    static constexpr TagParts WithTitles{.text = TagParts::Text::OfTitles};
    static constexpr TagParts Alone{.text = TagParts::Text::None};
    static constexpr TagParts WithBodies{.text = TagParts::Text::None, .bodies = true};

    const String text;            ///< of a page that is not kept in UTF-8
    const Data bytes;             ///< of one that is
    const std::string_view utf8;  ///< the same without a byte-order mark; null if there are none
    const StringEncoding encoding;
    const URL url;
    const WebRules web;

    Lazy<TagList> tags_;
    Lazy<ByteTagList> byteTags_;
    Lazy<String> decoded_;
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

Page::Page(Bytes bytes, const PageOptions& options) : Page(bytes, nullptr, options) {}
Page::Page(Data&& bytes, const PageOptions& options) : Page(bytes, &bytes, options) {}

Page::Page(Bytes bytes, Data* owned, const PageOptions& options) {
    MarkupReading reading = readMarkup(bytes, {.contentType = options.contentType,
                                               .defaultEncoding = options.defaultEncoding,
                                               .web = options.web});
    if (!reading.isUTF8()) {
        state_ = std::make_shared<const State>(reading.page.text, reading.page.encoding,
                                               options.url, options.web);
        return;
    }
    const std::size_t start = bytes.size() - reading.utf8.size();
    Data page = owned ? std::move(*owned) : Data(bytes.begin(), bytes.end());
    state_ = std::make_shared<const State>(std::move(page), start, reading.page.encoding,
                                           options.url, options.web);
}

Page Page::pageWithUTF8(Data&& bytes, const URL& url, const WebRules& web) {
    const std::size_t start = charsOf(bytes).starts_with("\xEF\xBB\xBF") ? 3 : 0;
    if (bytes.size() == start)
        return Page(std::make_shared<const State>(String(), UTF8StringEncoding, url, web));
    return Page(
        std::make_shared<const State>(std::move(bytes), start, UTF8StringEncoding, url, web));
}

Page Page::pageWithString(const String& markup, const URL& url, const WebRules& web) {
    return Page(std::make_shared<const State>(markup, UnknownStringEncoding, url, web));
}

const String& Page::markup() const { return state_->markup(); }
StringEncoding Page::encoding() const noexcept { return state_->encoding; }
const URL& Page::url() const noexcept { return state_->url; }
const URL& Page::baseURL() const { return state_->baseURL(); }

const String& Page::title() const {
    return state_->title.get([this] { return state_->made(State::WithTitles, firstTitle); });
}

const String& Page::plainText() const {
    return state_->plainText.get([this] { return state_->plainTextBy({.web = state_->web}).text; });
}

const HtmlMetadata& Page::metadata() const {
    // The tags of the whole page are not wanted for this: many who ask for it want no more.
    return state_->metadata.get([this] {
        const HtmlMetadataOptions options{.url = state_->url, .web = state_->web};
        if (!state_->isUTF8()) return htmlMetadata(state_->text, options);
        return metadataOf(widened(scanOf(state_->utf8, state_->web), State::WithTitles), options);
    });
}

const HtmlMetaSummary& Page::summary() const {
    return state_->summary.get([this] { return state_->made(State::WithTitles, summaryOf); });
}

bool Page::isErrorPage() const {
    return state_->isErrorPage.get([this] {
        // The title, which the plain text holds too, must not confirm itself.
        const String body =
            state_->plainTextBy({.onlyBody = true, .removeJunk = true, .web = state_->web}).text;
        return isErrorPageTitle(title(), body, url().absoluteString());
    });
}

// The first tag or two tell it, so there is nothing to keep.
bool Page::isFeed() const {
    return state_->isUTF8() ? isFeedOfBytes(state_->utf8, state_->web)
                            : velmo::isFeed(state_->text, state_->web);
}

const std::vector<URL>& Page::links() const {
    return state_->links.get([this] {
        auto [links, named] = unresolvedLinks();
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
        [this] { return state_->resolvedOf(state_->made(State::Alone, imagesOf)); });
}

const std::vector<URL>& Page::stylesheetsAndScripts() const {
    return state_->stylesheetsAndScripts.get([this] {
        return state_->resolvedOf(state_->made(State::WithBodies, stylesheetsAndScriptsOf));
    });
}

const std::vector<URL>& Page::embeddedObjects() const {
    return state_->embeddedObjects.get(
        [this] { return state_->resolvedOf(state_->made(State::Alone, embeddedObjectsOf)); });
}

const URL& Page::favIcon() const {
    return state_->favIcon.get([this] { return state_->resolved(state_->references().favIcon); });
}

const URL& Page::canonicalURL() const {
    return state_->canonicalURL.get([this] { return state_->resolved(metadata().canonical); });
}

const LinkThumbnails& Page::linkThumbnails() const {
    return state_->linkThumbnails.get(
        [this] { return linkThumbnails({.baseURL = baseURL(), .resolve = true}); });
}

HtmlLinks Page::unresolvedLinks() const {
    const LinkOptions options{.web = state_->web, .url = state_->url};
    return state_->isUTF8() ? linksOf(state_->byteTags(), options)
                            : linksOf(state_->tags(), options);
}

LinkThumbnails Page::linkThumbnails(LinkThumbnailOptions options) const {
    options.web = state_->web;
    return state_->isUTF8() ? thumbnailsOf(state_->utf8, state_->byteTags(), options)
                            : thumbnailsOf(state_->text, state_->tags(), options);
}

String Page::language(const LanguageFilter& filter) const {
    return filter.languageOfText(plainText());
}

}  // namespace velmo
