// Dates, sheets and bibliographies.
#include <velmocore/readers/BibTeX.h>
#include <velmocore/readers/CalendarFormat.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/readers/DocumentDates.h>
#include <velmocore/readers/NaturalDates.h>
#include <velmocore/readers/Sheets.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

constexpr Operation Rows[] = {
    {"date",
     [](const Input& in) {
         for (const bool offsets : {false, true})
             use(date(in.text, {.zone = {}, .offsets = offsets}));
     }},
    {"dates of standards",
     [](const Input& in) {
         use(dateFromHTTPHeaderValue(in.text));
         use(dateFromOPF(in.text));
         use(dateWithString(in.text, " %d %Z", {.zone = {}, .offsets = true}));
         use(dateWithNaturalLanguageString(in.text));
     }},
    {"date of a document",
     [](const Input& in) {
         for (const bool validate : {true, false})
             use(documentDateByValidatingSeparation(in.text, validate));
     }},
    {"sheet",
     [](const Input& in) {
         for (const bool quoted : {false, true})
             use(valuesSeparatedByTab(in.text, {.quoted = quoted}));
         use(SheetView(in.text));
         std::u16string line;
         appendDoubleQuotedField(line, in.text, false);
         use(line);
     }},
    {"bibliography",
     [](const Input& in) {
         use(BibTeXEntriesNamed(in.text));
         use(BibTeXEntriesNamed(in.text, u"a"));
         use(sheetWithText(in.text, SheetFormat::BibTeX));
     }},
};

}  // namespace

std::span<const Operation> readerOperations() { return Rows; }

}  // namespace velmo::growth
