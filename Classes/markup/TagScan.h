// The scan knows three states besides text: in a tag, in a comment, in a declaration. In
// each only a few units matter, so that the scan is a chain of searches for the next of
// them and never looks at a unit twice, but for these two:
//
// - A quote mark opens a value only behind an =, and while it is open only its twin
//   matters. At most one kind of quote is open at a time.
// - The body of a script or style element is swallowed up to its closing text, which is
//   searched ahead. A page may hold any number of opening tags without one, so each
//   search remembers what it found: the whole scan stays linear in the page.
//
// Scans by the rules of WebRules are instances of their own, so that the others pay nothing for
// them: what they do otherwise stands beside what they replace, and asks for its rule there.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/markup/TagScanner.h>
#include <velmocore/text/CharacterSets.h>

#include "markup/MarkIndex.h"
#include "markup/WebTags.h"
#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/PatternScan.h"
#include "text/UnitScan.h"

namespace velmo::detail {

/// Searches one needle from positions that never go back, and remembers the last hit: as
/// long as the next search begins in front of it, it is the answer again.
template <class Find>
class ForwardSearch {
public:
    explicit ForwardSearch(Find find) : find_(find) {}

    /// The first hit at or behind the position; null if there is none.
    const char16_t* from(const char16_t* position) {
        // Without any hit there is none behind a later position either.
        if (!searched_ || (hit_ && hit_ < position)) {
            hit_ = find_(position);
            searched_ = true;
        }
        return hit_;
    }

private:
    Find find_;
    const char16_t* hit_ = nullptr;
    bool searched_ = false;
};

/// The first place that begins with the ASCII text, which is in capitals and starts with
/// two units that are no letters; null if there is none.
inline const char16_t* findText(const char16_t* from, const char16_t* to, std::string_view needle) {
    const auto length = static_cast<std::ptrdiff_t>(needle.size());
    if (to - from < length) return nullptr;
    const auto starts = static_cast<std::size_t>(to - from - length + 1);
    const Anchor first = exactAnchor(0, static_cast<char16_t>(needle[0]));
    const Anchor second = exactAnchor(1, static_cast<char16_t>(needle[1]));
    for (std::size_t start = 0;; ++start) {
        start = nextCandidate(from, start, starts, first, second);
        if (start == starts) return nullptr;
        if (keyword::beginsWith({from + start, to}, needle)) return from + start;
    }
}

struct TextFinder {
    const char16_t* end;
    std::string_view needle;
    const char16_t* operator()(const char16_t* from) const { return findText(from, end, needle); }
};

/// Finds where the body of a script or a style element ends.
class RawElement {
public:
    RawElement(const char16_t* end, std::string_view name, std::string_view closing)
        : name_(name),
          closingLength_(closing.size()),
          end_(end),
          closing_({end, closing}),
          commentEnd_({end, "-->"}),
          closingBehindComment_({end, closing}) {}

    bool isNamed(std::u16string_view name) const { return keyword::equals(name, name_); }

    /// The place of the > that ends the element opened at a tag, end if there is a closing
    /// text and no > behind it, and null if there is no closing text.
    const char16_t* endOf(const char16_t* tag) {
        const char16_t* closing = closing_.from(tag + 1);
        if (!closing) return nullptr;
        // A body wrapped in a comment may hold the closing text in a string.
        // Only up to the closing text: a comment behind it is none of this element's.
        if (const char16_t* comment = findText(tag, closing, "<!-"))
            if (const char16_t* commentEnd = commentEnd_.from(comment))
                if (const char16_t* behind = closingBehindComment_.from(commentEnd))
                    closing = behind;
        return scan::find(closing + closingLength_, end_, u'>');
    }

private:
    using Search = ForwardSearch<TextFinder>;

    std::string_view name_;
    std::size_t closingLength_;
    const char16_t* end_;
    Search closing_, commentEnd_, closingBehindComment_;
};

/// Whether there is any rule by which a scan differs.
constexpr bool changesScans(const WebRules& web) {
    return web.attributes || web.tagBounds || web.comments || web.rawText || web.selfClosing;
}

/// What a text is. A feed is read as images in pages are: all its elements may close themselves,
/// and only scripts and styles hold no tags.
enum class Markup : std::uint8_t { Page, Feed };

/// Calls the handler, which is one of any type, for all tags of a text. ByWeb says whether the
/// rules of pages of today count at all.
template <class Handler, bool ByWeb = false>
class TagScan {
public:
    TagScan(std::u16string_view text, Handler& handler, const WebRules& web = {},
            Markup markup = Markup::Page)
        : handler_(handler),
          begin_(text.data()),
          end_(begin_ + text.size()),
          marks_(text),
          script_(end_, "SCRIPT", "</SCRIPT"),
          style_(end_, "STYLE", "</STYLE"),
          web_(web),
          foreign_(markup == Markup::Feed),
          behindText_(begin_) {
        tag_.characters = text;
        tag_.web = web;
    }

