// The text that a page becomes: spans of text, and the breaks and spaces between them. Most units
// of a page go through here, so there are three ways for a span, each for what the one before
// leaves, and all with the same result:
//
// - appendShort: up to 32 units, as most are, that need no change but at their ends.
// - appendCopied: of any length; its white space is collapsed and its entities are decoded on the
//   way.
// - appendAny: all the rest, as references that are told by what stands far behind them; decoded
//   first, of UTF-8 and of entities, where that is to be done.
//
// Spans are units or, of a page that is UTF-8, bytes. Whatever they are, lengths of which a rule
// speaks are UTF-16 units.
//
// A space is owed rather than written: what follows may be a break, which needs none. And a break
// is written only after text, so that a row of empty elements makes one.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/PlainText.h>

#include "markup/PlainTextTags.h"
#include "markup/ReferenceCopy.h"
#include "platform/Utf8.h"
#include "text/TextMarks.h"
#include "text/UnitScan.h"
#include "text/WhiteRuns.h"

namespace velmo::detail {

class PlainTextOutput {
    using Units = std::u16string_view;
    using Break = plainText::Break;

public:
    /// For a page of that length in its units. Room that is not written to is no memory, but blocks
    /// that are outgrown may stay with the program.
    PlainTextOutput(const PlainTextOptions& options, std::size_t pageLength)
        : options_(options), out_(pageLength / 4) {}

    bool didRemoveJunk() const { return didRemoveJunk_; }
    void noteJunk() { didRemoveJunk_ = true; }
    String finish() { return out_.finish(); }

    // --- spans ------------------------------------------------------------------------

    /// Writes units as they are after a space.
    void appendBare(Units text) {
        out_.append(u' ');
        out_.append(text);
    }

    /// Writes one span of text. So many units may be read from its start on.
    template <class Unit>
    [[gnu::always_inline]] void appendSpan(std::basic_string_view<Unit> span, std::size_t readable,
                                           bool inLink, bool inAttribute = false) {
        if (span.size() <= TextMarks::Units && readable >= 2 * TextMarks::Units && copiesPlain_ &&
            valueOfUnit(span[0]) < 128) {
            // Half of all spans are line ends between two tags, and what indents the second.
            if (isShortWhite(span)) {
                spaceOwed_ = true;
                return;
            }
            if (appendShort(span)) return;
        }
        appendLong(span, readable, inLink, inAttribute);
    }

    /// The span in UTF-16; one of bytes is good until the next span.
    static Units unitsOf(Units span) { return span; }
    Units unitsOf(std::string_view span) {
        char16_t* const units = scratch(span.size() + Utf8Slack);
        return {units, decodeUtf8(span, units)};
    }

    /// The span with its entities decoded; a view of the span itself if it has none.
    Units decoded(Units span, const PlainTextOptions& options, bool inAttribute = false) {
        if (span.size() < ShortestEncoded || !isDecoding_) return span;
        const bool maps = options.entities && options.nonUmlauted;
        if (!options.entities && !options.stdEntities) return span;
        if (!maps &&
            scan::find(span.data(), span.data() + span.size(), u'&') == span.data() + span.size())
            return span;
        char16_t* const units = scratch(span.size());
        if (units != span.data()) std::char_traits<char16_t>::copy(units, span.data(), span.size());
        const std::size_t length =
            options.entities ? convertEntities2Characters(units, units, 0, span.size(),
                                                          {.convertStandard = options.stdEntities,
                                                           .nonUmlauted = options.nonUmlauted,
                                                           .inAttribute = inAttribute,
                                                           .web = options.web})
                             : convertStdEntities2Characters(units, span.size());
        return {units, length};
    }

    Units trimmed(Units text) const {
        text.remove_prefix(whiteStart(text));
        while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
        return text;
    }

    // --- between them -----------------------------------------------------------------

    void oweSpace() { spaceOwed_ = true; }
    /// Whether references in what follows are decoded, if the options say so.
    void setDecoding(bool isDecoding) { isDecoding_ = isDecoding; }
    void setPreformatted(bool isPreformatted) {
        collapseWhite_ = !isPreformatted;
        copiesPlain_ = canCopyPlain();
    }
    /// Starts preformatted text on a line of its own.
    void beginPreformatted() {
        setPreformatted(true);
        if (pendingText_ || spaceOwed_) writeBreak(Break::Paragraph);
    }

    void writeBreak(Break kind) {
        // Two are written, whatever count.
        char16_t* const feeds = out_.prepare(2);
        feeds[0] = feeds[1] = u'\n';
        out_.commit(static_cast<std::size_t>(kind));
        lastBreak_ = out_.length();
        pendingText_ = spaceOwed_ = false;
    }
    /// The same behind text only.
    void breakText(Break kind) {
        if (kind != Break::None && pendingText_) writeBreak(kind);
    }

    /// Writes a space behind text, or owes it where one stands already.
    void separate() {
        spaceOwed_ = lastIsWhite();
        if (!spaceOwed_) out_.append(u' ');
    }

