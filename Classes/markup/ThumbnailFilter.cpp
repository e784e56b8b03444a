#include "markup/ThumbnailFilter.h"

#include <algorithm>
#include <functional>
#include <string>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/Comparison.h>

#include "markup/ThumbnailTables.h"
#include "text/Keyword.h"
#include "text/UnitFold.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// The units of a text from its end to its start, folded; then 0, which no row has.
class BackwardReader {
public:
    BackwardReader(Units text, SuffixTable::Reading reading)
        : text_(text), left_(text.size()), isPath_(reading == SuffixTable::Reading::Path) {}

    char16_t next() {
        while (left_ > 0) {
            const char16_t unit = text_[--left_];
            if (!isPath_ || !digits_.contains(unit)) return fold_(unit);
        }
        if (!isPath_ || isAtFront_) return 0;
        isAtFront_ = true;
        return text_.find(u'/') == text_.npos ? u'/' : u'\0';
    }

private:
    Units text_;
    std::size_t left_;
    bool isPath_, isAtFront_ = false;
    CaseFold fold_;
    const CharacterSetRep& digits_ = digitCharacterSetRep();
};

/// Large enough for a picture, and neither a banner nor a pillar.
bool hasPictureSize(Units tag, const WebRules& web) {
    constexpr std::int64_t LeastWidth = 150, LeastHeight = 120;
    const TagSize size = getTagWidth(tag, web);
    // Compared in floating point: what a tag says may be any number.
    const auto width = static_cast<double>(size.width), height = static_cast<double>(size.height);
    return size && size.width >= LeastWidth && size.height >= LeastHeight &&
           width >= 0.5 * height && width <= 2.0 * height;
}

bool isThumbnailGif(Units reference) {
    static const SuffixTable gifs(thumbnailGifs());
    return !gifs.isAtEndOf(reference, SuffixTable::Reading::Path) &&
           std::ranges::none_of(trackerGifs(), [reference](std::string_view tracker) {
               return keyword::contains(reference, tracker);
           });
}

bool isThumbnailJpeg(Units reference, Units tag, const WebRules& web) {
    static const SuffixTable never(thumbnailJpegs1()), ifLarge(thumbnailJpegs2());
    if (never.isAtEndOf(reference, SuffixTable::Reading::Path)) return false;
    return !ifLarge.isAtEndOf(reference, SuffixTable::Reading::Path) || hasPictureSize(tag, web);
}

bool isThumbnailPng(Units reference) {
    static const SuffixTable pngs(thumbnailPngs());
    return !pngs.isAtEndOf(reference, SuffixTable::Reading::Plain);
}

}  // namespace

SuffixTable::SuffixTable(std::span<const std::string_view> rows) {
    const CaseFold fold;
    for (std::string_view row : rows) {
        std::u16string folded(row.rbegin(), row.rend());
        std::ranges::transform(folded, folded.begin(), std::cref(fold));
        rows_.push_back(std::move(folded));
    }
    std::ranges::sort(rows_);
}

bool SuffixTable::isAtEndOf(Units text, Reading reading) const {
    BackwardReader reader(text, reading);
    // The rows that the text ends like so far; of them, the shortest is the first.
    auto from = rows_.begin(), to = rows_.end();
    for (std::size_t depth = 0; from != to; ++depth) {
        if (from->size() == depth) return true;
        const auto unitOf = [depth](const std::u16string& row) { return row[depth]; };
        const char16_t unit = reader.next();
        from = std::ranges::lower_bound(from, to, unit, {}, unitOf);
        to = std::ranges::upper_bound(from, to, unit, {}, unitOf);
    }
    return false;
}

bool isThumbnail(Units reference, Units tag, const WebRules& web) {
    constexpr std::size_t LeastJudged = 7;
    if (reference.size() < LeastJudged) return true;
    if (hasSuffixNoCase(reference, u".gif")) return isThumbnailGif(reference);
    if (hasSuffixNoCase(reference, u".jpg")) return isThumbnailJpeg(reference, tag, web);
    if (hasSuffixNoCase(reference, u".png")) return isThumbnailPng(reference);
    return !hasSuffixNoCase(reference, u".ico");
}

}  // namespace velmo::detail
