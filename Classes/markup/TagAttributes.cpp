// Two readers serve all operations. AttributeReader walks a tag or a style list, passes
// over quoted values, and has its differences as settings. The header reader looks for
// NAME=value in a line of text and has no idea of tags.
//
// Tags are read in units, or, if they are ASCII, in the bytes they came in.
//
// A tag is read anew for each attribute that is asked for. Handlers ask for one or two, and of few
// tags; to take every tag apart into a list would cost each page more.
#include <velmocore/markup/TagAttributes.h>

#include <fmt/format.h>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>

#include "markup/TagSupport.h"
#include "markup/WebTags.h"
#include "text/ByteKeyword.h"
#include "text/ByteScan.h"
#include "text/LeadingInteger.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// The readers of tags, contents, strings and styles are one but for these.
struct AttributeRules {
    std::size_t slack;  ///< units that must stand besides the name
    char assignment;
    char terminator;
    bool underscoreBinds;      ///< whether a preceding _ makes the name part of a word
    bool repeatedAssignments;  ///< whether further assignment units are skipped
    bool contentMode = false;  ///< whether a quoted value may hold markup
};

constexpr AttributeRules TagRules{5, '=', '>', true, true};
constexpr AttributeRules ContentRules{5, '=', '>', true, true, true};
constexpr AttributeRules StringRules{5, '=', '>', false, false};
constexpr AttributeRules StyleRules{1, ':', ';', false, false};

/// A name given as 8-bit or as UTF-16 text.
template <class Unit>
using Name = std::basic_string_view<Unit>;

bool isQuote(char16_t unit) { return unit == u'"' || unit == u'\''; }
bool isWhite(char16_t unit) {
    return unit < 128 ? unit == u' ' || (unit >= 9 && unit <= 13) || unit == 0 || unit == 3
                      : whiteCharacterSetRep().contains(unit);
}

template <class Text>
std::size_t skipWhite(Text text, std::size_t i) {
    while (i < text.size() && isWhite(text[i])) ++i;
    return i;
}

template <class TagUnit, class NameUnit>
class AttributeReader {
    using Text = std::basic_string_view<TagUnit>;

public:
    /// @param readable  the end of what may be read, of which the tag is a part
    AttributeReader(Text tag, const TagUnit* readable, Name<NameUnit> name,
                    const AttributeRules& rules)
        : tag_(tag),
          readable_(readable),
          name_(name),
          rules_(rules),
          first_(name.empty() ? u'\0' : detail::keyword::upper(static_cast<char16_t>(name[0]))) {}

    /// Quoted values of other attributes are passed over: what they hold is no attribute.
    Range read() const {
        // In a shorter text there is no room for the name, its assignment and a value.
        if (name_.empty() || name_.size() + rules_.slack >= tag_.size()) return Range::none();
        const TagUnit* const stop = tag_.data() + tag_.size() - name_.size();
        const TagUnit* at = tag_.data();
        while ((at = findCandidate(at, stop)) < stop) {
            if (isQuote(*at)) {
                at = detail::scan::findWithin(at + 1, end(), readable_, *at);
            } else if (const auto i = static_cast<std::size_t>(at - tag_.data()); isName(i)) {
                const std::size_t assignment = skipWhite(tag_, i + name_.size());
                if (assignment < tag_.size() && tag_[assignment] == TagUnit(rules_.assignment))
                    return valueBehind(assignment);
            }
            if (at < stop) ++at;
        }
        return Range::none();
    }

private:
    const TagUnit* end() const { return tag_.data() + tag_.size(); }

    /// The next quote mark or unit that may begin the name.
    const TagUnit* findCandidate(const TagUnit* from, const TagUnit* to) const {
        const auto isCandidate = [this](char16_t unit) {
            // A unit outside ASCII may have an upper-case form in it, as the long s has.
            return isQuote(unit) || unit == first_ || unit == (first_ | 0x20) || unit > 127;
        };
#if defined(__SSE2__)
        return detail::scan::findWhere(
            from, to, readable_, [this](__m128i block) { return marked(block, TagUnit()); },
            isCandidate);
#else
        return std::find_if(from, to, isCandidate);
#endif
    }

#if defined(__SSE2__)
    __m128i marked(__m128i block, char16_t) const {
        using detail::scan::equalTo;
        const __m128i quotes = _mm_or_si128(equalTo(block, u'"'), equalTo(block, u'\''));
        const __m128i letters = _mm_or_si128(equalTo(block, first_),
                                             equalTo(block, static_cast<char16_t>(first_ | 0x20)));
        return _mm_or_si128(_mm_or_si128(quotes, letters), detail::scan::aboveAscii(block));
    }
    __m128i marked(__m128i block, char) const {
        const auto equalTo = [block](int byte) {
            return _mm_cmpeq_epi8(block, _mm_set1_epi8(static_cast<char>(byte)));
        };
        const __m128i quotes = _mm_or_si128(equalTo('"'), equalTo('\''));
        return _mm_or_si128(quotes, _mm_or_si128(equalTo(first_), equalTo(first_ | 0x20)));
    }
#endif

