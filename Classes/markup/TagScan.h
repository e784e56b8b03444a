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
// The text is units, or bytes of UTF-8 that need not be decoded for this: all that ends or opens
// anything is ASCII, and no sequence hides it. Only what asks for letters or white space outside
// ASCII decodes the sequence at hand.
//
// Scans by the rules of WebRules are instances of their own, so that the others pay nothing for
// them: what they do otherwise stands beside what they replace, and asks for its rule there.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include <velmocore/markup/TagScanner.h>
#include <velmocore/text/CharacterSets.h>

#include "markup/ByteTag.h"
#include "markup/MarkIndex.h"
#include "markup/WebTags.h"
#include "platform/Ascii.h"
#include "text/ByteKeyword.h"
#include "text/ByteScan.h"
#include "text/PatternScan.h"

namespace velmo::detail {

/// Searches one needle from positions that never go back, and remembers the last hit: as
/// long as the next search begins in front of it, it is the answer again.
template <class Unit, class Find>
class ForwardSearch {
public:
    explicit ForwardSearch(Find find) : find_(find) {}

    /// The first hit at or behind the position; null if there is none.
    const Unit* from(const Unit* position) {
        // Without any hit there is none behind a later position either.
        if (!searched_ || (hit_ && hit_ < position)) {
            hit_ = find_(position);
            searched_ = true;
        }
        return hit_;
    }

private:
    Find find_;
    const Unit* hit_ = nullptr;
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

inline const char* findText(const char* from, const char* to, std::string_view needle) {
    for (;; ++from) {
        from = scan::findPair(from, to, needle[0], needle[1]);
        if (from == to) return nullptr;
        if (keyword::lengthAtStart({from, static_cast<std::size_t>(to - from)}, needle))
            return from;
    }
}

template <class Unit>
struct TextFinder {
    const Unit* end;
    std::string_view needle;
    const Unit* operator()(const Unit* from) const { return findText(from, end, needle); }
};

/// Whether a text begins with the ASCII one, as it is.
template <class Unit>
bool beginsWithAscii(std::basic_string_view<Unit> text, std::string_view ascii) {
    return text.size() >= ascii.size() &&
           std::equal(ascii.begin(), ascii.end(), text.begin(),
                      [](char a, Unit b) { return static_cast<Unit>(a) == b; });
}

/// Finds where the body of a script or a style element ends.
template <class Unit>
class RawElement {
public:
    RawElement(const Unit* end, std::string_view name, std::string_view closing)
        : name_(name),
          closingLength_(closing.size()),
          end_(end),
          closing_({end, closing}),
          commentEnd_({end, "-->"}),
          closingBehindComment_({end, closing}) {}

    bool isNamed(std::basic_string_view<Unit> name) const {
        return keyword::isKeyword(name, name_);
    }

    /// The place of the > that ends the element opened at a tag, end if there is a closing
    /// text and no > behind it, and null if there is no closing text.
    const Unit* endOf(const Unit* tag) {
        const Unit* closing = closing_.from(tag + 1);
        if (!closing) return nullptr;
        // A body wrapped in a comment may hold the closing text in a string.
        // Only up to the closing text: a comment behind it is none of this element's.
        if (const Unit* comment = findText(tag, closing, "<!-"))
            if (const Unit* commentEnd = commentEnd_.from(comment))
                if (const Unit* behind = closingBehindComment_.from(commentEnd)) closing = behind;
        return scan::find(closing + closingLength_, end_, Unit('>'));
    }

private:
    using Search = ForwardSearch<Unit, TextFinder<Unit>>;

    std::string_view name_;
    std::size_t closingLength_;
    const Unit* end_;
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
template <class Unit, class Handler, bool ByWeb = false>
class TagScan {
    using Text = std::basic_string_view<Unit>;

public:
    TagScan(Text text, Handler& handler, const WebRules& web = {}, Markup markup = Markup::Page)
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
        const Unit* at = begin_;
        while ((at = marks_.less(at)) != end_) {
            if (!beginsTag(at)) {
                ++at;
                continue;
            }
            if constexpr (!ByWeb && requires { Handler::passesOver(u'/'); }) {
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
            const Unit* last = endOfTag(at);
            if (last == end_ && !isRawElement_) {
                reportUnterminated();
                break;
            }
            if (report(last + 1)) return;
            at = std::min(last + 1, end_);
            if constexpr (ByWeb) at = std::max(behindText_, at);
        }
        finish();
    }

private:
    static constexpr bool IsBytes = sizeof(Unit) == 1;

