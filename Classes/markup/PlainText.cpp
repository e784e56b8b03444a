// A handler on the tag scanner that decides which text between the tags counts, and at each tag
// whether a break or a space is due. Flags of hidden elements do not nest: the last tag seen
// decides, as pages forget their closing tags.
//
// What each tag does stands in two places: the table of the tags says which break a tag writes and
// which state it leaves; what is more than that stands in the member that its row names. How text,
// breaks and spaces are written is the matter of markup/PlainTextOutput.h.
#include <velmocore/markup/PlainText.h>

#include <array>
#include <string>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/text/Removal.h>

#include "markup/GoogleMask.h"
#include "markup/MarkupReading.h"
#include "markup/PlainTextOutput.h"
#include "markup/TagName.h"
#include "markup/TagScan.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/LeadingInteger.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using detail::Break;

/// What a body must not count down to when everything counts as body.
/// Closing tags count the depth down, and no page has as many.
constexpr std::int64_t WholePage = std::int64_t(1) << 62;

bool opens(const Tag& tag) {
    const Units whole = tag.whole();
    return isTagOpen(whole) && (tag.web.selfClosing || !isTagClosed(whole));
}
bool closes(const Tag& tag) { return isTagClosed(tag.whole()) && !isTagOpen(tag.whole()); }

bool containsBehind(Units text, Units first, Units second) {
    const std::size_t at = text.find(first);
    return at != Units::npos && text.find(second, at) != Units::npos;
}

std::int64_t styleNumber(Units style, Units name) {
    return detail::leadingInteger(attributeOfStyleWithName(style, name));
}

bool isOneToThree(std::int64_t size) { return size >= 1 && size <= 3; }

/// Whether a tag's style takes its element out of sight.
bool isHiddenStyle(const Tag& tag) {
    const Units style = detail::attributeOf(tag, "STYLE");
    if (style.empty()) return false;
    if (containsBehind(style, u"visibility", u"hidden")) return true;
    if (containsBehind(style, u"display:", u"none")) return true;
    if (detail::keyword::contains(style, "POSITION:ABSOLUTE") &&
        (styleNumber(style, u"TOP") < -1000 || styleNumber(style, u"LEFT") < -1000))
        return true;
    const TagSize size = getTagWidth(tag.whole(), tag.web);
    return size && (isOneToThree(size.width) || size.height < 0 || isOneToThree(size.height));
}

/// The same as browsers have it.
bool isHiddenByWebStyle(const Tag& tag) {
    const Units style = detail::attributeOf(tag, "STYLE");
    const String display = attributeOfStyleWithName(style, u"DISPLAY"),
                 visibility = attributeOfStyleWithName(style, u"VISIBILITY");
    return detail::keyword::beginsWith(display, "NONE") ||
           detail::keyword::beginsWith(visibility, "HIDDEN") ||
           detail::keyword::beginsWith(visibility, "COLLAPSE");
}

bool isHiddenElement(const Tag& tag) {
    if (tag.web.hiddenElements) return isHiddenByWebStyle(tag);
    return detail::keyword::equals(detail::attributeOf(tag, "CLASS"), "HIDDEN") ||
           isHiddenStyle(tag);
}

/// Whether a style asks for letters of one to four points.
bool isTinyFont(Units style) {
    if (!detail::keyword::contains(style, "FONT-SIZE")) return false;
    const std::size_t points = detail::keyword::find(style, "PT");
    if (points == Units::npos || points < 2) return false;
    const char16_t tens = style[points - 2], ones = style[points - 1];
    // With a digit in front it would be ten points and more.
    return !detail::ascii::isDigit(tens) && ones >= u'1' && ones <= u'4';
}

class Converter {
public:
    explicit Converter(const PlainTextOptions& options)
        : options_(options), out_(options), bodyDepth_(options.onlyBody ? 0 : WholePage) {}

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
            const Units text = out_.decoded(tag.text(), {.web = options_.web});
            if (!text.empty()) {
                out_.appendBare(text);
                didOutput_ = true;
            }
        }
        if (detail::keyword::equals(tag.name(), "BODY") ||
            detail::keyword::equals(tag.name(), "NOFRAMES"))
            changeDepth(tag, +1);
        else if (detail::keyword::equals(tag.name(), "HEAD"))
            changeDepth(tag, -1);
        return false;
    }

    bool didOutput() const { return didOutput_; }
    bool didRemoveJunk() const { return out_.didRemoveJunk(); }
    String finish() { return out_.finish(); }

