// Two ways to undo hard line breaks. Mails are read unit by unit, as what a break means depends on
// the units beside it only; other texts go line by line, as the characters to remove must be gone
// before it shows whether a line is empty.
#include <velmocore/text/Reformatting.h>

#include <string>

#include <velmocore/text/Collapsing.h>

#include "platform/Unicode.h"
#include "text/LineScan.h"
#include "text/Remove.h"
#include "text/Trim.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// Takes a mail apart unit by unit. What is written never gets longer than what was read, so
/// that it may be written over it.
class MailUnwrapper {
public:
    MailUnwrapper(View text, char16_t* out)
        : read_(text.data()), end_(read_ + text.size()), out_(out), start_(out) {}

    /// The end of what was written.
    const char16_t* unwrap() {
        while (read_ < end_) {
            joinAtBreak(skipBreaks());
            copySpacesAndUnit();
        }
        return out_;
    }

private:
    std::size_t skipBreaks() {
        std::size_t breaks = 0;
        for (; read_ < end_ && isFeedUnit(*read_); read_ = behindLineEnd(read_, end_)) ++breaks;
        return breaks;
    }

    void joinAtBreak(std::size_t breaks) {
        // Two breaks were at least two units, so the two that are written fit.
        if (breaks >= 2) {
            *out_++ = u'\n';
            *out_++ = u'\n';
        } else if (breaks == 1 && read_ < end_) {
            // What begins so is a quotation, a list, an indented line or code, which would not
            // survive joining.
            if (View(u" -/>}").find(*read_) != View::npos) {
                *out_++ = u'\n';
            } else if (out_ > start_ && !white_.contains(out_[-1])) {
                const char16_t last = out_[-1];
                *out_++ = last == u':' || last == u'>' ? u'\n' : u' ';
            }
        }
    }

    void copySpacesAndUnit() {
        if (read_ < end_ && spaces_.contains(*read_)) {
            *out_++ = u' ';
            do ++read_;
            while (read_ < end_ && spaces_.contains(*read_));
        }
        // A unit a step at least: feeds were skipped before, so the loop ends.
        if (read_ < end_ && !isFeedUnit(*read_)) *out_++ = *read_++;
    }

    const CharacterSetRep& white_ = whiteCharacterSetRep();
    const CharacterSetRep& spaces_ = spaceCharacterSetRep();
    const char16_t* read_;
    const char16_t* end_;
    char16_t* out_;
    const char16_t* start_;
};

}  // namespace

String reformattedMailing(const String& string) {
    if (string.isEmpty()) return string;
    StringBuilder out;
    char16_t* const start = out.prepare(string.length());
    out.commit(static_cast<std::size_t>(MailUnwrapper(string, start).unwrap() - start));
    return out.finish();
}

void reformatMailing(std::u16string& string) {
    char16_t* const start = string.data();
    string.resize(static_cast<std::size_t>(MailUnwrapper(string, start).unwrap() - start));
}

String reformattedStringByRemovingCharactersOfString(const String& string, View characters) {
    if (string.isEmpty()) return string;
    CharacterSetRep removed;
    removed.add(characters);
    std::u16string result, line;
    bool paragraph = false;  // whether the current one has text
    forEachLine(string.begin(), string.end(), [&](const char16_t* begin, const char16_t* end) {
        line.assign(begin, end);
        removeUnits(line, InSet{removed});
        const View text = trimmedView(View(line), Ends::Both, unicode::isWhiteSpaceOrNewline);
        if (!text.empty()) {
            if (paragraph) result += u' ';
            result += text;
            paragraph = true;
        } else if (paragraph) {
            const View feeds = trailingFeeds({begin, static_cast<std::size_t>(end - begin)});
            result += feeds;
            if (end != string.end()) result += feeds;
            paragraph = false;
        }
    });
    removeMultipleSpaces(result);
    return result;
}

}  // namespace velmo
