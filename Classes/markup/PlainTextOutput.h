// The text that a page becomes: spans of text, and the breaks and spaces between them. Most units
// of a page go through here, so that a span without entities is copied in one pass; only with an
// entity in it, or in preformatted text, it takes more.
//
// A space is owed rather than written: what follows may be a break, which needs none. And a break
// is written only after text, so that a row of empty elements makes one.
#pragma once

#include <string>
#include <string_view>

#include <velmocore/markup/Entities.h>
#include <velmocore/markup/PlainText.h>

#include "text/UnitScan.h"
#include "text/WhiteRuns.h"

namespace velmo::detail {

enum class Break { None, Line, Paragraph };

class PlainTextOutput {
    using Units = std::u16string_view;

public:
    explicit PlainTextOutput(const PlainTextOptions& options) : options_(options) {}

    bool hasPendingText() const { return pendingText_; }
    bool didRemoveJunk() const { return didRemoveJunk_; }
    void noteJunk() { didRemoveJunk_ = true; }
    String finish() { return out_.finish(); }

    // --- spans ------------------------------------------------------------------------

    /// Writes units as they are after a space.
    void appendBare(Units text) {
        out_.append(u' ');
        out_.append(text);
    }

    /// Writes one span of text.
    void appendSpan(Units span, bool inLink, bool inAttribute = false) {
        if (options_.removeJunk && ((span.size() >= JunkSpan && collapseWhite_) ||
                                    (span.size() >= JunkLinkText && inLink))) {
            didRemoveJunk_ = true;
            spaceOwed_ = collapseWhite_;
            return;
        }
        // One pass for most spans; it gives up, without a trace, at the first &.
        if (collapseWhite_ && !mapsUnits_ && copyUnlessEncoded(span)) return;
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
            out_.commit(static_cast<std::size_t>(copied<0>(text) - out_.end()));
            endSpan(endsWhite);
        } else {
            copyReformatted(text);
        }
    }

    /// The span with its entities decoded; a view of the span itself if it has none.
    Units decoded(Units span, const PlainTextOptions& options, bool inAttribute = false) {
        if (span.size() < ShortestEncoded || !isDecoding_) return span;
        const bool maps = options.entities && options.nonUmlauted;
        if (!options.entities && !options.stdEntities) return span;
        if (!maps &&
            scan::find(span.data(), span.data() + span.size(), u'&') == span.data() + span.size())
            return span;
        // One buffer for all spans, which grows to the longest of them and stays.
        scratch_.assign(span);
        const std::size_t length =
            options.entities
                ? convertEntities2Characters(scratch_.data(), scratch_.data(), 0, scratch_.size(),
                                             {.convertStandard = options.stdEntities,
                                              .nonUmlauted = options.nonUmlauted,
                                              .inAttribute = inAttribute,
                                              .web = options.web})
                : convertStdEntities2Characters(scratch_.data(), scratch_.size());
        return Units(scratch_).substr(0, length);
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
    void setPreformatted(bool isPreformatted) { collapseWhite_ = !isPreformatted; }
    /// Starts preformatted text on a line of its own.
    void beginPreformatted() {
        setPreformatted(true);
        if (pendingText_ || spaceOwed_) writeBreak(Break::Paragraph);
    }

    void writeBreak(Break kind) {
        out_.append(kind == Break::Paragraph ? Units(u"\n\n") : Units(u"\n"));
        lastBreak_ = out_.length();
        pendingText_ = spaceOwed_ = false;
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

    /// The short way for the many spans without entities: white space at the end is cut when
    /// it stands as one space in the output. False, and nothing done, if there is an &.
    bool copyUnlessEncoded(Units span) {
        const std::size_t start = whiteStart(span);
        if (start == span.size()) {
            spaceOwed_ = true;
            return true;
        }
        const std::size_t length = out_.length();
        const bool wasOwed = spaceOwed_;
        beginSpan(span.size(), start > 0);
        const char16_t* const end = copied<u'&'>(span.substr(start));
        if (!end) {
            out_.truncate(length);
            spaceOwed_ = wasOwed;
            return false;
        }
        const bool endsWhite = end[-1] == u' ';
        out_.commit(static_cast<std::size_t>(end - out_.end()) - endsWhite);
        endSpan(endsWhite);
        return true;
    }

    /// How many white units a text starts with.
    std::size_t whiteStart(Units text) const {
        const char16_t* const end = text.data() + text.size();
        return static_cast<std::size_t>(skipWhite(text.data(), end, white_) - text.data());
    }

    /// Makes room and writes the space that is due in front of a span.
    void beginSpan(std::size_t units, bool startsWhite) {
        out_.prepare(units + 2);
        if (startsWhite) spaceOwed_ = true;
        if (spaceOwed_ && (pendingText_ || (!collapseWhite_ && !lastIsWhite()))) out_.append(u' ');
    }

    void endSpan(bool endsWhite) {
        if (dropJunkRun()) return;
        spaceOwed_ = endsWhite;
        pendingText_ = true;
    }

    /// Copies text behind the output, and gives the end of what was copied.
    template <char16_t Stop>
    const char16_t* copied(Units text) {
        return copyCollapsingWhite<Stop>(text.data(), text.data() + text.size(), out_.end(),
                                         white_);
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

    bool isWhite(char16_t unit) const { return isWhiteUnit(unit, white_); }
    /// True if nothing is written yet.
    bool lastIsWhite() const { return out_.isEmpty() || isWhite(out_.back()); }

    const PlainTextOptions options_;
    const bool mapsUnits_ = options_.entities && options_.nonUmlauted;  ///< text without &, too
    StringBuilder out_;
    std::u16string scratch_;      ///< a span while its entities are decoded
    std::size_t cellsOfRow_ = 0;  ///< counted for tabs only
    std::size_t lastBreak_ = 0;   ///< length of the output after its last break
    bool pendingText_ = false;    ///< text was written since the last break
    bool collapseWhite_ = true;   ///< outside preformatted text
    bool spaceOwed_ = false;      ///< the next text starts with a space
    bool didRemoveJunk_ = false;
    bool isDecoding_ = true;
    const CharacterSetRep& white_ = whiteCharacterSetRep();
    const CharacterSetRep& space_ = spaceCharacterSetRep();
};

}  // namespace velmo::detail
