// One handler reads the three dialects: it knows the names of their tags and fills one set of
// slots, which the end of an item empties again. A slot is a view of the feed; only a text that
// holds a reference is decoded, into buffers that the next item uses again. So nothing is written
// into the feed, and what an item costs is forgotten with it.
//
// The text of an element is what stands in front of its closing tag. Two elements may hold markup
// of their own, so that their text begins where they were opened. A CDATA section is a tag to the
// scanner: it is kept until the next closing tag that fills a slot, and then is that slot's text.
#include "feeds/FeedScan.h"

#include <array>
#include <deque>
#include <optional>
#include <string>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/text/CharacterSets.h>

#include "feeds/FeedLinks.h"
#include "feeds/FeedTags.h"
#include "markup/FeedRoots.h"
#include "markup/TagScan.h"
#include "markup/TagSupport.h"
#include "text/Keyword.h"
#include "text/Trim.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// What becomes of references in a text.
enum class Decoding : std::uint8_t { None, Standard, Full };

Units trimmed(Units text) { return trimmedView(text, Ends::Both, InSet{whiteCharacterSetRep()}); }

/// Decoded texts of one item. A buffer is used again by the next one.
class DecodedTexts {
public:
    explicit DecodedTexts(const WebRules& web) : web_(web) {}

    void clear() { used_ = 0; }

    /// The text without its references; the text itself if it has none.
    Units decoded(Units text, Decoding decoding) {
        constexpr std::size_t ShortestReference = 4;
        if (decoding == Decoding::None || text.size() < ShortestReference) return text;
        if (scan::find(text.begin(), text.end(), u'&') == text.end()) return text;
        std::u16string& buffer = nextBuffer();
        buffer.resize(std::max(buffer.size(), text.size()));
        return {buffer.data(), decode(text, buffer.data(), decoding)};
    }

private:
    std::u16string& nextBuffer() {
        if (used_ == buffers_.size()) buffers_.emplace_back();
        return buffers_[used_++];
    }

    std::size_t decode(Units text, char16_t* out, Decoding decoding) const {
        if (decoding == Decoding::Full)
            return convertEntities2Characters(text.data(), out, 0, text.size(), {.web = web_});
        std::char_traits<char16_t>::copy(out, text.data(), text.size());
        return convertStdEntities2Characters(out, text.size());
    }

    const WebRules web_;
    std::deque<std::u16string> buffers_;  // which never moves what others look at
    std::size_t used_ = 0;
};

class FeedScan {
public:
    FeedScan(const FeedHandlers& handlers, const FeedOptions& options)
        : handlers_(handlers), options_(options), base_(options.baseURL), texts_(options.web) {}

    FeedFacts finish() {
        facts_.recognized = recognition_.found();
        return std::move(facts_);
    }

    bool operator()(const Tag& tag) {
        if (tag.tagLength == 0) return false;
        if (tag.nameLength == 0) {
            if (inItem_ && tag.kind == TagKind::Declaration) noteCData(tag);
            return false;
        }
        const FeedTag meaning = feedTagOf(tag);
        recognize(tag, meaning);
        if (!facts_.rootSeen) return searchRoot(tag, meaning);
        return inItem_ ? readItem(tag, meaning) : readChannel(tag, meaning);
    }

private:
    /// Whether the text is a feed and a whole one is another question than what its items are:
    /// it is asked of the same tags.
    void recognize(const Tag& tag, FeedTag meaning) {
        if (isRecognized_ || meaning < FeedTag::RSS || meaning > FeedTag::Body) return;
        isRecognized_ = recognition_.note(tag);
    }

    bool searchRoot(const Tag& tag, FeedTag meaning) {
        facts_.rootSeen =
            meaning == FeedTag::RSS || meaning == FeedTag::RDF || meaning == FeedTag::Feed;
        if (facts_.rootSeen) noteBase(tag, options_.baseURL, base_);
        return meaning == FeedTag::HTML || meaning == FeedTag::Body;
    }

    bool readChannel(const Tag& tag, FeedTag meaning) {
        if (meaning == FeedTag::Item) {
            inItem_ = true;
            noteBase(tag, base_, itemBase_);
            return handlers_.channel && handlers_.channel(facts_);
        }
        if (meaning != FeedTag::Title || facts_.headWritten || !isTagClosed(tag.whole()))
            return false;
        if (const Units title = textBefore(tag, Decoding::Full); !title.empty()) {
            facts_.title = title;
            facts_.headWritten = true;
        }
        texts_.clear();
        return false;
    }

