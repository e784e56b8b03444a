#include "markup/WebReferences.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "markup/ReferenceTables.h"
#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// The longest name, and the longest that may do without its semicolon.
constexpr std::size_t LongestName = 31, LongestLooseName = 6;

struct Row {
    std::string_view name;
    bool isLoose;
    const char16_t* units;
};

/// Made at first use, and sorted as the names are.
const std::vector<Row>& rows() {
    static const std::vector<Row>& made = *[] {
        auto* table = new std::vector<Row>;
        std::string_view names = referenceNames();
        for (const char16_t* units = referenceUnits().data(); !names.empty(); units += 2) {
            const std::size_t end = names.find_first_of("; ");
            table->push_back({names.substr(0, end), names[end] == ' ', units});
            names.remove_prefix(end + 1);
        }
        return table;
    }();
    return made;
}

const Row* rowOf(std::string_view name) {
    const auto row = std::ranges::lower_bound(rows(), name, {}, &Row::name);
    return row != rows().end() && row->name == name ? &*row : nullptr;
}

WebReference referenceOf(const Row& row, std::size_t taken) {
    return {taken, {row.units[0], row.units[1]}, row.units[1] ? std::size_t{2} : 1};
}

/// What the bytes 80 to 9F are in Windows-1252, as pages mean numbers so; 0 for those without one.
constexpr char16_t WindowsUnits[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

WebReference referenceOf(std::uint32_t point, std::size_t taken) {
    if (point == 0 || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) point = 0xFFFD;
    if (point >= 0x80 && point < 0xA0 && WindowsUnits[point - 0x80])
        point = WindowsUnits[point - 0x80];
    if (point < 0x10000) return {taken, {static_cast<char16_t>(point)}, 1};
    return {taken,
            {static_cast<char16_t>(0xD7C0 + (point >> 10)),
             static_cast<char16_t>(0xDC00 + (point & 0x3FF))},
            2};
}

WebReference readNumber(Units text) {
    const bool isHex = text.size() > 2 && (text[2] | 0x20) == u'x';
    const std::uint32_t base = isHex ? 16 : 10;
    const std::size_t start = isHex ? 3 : 2;
    std::uint32_t point = 0;
    std::size_t end = start;
    for (; end < text.size() && ascii::hexValue(text[end]) < base; ++end)
        point = std::min<std::uint32_t>(point * base + ascii::hexValue(text[end]), 0x110000);
    if (end == start) return {};
    return referenceOf(point, end + (end < text.size() && text[end] == u';'));
}

WebReference readName(Units text, bool isInAttribute) {
    char name[LongestName];
    std::size_t length = 0;
    while (length < LongestName && length + 1 < text.size() &&
           ascii::isLetterOrDigit(text[length + 1])) {
        name[length] = static_cast<char>(text[length + 1]);
        ++length;
    }
    if (length + 1 < text.size() && text[length + 1] == u';')
        if (const Row* row = rowOf({name, length})) return referenceOf(*row, length + 2);
    for (std::size_t n = std::min(length, LongestLooseName); n >= 2; --n) {
        const Row* row = rowOf({name, n});
        if (!row || !row->isLoose) continue;
        const char16_t next = n + 1 < text.size() ? text[n + 1] : u'\0';
        const bool isPart = isInAttribute && (next == u'=' || ascii::isLetterOrDigit(next));
        return isPart ? WebReference() : referenceOf(*row, n + 1);
    }
    return {};
}

}  // namespace

WebReference readWebReference(Units text, bool isInAttribute) {
    if (text.size() < 3) return {};
    return text[1] == u'#' ? readNumber(text) : readName(text, isInAttribute);
}

}  // namespace velmo::detail