    /// A break after a row of a table, unless there is one.
    void endRow() {
        cellsOfRow_ = 0;
        if (!out_.isEmpty() && !isFeedUnit(out_.back())) writeBreak(Break::Line);
    }

    void separateCell() {
        if (pendingText_) {
            separate();
            pendingText_ = false;
        } else if (!lastIsWhite()) {
            out_.append(u' ');
        }
    }

    /// A tab in front of all cells of a row but the first.
    void beginCell() {
        if (cellsOfRow_++ > 0) out_.append(u'\t');
        pendingText_ = spaceOwed_ = false;
    }

    /// An empty line after a table, or what is missing of it.
    void endTable() {
        cellsOfRow_ = 0;
        if (out_.length() < 2) return;
        const Units written = out_.view();
        if (!isFeedUnit(written.back()))
            writeBreak(Break::Paragraph);
        else if (!isFeedUnit(written[written.size() - 2]))
            writeBreak(Break::Line);
    }

    void separateCitation() {
        if (!pendingText_ || lastIsWhite()) return;
        out_.append(u' ');
        spaceOwed_ = false;
    }

private:
    // All of these in units.
    static constexpr std::size_t JunkSpan = 10001;     ///< a span this long is no text
    static constexpr std::size_t JunkLinkText = 3501;  ///< nor is one in a link or a heading
    static constexpr std::size_t JunkRun = 20001;      ///< nor is a run without any break
    static constexpr std::size_t ShortestEncoded = 4;  ///< shorter spans hold no entity
    /// So many bytes are as many units at least.
    static constexpr std::size_t ShortestDecoded = 3 * ShortestEncoded;

    /// Whether a span that long counts as junk, and is left out.
    bool isJunk(std::size_t length, bool inLink) {
        if (!(length >= JunkSpan && collapseWhite_) && !(length >= JunkLinkText && inLink))
            return false;
        didRemoveJunk_ = true;
        spaceOwed_ = collapseWhite_;
        return true;
    }

    /// Whether a short span is white space that makes a blank at most.
    template <class Unit>
    [[gnu::always_inline]] bool isShortWhite(std::basic_string_view<Unit> span) const {
        return valueOfUnit(span[0]) <= u' ' && span.size() <= 16 && collapseWhite_ &&
               areWhite(span.data(), span.size());
    }

    /// False, and nothing done, if there is more to do than to cut the ends.
    template <class Unit>
    bool appendShort(std::basic_string_view<Unit> span) {
        const TextMarks marks = textMarks(span.data());
        const std::uint32_t inside = ~std::uint32_t{0} >> (TextMarks::Units - span.size());
        const std::uint32_t plain = marks.plain & inside, white = marks.white & inside;
        if (!plain) {
            if (!collapseWhite_ || white != inside) return false;
            spaceOwed_ = true;
            return true;
        }
        const int first = std::countr_zero(plain), last = 31 - std::countl_zero(plain);
        const bool startsWhite = first > 0;
        const bool endsWhite = static_cast<std::size_t>(last) + 1 < span.size();
        // Between the first and the last unit of text.
        const std::uint32_t inner = white >> first << first & ~std::uint32_t{0} >> (31 - last);
        const std::uint32_t changes = inner & (~marks.blank | marks.white << 1);
        if ((inside & ~(plain | white)) | changes) return false;
        if (!collapseWhite_ && (startsWhite || endsWhite)) return false;
        beginSpan(TextMarks::Units, startsWhite);
        copyWidened(span.data() + first, out_.end());
        out_.commit(static_cast<std::size_t>(last - first) + 1);
        endSpan(endsWhite);
        return true;
    }

    template <class Unit>
    [[gnu::noinline]] void appendLong(std::basic_string_view<Unit> span, std::size_t readable,
                                      bool inLink, bool inAttribute) {
        if (span.size() >= shortestJunk_ && isJunk(unitsOf(span).size(), inLink)) return;
        if (copiesPlain_) return appendCopied(span, readable, inAttribute);
        appendAny(unitsOf(span), inAttribute);
    }

    /// A span of any length.
    template <class Unit>
    void appendCopied(std::basic_string_view<Unit> span, std::size_t readable, bool inAttribute) {
        const std::size_t length = out_.length();
        const bool wasOwed = spaceOwed_;
        beginSpan(span.size() + TextMarks::Units, startsWhite(span));
        const Unit* const from = span.data();
        TextCopy<Unit> copy(from, from + span.size(), from + readable, out_.end(), collapseWhite_,
                            white_);
        bool isWhole = copy.run();
        if (!isWhole && mayHoldReference(span)) isWhole = copyDecoded(copy, inAttribute);
        const auto count = static_cast<std::size_t>(copy.out() - out_.end());
        if (!isWhole || count == 0) {
            out_.truncate(length);
            spaceOwed_ = wasOwed || isWhole;
            if (!isWhole) appendAny(unitsOf(span), inAttribute);
            return;
        }
        out_.commit(count - (collapseWhite_ && copy.isBehindWhite()));
        endSpan(copy.isBehindWhite());
    }