    bool readItem(const Tag& tag, FeedTag meaning) {
        if (meaning == FeedTag::Other && facts_.headWritten) {
            if (options_.boundCData && tag.isClosing()) pendingCData_.reset();
            return false;
        }
        const bool isClosed = isTagClosed(tag.whole());
        if (meaning == FeedTag::Link && link_.empty()) readLinkAttributes(tag);
        if (meaning == FeedTag::GUID) readGuid(tag);
        if (!isClosed) {
            open(tag, meaning);
            return false;
        }
        facts_.headWritten = true;
        if (meaning == FeedTag::Item) return finishItem();
        fillSlotOf(tag, meaning);
        return false;
    }

    /// What stands between <![CDATA[ and ]]>, until it is asked for.
    void noteCData(const Tag& tag) {
        const CharacterSetRep& letters = alphaCharacterSetRep();
        const Units section = tag.whole();
        std::size_t start = 0;
        while (start < section.size() && !letters.contains(section[start])) ++start;
        while (start < section.size() && letters.contains(section[start])) ++start;
        ++start;
        const std::size_t end = section.size() - std::min<std::size_t>(section.size(), 3);
        pendingCData_.reset();
        if (start < end)
            pendingCData_ = {section.substr(start, end - start),
                             contentIsHTML_ ? Decoding::None : Decoding::Standard};
    }

    /// A link of Atom that only serves programs is none.
    void readLinkAttributes(const Tag& tag) {
        const Units rel = attributeOf(tag, "REL");
        if (keyword::beginsWith(rel, "SERVICE.") || keyword::equals(rel, "EDIT") ||
            keyword::equals(rel, "SELF"))
            return;
        link_ = texts_.decoded(attributeOf(tag, "HREF"), Decoding::Standard);
        if (!link_.empty()) noteBase(tag, base(), itemBase_);
    }

    void readGuid(const Tag& tag) {
        if (!tag.isClosing()) {
            guidNotPermaLink_ = keyword::equals(attributeOf(tag, "ISPERMALINK"), "FALSE");
            return;
        }
        Units guid;
        if (options_.boundCData)
            fill(guid, tag.text(), Decoding::Standard);
        else
            guid = textBefore(tag, Decoding::Standard);
        guid_ = guidNotPermaLink_ ? Units() : guid;
        guidNotPermaLink_ = false;
    }

    /// The base that an element names for what is in it; relative to the one outside.
    void noteBase(const Tag& tag, const URL& outer, URL& base) {
        if (!options_.web.relativeBase || tag.isClosing()) return;
        if (const Units named = attributeOf(tag, "XML:BASE"); !named.empty())
            base = URL::URLWithString(texts_.decoded(named, Decoding::Standard), outer);
    }

    void open(const Tag& tag, FeedTag meaning) {
        const std::size_t behind = tag.tagLocation + tag.tagLength;
        if (meaning == FeedTag::Item) noteBase(tag, base_, itemBase_);
        if (meaning == FeedTag::Author) {
            inAuthor_ = true;
        } else if (meaning == FeedTag::Description) {
            descriptionStart_ = behind;
        } else if (meaning == FeedTag::Content) {
            contentStart_ = behind;
            contentIsHTML_ = keyword::equals(attributeOf(tag, "TYPE"), "HTML");
        }
    }

    void fillSlotOf(const Tag& tag, FeedTag meaning) {
        switch (meaning) {
            case FeedTag::Title:
                return fill(title_, tag.text(), Decoding::Full);
            case FeedTag::Name:
            case FeedTag::Author:
                if (inAuthor_) fill(author_, tag.text(), Decoding::Full);
                inAuthor_ = false;
                return;
            case FeedTag::Creator:
                return fill(author_, tag.text(), Decoding::Full);
            case FeedTag::Date:
                return fill(date_, tag.text(), Decoding::Standard);
            case FeedTag::Summary:
                return fill(description_, tag.text(), Decoding::Full);
            case FeedTag::Description:
                return fill(description_, textFrom(descriptionStart_, tag), Decoding::Full);
            case FeedTag::Content:
                return fill(content_, textFrom(contentStart_, tag), Decoding::Full);
            case FeedTag::EncodedContent:
                return fill(content_, tag.text(), Decoding::Full);
            case FeedTag::Link:
                return fill(link_, tag.text(), Decoding::Standard);
            case FeedTag::Category:
                return addTag(tag);
            case FeedTag::Enclosure:
                return addEnclosure(tag);
            default:
                if (options_.boundCData) pendingCData_.reset();
                return;
        }
    }

