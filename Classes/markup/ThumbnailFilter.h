// Which images are thumbnails and which are buttons, spacers and trackers.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include <velmocore/text/WebRules.h>

namespace velmo::detail {

/// Whether an image counts as a thumbnail, by its reference as NormalizedLink makes it, and by the
/// size that its tag tells.
bool isThumbnail(std::u16string_view reference, std::u16string_view tag, const WebRules& web = {});

/// Whether a text ends in one of many rows, without regard to case. The text is read from its end,
/// as long as any row goes on like it: a few units, however many the rows and the text are.
class SuffixTable {
public:
    /// What the text is read as.
    enum class Reading {
        Plain,
        Path,  ///< without digits, and with a / in front if it has none
    };

    /// Rows are ASCII, and none is empty.
    explicit SuffixTable(std::span<const std::string_view> rows);

    bool isAtEndOf(std::u16string_view text, Reading reading) const;

private:
    std::vector<std::u16string> rows_;  ///< folded, from their ends to their starts, sorted
};

}  // namespace velmo::detail