    template <class Unit>
    bool mayHoldReference(std::basic_string_view<Unit> span) {
        return span.size() >= ShortestDecoded || unitsOf(span).size() >= ShortestEncoded;
    }

    /// Copies from the next & on; false if that takes more than to read one reference after the other.
    template <class Unit>
    bool copyDecoded(TextCopy<Unit>& copy, bool inAttribute) {
        if (!decodesEntities_ || !isDecoding_) return false;
        const EntityOptions options{.convertStandard = options_.stdEntities,
                                    .inAttribute = inAttribute,
                                    .web = options_.web};
        const bool isAtStart = copy.out() == out_.end();
        if (!copyReference(copy, options)) return false;
        // At the start of a span white space would count as its own.
        if (isAtStart && copy.isBehindWhite()) return false;
        while (!copy.run())
            if (!copyReference(copy, options)) return false;
        return true;
    }

    template <class Unit>
    bool startsWhite(std::basic_string_view<Unit> span) const {
        if constexpr (sizeof(Unit) == 1)
            return isWhite(firstOfUtf8(span).unit);
        else
            return isWhite(span.front());
    }

    void appendCollapsed(Units text) {
        const char16_t* const end =
            copyCollapsingWhite(text.data(), text.data() + text.size(), out_.end(), white_);
        out_.commit(static_cast<std::size_t>(end - out_.end()));
    }

    /// Any span: its entities are decoded first.
    void appendAny(Units span, bool inAttribute) {
        Units text = decoded(span, options_, inAttribute);
        if (text.empty()) {
            spaceOwed_ = collapseWhite_;
            return;
        }
        const bool startsWhite = isWhite(text.front());
        const bool endsWhite = isWhite(text.back());
        if (collapseWhite_) {
            text = trimmed(text);
            if (text.empty()) {
                spaceOwed_ = true;
                return;
            }
        }
        beginSpan(text.size(), startsWhite);
        if (collapseWhite_ || !options_.reformat) {
            appendCollapsed(text);
            endSpan(endsWhite);
        } else {
            copyReformatted(text);
        }
    }

    /// How many white units a text starts with.
    std::size_t whiteStart(Units text) const {
        const char16_t* const end = text.data() + text.size();
        return static_cast<std::size_t>(skipWhite(text.data(), end, white_) - text.data());
    }

    /// Makes room and writes the space that is due in front of a span.
    void beginSpan(std::size_t units, bool startsWhite) {
        char16_t* const out = out_.prepare(units + 2);
        spaceOwed_ |= startsWhite;
        const bool isBehindText = pendingText_ || (!collapseWhite_ && !lastIsWhite());
        *out = u' ';
        out_.commit(spaceOwed_ && isBehindText);
    }

    void endSpan(bool endsWhite) {
        if (dropJunkRun()) return;
        spaceOwed_ = endsWhite;
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
        if (out_.length() - lastBreak_ < shortestJunkRun_) return false;
        didRemoveJunk_ = true;
        out_.truncate(lastBreak_);
        return true;
    }

    /// Whether text without & is the same in the output but for its white space.
    bool canCopyPlain() const {
        return !(options_.entities && options_.nonUmlauted) &&
               (collapseWhite_ || !options_.reformat);
    }

    /// Room for a span that is decoded: one buffer for all, which grows to the longest of them.
    char16_t* scratch(std::size_t units) {
        if (scratch_.size() < units) scratch_.resize(units);
        return scratch_.data();
    }

    bool isWhite(char16_t unit) const { return isWhiteUnit(unit, white_); }
    /// True if nothing is written yet.
    bool lastIsWhite() const { return out_.isEmpty() || isWhite(out_.back()); }

    const PlainTextOptions options_;
    // No span is that long where junk stays.
    const std::size_t shortestJunk_ = options_.removeJunk ? JunkLinkText : SIZE_MAX;
    const std::size_t shortestJunkRun_ = options_.removeJunk ? JunkRun : SIZE_MAX;
    StringBuilder out_;
    std::vector<char16_t> scratch_;  ///< see scratch()
    std::size_t cellsOfRow_ = 0;     ///< counted for tabs only
    std::size_t lastBreak_ = 0;      ///< length of the output after its last break
    bool pendingText_ = false;       ///< text was written since the last break
    bool collapseWhite_ = true;      ///< outside preformatted text
    bool copiesPlain_ = canCopyPlain();
    bool spaceOwed_ = false;  ///< the next text starts with a space
    bool didRemoveJunk_ = false;
    bool isDecoding_ = true;
    const bool decodesEntities_ = options_.entities && !options_.nonUmlauted;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
    const CharacterSetRep& space_ = spaceCharacterSetRep();
};

}  // namespace velmo::detail