    /// Whether the name stands there by itself: "data-href" and "xhref" are other names.
    bool isName(std::size_t i) const {
        if (i > 0) {
            const char16_t before = tag_[i - 1];
            if (before == u'-' || (before == u'_' && rules_.underscoreBinds) ||
                alphaNumCharacterSetRep().contains(before))
                return false;
        }
        for (std::size_t k = 0; k < name_.size(); ++k)
            if (detail::keyword::upper(tag_[i + k]) !=
                detail::keyword::upper(static_cast<char16_t>(name_[k])))
                return false;
        return true;
    }

    /// Where the value after an assignment stands. A quoted one ends at a > too, so that a mark
    /// that was lost costs no more than this value.
    Range valueBehind(std::size_t i) const {
        ++i;
        if (rules_.repeatedAssignments)
            while (i < tag_.size() && tag_[i] == TagUnit(rules_.assignment)) ++i;
        i = skipWhite(tag_, i);
        if (i == tag_.size()) return Range::none();
        if (!isQuote(tag_[i])) return trimmed(i, endOfPlain(i));
        return trimmed(i + 1, rules_.contentMode ? endOfContent(i) : endOfQuoted(i));
    }

    std::size_t endOfPlain(std::size_t i) const {
        while (i < tag_.size() && tag_[i] != TagUnit(rules_.terminator) && !isWhite(tag_[i])) ++i;
        return i;
    }

    std::size_t endOfQuoted(std::size_t open) const {
        const TagUnit* const value = tag_.data() + open + 1;
        return static_cast<std::size_t>(detail::scan::findEitherWithin(value, end(), readable_,
                                                                       tag_[open],
                                                                       TagUnit(rules_.terminator)) -
                                        tag_.data());
    }

    /// A > inside the value closes a < of the value; a <meta inside means that the closing
    /// quote was lost.
    std::size_t endOfContent(std::size_t open) const {
        const std::size_t start = open + 1;
        std::size_t openTags = 0;
        for (std::size_t i = start; i < tag_.size(); ++i) {
            if (tag_[i] == tag_[open]) return openTags == 1 ? withoutTagStart(start, i) : i;
            if (tag_[i] == '>' && i > start) {
                if (openTags == 0) return i;
                --openTags;
            } else if (tag_[i] == '<') {
                if (detail::keyword::lengthAtStart(tag_.substr(i + 1), "META")) return i;
                ++openTags;
            }
        }
        return tag_.size();
    }

    /// Cuts a < or </ right before the closing quote.
    std::size_t withoutTagStart(std::size_t start, std::size_t stop) const {
        const Text value = tag_.substr(start, stop - start);
        if (value.ends_with(TagUnit('<'))) return stop - 1;
        return value.size() > 1 && value.ends_with(TagUnit('/')) && value[value.size() - 2] == '<'
                   ? stop - 2
                   : stop;
    }

    Range trimmed(std::size_t start, std::size_t stop) const {
        while (stop > start && isWhite(tag_[stop - 1])) --stop;
        return stop > start ? Range{start, stop - start} : Range::none();
    }

    Text tag_;
    const TagUnit* const readable_;
    Name<NameUnit> name_;
    const AttributeRules& rules_;
    const char16_t first_;  ///< of the name, in upper case
};

template <class TagUnit, class NameUnit>
Range attributeRange(std::basic_string_view<TagUnit> tag, Name<NameUnit> name,
                     const AttributeRules& rules) {
    return AttributeReader<TagUnit, NameUnit>(tag, tag.data() + tag.size(), name, rules).read();
}

/// Takes a tag apart by the HTML standard, one attribute after the other.
template <class Unit>
class WebAttributeReader {
    using Text = std::basic_string_view<Unit>;

public:
    explicit WebAttributeReader(Text tag)
        : begin_(tag.data()),
          end_(begin_ + tag.size()),
          at_(tag.empty() ? end_ : detail::webTags::endOfName(begin_, end_)) {}

