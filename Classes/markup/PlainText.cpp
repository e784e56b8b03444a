// A handler on the tag scanner that writes the text between the tags to one output and
// decides at each tag whether a break or a blank is due. Breaks need text between them: a
// tag writes one only while text is pending, that is, written since the last break. Flags
// of hidden elements do not nest; the last tag seen decides.
//
// What each tag does stands in two places: TagRules, the table of the tags, says which break
// a tag writes and which state it leaves; what is more than that stands in the member that
// its row names.
#include <velmocore/markup/PlainText.h>

#include <array>
#include <string>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>

#include "markup/WhiteRuns.h"
#include "text/Keyword.h"
#include "text/LeadingInteger.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// What a body must not count down to when everything counts as body.
constexpr std::int64_t WholePage = std::int64_t(1) << 62;

constexpr std::size_t JunkSpan = 10001;     ///< a span this long is no text
constexpr std::size_t JunkLinkText = 3501;  ///< nor is one in a link or a heading
constexpr std::size_t JunkRun = 20001;      ///< nor is a run without any break
constexpr std::size_t ShortestEncoded = 4;  ///< shorter spans hold no entity
constexpr std::size_t ShortestGoogleComment = 19;

enum GoogleBits : unsigned { Index = 1, Snippet = 2, Anchor = 4, AllBits = 7 };

bool opens(Units tag) { return isTagOpen(tag) && !isTagClosed(tag); }
bool closes(Units tag) { return isTagClosed(tag) && !isTagOpen(tag); }

bool containsBehind(Units text, Units first, Units second) {
    const std::size_t at = text.find(first);
    return at != Units::npos && text.find(second, at) != Units::npos;
}

std::int64_t styleNumber(Units style, Units name) {
    return leadingInteger(attributeOfStyleWithName(style, name));
}

bool isOneToThree(std::int64_t size) { return size >= 1 && size <= 3; }

/// Whether a tag's style takes its element out of sight.
bool isHiddenStyle(Units tag) {
    const Range range = rangeOfAttributeOfTagCharacters(tag, "STYLE");
    if (!range.isFound()) return false;
    const Units style = tag.substr(range.location, range.length);
    if (containsBehind(style, u"visibility", u"hidden")) return true;
    if (containsBehind(style, u"display:", u"none")) return true;
    if (keyword::contains(style, "POSITION:ABSOLUTE") &&
        (styleNumber(style, u"TOP") < -1000 || styleNumber(style, u"LEFT") < -1000))
        return true;
    const TagSize size = getTagWidthHeight(tag);
    return size && (isOneToThree(size.width) || size.height < 0 || isOneToThree(size.height));
}

bool isHiddenElement(Units tag) {
    return keyword::equals(attributeOfTagCharacters(tag, "CLASS"), "HIDDEN") || isHiddenStyle(tag);
}

/// Whether a style asks for letters of one to four points.
bool isTinyFont(Units style) {
    if (!keyword::contains(style, "FONT-SIZE")) return false;
    const std::size_t points = keyword::find(style, "PT");
    if (points == Units::npos || points < 2) return false;
    const char16_t tens = style[points - 2], ones = style[points - 1];
    return !(tens >= u'0' && tens <= u'9') && ones >= u'1' && ones <= u'4';
}

class Converter {
public:
    explicit Converter(const PlainTextOptions& options)
        : options_(options), bodyDepth_(options.onlyBody ? 0 : WholePage) {}

    bool handle(const Tag& tag) {
        if (bodyDepth_ < 1) {
            handleOutsideBody(tag);
        } else {
            handleText(tag);
            handleTag(tag);
            didOutput_ = true;
        }
        return false;
    }

    /// A text span goes out behind a blank, a tag only opens and closes the body.
    bool handleSimply(const Tag& tag) {
        if (tag.hasText() && bodyDepth_ >= 1) {
            const Units text = decoded(tag.text(), {});
            if (!text.empty()) {
                out_.append(u' ');
                out_.append(text);
                didOutput_ = true;
            }
        }
        if (keyword::equals(tag.name(), "BODY") || keyword::equals(tag.name(), "NOFRAMES"))
            changeDepth(tag.whole(), +1);
        else if (keyword::equals(tag.name(), "HEAD"))
            changeDepth(tag.whole(), -1);
        return false;
    }

    bool didOutput() const { return didOutput_; }
    bool didRemoveJunk() const { return didRemoveJunk_; }
    String finish() { return out_.finish(); }

private:
    enum class Break { None, Line, Paragraph };