    /// Whether the < there is more than a sign in the text.
    bool beginsTag(const Unit* at) const {
        if (!ByWeb || !web_.tagBounds) return true;
        if (end_ - at < 2) return false;
        if (at[1] == '/') return end_ - at > 2;
        return ascii::isLetter(at[1]) || at[1] == '!' || at[1] == '?';
    }

    /// Tells comments and declarations from tags.
    void start(const Unit* at) {
        tag_.tagLocation = static_cast<std::uint64_t>(at - begin_);
        tag_.kind = TagKind::Element;
        tag_.nameLocation = NotFound;
        tag_.nameLength = 0;
        isRawElement_ = false;
        if (end_ - at > 2 && at[1] == '!') {
            if (at[2] == '[') tag_.kind = TagKind::Declaration;
            if (at[2] == '-') tag_.kind = TagKind::Comment;
        }
    }

    /// Whether elements that stand there are not those of HTML.
    bool isForeign() const { return foreign_.isInside(); }

    /// The place of the > that ends the tag; end if nothing does.
    const Unit* endOfTag(const Unit* at) {
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
    bool isMarked(const Unit* at) const {
        return end_ - at > 1 && (at[1] == '!' || at[1] == '?' ||
                                 (at[1] == '/' && !(end_ - at > 2 && ascii::isLetter(at[2]))));
    }

    const Unit* endOfMarked(const Unit* at) {
        const Text text(at, static_cast<std::size_t>(end_ - at));
        if (beginsWithAscii(text, "<!--")) return endOfWebComment(at);
        if (beginsWithAscii(text, "<![CDATA[") && isForeign()) return endOfSection(at);
        if (beginsWithAscii(text, "<![")) return marks_.greater(at + 3);
        const Unit* last = marks_.greater(at + 2);
        if (keyword::lengthAtStart(text, "<!DOCTYPE") || keyword::lengthAtStart(text, "<?XML"))
            findName(at + 1, last);
        else
            tag_.kind = TagKind::Comment;
        return last;
    }

    const Unit* endOfWebComment(const Unit* at) {
        const Unit* const text = at + 4;
        // The hyphens of --> may be those that open the comment, but not those of --!>.
        for (at = text; (at = marks_.greater(at)) != end_; ++at) {
            if (at[-1] == '-' && at[-2] == '-') return at;
            if (at - text > 2 && at[-1] == '!' && at[-2] == '-' && at[-3] == '-') return at;
        }
        return end_;
    }

    const Unit* endOfSection(const Unit* at) const {
        constexpr std::string_view Opening = "<![CDATA[";
        for (at += Opening.size(); (at = scan::find(at, end_, Unit(']'))) != end_; ++at)
            if (end_ - at > 2 && at[1] == ']' && at[2] == '>') return at + 2;
        return end_;
    }

    const Unit* endOfComment(const Unit* at) {
        // What was opened with one hyphen closes with one.
        const bool isShort = !(end_ - at > 3 && at[3] == '-');
        for (at += 3; (at = marks_.greater(at)) != end_; ++at) {
            if (isShort ? at[-1] == '-'
                        : (at[-1] == '-' && at[-2] == '-') ||
                              (at[-1] == '!' && at[-2] == '-' && at[-3] == '-'))
                return at;
        }
        return end_;
    }

    /// Looked for by its bracket: a CDATA section may hold a page, which is full of >.
    const Unit* endOfDeclaration(const Unit* at) {
        for (at += 3; (at = scan::find(at, end_, Unit(']'))) < end_; ++at) {
            if (end_ - at > 1 && at[1] == '>') return at + 1;
            if (end_ - at > 3 && at[1] == '-' && at[2] == '-' && at[3] == '>') return at + 3;
        }
        return end_;
    }

    const Unit* endOfElement(const Unit* at) {
        const Unit* last =
            ByWeb && web_.attributes ? endOfWebTag(nameWebTag(at)) : endOfOpenTag(at + 1);
        if (last == end_) return end_;
        if (tag_.nameLength == 0) findName(at + 1, last);
        if constexpr (ByWeb)
            if (web_.rawText || web_.selfClosing) return endOfWebElement(at, last);
        return endOfOwnBody(at, last);
    }

    const Unit* endOfOwnBody(const Unit* at, const Unit* last) {
        if (RawElement<Unit>* raw = rawElement(at, last)) {
            if (const Unit* rawEnd = raw->endOf(at)) {
                isRawElement_ = true;
                return rawEnd;
            }
        }
        return last;
    }

    const Unit* endOfOpenTag(const Unit* at) {
        if (const Unit* last = marks_.endOfPlainTag(at)) return last;
        for (;;) {
            at = marks_.equalOrGreater(at);
            if (at == end_ || *at == '>') return at;
            // White space may stand between the = and its value, so the next quote mark opens one
            // too.
            if (!(++at < end_ && (*at == '"' || *at == '\''))) at = marks_.quoteOrGreater(at);
            if (at == end_ || *at == '>') return at;
            at = *at == '"' ? marks_.doubleQuote(at + 1) : marks_.singleQuote(at + 1);
            if (at == end_) return at;
            ++at;
        }
    }

    /// Names a tag before its end is known; gives the place behind the name.
    const Unit* nameWebTag(const Unit* at) {
        ++at;
        if (at != end_ && *at == '/') ++at;
        if (at == end_ || !ascii::isLetter(*at)) return at;
        const Unit* nameEnd = endOfPlainName(at, end_);
        if (!nameEnd) nameEnd = endOfName(at + 1, end_);
        setName(at, nameEnd);
        return nameEnd;
    }

    /// The end of a tag whose name ends there. A quote mark opens a value right behind its = only.
    const Unit* endOfWebTag(const Unit* attributes) {
        for (const Unit* at = attributes;;) {
            at = marks_.equalOrGreater(at);
            if (at == end_ || *at == '>') return at;
            if (!webTags::isAssignment(attributes, at++)) continue;
            at = webTags::skipWhite(at, end_);
            if (at == end_) return at;
            if (!webTags::isQuote(*at)) {
                attributes = at = webTags::endOfPlainValue(at, end_);
                continue;
            }
            at = *at == '"' ? marks_.doubleQuote(at + 1) : marks_.singleQuote(at + 1);
            if (at == end_) return at;
            attributes = ++at;
        }
    }

    /// The end of the element if that is one tag with its text. Where the text of another ends is
    /// noted: there the scan goes on.
    const Unit* endOfWebElement(const Unit* at, const Unit* last) {
        // Most tags are told by one look.
        if (!foreign_.isOpen() && (at[1] == '/' || !webTags::mayBeSpecial(tag_))) return last;
        const bool isSingle = last[-1] == '/' && (isForeign() || !web_.selfClosing);
        if (last[-1] != '/') foreign_.note(tag_, at[1] == '/');
        const webTags::RawElement* raw = at[1] == '/' ? nullptr : webTags::rawElement(tag_);
        if (!raw || isSingle) return last;
        if (raw->isReportedWhole) {
            if (!web_.rawText) return endOfOwnBody(at, last);
            isRawElement_ = true;
            const Unit* const closing = raw->name == "SCRIPT"
                                            ? webTags::findEndOfScript(last + 1, end_)
                                            : webTags::findClosing(last + 1, end_, raw->closing);
            if (closing == end_) return end_;
            return web_.attributes ? endOfWebTag(webTags::endOfName(closing, end_))
                                   : marks_.greater(closing);
        }
        if (web_.rawText && !isForeign())
            behindText_ = webTags::findClosing(last + 1, end_, raw->closing);
        return last;
    }

    void findName(const Unit* at, const Unit* last) {
        at += *at == '/';
        if (const Unit* const nameEnd = endOfPlainName(at, last)) return setName(at, nameEnd, true);
        std::size_t firstLength = 1;
        if (!ascii::isLetter(*at)) {
            // As of <?xml and <!DOCTYPE: the name begins with the first letter.
            while (at < last && !isIn(alpha_, at, last, firstLength)) at += firstLength;
            if (at >= last) return;
        }
        setName(at, endOfName(at + firstLength, last));
    }

    void setName(const Unit* name, const Unit* end, bool isPlain = false) {
        tag_.nameLocation = static_cast<std::uint64_t>(name - begin_);
        tag_.nameLength = static_cast<std::uint64_t>(end - name);
        if constexpr (IsBytes) tag_.isNamePlain = isPlain || scan::findNonAscii(name, end) == end;
    }

    /// Whether a set has the unit there, of which the length is given too.
    static bool isIn(const CharacterSetRep& set, const char16_t* at, const char16_t*,
                     std::size_t& length) {
        length = 1;
        return set.contains(*at);
    }
    static bool isIn(const CharacterSetRep& set, const char* at, const char* end,
                     std::size_t& length) {
        const FirstOfUtf8 first = firstOfUtf8({at, static_cast<std::size_t>(end - at)});
        length = first.length;
        return set.contains(first.unit);
    }

    /// Where a name ends that is ASCII and not long, as most are; null if that takes more to tell.
    const Unit* endOfPlainName([[maybe_unused]] const Unit* at,
                               [[maybe_unused]] const Unit* last) const {
#if defined(__SSE2__)
        if (end_ - at < NameBlock || !ascii::isLetter(*at)) return nullptr;
        const Unit* const nameEnd = std::min(at + plainUnits(scan::loadBlock(at), Unit()), last);
        if (nameEnd == last || *nameEnd == ' ') return nameEnd;
#endif
        return nullptr;
    }

    const Unit* endOfName(const Unit* at, const Unit* last) const {
        for (std::size_t length; at < last && *at != '/' && *at != '>'; at += length)
            if (isIn(white_, at, last, length)) break;
        return at;
    }

#if defined(__SSE2__)
    static constexpr std::ptrdiff_t NameBlock = sizeof(__m128i) / sizeof(Unit);

    /// How many units of ASCII at the start of a block neither are white nor end a name.
    static int plainUnits(__m128i block, char16_t) {
        const __m128i ends = _mm_or_si128(scan::equalTo(block, u'/'), scan::equalTo(block, u'>'));
        const int plain =
            _mm_movemask_epi8(_mm_andnot_si128(ends, scan::inRange(block, 0x21, 0x7F)));
        return scan::firstOf(~plain);
    }
    static int plainUnits(__m128i block, char) {
        const __m128i ends = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('/')),
                                          _mm_cmpeq_epi8(block, _mm_set1_epi8('>')));
        // Bytes outside ASCII are below 0.
        const __m128i plain = _mm_andnot_si128(ends, _mm_cmpgt_epi8(block, _mm_set1_epi8(' ')));
        return scan::firstByteOf(~_mm_movemask_epi8(plain));
    }
#endif

