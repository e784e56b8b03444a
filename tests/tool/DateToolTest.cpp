// velmo date: what texts are read as, where they come from, and what options ask for.
#include "ToolFixture.h"

namespace velmo {
namespace {

using DateTool = Tool;

TEST_F(DateTool, PrintsEachDateInUTC) {
    const Outcome both = run("date --zone UTC '3. Februar 2001' 'no \\033 date' '2001-02-03T10:11:12+01:00'");
    EXPECT_EQ(both.out,
              "2001-02-03T00:00:00Z  3. Februar 2001\nno date  no \\033 date\n"
              "2001-02-03T10:11:12Z  2001-02-03T10:11:12+01:00\n");
    EXPECT_EQ(both.code, 0);
    EXPECT_EQ(both.err, "");
    const Outcome none = run("date --json 'a \"b\"' 42");
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.out, "{\"text\":\"a \\\"b\\\"\",\"date\":null}\n{\"text\":\"42\",\"date\":null}\n");
}

TEST_F(DateTool, OptionsSayWhatTextsAre) {
    const std::pair<const char*, const char*> cases[] = {
        {"--zone UTC --offsets 2001-02-03T10:11:12+01:00", "2001-02-03T09:11:12Z"},
        {"--zone Europe/Berlin 2001-07-03", "2001-07-02T22:00:00Z"},
        {"--http 'Sun, 06 Nov 1994 08:49:37 GMT'", "1994-11-06T08:49:37Z"},
        {"--http 2001-02-03", "no date"},
        {"--opf --zone +0100 2001-02-03T10:11Z", "2001-02-03T09:11:00Z"},
        {"--zone UTC --document 'on 03 02 2001'", "2001-02-03T00:00:00Z"},
        {"--zone UTC --document=validate 'on 03 02 2001'", "no date"},
        {"--zone UTC --document=validate 'on 3/2/2001'", "2001-02-03T00:00:00Z"},
        {"--now '2001-02-03 10:00' --zone +01:00 '2 hours ago'", "2001-02-03T07:00:00Z"},
    };
    for (const auto& [arguments, expected] : cases) {
        const std::string out = run(std::string("date ") + arguments).out;
        EXPECT_EQ(out.substr(0, out.find("  ")), expected) << arguments;
    }
}

TEST_F(DateTool, ReadsLinesOfStandardInput) {
    for (const char* arguments : {"", "-"})
        EXPECT_EQ(run(std::string("date --zone UTC ") + arguments, "3 Feb 2001\n\n nothing \n").out,
                  "2001-02-03T00:00:00Z  3 Feb 2001\nno date  nothing\n");
    EXPECT_EQ(run("date --json --zone UTC 2002-02-03 -", "2001-02-03\n").lines().size(), 2u);
}

TEST_F(DateTool, RefusesWhatCannotBe) {
    const std::pair<const char*, const char*> cases[] = {
        {"--zone Mars x", "--zone: 'Mars' is no time zone"},
        {"--now then x", "--now: 'then' is no instant"},
        {"--document=all x", "--document: 'all' is none of validate"},
        {"--http --opf x", "--http does not go with --opf"},
        {"--http --document x", "--document does not go with --http"},
        {"--opf --document=validate x", "--opf does not go with --document"},
    };
    for (const auto& [arguments, complaint] : cases) {
        const Outcome outcome = run(std::string("date ") + arguments);
        EXPECT_EQ(outcome.code, 2) << arguments;
        EXPECT_NE(outcome.err.find(complaint), std::string::npos) << outcome.err;
    }
}

}  // namespace
}  // namespace velmo