    struct TagRule {
        std::string_view name;
        Break breakIfPending;
        bool leavesForm;                     ///< ends marquee and textarea
        void (Converter::*then)(Units tag);  ///< the rest of what the tag does; may be null
    };
    static const TagRule* ruleOf(Units name);

    // --- the body ---------------------------------------------------------------------

    void handleOutsideBody(const Tag& tag) {
        if (tag.kind == TagKind::Comment) return noteGoogleComment(tag);
        const Units name = tag.name();
        const bool isNoFrames = keyword::equals(name, "NOFRAMES");
        if (isNoFrames || keyword::equals(name, "NOSCRIPT")) {
            changeDepth(tag.whole(), +1);
            clearElements();
            (isNoFrames ? inFrameAlternative_ : inNoScript_) = !isTagClosed(tag.whole());
        } else if (keyword::equals(name, "BODY")) {
            enterBody(tag.whole());
        } else if (keyword::equals(name, "HEAD")) {
            changeDepth(tag.whole(), -1);
            clearElements();
            inFrameAlternative_ = false;
        }
    }

    void changeDepth(Units tag, int step) {
        if (opens(tag)) bodyDepth_ += step;
        if (closes(tag)) bodyDepth_ -= step;
    }

    void clearElements() {
        inTextarea_ = inMarquee_ = false;
        hiddenFont_ = feedDate_ = hiddenDiv_ = hiddenSpan_ = inOption_ = false;
        backgroundColor_ = String();
    }

    void enterBody(Units tag) {
        changeDepth(tag, +1);
        clearElements();
        inFrameAlternative_ = false;
        backgroundColor_ = attributeOfTagCharacters(tag, "BGCOLOR");
    }

    void noteGoogleComment(const Tag& tag) {
        if (!options_.googleTags || tag.tagLength < ShortestGoogleComment) return;
        const Units comment = tag.whole();
        const bool on = keyword::contains(comment, "GOOGLEON:");
        if (!on && !keyword::contains(comment, "GOOGLEOFF:")) return;
        unsigned bits = 0;
        if (keyword::contains(comment, "INDEX")) bits |= Index;
        if (keyword::contains(comment, "SNIPPET")) bits |= Snippet;
        if (keyword::contains(comment, "ANCHOR")) bits |= Anchor;
        if (keyword::contains(comment, "ALL")) bits = AllBits;
        googleMask_ = on ? googleMask_ | bits : googleMask_ & ~bits;
    }

    // --- text -------------------------------------------------------------------------

    void handleText(const Tag& tag) {
        if (!tag.hasText()) return;
        if (options_.removeJunk && keyword::equals(tag.name(), "TITLE")) return;
        if (hiddenDiv_ || hiddenSpan_ || inOption_) return;
        if (isHeldBack())
            noteKeywordStuffing(tag.text());
        else
            appendRangeToPlainText(tag.text());
    }

    bool isHeldBack() const {
        return inFrameAlternative_ || inNoScript_ || inMarquee_ || inTextarea_ ||
               (options_.removeJunk && hiddenFont_) ||
               (options_.googleTags && (!(googleMask_ & Index) || feedDate_));
    }

    /// Invisible text of a hundred units and more that is mostly long words is there for
    /// search engines only.
    void noteKeywordStuffing(Units text) {
        constexpr std::size_t Shortest = 100, Separators = 5, WordLength = 6;
        if (!hiddenFont_ || didRemoveJunk_ || text.size() < Shortest) return;
        text = trimmed(decoded(text, {}));
        if (text.size() < Shortest) return;
        const CharacterSetRep& alphaNum = alphaNumCharacterSetRep();
        std::size_t separators = 0, units = 0;
        bool inSeparator = false;
        for (char16_t unit : text) {
            const bool isWordUnit = alphaNum.contains(unit);
            units += isWordUnit;
            separators += !isWordUnit && !inSeparator;
            inSeparator = !isWordUnit;
        }
        if (units >= Shortest && separators >= Separators && units / separators >= WordLength)
            didRemoveJunk_ = true;
    }