    void run() {
        const char16_t* at = begin_;
        while ((at = marks_.less(at)) != end_) {
            if (!beginsTag(at)) {
                ++at;
                continue;
            }
            if constexpr (!ByWeb && requires { Handler::passesOver(at[1]); }) {
                // Nothing but its end is asked of most tags.
                if (end_ - at > 1 && Handler::passesOver(at[1])) {
                    at = endOfOpenTag(at + 1);
                    if (at == end_) break;
                    ++at;
                    tag_.textLocation = static_cast<std::uint64_t>(at - begin_);
                    continue;
                }
            }
            start(at);
            const char16_t* last = endOfTag(at);
            if (last == end_ && !isRawElement_) {
                reportUnterminated();
                break;
            }
            if (report(last + 1)) return;
            at = std::max(behindText_, std::min(last + 1, end_));
        }
        finish();
    }

private:
    /// Whether the < there is more than a sign in the text.
    bool beginsTag(const char16_t* at) const {
        if (!ByWeb || !web_.tagBounds) return true;
        if (end_ - at < 2) return false;
        if (at[1] == u'/') return end_ - at > 2;
        return ascii::isLetter(at[1]) || at[1] == u'!' || at[1] == u'?';
    }

    /// Tells comments and declarations from tags.
    void start(const char16_t* at) {
        tag_.tagLocation = static_cast<std::uint64_t>(at - begin_);
        tag_.kind = TagKind::Element;
        tag_.nameLocation = NotFound;
        tag_.nameLength = 0;
        isRawElement_ = false;
        if (end_ - at > 2 && at[1] == u'!') {
            if (at[2] == u'[') tag_.kind = TagKind::Declaration;
            if (at[2] == u'-') tag_.kind = TagKind::Comment;
        }
    }

    /// Whether elements that stand there are not those of HTML.
    bool isForeign() const { return foreign_.isInside(); }

    /// The place of the > that ends the tag; end if nothing does.
    const char16_t* endOfTag(const char16_t* at) {
        if (ByWeb && web_.comments && isMarked(at)) return endOfMarked(at);
        switch (tag_.kind) {
            case TagKind::Comment:
                return endOfComment(at);
            case TagKind::Declaration:
                return endOfDeclaration(at);
            default:
                return endOfElement(at);
        }
    }

    /// Whether it is a comment, a declaration, or what the standard takes for a comment.
    bool isMarked(const char16_t* at) const {
        return end_ - at > 1 && (at[1] == u'!' || at[1] == u'?' ||
                                 (at[1] == u'/' && !(end_ - at > 2 && ascii::isLetter(at[2]))));
    }

    const char16_t* endOfMarked(const char16_t* at) {
        const std::u16string_view text(at, static_cast<std::size_t>(end_ - at));
        if (text.starts_with(u"<!--")) return endOfWebComment(at);
        if (text.starts_with(u"<![CDATA[") && isForeign()) return endOfSection(at);
        if (text.starts_with(u"<![")) return marks_.greater(at + 3);
        const char16_t* last = marks_.greater(at + 2);
        if (keyword::beginsWith(text, "<!DOCTYPE") || keyword::beginsWith(text, "<?XML"))
            findName(at + 1, last);
        else
            tag_.kind = TagKind::Comment;
        return last;
    }

    const char16_t* endOfWebComment(const char16_t* at) {
        const char16_t* const text = at + 4;
        // The hyphens of --> may be those that open the comment, but not those of --!>.
        for (at = text; (at = marks_.greater(at)) != end_; ++at) {
            if (at[-1] == u'-' && at[-2] == u'-') return at;
            if (at - text > 2 && at[-1] == u'!' && at[-2] == u'-' && at[-3] == u'-') return at;
        }
        return end_;
    }

    const char16_t* endOfSection(const char16_t* at) const {
        constexpr std::u16string_view Opening = u"<![CDATA[";
        for (at += Opening.size(); (at = scan::find(at, end_, u']')) != end_; ++at)
            if (end_ - at > 2 && at[1] == u']' && at[2] == u'>') return at + 2;
        return end_;
    }