    /// The element whose body is to be swallowed, if this tag opens one.
    RawElement<Unit>* rawElement(const Unit* at, const Unit* last) {
        const std::size_t nameLength = lengthOfName(tag_);
        RawElement<Unit>* raw = nameLength == 6 ? &script_ : nameLength == 5 ? &style_ : nullptr;
        if (!raw || at[1] == '/' || !raw->isNamed(tag_.name())) return nullptr;
        if (last[-1] == '/' && (!ByWeb || !web_.selfClosing || isForeign())) return nullptr;
        return raw;
    }

    /// Calls the handler for a tag that ends before the position.
    bool report(const Unit* behind) {
        if constexpr (ByWeb) behind = std::min(behind, end_);
        tag_.tagLength = static_cast<std::uint64_t>(behind - begin_) - tag_.tagLocation;
        if (handler_(tag_)) return true;
        tag_.textLocation = static_cast<std::uint64_t>(behind - begin_);
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
        reportLast();
        tag_.textLocation = tag_.characters.size();
    }

    void finish() {
        tag_.nameLocation = NotFound;
        tag_.nameLength = 0;
        tag_.tagLocation = tag_.characters.size();
        tag_.tagLength = 0;
        tag_.kind = TagKind::End;
        reportLast();
    }

    /// Out of line, so that a handler need only stand where the tags are.
    [[gnu::noinline]] void reportLast() { handler_(tag_); }