    /// Writes one span of text.
    void appendRangeToPlainText(Units span) {
        if (options_.removeJunk && ((span.size() >= JunkSpan && collapseWhite_) ||
                                    (span.size() >= JunkLinkText && linkDepth_ > 0))) {
            didRemoveJunk_ = true;
            blankOwed_ = collapseWhite_;
            return;
        }
        Units text = decoded(span, options_);
        if (text.empty()) {
            blankOwed_ = collapseWhite_;
            return;
        }
        const bool startsWhite = isWhite(text.front());
        const bool endsWhite = isWhite(text.back());
        if (collapseWhite_) {
            text = trimmed(text);
            if (text.empty()) {
                blankOwed_ = true;
                return;
            }
        }
        // Breaks and blanks are never longer than what they stand for, but for a
        // paragraph break that stands for one unit of two.
        out_.prepare(text.size() + 2);
        if (startsWhite) blankOwed_ = true;
        if (blankOwed_ && (pendingText_ || (!collapseWhite_ && !lastIsWhite()))) out_.append(u' ');
        if (collapseWhite_ || !options_.reformat)
            copyPlain(text, endsWhite);
        else
            copyReformatted(text);
    }

    void copyPlain(Units text, bool endsWhite) {
        char16_t* const start = out_.prepare(text.size());
        const char16_t* const end =
            detail::copyCollapsingWhite(text.data(), text.data() + text.size(), start, white_);
        out_.commit(static_cast<std::size_t>(end - start));
        if (dropJunkRun()) return;
        blankOwed_ = endsWhite;
        pendingText_ = true;
    }

    /// Copies preformatted text and takes its soft line wraps apart.
    void copyReformatted(Units text) {
        for (std::size_t i = 0; i < text.size();) {
            const std::size_t feeds = skipFeeds(text, i);
            if (feeds >= 2 || (feeds == 1 && i < text.size() && keepsBreak(text[i]))) {
                if (dropJunkRun()) return;
                out_.append(feeds >= 2 ? Units(u"\n\n") : Units(u"\n"));
                lastBreak_ = out_.length();
            } else if (feeds == 1 && i < text.size() && !lastIsWhite()) {
                out_.append(u' ');
            }
            if (i < text.size() && space_.contains(text[i])) {
                while (i < text.size() && space_.contains(text[i])) ++i;
                out_.append(u' ');
            }
            if (i < text.size() && !isFeedUnit(text[i])) out_.append(text[i++]);
        }
        if (dropJunkRun()) return;
        if (out_.length() > lastBreak_) pendingText_ = true;
    }

    /// Skips line endings, CR LF counting as one, and gives their number.
    static std::size_t skipFeeds(Units text, std::size_t& i) {
        std::size_t count = 0;
        for (; i < text.size() && isFeedUnit(text[i]); ++i, ++count)
            if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
        return count;
    }

    /// Whether a line that starts with the unit is indented text, a list, a path, a quote
    /// or the end of a block, so that the line break before it is meant.
    static bool keepsBreak(char16_t unit) {
        return unit == u' ' || unit == u'-' || unit == u'/' || unit == u'>' || unit == u'}';
    }

    /// Takes back what was written since the last break if it is too long to be text.
    bool dropJunkRun() {
        if (!options_.removeJunk || out_.length() - lastBreak_ < JunkRun) return false;
        didRemoveJunk_ = true;
        out_.truncate(lastBreak_);
        return true;
    }

    /// The span with its entities decoded; a view of the span itself if it has none.
    Units decoded(Units span, const PlainTextOptions& options) {
        if (span.size() < ShortestEncoded) return span;
        const bool maps = options.entities && options.nonUmlauted;
        if (!options.entities && !options.stdEntities) return span;
        if (!maps &&
            scan::find(span.data(), span.data() + span.size(), u'&') == span.data() + span.size())
            return span;
        scratch_.assign(span);
        const std::size_t length =
            options.entities
                ? convertEntities2Characters(
                      scratch_.data(), scratch_.data(), 0, scratch_.size(),
                      {.convertStandard = options.stdEntities, .nonUmlauted = options.nonUmlauted})
                : convertStdEntities2Characters(scratch_.data(), scratch_.size());
        return Units(scratch_).substr(0, length);
    }

    Units trimmed(Units text) const {
        while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
        while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
        return text;
    }

    bool isWhite(char16_t unit) const { return detail::isWhiteUnit(unit, white_); }
    /// True if nothing is written yet.
    bool lastIsWhite() const { return out_.isEmpty() || isWhite(out_.back()); }

    // --- tags -------------------------------------------------------------------------

    void handleTag(const Tag& tag) {
        const Units name = tag.name();
        if (name.empty()) {
            if (tag.kind == TagKind::Comment) noteGoogleComment(tag);
            return;
        }
        const bool isHeading = name.size() == 2 && keyword::upper(name[0]) == u'H' &&
                               name[1] >= u'0' && name[1] <= u'9';
        const TagRule* rule = isHeading ? &HeadingRule : ruleOf(name);
        if (!rule) return;
        if (pendingText_ && rule->breakIfPending != Break::None) writeBreak(rule->breakIfPending);
        if (rule->leavesForm) inMarquee_ = inTextarea_ = false;
        if (rule->then) (this->*rule->then)(tag.whole());
    }