    /// The value of the first attribute of that name.
    Range read(std::string_view capitals) {
        while (takeName()) {
            takeValue();
            if (isNamed(capitals)) return trimmedValue();
        }
        return Range::none();
    }

private:
    /// In images links have a prefix, which counts for nothing.
    bool isNamed(std::string_view capitals) const {
        constexpr std::string_view Prefix = "XLINK:";
        const bool isPrefixed = name_.size() == Prefix.size() + capitals.size() &&
                                detail::keyword::lengthAtStart(name_, Prefix) > 0;
        return detail::keyword::isKeyword(name_.substr(isPrefixed ? Prefix.size() : 0), capitals);
    }

    bool takeName() {
        while (at_ < end_ && (*at_ == '/' || detail::webTags::isWhite(*at_))) ++at_;
        if (at_ >= end_ || *at_ == '>') return false;
        // An = in first place belongs to the name.
        const Unit* const start = at_++;
        while (at_ < end_ && *at_ != '=' && !detail::webTags::endsName(*at_)) ++at_;
        name_ = {start, static_cast<std::size_t>(at_ - start)};
        return true;
    }

    void takeValue() {
        value_ = {};
        at_ = detail::webTags::skipWhite(at_, end_);
        if (at_ == end_ || *at_ != '=') return;
        at_ = detail::webTags::skipWhite(at_ + 1, end_);
        const bool isQuoted = at_ < end_ && isQuote(*at_);
        const Unit* const start = at_ + isQuoted;
        at_ = isQuoted ? detail::scan::find(start, end_, *at_)
                       : detail::webTags::endOfPlainValue(at_, end_);
        value_ = {start, static_cast<std::size_t>(at_ - start)};
        at_ += isQuoted && at_ < end_;
    }

    Range trimmedValue() {
        while (!value_.empty() && isWhite(value_.back())) value_.remove_suffix(1);
        if (value_.empty()) return Range::none();
        return {static_cast<std::size_t>(value_.data() - begin_), value_.size()};
    }

    const Unit* const begin_;
    const Unit* const end_;
    const Unit* at_;
    Text name_, value_;
};

String stringOf(Units text, Range range) {
    return range.isFound() ? String(text.substr(range.location, range.length)) : String();
}

/// Reads NAME=value out of a header-like text. The name is in capitals and the text is
/// folded; in tag mode blanks may stand around the value and either quote mark opens it.
class HeaderReader {
public:
    HeaderReader(Units text, Units name, bool tagMode, HeaderFieldOptions options)
        : text_(text), name_(name), tagMode_(tagMode), options_(options) {}

    /// The first place of the name that has a value; headers repeat names without one.
    String read() const {
        if (text_.size() <= name_.size()) return {};
        for (std::size_t i = 0; i < text_.size() - name_.size(); ++i) {
            if (!isName(i)) continue;
            if (String value = valueBehind(i + name_.size()); !value.isAbsent()) return value;
        }
        return {};
    }

private:
    bool isName(std::size_t i) const {
        for (std::size_t k = 0; k < name_.size(); ++k)
            if (detail::keyword::upper(text_[i + k]) != name_[k]) return false;
        return true;
    }

    String valueBehind(std::size_t i) const {
        i = skipWhite(text_, i);
        if (i == text_.size() || text_[i] != u'=') return {};
        ++i;
        if (tagMode_) i = skipWhite(text_, i);
        if (i == text_.size()) return {};
        if (text_[i] == options_.quotation || (tagMode_ && isQuote(text_[i]))) {
            // An empty value in quotes is none, and the search goes on; without them it is an
            // empty one.
            const std::size_t stop = std::min(text_.find(text_[i], i + 1), text_.size());
            return stop == i + 1 ? String() : String(text_.substr(i + 1, stop - i - 1));
        }
        std::size_t stop = i;
        while (stop < text_.size() && !endsPlainValue(text_[stop])) ++stop;
        return stop == i ? String::empty() : String(text_.substr(i, stop - i));
    }

    bool endsPlainValue(char16_t unit) const {
        if (options_.separator && unit == options_.separator) return true;
        return tagMode_ && (isQuote(unit) || unit == u'>' || isWhite(unit));
    }

    Units text_, name_;
    bool tagMode_;
    HeaderFieldOptions options_;
};

std::int64_t numberOf(Units text, Range range) {
    return range.isFound() ? detail::leadingInteger(text.substr(range.location, range.length)) : 0;
}

}  // namespace

