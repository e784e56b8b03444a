// The commands that work with queries: query, match and excerpts.
#include <regex>

#include "ToolFixture.h"

namespace velmo {
namespace {

TEST_F(Tool, TellsTheFormsOfAQuery) {
    const Json forms = run("query --json -- '-Tea OR foo-bar site:x.org NEAR/3 \"c d\"'").lines().at(0);
    EXPECT_EQ(forms, Json::parse(R"({"valid": true,
        "tree": "AND group of 4 (NONE)\n  AND -Tea\n  OR foo-bar\n  AND site:x.org\n  NEAR/3 \"c d\"\n",
        "standardized": "-Tea OR foo-bar site:x.org \"c d\"",
        "normalized": "-tea|foo-bar site:x.org NEAR/3 \"c d\"",
        "description": "NOT Tea OR foo-bar AND site:x.org NEAR/3 \"c d\"",
        "plusWords": ["foo", "bar", "site", "x", "org", "c", "d"],
        "wildcards": ["c d", "foobar", "foo bar", "foo-bar", "site x org", "site:x.org"],
        "minTermLen": 3})"));
    const Json nothing = run("query --json --without-site 'site:x.org'").lines().at(0);
    EXPECT_EQ(nothing["valid"], false);
    EXPECT_EQ(nothing["wildcards"], nullptr);
    EXPECT_EQ(nothing["minTermLen"], 0);
    const std::pair<const char*, const char*> cases[] = {
        {"--plain '~a [b c]*'", "AND group of 2 (AND)\n  AND ~a\n  AND *\n"},
        {"'~a [b c]*'", "AND group of 2 (AND)\n  AND ~*a*\n  AND [b c]*\n"},
        {"--default-operator=near --default-distance=4 'a b'", "NEAR/4 group of 2 (NEAR)\n  NEAR/4 a\n  NEAR/4 b\n"},
        {"--without-site 'site:c a'", "AND group of 1 (NONE)\n  AND a\n"}};
    for (const auto& [arguments, tree] : cases) EXPECT_EQ(run(std::string("query --tree ") + arguments).out, tree);
    const Json unbounded = run("query --json 'a BEFORE b AFTER \"AFTER/-1\" NEXT c'").lines().at(0);
    EXPECT_EQ(unbounded["normalized"], "a BEFORE b AFTER \"after/-1\" BEFORE/1 c");
    EXPECT_EQ(unbounded["description"], "a BEFORE b AFTER \"AFTER/-1\" NEXT c");
    EXPECT_TRUE(run("query 'a b'").out.starts_with("valid:"));
    for (const char* wrong : {"query", "query --default-operator=with a", "query --tree --json a"})
        EXPECT_EQ(run(wrong).code, 2) << wrong;
}

TEST_F(Tool, MatchesManyFiles) {
    const std::string notes = write("notes.txt", "The database of Z\xC3\xBCrich");
    const std::string other = write("other.txt", "nothing");
    const std::pair<std::string, bool> cases[] = {
        {"database", true},
        {"--plain 'data*'", false},
        {"'data* NEAR/2 z*'", true},
        {"zurich", false},
        {"--comparison=both zurich", true},
        {"--comparison=diacritics zurich", false},
        {"--comparison=exact zurich", false},
        {"--comparison=case+fuzzy databasis", true},
        {"--contains 'zz data?ase'", true},
    };
    for (const auto& [arguments, holds] : cases) {
        const Outcome outcome = run("match " + arguments + " " + notes + " " + other);
        EXPECT_EQ(outcome.code, holds ? 0 : 1) << arguments;
        EXPECT_EQ(outcome.out, holds ? notes + "\n" : "") << arguments;
    }
    // A folder in a fixed order, whatever the number of threads.
    const std::string all = run("match -r --jobs=1 -- '-zyzzyva' " VELMO_PAGES).out;
    EXPECT_GT(std::ranges::count(all, '\n'), 30);
    EXPECT_EQ(run("match -r --jobs=7 --files-with-matches -- '-zyzzyva' " VELMO_PAGES).out, all);
    EXPECT_EQ(run("match DATABASE", "database").out, "-\n");
    for (const char* wrong : {"match --plain --comparison=both a", "match --comparison=some a", "match --json -l a"})
        EXPECT_EQ(run(wrong).code, 2) << wrong;
}

TEST_F(Tool, ShowsExcerptsAsDescribed) {
    const std::string notes =
        write("notes.txt", "Some tea. No coffee!\r\nTea\nAnd a cup of green tea, please. Tea and cake");
    const auto json = [&](const std::string& arguments) {
        return run("excerpts --described --json " + arguments + " " + notes).lines().at(0);
    };
    EXPECT_EQ(json("tea --length=0")["summary"], "Some tea And a cup of green tea, please Tea and cake");
    EXPECT_EQ(json("tea --length=30 --separator=' / '")["summary"], "Some tea /  a cup of green tea...");
    EXPECT_EQ(json("tea --length=0 --single-words --separator=/")["summary"],
              "Some tea/Tea/And a cup of green tea, please/Tea and cake");
    EXPECT_EQ(json("'cof*' --length=0 --paragraphs")["summary"], "Some tea. No coffee");
    EXPECT_EQ(json("zz --length=12")["summary"], "Some tea...");
    EXPECT_EQ(json("zz --only-occurrences")["summary"], nullptr);
    EXPECT_EQ(json("tea --comparison=exact --length=0")["summary"], "Some tea And a cup of green tea, please");
    const Json records = json("'t?a NEAR cof*' --list")["records"];
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[2], Json::parse(R"({"range": [22, 3], "line": 1, "text": "Tea", "hits": [[0, 3]]})"));
    EXPECT_EQ(json("coffee --list --enclosing-words=2")["records"][0]["text"],
              "...Some tea. No coffee!\r\nTea\nAnd...");
    EXPECT_EQ(run("excerpts --list --color=always coffee " + notes).out,
              "\x1B[35m" + notes + "\x1B[m:\x1B[32m1\x1B[m: No \x1B[1;31mcoffee\x1B[m\n");
    EXPECT_EQ(run("excerpts --list zz " + notes).code, 1);
    const std::string all = run("excerpts -r --jobs=1 licensed " VELMO_PAGES).out;
    EXPECT_EQ(run("excerpts -r --jobs=5 licensed " VELMO_PAGES).out, all);
    EXPECT_EQ(run("excerpts --json 'the OR l*' " + pages()).lines().size(), 37u);
}

TEST_F(Tool, ShowsWhatMakesAQueryHold) {
    const std::string text =
        "A cat is far away. Version 2.4 of example.org has a cat NEAR its mat. Nothing here. The dog has a mat too.";
    const std::tuple<const char*, bool, Json, Json> cases[] = {
        {"'cat NEAR/4 mat'", true, "Version 2.4 of example.org has a cat NEAR its mat", {{33, 3}, {46, 3}}},
        {"'far OR dog'", true, "A cat is far away ... The dog has a mat too", {{9, 3}, {26, 3}}},
        {"'cat -dog'", false, nullptr, Json::array()},
        {"--any-word 'far -dog'", false, "A cat is far away", {{9, 3}}},
        {"--beginning --length=9 'bird'", false, "A cat is...", Json::array()},
        {"--plain 'd* OR far'", true, "A cat is far away", {{9, 3}}},
        {"--length=25 'mat NEAR/4 cat'", true, " of example.org has a cat...", Json::array({{22, 3}})}};
    for (const auto& [arguments, matches, summary, hits] : cases) {
        const Json object = run(std::string("excerpts --json ") + arguments, text).lines().at(0);
        EXPECT_EQ(object["matches"], matches) << arguments;
        EXPECT_EQ(object["summary"], summary) << arguments;
        EXPECT_EQ(object["hits"], hits) << arguments;
    }
    EXPECT_EQ(
        run("excerpts --color=always 'far OR dog'", text).out,
        "\x1B[35m-\x1B[m: A cat is \x1B[1;31mfar\x1B[m away \xE2\x80\xA6 The \x1B[1;31mdog\x1B[m has a mat too\n");
    EXPECT_EQ(run("excerpts 'cat -dog'", text).code, 1);
    // Whatever is called a hit is one, in what is printed.
    for (const Json& object : run("excerpts --json --length=200 'l* NEAR/3 the' " + pages()).lines())
        for (const Json& hit : object["hits"]) {
            const String shown = String::fromUTF8(object["summary"].get<std::string>());
            const std::string word = shown.substring({hit[0], hit[1]}).utf8();
            EXPECT_TRUE(word.starts_with('l') || word.starts_with('L') || word == "the" || word == "The") << word;
        }
}

TEST_F(Tool, CountsAndNamesTheFilesOfExcerpts) {
    const std::string both = write("a.txt", "a cat, a dog"), cat = write("b.txt", "a cat"), none = write("c.txt", "x");
    const std::string files = " " + both + " " + cat + " " + none;
    const std::tuple<const char*, std::string, int> cases[] = {{"-c 'cat dog'", "1\n", 0},
                                                               {"--count --any-word 'cat dog'", "2\n", 0},
                                                               {"-c --described 'dog -cat'", "1\n", 0},
                                                               {"-c --plain --any-word 'd*'", "1\n", 0},
                                                               {"-c -l 'bird'", "0\n", 1},
                                                               {"-l 'cat OR dog'", both + "\n" + cat + "\n", 0},
                                                               {"-l0 --list 'cat -dog'", cat + '\0', 0},
                                                               {"-q cat", "", 0},
                                                               {"-q --json bird", "", 1}};
    for (const auto& [arguments, out, code] : cases) {
        const Outcome outcome = run(std::string("excerpts ") + arguments + files);
        EXPECT_EQ(outcome.out, out) << arguments;
        EXPECT_EQ(outcome.code, code) << arguments;
        // What is told is what the excerpts themselves tell by the exit code.
        const std::string shown = std::regex_replace(arguments, std::regex("^(-[clq0]+ |--count )+"), "");
        EXPECT_EQ(run("excerpts " + shown + files).code, code) << shown;
    }
    EXPECT_EQ(run("excerpts -c --json cat" + files).code, 2);
}

TEST_F(Tool, ExplainsWhatCannotBeMeant) {
    const std::pair<const char*, const char*> cases[] = {
        {"match ''", "query: at 1: "},
        {"match 'a \"b'", "query: at 3: "},
        {"query 'a (b'", "query: at 3: "},
        {"excerpts 'a NEAR/x b'", "query: at 3: "},
        {"gather --query '[ab' .", "query: at 1: "},
        {"find -e a -e '[ab'", "pattern: at 1: "},
        {"match 'a [b]['", "query: at "},
    };
    for (const auto& [arguments, start] : cases) {
        const Outcome lenient = run(arguments, "a b"), strict = run(arguments + std::string(" --strict"), "a b");
        EXPECT_TRUE(lenient.err.starts_with(std::string("velmo: ") + start)) << arguments << lenient.err;
        EXPECT_NE(lenient.code, 2) << arguments;
        EXPECT_EQ(strict.code, 2) << arguments;
        EXPECT_EQ(strict.out, lenient.out) << arguments;
    }
    EXPECT_EQ(run("match 'a \"b c\" (d OR [ef]*)'", "a").err, "");
}

// Real pages in Japanese, in three charsets, and in Chinese; and Thai.
TEST_F(Tool, FindsTermsOfScriptsWithoutSpaces) {
    const std::string japanese = VELMO_PAGES "/httpd-ja-utf8.html", chinese = VELMO_PAGES "/httpd-zh-cn-utf8.html";
    const std::string all = VELMO_PAGES "/httpd-ja-utf8.html " VELMO_PAGES "/httpd-ja-euc-jp.html " VELMO_PAGES
                                        "/httpd-ja-iso-2022-jp.html ";
    const std::tuple<const char*, std::string, long> matched[] = {
        {"\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE8\xA8\xB3", all, 1},                          // a word in a sentence
        {"\xE3\x83\xAA\xE3\x83\x95\xE3\x82\xA1\xE3\x83\xAC\xE3\x83\xB3\xE3\x82\xB9", all, 2},  // and in a compound
        {"'\xE6\x9C\x80\xE8\xBF\x91 NEAR/4 \xE5\x86\x85\xE5\xAE\xB9'", japanese, 0},
        {"'\xE6\x9C\x80\xE8\xBF\x91 BEFORE/8 \xE5\x86\x85\xE5\xAE\xB9'", japanese, 1},
        {"'\xE7\xBF\xBB\xE8\xAF\x91 BEFORE/4 \xE8\xBF\x87\xE6\x9C\x9F'", chinese, 1},  // counts characters
        {"'\xE7\xBF\xBB\xE8\xAF\x91 BEFORE/3 \xE8\xBF\x87\xE6\x9C\x9F'", chinese, 0},
        {"--whole-words \xE7\xBF\xBB\xE8\xAF\x91", chinese, 0},
        {"--whole-words '~\xE7\xBF\xBB\xE8\xAF\x91'", chinese, 1},
    };
    for (const auto& [query, files, count] : matched)
        EXPECT_EQ(run(std::string("match -c ") + query + " " + files).out, std::to_string(count) + "\n") << query;

    const std::tuple<const char*, std::string, const char*> excerpts[] = {
        {"\xE7\xBF\xBB\xE8\xAF\x91", chinese,
         ("\xE6\xAD\xA4\xE7\xBF\xBB\xE8\xAF\x91\xE5\x8F\xAF\xE8\x83\xBD\xE8\xBF\x87\xE6\x9C\x9F")},
        {"\xE5\x8F\xAF\xE8\x83\xBD\xE6\x80\xA7", japanese,
         ("\xE3\x81\x93\xE3\x81\xAE\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE8\xA8\xB3\xE3\x81\xAF\xE3\x81\x99\xE3\x81\xA7"
          "\xE3\x81\xAB\xE5\x8F\xA4\xE3\x81\x8F\xE3\x81\xAA\xE3\x81\xA3\xE3\x81\xA6\xE3\x81\x84\xE3\x82\x8B "
          "\xE5\x8F\xAF\xE8\x83\xBD\xE6\x80\xA7\xE3\x81\x8C\xE3\x81\x82\xE3\x82\x8A\xE3\x81\xBE\xE3\x81\x99")},
    };
    for (const auto& [query, file, sentence] : excerpts)
        EXPECT_EQ(run(std::string("excerpts ") + query + " " + file).out, file + ": " + sentence + "\n");

    const std::string thai =
        ("\xE0\xB8\x81\xE0\xB8\xB2\xE0\xB8\xA3\xE0\xB8\x97\xE0\xB8\x94\xE0\xB8\xAA\xE0\xB8\xAD\xE0\xB8\x9A\xE0\xB8\x99"
         "\xE0\xB8\xB5\xE0\xB9\x89");
    const std::string word = ("\xE0\xB8\x97\xE0\xB8\x94\xE0\xB8\xAA\xE0\xB8\xAD\xE0\xB8\x9A");
    EXPECT_EQ(run("find --json " + word, thai).lines().at(0)["range"], Json({3, 5}));
    EXPECT_EQ(run("find --json '" + word + "*'", thai).lines().at(0)["range"], Json({3, 5}));
    EXPECT_EQ(run("find --whole-words " + word, thai).code, 1);
    EXPECT_EQ(run("find --whole-words '*" + word + "*'", thai).code, 0);
    EXPECT_NE(run("help query").out.find("--whole-words"), std::string::npos);
}

}  // namespace
}  // namespace velmo
