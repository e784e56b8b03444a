// One reader a value: the operations give it a scan of its own, and htmlMetadata() one scan to all
// of them. A meta tag that several ask is read once.
#include <velmocore/markup/PageMetadata.h>

#include <algorithm>
#include <array>

#include <velmocore/markup/LinkNormalising.h>

#include "markup/HeadReaders.h"
#include "markup/TagName.h"
#include "markup/TagWalk.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// Where the plain values stand.
struct MetaRow {
    String HtmlMetadata::*value;
    MetaQuery query;
};

constexpr MetaQuery namedQuery(Units first, Units second = {}, Units third = {}) {
    return {MetaQuery::Attribute::Name, first, second, third};
}

constexpr MetaQuery RefreshQuery{MetaQuery::Attribute::HTTPEquiv, u"refresh"};
constexpr MetaQuery TitleQuery = namedQuery(u"title", u"dc.title", u"og:title");
constexpr MetaQuery IndexTitleQuery = namedQuery(u"IndexTitle");
constexpr MetaQuery KeywordsQuery = namedQuery(u"keywords", u"dc.keywords");
constexpr MetaQuery DescriptionQuery =
    namedQuery(u"description", u"dc.description", u"og:description");
constexpr MetaQuery DateQuery = namedQuery(u"date", u"dc.date");
constexpr MetaQuery AuthorQuery = namedQuery(u"author", u"dc.author");
constexpr MetaQuery CopyrightQuery = namedQuery(u"copyright", u"dc.rights");
constexpr MetaQuery NoteQuery = namedQuery(EditableNoteName);

// clang-format off
constexpr MetaRow Rows[] = {
    {&HtmlMetadata::refresh, RefreshQuery},
    {&HtmlMetadata::metaTitle, TitleQuery},
    {&HtmlMetadata::indexTitle, IndexTitleQuery},
    {&HtmlMetadata::keywords, KeywordsQuery},
    {&HtmlMetadata::description, DescriptionQuery},
    {&HtmlMetadata::metaDate, DateQuery},
    {&HtmlMetadata::author, AuthorQuery},
    {&HtmlMetadata::copyright, CopyrightQuery},
};
// clang-format on

bool endsWith(Units units, std::string_view capitals) {
    return units.size() >= capitals.size() &&
           keyword::equals(units.substr(units.size() - capitals.size()), capitals);
}

/// Shows the tags in front of the body to the reader, until it has seen enough.
template <class Reader>
auto readHead(Units page, const WebRules& web, Reader reader) {
    GetTagsOfString(
        page, [&](const Tag& tag) { return tag.isNamed("BODY") || reader(tag); }, web);
    return reader.finish();
}

/// The same with the meta tags.
template <class Reader>
auto readMetaTags(Units page, const WebRules& web, Reader reader) {
    const auto handler = [&](const Tag& tag) {
        if (tag.nameLength != 4) return false;
        if (tag.isNamed("BODY")) return true;
        if (!tag.isNamed("META")) return false;
        MetaTag meta(tag);
        return reader(meta);
    };
    GetTagsOfString(page, handler, web);
    return reader.finish();
}

/// All readers at once.
class MetadataReader {
public:
    explicit MetadataReader(const HtmlMetadataOptions& options)
        : options_(options),
          base_{BaseReader(options.url)},
          attributes_(false, options.web),
          convertedAttributes_(true, options.web) {}

    bool operator()(const Tag& tag) {
        switch (packedName(tag)) {
            case packed("body"):
                return isInBody_ = true, !options_.summary;
            case packed("title"):
                if (options_.summary) summary_.readTitle(tag);
                show(title_, tag);
                break;
            case packed("meta"):
                readMetaTag(MetaTag(tag));
                break;
            case packed("link"):
                show(canonical_, tag);
                break;
            case packed("base"):
                show(base_, tag);
                break;
            default:
                break;
        }
        return false;
    }

    HtmlMetadata finish() {
        HtmlMetadata metadata;
        metadata.title = title_.reader.finish();
        metadata.normalizedTitle = normalizedHtmlString(metadata.title, options_.web);
        for (std::size_t i = 0; i < std::size(Rows); ++i)
            metadata.*Rows[i].value = contents_[i].finish();
        metadata.date = date_.reader.finish();
        metadata.canonical = canonical_.reader.finish();
        metadata.base = base_.reader.finish();
        metadata.isFormattedNote = !note_.finish().isEmpty();
        metadata.attributes = attributes_.finish();
        metadata.convertedAttributes = convertedAttributes_.finish();
        metadata.summary = summary_.finish();
        return metadata;
    }

private:
    /// A reader that goes without what follows once it has seen enough.
    template <class Reader>
    struct Once {
        Reader reader = {};
        bool isDone = false;
    };

