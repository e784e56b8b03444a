// One walk over a text whose separator is known, from the end of a field to the next. Fields are
// views until a row is kept, and a line without text costs no string at all.
#include <velmocore/readers/Sheets.h>

#include <algorithm>

#include "readers/SheetSeparator.h"
#include "text/UnitClasses.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;
using Position = const char16_t*;

constexpr char16_t Quote = u'"';

/// The first separator or feed unit; to if there is none.
Position fieldEnd(Position from, Position to, char16_t separator) {
    const auto isEnd = [=](char16_t unit) { return unit == separator || isFeedUnit(unit); };
#if defined(__SSE2__)
    // Most feeds stand together, counted round the end of the plane; what else stands there is
    // told from them afterwards.
    const auto mark = [=](__m128i block) {
        const __m128i around = _mm_add_epi16(block, _mm_set1_epi16(4));
        const __m128i separates =
            _mm_or_si128(scan::equalTo(block, 0xFEFF), scan::inRange(block, 0x2028, 0x2029));
        return _mm_or_si128(_mm_or_si128(scan::inRange(around, 0, 17), separates),
                            scan::equalTo(block, separator));
    };
    for (;; ++from) {
        from = scan::findWhere(from, to, mark, isEnd);
        if (from == to || isEnd(*from)) return from;
    }
#else
    return std::find_if(from, to, isEnd);
#endif
}

/// A field of one quote has nothing left either.
View withoutQuotes(View field) {
    if (field.empty() || field.front() != Quote || field.back() != Quote) return field;
    return field.size() < 2 ? View(u"") : field.substr(1, field.size() - 2);
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
    LineWalk(View text, const SheetOptions& options)
        : separator_(sheetSeparator(text, options.quoted)),
          quoted_(options.quoted),
          at_(text.data()),
          // Without quotes the row ends before the last unit, whatever that is.
          end_(at_ + text.size() - (quoted_ || text.empty() ? 0 : 1)) {}

    /// Reads the next line that is not empty; false if there is none.
    bool next() {
        fields_.clear();
        while (at_ < end_ && isFeedUnit(*at_)) ++at_;
        if (at_ == end_) return false;
        do fields_.push_back(readField());
        while (at_ < end_ && *at_++ == separator_);  // so that one at the end has a field behind it
        return true;
    }

    std::span<const SheetField> fields() const { return fields_; }
    bool hasText() const {
        return std::any_of(fields_.begin(), fields_.end(),
                           [](const SheetField& field) { return !field.units.empty(); });
    }

private:
    SheetField readField() {
        const Position start = at_;
        bool isDoubled = false;
        if (quoted_ && at_ < end_ && *at_ == Quote) isDoubled = skipQuotes();
        // Mostly the quotes are closed by the end of the field.
        if (at_ < end_ && *at_ != separator_) at_ = fieldEnd(at_, end_, separator_);
        const View field(start, at_);
        return {quoted_ ? withoutQuotes(field) : field, isDoubled};
    }

    /// Goes behind the closing quote. Whether there are doubled ones before it.
    bool skipQuotes() {
        bool isDoubled = false;
        for (++at_; (at_ = scan::find(at_, end_, Quote)) != end_; at_ += 2) {
            const bool isPair = end_ - at_ > 1 && at_[1] == Quote;
            if (!isPair || (end_ - at_ > 2 && at_[2] == separator_)) {
                ++at_;
                break;
            }
            isDoubled = true;
        }
        return isDoubled;
    }

    const char16_t separator_;
    const bool quoted_;
    Position at_;
    const Position end_;
    std::vector<SheetField> fields_;
};

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
    SheetShape shape{.definition = true};
    std::size_t kept = 0;
    for (LineWalk walk(text, options); walk.next();) {
        const std::span<const SheetField> fields = walk.fields();
        shape.numberOfColumns = std::max(shape.numberOfColumns, fields.size());
        shape.definition &= fields.front().units.empty();
        if (walk.hasText() && (++kept, !handler(fields))) break;
        if (kept >= options.maxRows) break;
    }
    return shape;
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
    const View units = withoutQuotes(field);
    row.push_back(SheetField{units, hasDoubledQuotes}.text());
    return !units.empty();
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