    Handler& handler_;
    const Unit* begin_;
    const Unit* end_;
    MarkIndex<Unit> marks_;
    RawElement<Unit> script_, style_;
    bool isRawElement_ = false;
    const WebRules web_;
    webTags::ForeignElements foreign_;
    const Unit* behindText_;  ///< of the last element that holds text only
    TagOf<Unit> tag_;
    const CharacterSetRep& alpha_ = alphaCharacterSetRep();
    const CharacterSetRep& white_ = whiteCharacterSetRep();
};

/// Scans a text of units or bytes by the rules that are on.
template <class Unit, class Handler>
void scanTagsOf(std::basic_string_view<Unit> text, Handler& handler, WebRules web, Markup markup) {
    if (text.empty()) return;
    // A slash closes any element of a feed.
    if (markup == Markup::Feed) web.selfClosing = false;
    if (changesScans(web))
        TagScan<Unit, Handler, true>(text, handler, web, markup).run();
    else
        TagScan<Unit, Handler>(text, handler, web).run();
}
template <class Handler>
void scanTags(std::u16string_view text, Handler& handler, const WebRules& web,
              Markup markup = Markup::Page) {
    scanTagsOf(text, handler, web, markup);
}
/// Of UTF-8, without a byte-order mark: the handler takes tags of bytes.
template <class Handler>
void scanTags(std::string_view text, Handler& handler, const WebRules& web,
              Markup markup = Markup::Page) {
    scanTagsOf(text, handler, web, markup);
}

}  // namespace velmo::detail