    const char16_t* endOfComment(const char16_t* at) {
        // What was opened with one hyphen closes with one.
        const bool isShort = !(end_ - at > 3 && at[3] == u'-');
        for (at += 3; (at = marks_.greater(at)) != end_; ++at) {
            if (isShort ? at[-1] == u'-'
                        : (at[-1] == u'-' && at[-2] == u'-') ||
                              (at[-1] == u'!' && at[-2] == u'-' && at[-3] == u'-'))
                return at;
        }
        return end_;
    }

    /// Looked for by its bracket: a CDATA section may hold a page, which is full of >.
    const char16_t* endOfDeclaration(const char16_t* at) {
        for (at += 3; (at = scan::find(at, end_, u']')) < end_; ++at) {
            if (end_ - at > 1 && at[1] == u'>') return at + 1;
            if (end_ - at > 3 && at[1] == u'-' && at[2] == u'-' && at[3] == u'>') return at + 3;
        }
        return end_;
    }

    const char16_t* endOfElement(const char16_t* at) {
        const char16_t* last =
            ByWeb && web_.attributes ? endOfWebTag(nameWebTag(at)) : endOfOpenTag(at + 1);
        if (last == end_) return end_;
        if (tag_.nameLength == 0) findName(at + 1, last);
        if constexpr (ByWeb)
            if (web_.rawText || web_.selfClosing) return endOfWebElement(at, last);
        return endOfOwnBody(at, last);
    }

    const char16_t* endOfOwnBody(const char16_t* at, const char16_t* last) {
        if (RawElement* raw = rawElement(at, last)) {
            if (const char16_t* rawEnd = raw->endOf(at)) {
                isRawElement_ = true;
                return rawEnd;
            }
        }
        return last;
    }

    const char16_t* endOfOpenTag(const char16_t* at) {
        for (;;) {
            at = marks_.equalOrGreater(at);
            if (at == end_ || *at == u'>') return at;
            // White space may stand between the = and its value, so the next quote mark opens one
            // too.
            if (!(++at < end_ && (*at == u'"' || *at == u'\''))) at = marks_.quoteOrGreater(at);
            if (at == end_ || *at == u'>') return at;
            at = *at == u'"' ? marks_.doubleQuote(at + 1) : marks_.singleQuote(at + 1);
            if (at == end_) return at;
            ++at;
        }
    }

    /// Names a tag before its end is known; gives the place behind the name.
    const char16_t* nameWebTag(const char16_t* at) {
        ++at;
        if (at != end_ && *at == u'/') ++at;
        if (at == end_ || !ascii::isLetter(*at)) return at;
        const char16_t* const nameEnd = endOfName(at + 1, end_);
        tag_.nameLocation = static_cast<std::uint64_t>(at - begin_);
        tag_.nameLength = static_cast<std::uint64_t>(nameEnd - at);
        return nameEnd;
    }

    /// The end of a tag whose name ends there. A quote mark opens a value right behind its = only.
    const char16_t* endOfWebTag(const char16_t* attributes) {
        for (const char16_t* at = attributes;;) {
            at = marks_.equalOrGreater(at);
            if (at == end_ || *at == u'>') return at;
            if (!webTags::isAssignment(attributes, at++)) continue;
            at = webTags::skipWhite(at, end_);
            if (at == end_) return at;
            if (!webTags::isQuote(*at)) {
                attributes = at = webTags::endOfPlainValue(at, end_);
                continue;
            }
            at = *at == u'"' ? marks_.doubleQuote(at + 1) : marks_.singleQuote(at + 1);
            if (at == end_) return at;
            attributes = ++at;
        }
    }

    /// The end of the element if that is one tag with its text. Where the text of another ends is
    /// noted: there the scan goes on.
    const char16_t* endOfWebElement(const char16_t* at, const char16_t* last) {
        // Most tags are told by one look.
        if (!foreign_.isOpen() && (at[1] == u'/' || !webTags::mayBeSpecial(tag_))) return last;
        const bool isSingle = last[-1] == u'/' && (isForeign() || !web_.selfClosing);
        if (last[-1] != u'/') foreign_.note(tag_, at[1] == u'/');
        const webTags::RawElement* raw = at[1] == u'/' ? nullptr : webTags::rawElement(tag_);
        if (!raw || isSingle) return last;
        if (raw->isReportedWhole) {
            if (!web_.rawText) return endOfOwnBody(at, last);
            isRawElement_ = true;
            const char16_t* const closing =
                raw->name == "SCRIPT" ? webTags::findEndOfScript(last + 1, end_)
                                      : webTags::findClosing(last + 1, end_, raw->closing);
            if (closing == end_) return end_;
            return web_.attributes ? endOfWebTag(webTags::endOfName(closing, end_))
                                   : marks_.greater(closing);
        }
        if (web_.rawText && !isForeign())
            behindText_ = webTags::findClosing(last + 1, end_, raw->closing);
        return last;
    }

