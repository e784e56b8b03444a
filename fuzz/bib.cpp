// A text as a bibliography, with all its entries and with those of one type.
#include <velmocore/readers/BibTeX.h>
#include <velmocore/readers/Sheets.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

void check(const BibTeXEntries& list) {
    for (const BibTeXEntry& entry : list.entries)
        for (const BibTeXField& field : entry.fields) {
            require(std::ranges::count(list.keys, field.name) == 1);
            require(entry.value(field.name).isIdenticalTo(field.value));
        }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::unitsOf(data, size);
    const BibTeXEntries all = BibTeXEntriesNamed(text);
    check(all);
    check(BibTeXEntriesNamed(text, u"book"));
    const auto sheet = sheetWithText(text, SheetFormat::BibTeX);
    require(sheet && sheet->rows.size() == all.entries.size() + 1);
    return 0;
}
