// One walk over a text whose separator is known, from the end of a field to the next. Fields are
// views until a row is kept, and a line without text costs no string at all.
#include <velmocore/readers/Sheets.h>

#include <algorithm>

#include "platform/LargePages.h"
#include "readers/SheetSeparator.h"
#include "readers/UnitMasks.h"
#include "text/UnitClasses.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;
using Position = const char16_t*;

constexpr char16_t Quote = u'"';

/// Masks of quotes.
struct Quotes {
    std::uint64_t operator()(Position block) const { return AsciiBlock(block).maskOf('"'); }
};

/// Masks of the units that end a field: the separator and feed units.
struct FieldEnds {
    char16_t separator;

    bool isEnd(char16_t unit) const { return unit == separator || isFeedUnit(unit); }

    std::uint64_t operator()(Position block) const {
#if defined(__SSE2__)
        // Most feeds stand together, if units are counted round the end of the plane; the bits of a
        // number tell them from what stands between.
        const auto mark = [this](__m128i units) {
            const __m128i around = _mm_add_epi16(units, _mm_set1_epi16(4));
            const __m128i others =
                _mm_or_si128(scan::equalTo(units, 0xFEFF), scan::inRange(units, 0x2028, 0x2029));
            return _mm_or_si128(_mm_or_si128(scan::inRange(around, 0, 17), others),
                                scan::equalTo(units, separator));
        };
        std::uint64_t found = maskWhere(block, mark, 0);
        for (std::uint64_t rest = found; rest; rest &= rest - 1)
            if (!isEnd(block[std::countr_zero(rest)])) found &= ~(rest & -rest);
        return found;
#else
        return maskWhere(block, 0, [this](char16_t unit) { return isEnd(unit); });
#endif
    }
};

/// If there is one at both ends. A field of one quote has nothing left either.
void removeQuotes(View& field) {
    if (field.empty() || field.front() != Quote || field.back() != Quote) return;
    field.remove_prefix(1);
    if (!field.empty()) field.remove_suffix(1);
}

String withSingleQuotes(View text) {
    Position from = text.data();
    const Position to = from + text.size();
    StringBuilder out(text.size());
    for (Position hit; (hit = scan::findDoubled(from, to, Quote)) != to; from = hit + 2)
        out.append(View(from, hit + 1));
    out.append(View(from, to));
    return out.finish();
}

class LineWalk {
public:
    LineWalk(View text, const SheetOptions& options, char16_t separator)
        : separator_(separator),
          quoted_(options.quoted),
          cutsAtSeparators_(!options.standardQuotes),
          at_(text.data()),
          // Without quotes the row ends before the last unit, whatever that is.
          end_(at_ + text.size() - (quoted_ || text.empty() ? 0 : 1)),
          quotes_(end_, {}),
          ends_(end_, {separator_}),
          fields_(UsualFields) {}

    /// Reads the next line that is not empty; false if there is none.
    bool next() {
        while (at_ < end_ && isFeedUnit(*at_)) ++at_;
        if (at_ == end_) return false;
        hasText_ = false;
        count_ = 0;
        do readField();
        while (at_ < end_ && *at_++ == separator_);  // so that one at the end has a field behind it
        return true;
    }

    std::span<const SheetField> fields() const { return {fields_.data(), count_}; }
    bool hasText() const { return hasText_; }

private:
    static constexpr std::size_t UsualFields = 64;

    void readField() {
        const Position start = at_;
        const bool isDoubled = quoted_ && at_ < end_ && *at_ == Quote && skipQuotes();
        // Mostly the quotes are closed by the end of the field.
        if (at_ < end_ && *at_ != separator_ && !isFeedUnit(*at_)) at_ = ends_.next(at_);
        View units(start, at_);
        if (quoted_) removeQuotes(units);
        hasText_ |= !units.empty();
        // The places are used again and again, which is cheaper than to make them.
        if (count_ == fields_.size()) fields_.resize(2 * count_);
        SheetField& field = fields_[count_++];
        field.units = units;
        field.hasDoubledQuotes = isDoubled;
    }

    /// Goes behind the closing quote. Whether there are doubled ones before it.
    bool skipQuotes() {
        bool isDoubled = false;
        for (++at_; (at_ = quotes_.next(at_)) != end_; at_ += 2) {
            const bool isPair = end_ - at_ > 1 && at_[1] == Quote;
            if (!isPair || (cutsAtSeparators_ && end_ - at_ > 2 && at_[2] == separator_)) {
                ++at_;
                break;
            }
            isDoubled = true;
        }
        return isDoubled;
    }

    const char16_t separator_;
    const bool quoted_, cutsAtSeparators_;
    Position at_;
    const Position end_;
    MaskCursor<Quotes> quotes_;
    MaskCursor<FieldEnds> ends_;
    std::vector<SheetField> fields_;
    std::size_t count_ = 0;
    bool hasText_ = false;
};

/// Calls the handler with each row that has a text.
template <class Handler>
SheetShape walkRows(View text, const SheetOptions& options, char16_t separator, Handler handler) {
    SheetShape shape{.definition = true};
    std::size_t kept = 0;
    for (LineWalk walk(text, options, separator); walk.next();) {
        const std::span<const SheetField> row = walk.fields();
        shape.numberOfColumns = std::max(shape.numberOfColumns, row.size());
        shape.definition &= row.front().units.empty();
        if (walk.hasText() && (++kept, !handler(row))) break;
        if (kept >= options.maxRows) break;
    }
    return shape;
}

SheetRow rowOf(std::span<const SheetField> fields) {
    SheetRow row;
    row.reserve(fields.size());
    for (const SheetField& field : fields) row.push_back(field.text());
    return row;
}

}  // namespace

String SheetField::text() const {
    if (units.empty()) return String::empty();
    return hasDoubledQuotes ? withSingleQuotes(units) : String(units);
}

SheetShape forEachSheetRow(View text, FunctionRef<bool(std::span<const SheetField> row)> handler,
                           const SheetOptions& options) {
    return walkRows(text, options, sheetSeparator(text, options.quoted).unit, handler);
}

SheetView::SheetView(View text, const SheetOptions& options) {
    const SheetSeparator separator = sheetSeparator(text, options.quoted);
    // A field for each separator, and one more a row.
    if (options.maxRows == AllRows) fields_.reserve(separator.count + separator.count / 4);
    wantLargePages(fields_.data(), fields_.capacity() * sizeof(SheetField));
    shape_ = walkRows(text, options, separator.unit, [this](std::span<const SheetField> row) {
        fields_.insert(fields_.end(), row.begin(), row.end());
        ends_.push_back(fields_.size());
        return true;
    });
}

Sheet valuesSeparatedByTab(View text, const SheetOptions& options) {
    Sheet sheet;
    const auto keep = [&](std::span<const SheetField> row) {
        sheet.rows.push_back(rowOf(row));
        return true;
    };
    static_cast<SheetShape&>(sheet) = forEachSheetRow(text, keep, options);
    return sheet;
}

bool addQuotedField2Line(SheetRow& row, View field, bool hasDoubledQuotes) {
    removeQuotes(field);
    row.push_back(SheetField{field, hasDoubledQuotes}.text());
    return !field.empty();
}

void appendDoubleQuotedField(std::u16string& text, View field, bool separator) {
    text += Quote;
    Position from = field.data();
    const Position to = from + field.size();
    for (Position hit; (hit = scan::find(from, to, Quote)) != to; from = hit + 1)
        text.append(from, hit + 1) += Quote;
    text.append(from, to);
    text += separator ? u"\";" : u"\"\n";
}

}  // namespace velmo