    void findName(const char16_t* at, const char16_t* last) {
        at += *at == u'/';
        if (!ascii::isLetter(*at)) {
            // As of <?xml and <!DOCTYPE: the name begins with the first letter.
            while (at < last && !alpha_.contains(*at)) ++at;
            if (at >= last) return;
        }
        const char16_t* nameEnd = endOfName(at + 1, last);
        tag_.nameLocation = static_cast<std::uint64_t>(at - begin_);
        tag_.nameLength = static_cast<std::uint64_t>(nameEnd - at);
    }

    const char16_t* endOfName(const char16_t* at, const char16_t* last) const {
#if defined(__SSE2__)
        // Most names end within eight units. What is not plain ASCII, or a slash or a > in a
        // quoted value, ends this search, and the loop below tells what it is.
        if (end_ - at >= scan::BlockUnits) {
            const __m128i block = scan::loadBlock(at);
            const __m128i ends =
                _mm_or_si128(scan::equalTo(block, u'/'), scan::equalTo(block, u'>'));
            const int plain =
                _mm_movemask_epi8(_mm_andnot_si128(ends, scan::inRange(block, 0x21, 0x7F)));
            at = std::min(at + scan::firstOf(~plain), last);
            if (at == last || *at == u' ') return at;
        }
#endif
        while (at < last && *at != u'/' && *at != u'>' && !white_.contains(*at)) ++at;
        return at;
    }

    /// The element whose body is to be swallowed, if this tag opens one.
    RawElement* rawElement(const char16_t* at, const char16_t* last) {
        RawElement* raw = tag_.nameLength == 6   ? &script_
                          : tag_.nameLength == 5 ? &style_
                                                 : nullptr;
        if (!raw || at[1] == u'/' || !raw->isNamed(tag_.name())) return nullptr;
        if (last[-1] == u'/' && (!ByWeb || !web_.selfClosing || isForeign())) return nullptr;
        return raw;
    }

    /// Calls the handler for a tag that ends before the position.
    bool report(const char16_t* behind) {
        if constexpr (ByWeb) behind = std::min(behind, end_);
        tag_.tagLength = static_cast<std::uint64_t>(behind - begin_) - tag_.tagLocation;
        if (handler_(tag_)) return true;
        tag_.textLocation = tag_.tagLocation + tag_.tagLength;
        return false;
    }

    /// A comment or declaration that the text ends in counts; a tag is mere text, or nothing.
    void reportUnterminated() {
        if (tag_.kind == TagKind::Element) {
            if (!ByWeb || !web_.tagBounds) return;
            tag_.kind = TagKind::Comment;
        }
        tag_.nameLocation = NotFound;
        tag_.nameLength = 0;
        tag_.tagLength = tag_.characters.size() - tag_.tagLocation;
        handler_(tag_);
        tag_.textLocation = tag_.characters.size();
    }

    void finish() {
        tag_.nameLocation = NotFound;
        tag_.nameLength = 0;
        tag_.tagLocation = tag_.characters.size();
        tag_.tagLength = 0;
        tag_.kind = TagKind::End;
        handler_(tag_);
    }

    Handler& handler_;
    const char16_t* begin_;
    const char16_t* end_;
    MarkIndex marks_;
    RawElement script_, style_;
    bool isRawElement_ = false;
    const WebRules web_;
    webTags::ForeignElements foreign_;
    const char16_t* behindText_;  ///< of the last element that holds text only
    Tag tag_;
    const CharacterSetRep& alpha_ = alphaCharacterSetRep();
    const CharacterSetRep& white_ = whiteCharacterSetRep();
};

/// Scans a text by the rules that are on.
template <class Handler>
void scanTags(std::u16string_view text, Handler& handler, WebRules web,
              Markup markup = Markup::Page) {
    if (text.empty()) return;
    // A slash closes any element of a feed.
    if (markup == Markup::Feed) web.selfClosing = false;
    if (changesScans(web))
        TagScan<Handler, true>(text, handler, web, markup).run();
    else
        TagScan<Handler>(text, handler, web).run();
}

}  // namespace velmo::detail
