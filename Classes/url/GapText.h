// A text that parts are cut out of, from the left to the right as a rule. What has been cut
// leaves a gap that moves along, so that many cuts cost no more than one walk over the text.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

#include "text/UnitScan.h"
#include "url/URLMarks.h"

namespace velmo::detail {

/// Up to 256 units stand on the stack.
class GapText {
public:
    explicit GapText(std::u16string_view text)
        : left_(text.size()), right_(text.size()), end_(text.size()) {
        if (text.size() > std::size(small_)) {
            heap_.reset(new char16_t[text.size()]);
            units_ = heap_.get();
        }
        text.copy(units_, text.size());
    }
    GapText(const GapText&) = delete;
    GapText& operator=(const GapText&) = delete;

    std::size_t size() const noexcept { return left_ + end_ - right_; }
    char16_t operator[](std::size_t i) const noexcept {
        return units_[i < left_ ? i : i + (right_ - left_)];
    }

    /// Cuts out [from, to).
    void erase(std::size_t from, std::size_t to) noexcept {
        moveGap(from);
        right_ += to - from;
        if (!isIndexed_ || from == to) return;
        for (UnitBits* mark :
             {&marks_.equals, &marks_.ampersand, &marks_.semicolon, &marks_.question})
            *mark = mark->erased(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
    }
    /// Cuts off what is behind a length.
    void truncate(std::size_t length) noexcept { erase(length, size()); }

    /// The units in one piece, to be changed in their place. Until the next cut.
    char16_t* data() noexcept {
        moveGap(size());
        return units_;
    }
    std::u16string_view view() noexcept { return {data(), size()}; }

    /// Notes where the marks of parameters stand, if the text is short enough, so that each find()
    /// is a step and no walk. From then on the text is only cut, and not changed otherwise.
    void index() noexcept {
        if (isIndexed_ || size() > UnitBits::MostUnits) return;
        marks_ = parameterMarksOf(view());
        isIndexed_ = true;
    }

    /// The first position from a start on that holds one of the units, which are marks of
    /// parameters; else size().
    template <char16_t... Units>
    std::size_t find(std::size_t from) const noexcept {
        static_assert(((Units == u'=' || Units == u'&' || Units == u';' || Units == u'?') && ...));
        if (isIndexed_)
            return (marksOf<Units>() | ...)
                .first(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(size()));
        const std::size_t gap = right_ - left_;
        if (from < left_) {
            const char16_t* const end = units_ + left_;
            const char16_t* const hit = scan::findAnyOf<Units...>(units_ + from, end);
            if (hit != end) return static_cast<std::size_t>(hit - units_);
            from = left_;
        }
        const char16_t* const hit = scan::findAnyOf<Units...>(units_ + from + gap, units_ + end_);
        return static_cast<std::size_t>(hit - units_) - gap;
    }

    /// The units of a range, if the gap is not among them; else null.
    const char16_t* range(std::size_t from, std::size_t length) const noexcept {
        if (from >= left_) return units_ + from + (right_ - left_);
        return from + length <= left_ ? units_ + from : nullptr;
    }

    /// The text as a string: the original if it is as long, as nothing but cuts was made.
    String orOriginal(const String& original) {
        return size() == original.length() ? original : String(view());
    }

private:
    void moveGap(std::size_t position) noexcept {
        using Units = std::char_traits<char16_t>;
        if (position < left_) {
            const std::size_t count = left_ - position;
            right_ -= count;
            left_ = position;
            Units::move(units_ + right_, units_ + left_, count);
        } else if (position > left_) {
            const std::size_t count = position - left_;
            Units::move(units_ + left_, units_ + right_, count);
            right_ += count;
            left_ = position;
        }
    }

    template <char16_t Unit>
    const UnitBits& marksOf() const noexcept {
        return Unit == u'='   ? marks_.equals
               : Unit == u'&' ? marks_.ampersand
               : Unit == u';' ? marks_.semicolon
                              : marks_.question;
    }

    char16_t small_[256];
    std::unique_ptr<char16_t[]> heap_;
    char16_t* units_ = small_;
    std::size_t left_;   ///< where the gap starts
    std::size_t right_;  ///< where it ends
    std::size_t end_;
    ParameterMarks marks_;  ///< of what is left of the text, those of escapes aside
    bool isIndexed_ = false;
};

}  // namespace velmo::detail
