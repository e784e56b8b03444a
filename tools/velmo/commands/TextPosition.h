// Places in a text as people and other programs count them.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/words/Separators.h>

namespace velmo::tool {

/// Goes through a text, never back, and keeps count of lines and of bytes in UTF-8.
/// Hits are found in UTF-16 units, but editors go by lines and other programs by bytes of the
/// file. To count both from the start for each hit would take the number of hits times the text.
class TextPosition {
public:
    explicit TextPosition(std::u16string_view text) : text_(text) {}

    void goTo(std::uint64_t position) {
        for (; at_ < position; ++at_) {
            const char16_t unit = text_[at_];
            bytes_ += bytesOfUnit(unit);
            if (!lineEnds_.contains(unit)) continue;
            // The pair is one line end, and ends with its second unit.
            if (unit == u'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == u'\n') continue;
            ++line_;
            lineStart_ = at_ + 1;
        }
    }
    std::uint64_t bytes() const { return bytes_; }
    std::uint64_t line() const { return line_; }  ///< from 1
    std::uint64_t lineStart() const { return lineStart_; }

private:
    /// The low half of a pair adds the fourth byte to the three of the high one.
    std::uint64_t bytesOfUnit(char16_t unit) const {
        if (unit < 0x80) return 1;
        if (unit < 0x800) return 2;
        // A lone surrogate counts three bytes, as the U+FFFD that stands for it in output has
        // them.
        const bool endsPair =
            (unit & 0xFC00) == 0xDC00 && at_ > 0 && (text_[at_ - 1] & 0xFC00) == 0xD800;
        return endsPair ? 1 : 3;
    }

    std::u16string_view text_;
    const CharacterSetRep& lineEnds_ = defaultLineSeparators();
    std::uint64_t at_ = 0, bytes_ = 0, line_ = 1, lineStart_ = 0;
};

}  // namespace velmo::tool