    /// The first text of a slot stays; a CDATA section goes before plain text.
    void fill(Units& slot, Units text, Decoding decoding) {
        const auto cdata = std::exchange(pendingCData_, std::nullopt);
        if (!slot.empty()) return;
        if (cdata) slot = trimmed(texts_.decoded(cdata->text, cdata->decoding));
        // A section of nothing but white space is none.
        if (slot.empty()) slot = trimmed(texts_.decoded(text, decoding));
    }

    void addTag(const Tag& tag) {
        Units value = texts_.decoded(attributeOf(tag, "TERM"), Decoding::Standard);
        if (value.empty()) fill(value, tag.text(), Decoding::Full);
        if (!value.empty()) tags_.push_back(value);
    }

    void addEnclosure(const Tag& tag) {
        const Units url = texts_.decoded(attributeOf(tag, "URL"), Decoding::Standard);
        if (!url.empty()) enclosures_.push_back({url, attributeOf(tag, "LENGTH")});
    }

    Units textBefore(const Tag& tag, Decoding decoding) {
        return trimmed(texts_.decoded(tag.text(), decoding));
    }

    static Units textFrom(std::size_t start, const Tag& tag) {
        if (start >= tag.tagLocation) return {};
        return tag.characters.substr(start, tag.tagLocation - start);
    }

    bool finishItem() {
        bool stops = false;
        // What a feed's writer made of a list when it wanted a text.
        if (description_ != u"Array" && handlers_.item) {
            String joined;
            const Units link = linkOfItem(guid_, link_, base(), options_.web.relativeBase, joined);
            stops = handlers_.item(
                {title_, description_, content_, author_, guid_, date_, link, tags_, enclosures_});
        }
        release();
        return stops;
    }

    void release() {
        title_ = description_ = content_ = author_ = guid_ = date_ = link_ = {};
        pendingCData_.reset();
        tags_.clear();
        enclosures_.clear();
        texts_.clear();
        itemBase_ = URL();
        contentStart_ = descriptionStart_ = NotFound;
        inAuthor_ = contentIsHTML_ = guidNotPermaLink_ = false;
    }

    /// What the links of the item at hand are relative to.
    const URL& base() const { return itemBase_.isAbsent() ? base_ : itemBase_; }

    struct CData {
        Units text;
        Decoding decoding;
    };

    const FeedHandlers& handlers_;
    const FeedOptions& options_;
    URL base_;  ///< of the feed
    FeedFacts facts_;
    FeedRecognition recognition_;
    bool isRecognized_ = false;
    bool inItem_ = false;  ///< the first item has been seen
    // Of the item at hand:
    Units title_, description_, content_, author_, guid_, date_, link_;
    URL itemBase_;  ///< absent if it is the feed's
    std::optional<CData> pendingCData_;
    std::vector<Units> tags_;
    std::vector<FeedItemView::Enclosure> enclosures_;
    DecodedTexts texts_;
    std::size_t contentStart_ = NotFound, descriptionStart_ = NotFound;
    bool inAuthor_ = false, contentIsHTML_ = false, guidNotPermaLink_ = false;
};

/// An absent view is an empty text.
String stringOf(Units view) { return view.empty() ? String::empty() : String(view); }

}  // namespace

FeedFacts scanFeed(Units feed, const FeedHandlers& handlers, const FeedOptions& options) {
    FeedScan scan(handlers, options);
    scanTags(feed, scan, options.web, Markup::Feed);
    return scan.finish();
}

FeedItem keptItem(const FeedItemView& item) {
    FeedItem kept = {.title = stringOf(item.title),
                     .description = stringOf(item.description),
                     .content = stringOf(item.content),
                     .author = stringOf(item.author),
                     .guid = stringOf(item.guid),
                     .date = stringOf(item.date),
                     .link = stringOf(item.link)};
    kept.tags.assign(item.tags.begin(), item.tags.end());
    for (const FeedItemView::Enclosure& enclosure : item.enclosures)
        kept.enclosures.push_back({enclosure.url, enclosure.length});
    return kept;
}

}  // namespace velmo::detail
