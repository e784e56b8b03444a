// A handler on the tag scanner that decides which text between the tags counts, and at each tag
// whether a break or a space is due. Flags of hidden elements do not nest: the last tag seen
// decides, as pages forget their closing tags.
//
// What each tag does stands in two places: markup/PlainTextTags.h says which break a tag writes,
// which state it leaves and what else it does; how that is done stands here. How text, breaks and
// spaces are written is the matter of markup/PlainTextOutput.h.
//
// Pages are units or, where they are UTF-8, bytes. Of the bytes only what is written is ever made
// units, and the few tags of which attributes count.
#include <velmocore/markup/PlainText.h>

#include <string>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/text/Removal.h>

#include "markup/GoogleMask.h"
#include "markup/HiddenElements.h"
#include "markup/MarkupReading.h"
#include "markup/PlainTextOutput.h"
#include "markup/PlainTextTags.h"
#include "markup/TagScan.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using detail::plainText::Action;
using detail::plainText::Break;
using detail::plainText::TagRule;

/// What a body must not count down to when everything counts as body.
/// Closing tags count the depth down, and no page has as many.
constexpr std::int64_t WholePage = std::int64_t(1) << 62;

// What a tag with a name is by its slashes. The shortest one is <x>.

template <class Tag>
bool opens(const Tag& tag) {
    const auto* const whole = tag.characters.data() + tag.tagLocation;
    return whole[1] != '/' && (tag.web.selfClosing || whole[tag.tagLength - 2] != '/');
}
template <class Tag>
bool closes(const Tag& tag) {
    return tag.characters[tag.tagLocation + 1] == '/';
}

/// Where in a page the text is, and what of it is to be seen: one bit each.
enum State : unsigned {
    InMarquee = 1 << 0,
    InTextarea = 1 << 1,
    InFrameAlternative = 1 << 2,
    InNoScript = 1 << 3,
    InTemplate = 1 << 4,
    InRubyText = 1 << 5,
    HiddenFont = 1 << 6,
    FeedDate = 1 << 7,
    NotIndexed = 1 << 8,  ///< switched off by a comment
    HiddenDiv = 1 << 9,
    HiddenSpan = 1 << 10,
    InOption = 1 << 11,
};
constexpr unsigned Form = InMarquee | InTextarea;
constexpr unsigned Dropped = HiddenDiv | HiddenSpan | InOption;
/// What ends with the body in which it began.
constexpr unsigned OfBody = Form | HiddenFont | FeedDate | Dropped;

/// The states that hold text back. Of some the options decide.
unsigned heldBackBy(const PlainTextOptions& options) {
    unsigned states = Form | InFrameAlternative | InNoScript | InTemplate | InRubyText;
    if (options.removeJunk) states |= HiddenFont;
    if (options.googleTags) states |= FeedDate | NotIndexed;
    return states;
}

template <class Tag>
class Converter {
public:
    explicit Converter(const PlainTextOptions& options, std::size_t pageLength)
        : options_(options),
          out_(options, pageLength),
          bodyDepth_(options.onlyBody ? 0 : WholePage) {}

    /// In the scan itself: a call for each tag would save and load as much as most tags need.
    [[gnu::always_inline]] bool operator()(const Tag& tag) {
        if (bodyDepth_ < 1) {
            handleOutsideBody(tag);
        } else {
            if (tag.hasText()) handleText(tag);
            handleTag(tag);
            didOutput_ = true;
        }
        return false;
    }

    /// A text span goes out behind a blank, a tag only opens and closes the body.
    bool handleSimply(const Tag& tag) {
        if (tag.hasText() && bodyDepth_ >= 1) {
            const Units text = out_.decoded(out_.unitsOf(tag.text()), {.web = options_.web});
            if (!text.empty()) {
                out_.appendBare(text);
                didOutput_ = true;
            }
        }
        if (tag.isNamed("BODY") || tag.isNamed("NOFRAMES"))
            changeDepth(tag, +1);
        else if (tag.isNamed("HEAD"))
            changeDepth(tag, -1);
        return false;
    }

