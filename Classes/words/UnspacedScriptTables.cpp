// After the Unicode Character Database: its scripts, and of its segmentation of text the few
// units that join others without being marks. Punctuation in a range does no harm, as it belongs
// to no word.
#include "words/UnspacedScriptTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

constexpr UnitRange Units[] = {
    {0x0E01, 0x0E5B},  // Thai
    {0x0E81, 0x0EDF},  // Lao
    {0x1000, 0x109F},  // Burmese
    {0x1780, 0x17E9},  // Khmer
    {0x3005, 0x3007},  // Han: iteration mark, closing mark, zero
    {0x3021, 0x3029},  // Han: numerals
    {0x3031, 0x3035},  // Kana: repeat marks
    {0x3038, 0x303C},  // Han: numerals, iteration mark
    {0x3041, 0x309F},  // Hiragana
    {0x30A0, 0x30FF},  // Katakana
    {0x3105, 0x312F},  // Bopomofo
    {0x31A0, 0x31BF},  // Bopomofo
    {0x31F0, 0x31FF},  // Katakana: small letters
    {0x3400, 0x4DBF},  // Han
    {0x4E00, 0x9FFF},  // Han
    {0xA9E0, 0xA9FE},  // Burmese
    {0xAA60, 0xAA7F},  // Burmese
    {0xD840, 0xD8BF},  // Han: first halves
    {0xDC00, 0xDFFF},  // second halves, of all scripts
    {0xF900, 0xFAFF},  // Han: compatibility
    {0xFF66, 0xFF9F},  // Katakana: half width
};

/// Besides the marks.
constexpr UnitRange JoinsBefore[] = {
    {0x0E33, 0x0E33},  // Thai am
    {0x0EB3, 0x0EB3},  // Lao am
    {0xDC00, 0xDFFF},  // second halves
    {0xFF9E, 0xFF9F},  // voiced sound marks of half width
};

constexpr UnitRange JoinsBehind[] = {
    {0x1039, 0x1039},  // Burmese: stacks the letter behind it
    {0x17D2, 0x17D2},  // Khmer: the same
    {0xD800, 0xDBFF},  // first halves
};

constexpr UnitRange SentenceEnds[] = {
    {0x104B, 0x104B},  // Burmese section
    {0x17D4, 0x17D5},  // Khmer khan, bariyoosan
    {0x3002, 0x3002},  // ideographic full stop
    {0xFF01, 0xFF01},  // exclamation mark of full width
    {0xFF1F, 0xFF1F},  // question mark of full width
    {0xFF61, 0xFF61},  // ideographic full stop of half width
};

// clang-format on

}  // namespace

std::span<const UnitRange> unspacedUnits() { return Units; }
std::span<const UnitRange> unspacedJoinsBefore() { return JoinsBefore; }
std::span<const UnitRange> unspacedJoinsBehind() { return JoinsBehind; }
std::span<const UnitRange> unspacedSentenceEnds() { return SentenceEnds; }

}  // namespace velmo::detail