    void writeBreak(Break kind) {
        out_.append(kind == Break::Paragraph ? Units(u"\n\n") : Units(u"\n"));
        lastBreak_ = out_.length();
        pendingText_ = blankOwed_ = false;
    }

    /// Writes a blank behind text, or owes it where one stands already.
    void separate() {
        blankOwed_ = lastIsWhite();
        if (!blankOwed_) out_.append(u' ');
    }

    void changeLinkDepth(Units tag) {
        if (opens(tag)) ++linkDepth_;
        if (closes(tag) && linkDepth_ > 0) --linkDepth_;
    }

    void link(Units tag) {
        changeLinkDepth(tag);
        blankOwed_ = true;
    }

    void tableRow(Units) {
        if (!out_.isEmpty() && !isFeedUnit(out_.back())) writeBreak(Break::Line);
    }

    void tableCell(Units) {
        if (pendingText_) {
            separate();
            pendingText_ = false;
        } else if (!lastIsWhite()) {
            out_.append(u' ');
        }
    }

    void table(Units) {
        if (out_.length() < 2) return;
        const Units written = out_.view();
        if (!isFeedUnit(written.back()))
            writeBreak(Break::Paragraph);
        else if (!isFeedUnit(written[written.size() - 2]))
            writeBreak(Break::Line);
    }

    void citation(Units) {
        if (!pendingText_ || lastIsWhite()) return;
        out_.append(u' ');
        blankOwed_ = false;
    }

    void code(Units tag) {
        citation(tag);
        collapseWhite_ = !opens(tag);
    }

    void preformatted(Units tag) {
        collapseWhite_ = !opens(tag);
        if (!collapseWhite_ && (pendingText_ || blankOwed_)) writeBreak(Break::Paragraph);
    }

    void plaintext(Units tag) {
        collapseWhite_ = !opens(tag);
        if (!collapseWhite_) writeBreak(Break::Paragraph);
    }

    void image(Units tag) {
        if (!options_.imageAlts) return;
        blankOwed_ = true;
        Range text = rangeOfAttributeOfTagCharacters(tag, "ALT");
        if (!text.isFound()) text = rangeOfAttributeOfTagCharacters(tag, "TITLE");
        if (!text.isFound()) return;
        appendRangeToPlainText(tag.substr(text.location, text.length));
        blankOwed_ = true;
    }

    void font(Units tag) {
        const String color = attributeOfTagCharacters(tag, "COLOR");
        hiddenFont_ = !backgroundColor_.isAbsent() && keyword::equalNoCase(color, backgroundColor_);
        if (!hiddenFont_) hiddenFont_ = isTinyFont(attributeOfTagCharacters(tag, "STYLE"));
        feedDate_ = attributeOfTagCharacters(tag, "CLASS") == u"feed_date";
    }

    void input(Units) { separate(); }
    void division(Units tag) { hiddenDiv_ = isHiddenElement(tag); }
    void span(Units tag) { hiddenSpan_ = isHiddenElement(tag); }
    void option(Units tag) { inOption_ = opens(tag); }
    void select(Units) { inOption_ = false; }
    void marquee(Units tag) { inMarquee_ = opens(tag); }
    void textarea(Units tag) { inTextarea_ = opens(tag); }
    void frameAlternative(Units tag) { inFrameAlternative_ = opens(tag); }
    void noScript(Units tag) { inNoScript_ = opens(tag); }

    static constexpr TagRule HeadingRule{"", Break::Paragraph, true, &Converter::changeLinkDepth};

    const PlainTextOptions options_;
    StringBuilder out_;
    std::u16string scratch_;      ///< a span while its entities are decoded
    std::size_t lastBreak_ = 0;   ///< length of the output behind its last break
    String backgroundColor_;      ///< "BGCOLOR" of the body
    std::int64_t bodyDepth_;      ///< text counts while this is above 0
    std::int64_t linkDepth_ = 0;  ///< open links and headings
    unsigned googleMask_ = AllBits;
    bool inMarquee_ = false, inTextarea_ = false;
    bool inFrameAlternative_ = false, inNoScript_ = false;
    bool hiddenFont_ = false, feedDate_ = false;
    bool hiddenDiv_ = false, hiddenSpan_ = false, inOption_ = false;
    bool pendingText_ = false;   ///< text was written since the last break
    bool collapseWhite_ = true;  ///< outside preformatted text
    bool blankOwed_ = false;     ///< the next text starts with a blank
    bool didOutput_ = false;     ///< the body was reached
    bool didRemoveJunk_ = false;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
    const CharacterSetRep& space_ = spaceCharacterSetRep();
};