    bool didOutput() const { return didOutput_; }
    bool didRemoveJunk() const { return out_.didRemoveJunk(); }
    String finish() { return out_.finish(); }

private:
    void set(unsigned states, bool isOn) { states_ = isOn ? states_ | states : states_ & ~states; }

    // --- the body ---------------------------------------------------------------------

    [[gnu::noinline]] void handleOutsideBody(const Tag& tag) {
        if (tag.kind == TagKind::Comment) return noteGoogleComment(tag);
        const bool isNoFrames = tag.isNamed("NOFRAMES");
        if (isNoFrames || tag.isNamed("NOSCRIPT")) {
            changeDepth(tag, +1);
            clearElements();
            if (isNoFrames)
                set(InFrameAlternative, opens(tag));
            else
                set(InNoScript, opens(tag) && !options_.noScripts);
        } else if (tag.isNamed("BODY")) {
            enterBody(tag);
        } else if (tag.isNamed("HEAD")) {
            changeDepth(tag, -1);
            clearElements();
            set(InFrameAlternative, false);
        }
    }

    void changeDepth(const Tag& tag, int step) {
        // Counted, and not a flag, as a body may stand within another.
        if (opens(tag)) bodyDepth_ += step;
        if (closes(tag)) bodyDepth_ -= step;
    }

    void clearElements() {
        set(OfBody, false);
        backgroundColor_ = String();
    }

    /// What was hidden before the body does not hide the body: heads are full of open tags.
    [[gnu::noinline]] void enterBody(const Tag& tag) {
        changeDepth(tag, +1);
        clearElements();
        set(InFrameAlternative, false);
        backgroundColor_ = attributeOfTagCharacters(unitsOf(tag), "BGCOLOR", tag.web);
    }

    /// Text counts as long as it may be indexed.
    [[gnu::noinline]] void noteGoogleComment(const Tag& tag) {
        if (!options_.googleTags) return;
        googleMask_.note(unitsOf(tag));
        set(NotIndexed, !googleMask_.allows(detail::GoogleMask::Index));
    }

    // --- text -------------------------------------------------------------------------

    [[gnu::always_inline]] void handleText(const Tag& tag) {
        if (options_.removeJunk && tag.isNamed("TITLE")) return;
        const auto text = tag.text();
        if (states_ & unseen_) {
            if (!(states_ & Dropped)) noteKeywordStuffing(text);
            return;
        }
        const std::size_t readable = tag.characters.size() - tag.textLocation;
        out_.appendSpan(text, readable, linkDepth_ > 0);
    }

