// A text as a sheet in all ways. All ways give the same rows; and what is written of rows that have a
// text is read again as it was.
#include <velmocore/readers/Sheets.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

void checkWriting(const std::vector<SheetRow>& rows) {
    // So many separators that they are the most frequent ones, whatever the fields hold.
    std::vector<SheetRow> kept = {SheetRow(8, String(u"x"))};
    kept.insert(kept.end(), rows.begin(), rows.end());
    std::u16string written;
    for (const SheetRow& row : kept)
        for (const String& field : row)
            appendDoubleQuotedField(written, field, &field != &row.back());
    require(valuesSeparatedByTab(written, {.standardQuotes = true}).rows == kept);
}

void checkViews(const String& text, const SheetOptions& options, const Sheet& sheet) {
    const SheetView view(text, options);
    require(view.size() == sheet.rows.size());
    for (std::size_t i = 0; i < view.size(); ++i) {
        require(view[i].size() == sheet.rows[i].size());
        for (std::size_t k = 0; k < view[i].size(); ++k)
            require(view[i][k].text() == sheet.rows[i][k]);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::unitsOf(data, size);
    for (const bool quoted : {true, false}) {
        const SheetOptions all{.quoted = quoted};
        const Sheet sheet = valuesSeparatedByTab(text, all);
        checkViews(text, all, sheet);
        checkWriting(sheet.rows);
        const Sheet one = valuesSeparatedByTab(text, {.quoted = quoted, .maxRows = 1});
        require(one.rows.size() == std::min<std::size_t>(1, sheet.rows.size()));
    }
    return 0;
}