private:
    struct TagRule {
        std::string_view name;
        Break breakIfPending;
        bool leavesForm;                          ///< ends marquee and textarea
        void (Converter::*then)(const Tag& tag);  ///< the rest of what the tag does; may be null
    };
    static const TagRule* ruleOf(const Tag& tag);

    // --- the body ---------------------------------------------------------------------

    void handleOutsideBody(const Tag& tag) {
        if (tag.kind == TagKind::Comment) return noteGoogleComment(tag);
        const Units name = tag.name();
        const bool isNoFrames = detail::keyword::equals(name, "NOFRAMES");
        if (isNoFrames || detail::keyword::equals(name, "NOSCRIPT")) {
            changeDepth(tag, +1);
            clearElements();
            const bool isOpen = !detail::endsElement(tag);
            if (isNoFrames)
                inFrameAlternative_ = isOpen;
            else
                inNoScript_ = isOpen && !options_.noScripts;
        } else if (detail::keyword::equals(name, "BODY")) {
            enterBody(tag);
        } else if (detail::keyword::equals(name, "HEAD")) {
            changeDepth(tag, -1);
            clearElements();
            inFrameAlternative_ = false;
        }
    }

    void changeDepth(const Tag& tag, int step) {
        // Counted, and not a flag, as a body may stand within another.
        if (opens(tag)) bodyDepth_ += step;
        if (closes(tag)) bodyDepth_ -= step;
    }

    void clearElements() {
        inTextarea_ = inMarquee_ = false;
        hiddenFont_ = feedDate_ = hiddenDiv_ = hiddenSpan_ = inOption_ = false;
        backgroundColor_ = String();
    }

    /// What was hidden before the body does not hide the body: heads are full of open tags.
    void enterBody(const Tag& tag) {
        changeDepth(tag, +1);
        clearElements();
        inFrameAlternative_ = false;
        backgroundColor_ = attributeOfTagCharacters(tag.whole(), "BGCOLOR", tag.web);
    }

    /// Text counts as long as it may be indexed.
    void noteGoogleComment(const Tag& tag) {
        if (options_.googleTags) googleMask_.note(tag);
    }

    // --- text -------------------------------------------------------------------------

    void handleText(const Tag& tag) {
        if (!tag.hasText()) return;
        if (options_.removeJunk && detail::keyword::equals(tag.name(), "TITLE")) return;
        if (hiddenDiv_ || hiddenSpan_ || inOption_) return;
        if (isHeldBack())
            noteKeywordStuffing(tag.text());
        else
            out_.appendSpan(tag.text(), linkDepth_ > 0);
    }

    bool isHeldBack() const {
        return inFrameAlternative_ || inNoScript_ || inMarquee_ || inTextarea_ || inTemplate_ ||
               inRubyText_ || (options_.removeJunk && hiddenFont_) ||
               (options_.googleTags &&
                (!googleMask_.allows(detail::GoogleMask::Index) || feedDate_));
    }

    /// Invisible text of a hundred units and more that is mostly long words is there for
    /// search engines only.
    void noteKeywordStuffing(Units text) {
        constexpr std::size_t Shortest = 100, Separators = 5, WordLength = 6;
        if (!hiddenFont_ || out_.didRemoveJunk() || text.size() < Shortest) return;
        text = out_.trimmed(out_.decoded(text, {.web = options_.web}));
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
            out_.noteJunk();
    }

    // --- tags -------------------------------------------------------------------------

    void handleTag(const Tag& tag) {
        if (tag.nameLength == 0) {
            if (tag.kind == TagKind::Comment) noteGoogleComment(tag);
            return;
        }
        const TagRule* rule = ruleOf(tag);
        if (!rule) return;
        // Before the tag's own work: the break belongs to the text in front of the tag.
        if (out_.hasPendingText() && rule->breakIfPending != Break::None)
            out_.writeBreak(rule->breakIfPending);
        if (rule->leavesForm) inMarquee_ = inTextarea_ = false;
        if (rule->then) (this->*rule->then)(tag);
    }

    void changeLinkDepth(const Tag& tag) {
        if (opens(tag)) ++linkDepth_;
        if (closes(tag) && linkDepth_ > 0) --linkDepth_;
    }

    void link(const Tag& tag) {
        changeLinkDepth(tag);
        out_.oweSpace();
    }

    void tableRow(const Tag&) { out_.endRow(); }
    void tableCell(const Tag& tag) {
        if (!options_.tabs)
            out_.separateCell();
        else if (opens(tag))
            out_.beginCell();
    }
    void table(const Tag&) { out_.endTable(); }
    void citation(const Tag&) { out_.separateCitation(); }

    void code(const Tag& tag) {
        out_.separateCitation();
        out_.setPreformatted(opens(tag));
    }

    void preformatted(const Tag& tag) {
        if (opens(tag))
            out_.beginPreformatted();
        else
            out_.setPreformatted(false);
    }

    void plaintext(const Tag& tag) {
        out_.setPreformatted(opens(tag));
        if (opens(tag)) out_.writeBreak(Break::Paragraph);
    }

    void image(const Tag& tag) {
        if (!options_.imageAlts) return;
        out_.oweSpace();
        Units text = detail::attributeOf(tag, "ALT");
        if (text.empty()) text = detail::attributeOf(tag, "TITLE");
        if (text.empty()) return;
        out_.appendSpan(text, linkDepth_ > 0, true);
        out_.oweSpace();
    }

    /// Letters in the colour of the page, or too small to read, are there for search engines.
    void font(const Tag& tag) {
        const Units color = detail::attributeOf(tag, "COLOR");
        hiddenFont_ =
            !backgroundColor_.isAbsent() && detail::keyword::equalNoCase(color, backgroundColor_);
        if (!hiddenFont_) hiddenFont_ = isTinyFont(detail::attributeOf(tag, "STYLE"));
        feedDate_ = detail::attributeOf(tag, "CLASS") == u"feed_date";
    }

    void input(const Tag&) { out_.separate(); }
    void division(const Tag& tag) { hiddenDiv_ = isHiddenElement(tag); }
    void span(const Tag& tag) { hiddenSpan_ = isHiddenElement(tag); }
    void option(const Tag& tag) { inOption_ = opens(tag); }
    void select(const Tag&) { inOption_ = false; }
    /// Its last option is seldom closed.
    void dataList(const Tag&) {
        if (options_.web.hiddenElements) inOption_ = false;
    }
    void marquee(const Tag& tag) { inMarquee_ = opens(tag) && !options_.web.hiddenElements; }
    void textarea(const Tag& tag) { inTextarea_ = opens(tag) && !options_.textareas; }
    void templateElement(const Tag& tag) { inTemplate_ = opens(tag) && options_.web.templates; }
    void rubyText(const Tag& tag) { inRubyText_ = opens(tag) && !options_.rubyText; }
    void rubyBase(const Tag&) { inRubyText_ = false; }
    void frameAlternative(const Tag& tag) { inFrameAlternative_ = opens(tag); }
    /// References mean nothing in it.
    void example(const Tag& tag) {
        if (options_.web.rawText) out_.setDecoding(!opens(tag));
    }
    /// As raw text it is markup that no one is to see.
    void noEmbed(const Tag& tag) {
        if (options_.web.rawText) frameAlternative(tag);
    }
    void noScript(const Tag& tag) { inNoScript_ = opens(tag) && !options_.noScripts; }

    const PlainTextOptions options_;
    detail::PlainTextOutput out_;
    String backgroundColor_;      ///< "BGCOLOR" of the body
    std::int64_t bodyDepth_;      ///< text counts while this is above 0
    std::int64_t linkDepth_ = 0;  ///< open links and headings
    detail::GoogleMask googleMask_;
    bool inMarquee_ = false, inTextarea_ = false;
    bool inFrameAlternative_ = false, inNoScript_ = false;
    bool inTemplate_ = false, inRubyText_ = false;
    bool hiddenFont_ = false, feedDate_ = false;
    bool hiddenDiv_ = false, hiddenSpan_ = false, inOption_ = false;
    bool didOutput_ = false;  ///< the body was reached
};