Range rangeOfAttributeOfTagCharacters(Units tag, std::string_view name, const WebRules& web) {
    if (web.attributes) return WebAttributeReader<char16_t>(tag).read(name);
    return attributeRange(tag, name, TagRules);
}

namespace {

/// Of a tag that stands in its page, the rest of which may be read too.
template <class AnyTag>
Range attributeRangeIn(const AnyTag& tag, std::string_view name) {
    using Unit = typename decltype(tag.characters)::value_type;
    const auto whole = tag.whole();
    if (tag.web.attributes) return WebAttributeReader<Unit>(whole).read(name);
    const Unit* const readable = tag.characters.data() + tag.characters.size();
    return AttributeReader<Unit, char>(whole, readable, name, TagRules).read();
}

}  // namespace

Range detail::rangeOfAttribute(const Tag& tag, std::string_view name) {
    return attributeRangeIn(tag, name);
}
Range detail::rangeOfAttributeOfAscii(const ByteTag& tag, std::string_view name) {
    return attributeRangeIn(tag, name);
}

Range rangeOfContentAttributeOfTagCharacters(Units tag, const WebRules& web) {
    if (web.attributes) return WebAttributeReader<char16_t>(tag).read("CONTENT");
    return attributeRange(tag, std::string_view("CONTENT"), ContentRules);
}

String attributeOfTagCharacters(Units tag, std::string_view name, const WebRules& web) {
    return stringOf(tag, rangeOfAttributeOfTagCharacters(tag, name, web));
}

String contentAttributeOfTagCharacters(Units tag, const WebRules& web) {
    return stringOf(tag, rangeOfContentAttributeOfTagCharacters(tag, web));
}

String attributeOfTagWithName(Units tag, Units name) {
    return stringOf(tag, attributeRange(tag, name, StringRules));
}

String attributeOfStyleWithName(Units style, Units name) {
    return stringOf(style, attributeRange(style, name, StyleRules));
}

String headerFieldNamed(Units header, Units name, HeaderFieldOptions options) {
    return name.empty() ? String() : HeaderReader(header, name, false, options).read();
}

String HTTPHeaderFieldNamed(Units header, Units name) {
    return headerFieldNamed(header, name, {.quotation = u'"', .separator = u','});
}

String headerCharset(Units contentType) {
    return HeaderReader(contentType, u"CHARSET", true, {}).read();
}

String headerRefresh(Units refresh) {
    return HeaderReader(refresh, u"URL", true, {.separator = 0}).read();
}

std::int64_t refreshInterval(Units refresh) { return detail::leadingInteger(refresh); }

TagSize getTagWidth(Units tag, const WebRules& web) {
    if (tag.size() < 10) return {};
    const auto attribute = [&](std::string_view name) {
        return numberOf(tag, rangeOfAttributeOfTagCharacters(tag, name, web));
    };
    if (const std::int64_t width = attribute("WIDTH")) {
        // "heigh" is common enough to be read as what it means.
        const std::int64_t height = attribute("HEIGHT");
        return {width, height ? height : attribute("HEIGH")};
    }
    const Range styleRange = rangeOfAttributeOfTagCharacters(tag, "STYLE", web);
    if (!styleRange.isFound()) return {};
    const Units style = tag.substr(styleRange.location, styleRange.length);
    const auto property = [&](Units name) {
        return numberOf(style, attributeRange(style, name, StyleRules));
    };
    const std::int64_t width = property(u"WIDTH");
    if (width == 0) return {};
    const std::int64_t height = property(u"HEIGHT");
    return {width, height};
}

String backgroundStyleURLOfTagCharacters(Units tag, const WebRules& web) {
    if (tag.size() < 3 || tag[1] == u'/') return {};
    const String style = attributeOfTagCharacters(tag, "STYLE", web);
    if (!detail::keyword::contains(style, "BACKGROUND:") &&
        !detail::keyword::contains(style, "BACKGROUND-IMAGE:"))
        return {};
    if (!detail::keyword::contains(style, "NO-REPEAT")) return {};
    const std::size_t open = detail::keyword::find(style, "URL(");
    if (open == Units::npos) return {};
    const std::size_t close = style.view().find(u')', open + 4);
    if (close == Units::npos) return {};
    Units url = style.view().substr(open + 4, close - open - 4);
    while (url.size() > 1 && url.front() == u'\'' && url.back() == u'\'')
        url = url.substr(1, url.size() - 2);
    return url.empty() ? String() : String(url);
}

}  // namespace velmo
