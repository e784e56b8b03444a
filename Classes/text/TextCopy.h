// Copying text as it is to be read: each run of white space becomes one blank. In one pass, from
// units or from bytes of UTF-8, which become units on the way.
//
// 32 units a step while they are ASCII; what stands outside it is looked at by itself, in runs, as
// no alphabet but ours is spelled in single letters of another.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include <velmocore/text/CharacterSets.h>

#include "platform/Surrogates.h"
#include "platform/Utf8.h"
#include "text/SettledUnits.h"
#include "text/TextMarks.h"
#include "text/WhiteSkip.h"

namespace velmo::detail {

template <class Unit>
class TextCopy {
public:
    /// From [from, to), at and behind which may be read up to end, to out, where there must be room
    /// for as many units and 32 more. Behind white space, that at the start is left out. The white
    /// units are those of whiteCharacterSetRep().
    TextCopy(const Unit* from, const Unit* to, const Unit* end, char16_t* out, bool isBehindWhite,
             const CharacterSetRep& white)
        : from_(from),
          to_(to),
          end_(end),
          out_(out),
          isBehindWhite_(isBehindWhite),
          white_(white) {}

    /// The end of what was copied.
    char16_t* out() const { return out_; }
    /// How many units are left to copy.
    std::size_t left() const { return static_cast<std::size_t>(to_ - from_); }
    /// Whether the last unit was white.
    bool isBehindWhite() const { return isBehindWhite_; }

    /// What is left to copy, up to 32 units of it, and of bytes none outside ASCII.
    std::u16string_view next(char16_t* units) const {
        const auto count = static_cast<std::size_t>(std::min(to_ - from_, TextMarks::Units));
        if constexpr (sizeof(Unit) == sizeof(char16_t)) {
            return {from_, count};
        } else {
            Unit tail[TextMarks::Units];
            const Unit* const at = block(tail);
            copyWidened(at, units);
            return {units, std::min<std::size_t>(std::countr_zero(nonAscii(at)), count)};
        }
    }

    /// Passes over what is left, so many units of it.
    void skip(std::size_t count) { from_ += count; }

    /// Writes a unit in its place.
    void put(char16_t unit) {
        if (isWhiteUnit(unit, white_)) return putBlank();
        *out_++ = unit;
        isBehindWhite_ = false;
    }

    /// Copies all, or what stands in front of the next &: then false.
    bool run() {
        Unit tail[TextMarks::Units];
        while (from_ < to_) {
            if (valueOfUnit(*from_) > 127) {
                copyOthers();
                continue;
            }
            const Unit* const units = block(tail);
            const TextMarks marks = textMarks(units);
            const std::ptrdiff_t count = std::min(to_ - from_, TextMarks::Units);
            const std::uint32_t inside = ~std::uint32_t{0} >> (TextMarks::Units - count);
            const std::uint32_t behindWhite = marks.white << 1 | isBehindWhite_;
            const std::uint32_t changes = inside & ~(marks.plain | (marks.blank & ~behindWhite));
            copyWidened(units, out_);
            if (!changes) {
                from_ += count;
                out_ += count;
                isBehindWhite_ = marks.white >> (count - 1) & 1;
                continue;
            }
            const int place = std::countr_zero(changes);
            from_ += place;
            out_ += place;
            isBehindWhite_ = behindWhite >> place & 1;
            if (marks.white >> place & 1) {
                putBlank();
                from_ += std::countr_one((marks.white & inside) >> place);
            } else if (*from_ == '&') {
                return false;
            } else {
                copyOthers();
            }
        }
        return true;
    }

private:
    /// The next 32 units, of which some may be behind the end: then a copy of those that are there.
    const Unit* block(Unit (&tail)[TextMarks::Units]) const {
        if (end_ - from_ >= TextMarks::Units) return from_;
        std::fill(std::copy(from_, end_, tail), std::end(tail), Unit());
        return tail;
    }

    void putBlank() {
        if (!isBehindWhite_) *out_++ = u' ';
        isBehindWhite_ = true;
    }

    /// Copies a control, or what begins there outside ASCII: a run of it, or one unit at least.
    void copyOthers() {
        if (valueOfUnit(*from_) < 128 || !copyRun(from_)) copyOne(from_);
    }

    /// Copies a run of letters, with the blanks between them.
    bool copyRun(const char16_t*& from) {
        if (!canSettleWide()) return false;
        const std::ptrdiff_t settled = settleWide(from, to_, out_, u'&', true);
        if (settled == 0) return false;
        from += settled;
        out_ += settled;
        isBehindWhite_ = false;
        return true;
    }

    bool copyRun(const char*& from) {
        const char* at = from;
        char16_t* out = out_;
        while (to_ - at >= 4) {
            const std::uint32_t four = nextFour(at);
            char16_t unit = 0;
            if (isUtf8Triple(four)) {
                unit = unitOfUtf8Triple(four);
                if (unit < 0x800 || isSurrogate(unit)) break;
            } else if (isUtf8Pair(four)) {
                unit = unitOfUtf8Pair(four);
            } else if (isBlankBehindLetter(four, out)) {
                *out++ = u' ';
                ++at;
                continue;
            }
            if (!isInPlainStretch(unit) && (unit == 0 || white_.contains(unit))) break;
            *out++ = unit;
            at += isUtf8Pair(four) ? 2 : 3;
        }
        if (at == from) return false;
        from = at;
        out_ = out;
        isBehindWhite_ = out[-1] == u' ';
        return true;
    }

    /// Whether a blank stands there in front of what is not ASCII, behind a unit of the same run.
    bool isBlankBehindLetter(std::uint32_t four, const char16_t* out) const {
        return (four & 0x80FF) == 0x8020 && out != out_ && out[-1] != u' ';
    }

    void copyOne(const char16_t*& from) { put(*from++); }

    void copyOne(const char*& from) {
        const FirstOfUtf8 first = firstOfUtf8({from, static_cast<std::size_t>(to_ - from)});
        if (isHighSurrogate(first.unit)) {
            out_ += decodeUtf8({from, first.length}, out_);
            isBehindWhite_ = false;
        } else {
            put(first.unit);
        }
        from += first.length;
    }

    const Unit* from_;
    const Unit* const to_;
    const Unit* const end_;
    char16_t* out_;
    bool isBehindWhite_;
    const CharacterSetRep& white_;
};

}  // namespace velmo::detail