    /// Invisible text of a hundred units and more that is mostly long words is there for
    /// search engines only.
    template <class Text>
    [[gnu::noinline]] void noteKeywordStuffing(Text span) {
        constexpr std::size_t Shortest = 100, Separators = 5, WordLength = 6;
        if (!(states_ & HiddenFont) || out_.didRemoveJunk() || span.size() < Shortest) return;
        Units text = out_.unitsOf(span);
        if (text.size() < Shortest) return;
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

    [[gnu::always_inline]] void handleTag(const Tag& tag) {
        if (tag.nameLength == 0) {
            if (tag.kind == TagKind::Comment) noteGoogleComment(tag);
            return;
        }
        const TagRule& rule = detail::plainText::ruleOf(tag);
        // Before the tag's own work: the break belongs to the text in front of the tag.
        out_.breakText(rule.breakIfPending);
        states_ &= ~(Form * rule.leavesForm);
        // A quarter of all tags are links, and many others have no action.
        if (rule.action == Action::Link) {
            changeLinkDepth(tag);
            out_.oweSpace();
        } else if (rule.action != Action::None) {
            perform(rule.action, tag);
        }
    }

    /// All actions but those of links.
    [[gnu::noinline]] void perform(Action action, const Tag& tag) {
        switch (action) {
            case Action::Body:
                return enterBody(tag);
            case Action::Cell:
                return cell(tag);
            case Action::Citation:
                return out_.separateCitation();
            case Action::Code:
                return code(tag);
            case Action::Example:
                // References mean nothing in it.
                if (options_.web.rawText) out_.setDecoding(!opens(tag));
                return;
            case Action::Heading:
                return changeLinkDepth(tag);
            case Action::Image:
                return image(tag);
            case Action::Input:
                return out_.separate();
            case Action::Plaintext:
                return plaintext(tag);
            case Action::Preformatted:
                return opens(tag) ? out_.beginPreformatted() : out_.setPreformatted(false);
            case Action::Row:
                return out_.endRow();
            case Action::Table:
                return out_.endTable();
            default:
                return changeStates(action, tag);
        }
    }

    /// What a tag shows or hides.
    void changeStates(Action action, const Tag& tag) {
        const WebRules& web = options_.web;
        switch (action) {
            case Action::Division:
                return set(HiddenDiv, isHidden(tag));
            case Action::Span:
                return set(HiddenSpan, isHidden(tag));
            case Action::Font:
                return font(tag);
            case Action::Option:
                return set(InOption, opens(tag));
            case Action::Select:
                return set(InOption, false);
            case Action::DataList:
                // Its last option is seldom closed.
                return set(InOption * web.hiddenElements, false);
            case Action::FrameAlternative:
                return set(InFrameAlternative, opens(tag));
            case Action::NoEmbed:
                // As raw text it is markup that no one is to see.
                return set(InFrameAlternative * web.rawText, opens(tag));
            case Action::NoScript:
                return set(InNoScript, opens(tag) && !options_.noScripts);
            case Action::Marquee:
                return set(InMarquee, opens(tag) && !web.hiddenElements);
            case Action::Textarea:
                return set(InTextarea, opens(tag) && !options_.textareas);
            case Action::Template:
                return set(InTemplate, opens(tag) && web.templates);
            case Action::RubyText:
                return set(InRubyText, opens(tag) && !options_.rubyText);
            default:
                return set(InRubyText, false);  // a ruby base
        }
    }

    void changeLinkDepth(const Tag& tag) {
        if (opens(tag)) ++linkDepth_;
        if (closes(tag) && linkDepth_ > 0) --linkDepth_;
    }

    void cell(const Tag& tag) {
        if (!options_.tabs)
            out_.separateCell();
        else if (opens(tag))
            out_.beginCell();
    }

    void code(const Tag& tag) {
        out_.separateCitation();
        out_.setPreformatted(opens(tag));
    }

    [[gnu::noinline]] void plaintext(const Tag& tag) {
        out_.setPreformatted(opens(tag));
        if (opens(tag)) out_.writeBreak(Break::Paragraph);
    }

    [[gnu::noinline]] void image(const Tag& tag) {
        if (!options_.imageAlts) return;
        out_.oweSpace();
        const Units whole = unitsOf(tag);
        Units text = detail::attributeOf(whole, "ALT", tag.web);
        if (text.empty()) text = detail::attributeOf(whole, "TITLE", tag.web);
        if (text.empty()) return;
        out_.appendSpan(text, text.size(), linkDepth_ > 0, true);
        out_.oweSpace();
    }

    /// Letters in the colour of the page, or too small to read, are there for search engines.
    [[gnu::noinline]] void font(const Tag& tag) {
        const Units whole = unitsOf(tag);
        const Units color = detail::attributeOf(whole, "COLOR", tag.web);
        set(HiddenFont, (!backgroundColor_.isAbsent() &&
                         detail::keyword::equalNoCase(color, backgroundColor_)) ||
                            detail::isTinyFont(detail::attributeOf(whole, "STYLE", tag.web)));
        set(FeedDate, detail::attributeOf(whole, "CLASS", tag.web) == u"feed_date");
    }

    bool isHidden(const Tag& tag) {
        return detail::mayHide(tag.whole()) && detail::isHiddenElement(unitsOf(tag), tag.web);
    }

    /// The tag in UTF-16: one of bytes is decoded, and good until the next one.
    static Units unitsOf(const velmo::Tag& tag) { return tag.whole(); }
    Units unitsOf(const detail::ByteTag& tag) {
        decodedTag_ = String::fromUTF8(tag.whole());
        return decodedTag_;
    }

    const PlainTextOptions options_;
    detail::PlainTextOutput out_;
    unsigned states_ = 0;
    const unsigned unseen_ = heldBackBy(options_) | Dropped;
    bool didOutput_ = false;      ///< the body was reached
    std::int64_t bodyDepth_;      ///< text counts while this is above 0
    std::int64_t linkDepth_ = 0;  ///< open links and headings
    detail::GoogleMask googleMask_;
    String backgroundColor_;  ///< "BGCOLOR" of the body
    String decodedTag_;
};

std::size_t lengthOf(const String& page) { return page.length(); }
std::size_t lengthOf(std::string_view page) { return page.size(); }
String stringOf(const String& page) { return page; }
String stringOf(std::string_view page) { return String::fromUTF8(page); }

/// Hands the tags of a walk over the page to a converter; a page of which only the body is asked
/// for and that has none is walked again as a whole.
template <class Tag, class Page, class Walk>
HtmlPlainText convert(const Page& page, const Walk& walk, PlainTextOptions options) {
    for (;;) {
        Converter<Tag> converter(options, lengthOf(page));
        walk(converter);
        if (converter.didOutput()) {
            String text = converter.finish();
            if (options.web.softHyphens) text = stringByRemovingCharacters(text, u'\u00AD');
            return {std::move(text), converter.didRemoveJunk()};
        }
        if (!options.onlyBody || lengthOf(page) == 0) return {stringOf(page)};
        // Twice at most: a walk over the whole page is the last one.
        options.onlyBody = false;
    }
}

}  // namespace

