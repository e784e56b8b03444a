#include <velmocore/readers/DocumentDates.h>

#include "readers/ReaderTestSupport.h"

namespace velmo {
namespace {

using test::iso;

struct Case {
    const char16_t* text;
    const char* validated;
    const char* loose;  // null is none
};

void check(std::initializer_list<Case> cases) {
    for (const auto& [text, validated, loose] : cases)
        for (const bool validate : {true, false}) {
            const char* const expected = validate ? validated : loose;
            const auto date = documentDateByValidatingSeparation(text, validate, {.zone = {}});
            EXPECT_EQ(iso(date).substr(0, 10), expected ? expected : "none") << String(text) << validate;
        }
}

TEST(DocumentDates, NumbersNeedTheirSeparators) {
    check({
        {u"as of 03.02.2001 all", "2001-02-03", "2001-02-03"},
        {u"as of 3/2/2001 all", "2001-02-03", nullptr},  // one digit
        {u"2001-02-03", "2001-02-03", "2001-02-03"},
        {u"03-02.2001", nullptr, "2001-02-03"},
        {u"03--02-2001", "2001-02-03", "2001-02-03"},
        {u"03, 02, 2001", nullptr, "2001-02-03"},
        {u"2001/02/13", "2001-02-13", "2001-02-13"},
        {u"13/02/2001", "2001-02-13", "2001-02-13"},
        {u"02/13/2001", "2001-02-13", "2001-02-13"},
        {u"14.13.2001", nullptr, nullptr},
        {u"31.04.2001, 30.04.2001", "2001-04-30", "2001-04-30"},
        {u"01.02.1949 and 01.02.1950", "1950-02-01", "1950-02-01"},
        {u"01.02.2051", nullptr, nullptr},
        {u"01.02.99", nullptr, nullptr},
        {u"01.02.2001.2002 03.04.2005", "2001-02-01", "2001-02-01"},
        {u"01.2001.02", nullptr, nullptr},
        {u"", nullptr, nullptr},
    });
}

TEST(DocumentDates, NamesNeedNone) {
    check({
        {u"Hamburg, 3. Februar 2001.", "2001-02-03", nullptr},
        {u"February 03, 2001", "2001-02-03", "2001-02-03"},
        {u"February 3rd, 2001", "2001-02-03", "2001-02-03"},
        {u"2001 03 m\u00C4RZ", "2001-03-03", "2001-03-03"},
        {u"03 mae 2001", "2001-03-03", "2001-03-03"},
        {u"03 sept 2001", "2001-09-03", "2001-09-03"},
        {u"03 0CT 2001", "2001-10-03", "2001-10-03"},    // as scanned
        {u"10th May 2001", "2001-05-01", "2001-05-01"},  // 1O
        {u"21st May 2001", "2001-05-21", "2001-05-21"},
        {u"32nd May 2001", nullptr, nullptr},
        {u"Februaryy 03 2001", nullptr, nullptr},
        {u"May June 2001", nullptr, nullptr},
        {u"03 of May 2001", nullptr, nullptr},
        {u"May 03 2001 in the zone", "2001-05-03", "2001-05-03"},
    });
    const auto there = documentDateByValidatingSeparation(u"3 May 2001", true, {.zone = *TimeZone::named(u"CEST")});
    EXPECT_EQ(iso(there), "2001-05-02T22:00:00Z");
}

}  // namespace
}  // namespace velmo