const Converter::TagRule* Converter::ruleOf(const Tag& tag) {
    using enum detail::Break;
    using C = Converter;
    static constexpr TagRule Rules[] = {
        {"a", None, false, &C::link},
        {"p", Paragraph, false, nullptr},
        {"br", Line, false, nullptr},
        {"dd", Line, false, nullptr},
        {"dl", Line, false, nullptr},
        {"dt", Line, false, nullptr},
        {"hr", Paragraph, false, nullptr},
        {"li", Line, false, nullptr},
        {"ol", Line, false, nullptr},
        {"rb", None, false, &C::rubyBase},
        {"rp", None, false, &C::rubyText},
        {"rt", None, false, &C::rubyText},
        {"td", None, false, &C::tableCell},
        {"th", None, false, &C::tableCell},
        {"tr", Line, false, &C::tableRow},
        {"ul", Line, false, nullptr},
        {"dir", Paragraph, false, nullptr},
        {"div", Paragraph, true, &C::division},
        {"img", None, false, &C::image},
        {"pre", None, true, &C::preformatted},
        {"xmp", None, false, &C::example},
        {"body", None, false, &C::enterBody},
        {"cite", None, false, &C::citation},
        {"code", None, true, &C::code},
        {"font", None, false, &C::font},
        {"menu", Paragraph, false, nullptr},
        {"ruby", None, false, &C::rubyBase},
        {"span", None, false, &C::span},
        {"input", None, true, &C::input},
        {"table", Paragraph, true, &C::table},
        {"iframe", None, false, &C::frameAlternative},
        {"option", None, true, &C::option},
        {"select", None, true, &C::select},
        {"marquee", None, false, &C::marquee},
        {"datalist", None, false, &C::dataList},
        {"noframes", None, false, &C::frameAlternative},
        {"noscript", None, false, &C::noScript},
        {"template", None, false, &C::templateElement},
        {"noembed", None, false, &C::noEmbed},
        {"textarea", None, false, &C::textarea},
        {"h0", Paragraph, true, &C::changeLinkDepth},
        {"h1", Paragraph, true, &C::changeLinkDepth},
        {"h2", Paragraph, true, &C::changeLinkDepth},
        {"h3", Paragraph, true, &C::changeLinkDepth},
        {"h4", Paragraph, true, &C::changeLinkDepth},
        {"h5", Paragraph, true, &C::changeLinkDepth},
        {"h6", Paragraph, true, &C::changeLinkDepth},
        {"h7", Paragraph, true, &C::changeLinkDepth},
        {"h8", Paragraph, true, &C::changeLinkDepth},
        {"h9", Paragraph, true, &C::changeLinkDepth},
    };
    // Names that are too long for a number.
    static constexpr TagRule Blockquote{"BLOCKQUOTE", Paragraph, false, nullptr};
    static constexpr TagRule Plaintext{"PLAINTEXT", None, true, &C::plaintext};

    static constexpr detail::NameTable Table([] {
        std::array<detail::PackedName, std::size(Rules)> names{};
        for (std::size_t i = 0; i < names.size(); ++i) names[i] = detail::packed(Rules[i].name);
        return names;
    }());
    if (tag.nameLength > detail::MaxPackedUnits) {
        if (detail::keyword::equals(tag.name(), Blockquote.name)) return &Blockquote;
        return detail::keyword::equals(tag.name(), Plaintext.name) ? &Plaintext : nullptr;
    }
    const int row = Table.find(detail::packedName(tag));
    return row < 0 ? nullptr : &Rules[row];
}