HtmlPlainText detail::plainTextOf(const String& page, TagWalk walk,
                                  const PlainTextOptions& options) {
    return convert<Tag>(page, walk, options);
}

HtmlPlainText detail::plainTextOf(const String& page, const TagList& tags,
                                  const PlainTextOptions& options) {
    return convert<Tag>(
        page, [&](auto& handler) { tags.each(handler); }, options);
}

HtmlPlainText detail::plainTextOf(std::string_view utf8, const ByteTagList& tags,
                                  const PlainTextOptions& options) {
    return convert<ByteTag>(
        utf8, [&](auto& handler) { tags.each(handler); }, options);
}

// Scans of their own types, which have the handler in them.

HtmlPlainText plainTextOfHtml(const String& page, PlainTextOptions options) {
    const auto scan = [&](auto& handler) { detail::scanTags(page.view(), handler, options.web); };
    return convert<Tag>(page, scan, options);
}

HtmlPlainText detail::plainTextOfUtf8(std::string_view page, const PlainTextOptions& options) {
    const auto scan = [&](auto& handler) { scanTags(page, handler, options.web); };
    return convert<ByteTag>(page, scan, options);
}

HtmlPlainText plainTextOfHtml(Bytes page, const PlainTextOptions& options,
                              MarkupDecodingOptions decoding) {
    decoding.web = options.web;
    const detail::MarkupReading reading = detail::readMarkup(page, decoding);
    return reading.isUTF8() ? detail::plainTextOfUtf8(reading.utf8, options)
                            : plainTextOfHtml(reading.page.text, options);
}

String stringByConvertingHtml2PlainText(const String& page, PlainTextOptions options) {
    return plainTextOfHtml(page, options).text;
}

String stringByConvertingHtml2ReformattedPlainText(const String& page) {
    return stringByConvertingHtml2PlainText(page, {.reformat = true});
}

String stringByConvertingHtml2SimplifiedPlainText(const String& page, const WebRules& web) {
    const auto scan = [&](auto& converter) {
        GetTagsOfString(
            page, [&](const Tag& tag) { return converter.handleSimply(tag); }, web);
    };
    return convert<Tag>(page, scan, {.onlyBody = true, .web = web}).text;
}

}  // namespace velmo
