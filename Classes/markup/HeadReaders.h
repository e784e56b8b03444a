// One reader for each kind of value that a head holds. A reader is shown tags, or meta tags, and
// gives true when it has seen enough; where a scan ends is not its affair.
#pragma once

#include <map>
#include <string>
#include <utility>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/text/CharacterFinding.h>
#include <velmocore/text/Collapsing.h>

#include "markup/BaseRule.h"
#include "markup/MetaTag.h"

namespace velmo::detail {

inline bool givesDate(MetaTag& tag) {
    return isDateAttribute(tag.key()) || keyword::equals(tag.httpEquiv(), "LAST-MODIFIED");
}

class TitleReader {
public:
    bool operator()(const Tag& tag) {
        if (!tag.isNamed("TITLE") || !endsElement(tag)) return false;
        if (tag.hasText()) title_ = tag.text();
        return true;
    }
    String finish() const { return title_; }

private:
    String title_ = String::empty();
};

class CanonicalReader {
public:
    bool operator()(const Tag& tag) {
        if (!tag.isNamed("LINK") || !isOpening(tag)) return false;
        if (!keyword::equals(attributeOf(tag, "REL"), "CANONICAL")) return false;
        String link = normalizedStringURL(attributeOf(tag, "HREF"), tag.web);
        if (link.isEmpty() || link[0] == u'#') return false;
        link_ = std::move(link);
        return true;
    }
    String finish() const { return link_; }

private:
    String link_;
};

class BaseReader {
public:
    explicit BaseReader(const URL& page = {}) : page_(page) {}

    bool operator()(const Tag& tag) {
        if (!tag.isNamed("BASE") || !isOpening(tag)) return false;
        if (attributeOf(tag, "HREF").empty()) return false;
        applyBaseRule(tag, page_, base_);
        return true;
    }
    URL finish() const { return base_; }

private:
    const URL page_;
    URL base_;
};

class QueryReader {
public:
    explicit QueryReader(const MetaQuery& query) : query_(query) {}

    bool operator()(MetaTag& tag) {
        if (query_.matches(tag)) contents_.add(tag.content());
        return false;
    }
    String finish() const { return contents_.finish(); }

private:
    const MetaQuery query_;
    JoinedContents contents_;
};

class DateReader {
public:
    bool operator()(MetaTag& tag) {
        if (!givesDate(tag) || tag.content().isEmpty()) return false;
        date_ = tag.content();
        return true;
    }
    String finish() const { return date_; }

private:
    String date_;
};

/// A value for people.
inline String converted(const String& content, const WebRules& web) {
    const String value =
        stringByConvertingEntitiesToCharacters(content, {.inAttribute = true, .web = web});
    if (!countLTGT(value)) return stringByRemovingMultipleWhiteSpaces(value);
    return stringByRemovingMultipleFeeds(stringByConvertingHtml2PlainText(value, {.web = web}));
}

class AttributesReader {
public:
    AttributesReader(bool convert, const WebRules& web) : convert_(convert), web_(web) {}

    bool operator()(MetaTag& tag) {
        if (tag.key().empty() || tag.content().isAbsent()) return false;
        add(tag.lowercaseKey(), convert_ ? converted(tag.content(), web_) : tag.content());
        return false;
    }

    MetaAttributes finish() {
        for (const auto& [key, value] : joined_) attributes_[key] = value;
        return std::move(attributes_);
    }

private:
    void add(const String& key, const String& value) {
        const auto [entry, isNew] = attributes_.try_emplace(key, value);
        if (isNew) return;
        // Seldom, but then a tag may come very often.
        const auto joined = joined_.try_emplace(key, entry->second).first;
        joined->second.append(1, u' ').append(value);
    }

    const bool convert_;
    const WebRules web_;
    MetaAttributes attributes_;
    std::map<String, std::u16string> joined_;
};

class SummaryReader {
public:
    void readTitle(const Tag& tag) {
        if (endsElement(tag) && title_.isEmpty()) keepFirst(title_, tag.text());
    }

    bool operator()(MetaTag& tag) {
        if (date_.isEmpty() && givesDate(tag)) date_ = tag.content();
        const std::u16string_view key = tag.key();
        switch (key.size()) {
            case 5:
                if (keyword::equals(key, "TITLE")) keepFirst(title_, tag.content());
                break;
            case 8:
                readOf8(key, tag);
                break;
            case 10:
                if (keyword::equals(key, "INDEXTITLE")) keepFirst(indexTitle_, tag.content());
                break;
            case 11:
                if (keyword::equals(key, "DESCRIPTION")) description_.add(tag.content());
                if (keyword::equals(key, "DC.KEYWORDS")) dcKeywords_.add(tag.content());
                break;
            case 14:
                if (keyword::equals(key, "DC.DESCRIPTION") ||
                    keyword::equals(key, "OG:DESCRIPTION"))
                    dcDescription_.add(tag.content());
                break;
            default:
                break;
        }
        return false;
    }

    HtmlMetaSummary finish() const {
        return {either(dcKeywords_.finish(), keywords_.finish()),
                either(dcDescription_.finish(), description_.finish()), either(dcTitle_, title_),
                indexTitle_, date_};
    }

private:
    void readOf8(std::u16string_view key, MetaTag& tag) {
        if (keyword::equals(key, "KEYWORDS"))
            keywords_.add(tag.content());
        else if (keyword::equals(key, "DC.TITLE") || keyword::equals(key, "OG:TITLE"))
            keepFirst(dcTitle_, tag.content());
    }

    static void keepFirst(String& slot, const String& value) {
        if (slot.isEmpty() && !value.isEmpty()) slot = value;
    }
    static String either(const String& first, const String& second) {
        return first.isAbsent() ? second : first;
    }

    JoinedContents keywords_, dcKeywords_, description_, dcDescription_;
    String title_, dcTitle_, indexTitle_, date_;
};

}  // namespace velmo::detail
