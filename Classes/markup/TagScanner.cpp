// The scan knows three states besides text: in a tag, in a comment, in a declaration. In
// each only a few units matter, so that the scan is a chain of searches for the next of
// them and never looks at a unit twice, but for these two:
//
// - A quote mark opens a value only behind an =, and while it is open only its twin
//   matters. At most one kind of quote is open at a time.
// - The body of a script or style element is swallowed up to its closing text, which is
//   searched ahead. A page may hold any number of opening tags without one, so each
//   search remembers what it found: the whole scan stays linear in the page.
#include <velmocore/markup/TagScanner.h>

#include <cxxabi.h>
#include <execinfo.h>
#include <fmt/format.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>

#include <velmocore/platform/Log.h>
#include <velmocore/text/CharacterSets.h>

#include "markup/MarkIndex.h"
#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/PatternScan.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

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
const char16_t* findText(const char16_t* from, const char16_t* to, std::string_view needle) {
    const auto length = static_cast<std::ptrdiff_t>(needle.size());
    if (to - from < length) return nullptr;
    const auto starts = static_cast<std::size_t>(to - from - length + 1);
    const detail::Anchor first = detail::exactAnchor(0, static_cast<char16_t>(needle[0]));
    const detail::Anchor second = detail::exactAnchor(1, static_cast<char16_t>(needle[1]));
    for (std::size_t start = 0;; ++start) {
        start = detail::nextCandidate(from, start, starts, first, second);
        if (start == starts) return nullptr;
        if (detail::keyword::beginsWith({from + start, to}, needle)) return from + start;
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

    bool isNamed(std::u16string_view name) const { return detail::keyword::equals(name, name_); }

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
        return detail::scan::find(closing + closingLength_, end_, u'>');
    }

private:
    using Search = ForwardSearch<TextFinder>;

    std::string_view name_;
    std::size_t closingLength_;
    const char16_t* end_;
    Search closing_, commentEnd_, closingBehindComment_;
};

class Scanner {
public:
    Scanner(std::u16string_view text, TagHandler handler)
        : handler_(handler),
          begin_(text.data()),
          end_(begin_ + text.size()),
          marks_(text),
          script_(end_, "SCRIPT", "</SCRIPT"),
          style_(end_, "STYLE", "</STYLE") {
        tag_.characters = text;
    }

    void run() {
        const char16_t* at = begin_;
        while ((at = marks_.less(at)) != end_) {
            start(at);
            const char16_t* last = endOfTag(at);
            if (last == end_ && !isRawElement_) {
                reportUnterminated();
                break;
            }
            if (report(last + 1)) return;
            at = std::min(last + 1, end_);
        }
        finish();
    }

private:
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

    /// The place of the > that ends the tag; end if nothing does.
    const char16_t* endOfTag(const char16_t* at) {
        switch (tag_.kind) {
            case TagKind::Comment:
                return endOfComment(at);
            case TagKind::Declaration:
                return endOfDeclaration(at);
            default:
                return endOfElement(at);
        }
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

    const char16_t* endOfDeclaration(const char16_t* at) {
        for (at += 3; (at = marks_.greater(at)) != end_; ++at) {
            if (at[-1] == u']' || (at[-1] == u'-' && at[-2] == u'-' && at[-3] == u']')) return at;
        }
        return end_;
    }

    const char16_t* endOfElement(const char16_t* at) {
        const char16_t* last = endOfOpenTag(at + 1);
        if (last == end_) return end_;
        findName(at + 1, last);
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

    void findName(const char16_t* at, const char16_t* last) {
        at += *at == u'/';
        if (!detail::ascii::isLetter(*at)) {
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
        if (end_ - at >= detail::scan::BlockUnits) {
            const __m128i block = detail::scan::loadBlock(at);
            const __m128i ends = _mm_or_si128(detail::scan::equalTo(block, u'/'),
                                              detail::scan::equalTo(block, u'>'));
            const int plain =
                _mm_movemask_epi8(_mm_andnot_si128(ends, detail::scan::inRange(block, 0x21, 0x7F)));
            at = std::min(at + detail::scan::firstOf(~plain), last);
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
        if (!raw || at[1] == u'/' || last[-1] == u'/' || !raw->isNamed(tag_.name())) return nullptr;
        return raw;
    }

    /// Calls the handler for a tag that ends before the position.
    bool report(const char16_t* behind) {
        tag_.tagLength = static_cast<std::uint64_t>(behind - begin_) - tag_.tagLocation;
        if (handler_(tag_)) return true;
        tag_.textLocation = tag_.tagLocation + tag_.tagLength;
        return false;
    }

    /// A comment or declaration that the text ends in counts; a tag is mere text.
    void reportUnterminated() {
        if (tag_.kind == TagKind::Element) return;
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

    TagHandler handler_;
    const char16_t* begin_;
    const char16_t* end_;
    detail::MarkIndex marks_;
    RawElement script_, style_;
    bool isRawElement_ = false;
    Tag tag_;
    const CharacterSetRep& alpha_ = alphaCharacterSetRep();
    const CharacterSetRep& white_ = whiteCharacterSetRep();
};

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : name;
}

std::string callStack() {
    // The calls that led to the scan: those of the handler are gone when its exception is caught.
    void* frames[32];
    const int count = backtrace(frames, 32);
    const std::unique_ptr<char*, decltype(&std::free)> names(backtrace_symbols(frames, count),
                                                             &std::free);
    std::string text;
    for (int i = 0; names && i < count; ++i) (text += i ? "\n" : "") += names.get()[i];
    return text;
}

void logException(const std::string& name, const char* reason) {
    log(fmt::format("{} ({}): {}\n{}\n{}", "parseXmlWithHandler:context:mutable:", "String", name,
                    reason, callStack()));
}

}  // namespace

bool Tag::hasNameUnits(std::string_view ascii) const {
    return std::equal(ascii.begin(), ascii.end(), name().begin(), [](char letter, char16_t unit) {
        return detail::keyword::upper(static_cast<unsigned char>(letter)) ==
               detail::keyword::upper(unit);
    });
}

bool GetTagsOfString(std::u16string_view string, TagHandler handler) {
    if (string.empty()) return false;
    Scanner(string, handler).run();
    return true;
}

bool parseXmlWithHandler(std::u16string_view string, TagHandler handler) {
    try {
        return GetTagsOfString(string, handler);
    } catch (const std::bad_alloc&) {
        throw;  // the caller could not tell what was found so far from all that there is
    } catch (const std::exception& exception) {
        logException(demangled(typeid(exception).name()), exception.what());
    } catch (...) {
        logException("unknown", "");
    }
    return false;
}

String fixedXml(const String& string) {
    const auto isBad = [](char16_t unit) {
        return unit < 32 && unit != u'\t' && unit != u'\n' && unit != u'\r';
    };
    if (std::none_of(string.begin(), string.end(), isBad)) return string;
    StringBuilder out(string.length());
    out.append(string.view());
    std::replace_if(out.data(), out.data() + out.length(), isBad, u' ');
    return out.finish();
}

}  // namespace velmo
