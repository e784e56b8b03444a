// Dates.
#include <velmocore/readers/CalendarFormat.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/readers/DocumentDates.h>
#include <velmocore/readers/NaturalDates.h>

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
};

}  // namespace

std::span<const Operation> readerOperations() { return Rows; }

}  // namespace velmo::growth