    template <class Reader, class Shown>
    void show(Once<Reader>& once, Shown& shown) {
        if (!isInBody_ && !once.isDone) once.isDone = once.reader(shown);
    }

    void readMetaTag(MetaTag tag) {
        if (options_.summary) summary_(tag);
        if (isInBody_) return;
        show(date_, tag);
        for (std::size_t i = 0; i < std::size(Rows); ++i)
            if (Rows[i].query.matches(tag)) contents_[i].add(tag.content());
        note_(tag);
        attributes_(tag);
        if (options_.convertedAttributes) convertedAttributes_(tag);
    }

    const HtmlMetadataOptions options_;
    bool isInBody_ = false;
    Once<TitleReader> title_;
    Once<CanonicalReader> canonical_;
    Once<BaseReader> base_;
    Once<DateReader> date_;
    std::array<JoinedContents, std::size(Rows)> contents_;
    QueryReader note_{NoteQuery};
    AttributesReader attributes_, convertedAttributes_;
    SummaryReader summary_;
};

/// The summary alone.
class SummaryTagReader {
public:
    bool operator()(const Tag& tag) {
        if (tag.isNamed("TITLE")) summary_.readTitle(tag);
        if (!tag.isNamed("META")) return false;
        MetaTag meta(tag);
        return summary_(meta);
    }
    HtmlMetaSummary finish() const { return summary_.finish(); }

private:
    SummaryReader summary_;
};

}  // namespace

String htmlTitle(Units page, const WebRules& web) { return readHead(page, web, TitleReader()); }
String normalizedHtmlTitle(Units page, const WebRules& web) {
    return normalizedHtmlString(htmlTitle(page, web), web);
}

String htmlMetaAttributeWithName(Units page, Units name, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(namedQuery(name)));
}
String htmlMetaHTTPEquiv(Units page, Units name, const WebRules& web) {
    return readMetaTags(page, web, QueryReader({MetaQuery::Attribute::HTTPEquiv, name}));
}

String htmlMetaRefresh(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(RefreshQuery));
}
String htmlMetaTitle(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(TitleQuery));
}
String htmlMetaIndexTitle(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(IndexTitleQuery));
}
String htmlMetaKeywords(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(KeywordsQuery));
}
String htmlMetaDescription(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(DescriptionQuery));
}
String htmlMetaDate(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(DateQuery));
}
String htmlMetaAuthor(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(AuthorQuery));
}
String htmlMetaCopyright(Units page, const WebRules& web) {
    return readMetaTags(page, web, QueryReader(CopyrightQuery));
}

MetaAttributes htmlMetaAttributes(Units page, const WebRules& web) {
    return readMetaTags(page, web, AttributesReader(false, web));
}
MetaAttributes htmlMetaAttributesByConvertingEntitiesToCharacters(Units page, const WebRules& web) {
    return readMetaTags(page, web, AttributesReader(true, web));
}

String htmlDate(Units page, const WebRules& web) { return readMetaTags(page, web, DateReader()); }

bool isDateAttribute(Units name) {
    static constexpr std::string_view Whole[] = {"DATE", "PDATE", "UPDATED", "DATEGEN",
                                                 "DISPLAYDATE"};
    static constexpr std::string_view Beginnings[] = {"DATE.", "DC.DATE"};
    static constexpr std::string_view Ends[] = {"_DATE", "PUBDATE", "PUBLICATIONDATE",
                                                "PUBLISHDATE"};
    const auto isTold = [name](auto test, const auto& words) {
        return std::any_of(std::begin(words), std::end(words),
                           [&](std::string_view word) { return test(name, word); });
    };
    return isTold(keyword::equals, Whole) || isTold(keyword::beginsWith, Beginnings) ||
           isTold(endsWith, Ends);
}

String htmlCanonicalURL(Units page, const WebRules& web) {
    return readHead(page, web, CanonicalReader());
}
URL htmlBaseURL(Units page, const WebRules& web, const URL& url) {
    return readHead(page, web, BaseReader(url));
}

HtmlMetaSummary htmlMetaKeywordsDescriptionTitleDate(Units page, const WebRules& web) {
    return detail::summaryOf(scanOf(page, web));
}

HtmlMetaSummary detail::summaryOf(TagWalk walk) {
    SummaryTagReader reader;
    walk(reader);
    return reader.finish();
}

HtmlMetadata detail::metadataOf(TagWalk walk, const HtmlMetadataOptions& options) {
    MetadataReader reader(options);
    walk(reader);
    return reader.finish();
}

HtmlMetadata htmlMetadata(Units page, const HtmlMetadataOptions& options) {
    return detail::metadataOf(scanOf(page, options.web), options);
}

}  // namespace velmo
