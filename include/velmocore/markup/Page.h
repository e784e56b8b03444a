#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>
#include <velmocore/words/LanguageFilter.h>

namespace velmo {

/// What is known of a page besides its bytes.
struct PageOptions {
    URL url = {};                          ///< where it comes from
    std::u16string_view contentType = {};  ///< the value of its Content-Type header
    /// The encoding of pages that name none.
    StringEncoding defaultEncoding = velmo::defaultEncoding();
    WebRules web = {};  ///< how it is read
};

/// A page of the web, and what most programs want to know of it; the operations of the other
/// headers tell more, one thing at a time. It is scanned once, but for what its head says, which
/// needs no more than that. Each part is made when it is first asked for, and kept.
///
///     const Page page("<title>Ferrets</title><p>They <a href='dig.html'>dig</a>",
///                     {.url = URL::URLWithString(u"http://h.org/a/")});
///     page.title();        // Ferrets
///     page.plainText();    // Ferrets\n\nThey dig
///     page.links()[0];     // http://h.org/a/dig.html
///
/// A page cannot be changed. Copies share it, and any number of threads may ask one page at a
/// time; of several that ask for a part that is not there yet, one makes it.
class VELMO_API Page {
public:
    /// The bytes are decoded as markup/MarkupDecoding.h tells, and not needed afterwards: of UTF-8,
    /// which most pages are in, the page keeps a copy, and makes units of no more than what is asked
    /// for. A page without bytes, or that no encoding can read, is empty.
    explicit Page(Bytes bytes, const PageOptions& options = {});
    /// The same without a copy, of bytes that are not needed any more.
    explicit Page(Data&& bytes, const PageOptions& options = {});
    /// A page that is known to be UTF-8, whatever it says itself: its bytes are taken over.
    [[nodiscard]] static Page pageWithUTF8(Data&& bytes, const URL& url = {},
                                           const WebRules& web = {});
    /// A page that is text already; its encoding is UnknownStringEncoding.
    [[nodiscard]] static Page pageWithString(const String& markup, const URL& url = {},
                                             const WebRules& web = {});

    /// The text of the page, with its tags. Nothing else that a page tells needs it: of one in UTF-8
    /// it is made when it is first asked for, and takes twice the memory of the bytes.
    [[nodiscard]] const String& markup() const VELMO_LIFETIME;
    /// The encoding that it was in.
    [[nodiscard]] StringEncoding encoding() const noexcept;
    /// Where it comes from; absent if that was not told.
    [[nodiscard]] const URL& url() const noexcept VELMO_LIFETIME;
    /// What its links are relative to: its base tag, else where it comes from.
    [[nodiscard]] const URL& baseURL() const VELMO_LIFETIME;

    /// What stands in its first title tag, on one line; empty if there is none.
    [[nodiscard]] const String& title() const VELMO_LIFETIME;
    /// As stringByConvertingHtml2PlainText() makes it.
    [[nodiscard]] const String& plainText() const VELMO_LIFETIME;
    /// Whether it only says that there is no such page, by its title, the text of its body and
    /// where it comes from; see markup/ErrorPages.h.
    [[nodiscard]] bool isErrorPage() const;
    /// Whether it is no page but a feed; see markup/FeedRecognition.h, and feeds/FeedItems.h for
    /// what it holds.
    [[nodiscard]] bool isFeed() const;

    /// What its head says of it, all but the summary, read in one scan that ends at its body.
    [[nodiscard]] const HtmlMetadata& metadata() const VELMO_LIFETIME;
    /// As htmlMetaKeywordsDescriptionTitleDate() reads it from all of the page.
    [[nodiscard]] const HtmlMetaSummary& summary() const VELMO_LIFETIME;

    // References, resolved, in page order or else in that of their texts, each once. What cannot be
    // resolved is left out: all that is relative, if it is not known to what.

    /// Of a and area tags, without anchors: those that lead to the web, to FTP, to feeds or to
    /// files.
    [[nodiscard]] const std::vector<URL>& links() const VELMO_LIFETIME;
    /// As the operations of markup/PageResources.h find them.
    [[nodiscard]] const std::vector<URL>& frames() const VELMO_LIFETIME;
    [[nodiscard]] const std::vector<URL>& images() const VELMO_LIFETIME;
    [[nodiscard]] const std::vector<URL>& stylesheetsAndScripts() const VELMO_LIFETIME;
    [[nodiscard]] const std::vector<URL>& embeddedObjects() const VELMO_LIFETIME;
    /// Absent if it names none.
    [[nodiscard]] const URL& favIcon() const VELMO_LIFETIME;
    /// The address that it wants to be known by; absent if it names none.
    [[nodiscard]] const URL& canonicalURL() const VELMO_LIFETIME;
    /// Thumbnails, titles and texts of its links, resolved as getLinkThumbnails() does it. Nothing
    /// if it is not known what links are relative to.
    [[nodiscard]] const LinkThumbnails& linkThumbnails() const VELMO_LIFETIME;

    // The same as one will have it, by the rules of the page; nothing of it is kept.

    /// As htmlLinks() finds them, not resolved, with the base that the page names.
    [[nodiscard]] HtmlLinks unresolvedLinks() const;
    /// As getLinkThumbnails() finds them by these options, whose rules do not count.
    [[nodiscard]] LinkThumbnails linkThumbnails(LinkThumbnailOptions options) const;

    /// The key of the language of its plain text; absent if it is not clear. The answer is not
    /// kept, as another filter may give another one.
    [[nodiscard]] String language(const LanguageFilter& filter) const;

private:
    struct State;

    explicit Page(std::shared_ptr<const State> state) noexcept : state_(std::move(state)) {}
    /// @param owned  those of the bytes, to be taken over; may be null
    Page(Bytes bytes, Data* owned, const PageOptions& options);

    std::shared_ptr<const State> state_;
};

}  // namespace velmo