const Converter::TagRule* Converter::ruleOf(Units name) {
    using enum Break;
    using C = Converter;
    // By length and first letter, so that a name is compared with few others.
    static constexpr TagRule Rules[] = {
        {"A", None, false, &C::link},
        {"P", Paragraph, false, nullptr},
        {"BR", Line, false, nullptr},
        {"DD", Line, false, nullptr},
        {"DL", Line, false, nullptr},
        {"DT", Line, false, nullptr},
        {"HR", Paragraph, false, nullptr},
        {"LI", Line, false, nullptr},
        {"OL", Line, false, nullptr},
        {"TD", None, false, &C::tableCell},
        {"TH", None, false, &C::tableCell},
        {"TR", Line, false, &C::tableRow},
        {"UL", Line, false, nullptr},
        {"DIR", Paragraph, false, nullptr},
        {"DIV", Paragraph, true, &C::division},
        {"IMG", None, false, &C::image},
        {"PRE", None, true, &C::preformatted},
        {"BODY", None, false, &C::enterBody},
        {"CITE", None, false, &C::citation},
        {"CODE", None, true, &C::code},
        {"FONT", None, false, &C::font},
        {"MENU", Paragraph, false, nullptr},
        {"SPAN", None, false, &C::span},
        {"INPUT", None, true, &C::input},
        {"TABLE", Paragraph, true, &C::table},
        {"IFRAME", None, false, &C::frameAlternative},
        {"OPTION", None, true, &C::option},
        {"SELECT", None, true, &C::select},
        {"MARQUEE", None, false, &C::marquee},
        {"NOFRAMES", None, false, &C::frameAlternative},
        {"NOSCRIPT", None, false, &C::noScript},
        {"TEXTAREA", None, false, &C::textarea},
        {"PLAINTEXT", None, true, &C::plaintext},
        {"BLOCKQUOTE", Paragraph, false, nullptr},
    };
    constexpr std::size_t Longest = 10;
    // Row of the first rule for each length and first letter; the next entry ends them.
    static constexpr auto FirstRow = [] {
        std::array<std::uint8_t, (Longest + 1) * 26 + 1> first{};
        std::size_t row = 0;
        for (std::size_t slot = 0; slot < first.size(); ++slot) {
            while (row < std::size(Rules) &&
                   Rules[row].name.size() * 26 +
                           static_cast<std::size_t>(Rules[row].name[0] - 'A') <
                       slot)
                ++row;
            first[slot] = static_cast<std::uint8_t>(row);
        }
        return first;
    }();
    const unsigned letter = keyword::upper(name[0]) - u'A';
    if (name.size() > Longest || letter >= 26) return nullptr;
    const std::size_t slot = name.size() * 26 + letter;
    for (std::size_t row = FirstRow[slot]; row < FirstRow[slot + 1]; ++row)
        if (keyword::equals(name, Rules[row].name)) return &Rules[row];
    return nullptr;
}

using Handler = bool (Converter::*)(const Tag&);

/// Runs a handler over the page; a page of which only the body is asked for and that has
/// none is run again as a whole.
String convert(const String& page, PlainTextOptions options, Handler handler,
               bool* didRemoveJunk = nullptr) {
    if (didRemoveJunk) *didRemoveJunk = false;
    for (;;) {
        Converter converter(options);
        const bool scanned =
            parseXmlWithHandler(page, [&](const Tag& tag) { return (converter.*handler)(tag); });
        if (converter.didOutput()) {
            if (didRemoveJunk) *didRemoveJunk = converter.didRemoveJunk();
            return converter.finish();
        }
        if (!options.onlyBody || !scanned) return page;
        options.onlyBody = false;
    }
}

}  // namespace

String stringByConvertingHtml2PlainText(const String& page, PlainTextOptions options,
                                        bool* didRemoveJunk) {
    return convert(page, options, &Converter::handle, didRemoveJunk);
}

String stringByConvertingHtml2ReformattedPlainText(const String& page) {
    return stringByConvertingHtml2PlainText(page, {.reformat = true});
}

String stringByConvertingHtml2SimplifiedPlainText(const String& page) {
    return convert(page, {.onlyBody = true}, &Converter::handleSimply);
}

}  // namespace velmo