/// Hands the tags of a walk over the page to a handler; a page of which only the body is asked
/// for and that has none is walked again as a whole.
template <bool (Converter::*Handle)(const Tag&), class Walk>
HtmlPlainText convert(const String& page, const Walk& walk, PlainTextOptions options) {
    for (;;) {
        Converter converter(options);
        auto handler = [&](const Tag& tag) { return (converter.*Handle)(tag); };
        walk(handler);
        if (converter.didOutput()) {
            String text = converter.finish();
            if (options.web.softHyphens) text = stringByRemovingCharacters(text, u'\u00AD');
            return {std::move(text), converter.didRemoveJunk()};
        }
        if (!options.onlyBody || page.isEmpty()) return {page};
        // Twice at most: a walk over the whole page is the last one.
        options.onlyBody = false;
    }
}

}  // namespace

HtmlPlainText detail::plainTextOf(const String& page, TagWalk walk,
                                  const PlainTextOptions& options) {
    return convert<&Converter::handle>(page, walk, options);
}

HtmlPlainText detail::plainTextOf(ByteTagWalk walk, const PlainTextOptions& options) {
    // No handler gives the page itself back, as all write something of one that is not empty.
    return plainTextOf(String(u" "), widened(walk, {}), options);
}

HtmlPlainText plainTextOfHtml(Bytes page, const PlainTextOptions& options,
                              MarkupDecodingOptions decoding) {
    decoding.web = options.web;
    const detail::MarkupReading reading = detail::readMarkup(page, decoding);
    if (!reading.isUTF8()) return plainTextOfHtml(reading.page.text, options);
    return detail::plainTextOf(detail::scanOf(reading.utf8, options.web), options);
}

HtmlPlainText plainTextOfHtml(const String& page, PlainTextOptions options) {
    // A scan of its own type, which has the handler in it.
    const auto scan = [&](auto& handler) { detail::scanTags(page, handler, options.web); };
    return convert<&Converter::handle>(page, scan, options);
}

String stringByConvertingHtml2PlainText(const String& page, PlainTextOptions options) {
    return plainTextOfHtml(page, options).text;
}

String stringByConvertingHtml2ReformattedPlainText(const String& page) {
    return stringByConvertingHtml2PlainText(page, {.reformat = true});
}

String stringByConvertingHtml2SimplifiedPlainText(const String& page, const WebRules& web) {
    const auto scan = [&](TagHandler handler) { GetTagsOfString(page, handler, web); };
    return convert<&Converter::handleSimply>(page, scan, {.onlyBody = true, .web = web}).text;
}

}  // namespace velmo
