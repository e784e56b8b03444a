// What the tool tells of itself: its examples run as they stand, the tables of its man page have every
// option and every member of its JSON and no other, and a slip of the keyboard is understood.
#include <regex>
#include <set>

#include <velmocore/gather/PageStore.h>
#include <velmocore/url/PageKey.h>

#include "ToolFixture.h"
#include "net/RawServer.h"

namespace velmo {
namespace {

using namespace std::string_literals;

using Names = std::set<std::string>;

class HelpTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        const std::string text =
            "A cat and a dog sat in a house in the city; the data base has an analogy.\nA cup of tea, no coffee. By "
            "e-mail or telephone. The city of New York.\n";
        std::filesystem::create_directories(folder_ / "site");
        std::filesystem::create_directories(folder_ / "letters");
        for (const char* name : {"notes.txt", "letters/a.txt", "mail.txt", "archive.txt"}) write(name, text);
        std::filesystem::create_directories(folder_ / "photos");
        std::filesystem::copy(test::dataPath("dsstore/comments-small.DS_Store"), folder_ / "photos/.DS_Store");
        write("pages.jsonl", "{\"url\":\"http://h/\",\"html\":\"<a href=x>link</a>\"}\nbad\n");
        write("robots.txt", "User-agent: *\nDisallow: /private\n");
        write("form.bin", "--XyZ\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nx\r\n--XyZ--\r\n");
        write("prices.csv", "name,price\nTea,\"3,50\"\n");
        write("refs.bib", "@book{k, x = {A Title}}");
        write("feed.xml",
              "<rss><title>F</title><item><title>T</title><category>c</category><enclosure url=e length=1 "
              "/></item></rss>");
        write(
            "bookmark.webloc",
            "<?xml version='1.0'?><plist version='1.0'><dict><key>URL</key><string>http://h/</string></dict></plist>");
        for (const char* name : {"page.html", "site/page.html"})
            write(name, "<html><title>T</title><body>" + text + "<a href=x>link</a><img src=i>");
    }

    /// A man page as it was written, but for what groff must not take for its own.
    std::string manual(const std::string& name) const {
        std::string page = run("manual " + name).out;
        const std::pair<const char*, const char*> escapes[] = {{R"(\\-)", "-"},     {R"(\\\(aq)", "'"},
                                                               {R"(\\\(dq)", "\""}, {R"(\\\(ha)", "^"},
                                                               {R"(\\\(ti)", "~"},  {R"(\\f[BIR])", ""}};
        for (const auto& [escaped, meant] : escapes) page = std::regex_replace(page, std::regex(escaped), meant);
        return page;
    }
    /// The rows of a table of velmo.1: each term with the lines that explain it.
    std::vector<std::pair<std::string, std::string>> table(const std::string& heading) const {
        const std::string page = manual("");
        const std::size_t start = page.find("\n.SH " + heading), end = page.find("\n.SH ", start + 1);
        std::vector<std::pair<std::string, std::string>> rows;
        for (std::size_t at = page.find("\n.TP\n", start); at < end; at = page.find("\n.TP\n", at + 1)) {
            const std::string row = page.substr(at + 5, std::min(page.find("\n.TP", at + 1), end) - at - 5);
            rows.emplace_back(row.substr(0, row.find('\n')), row.substr(row.find('\n') + 1));
        }
        return rows;
    }
    static Names listOf(const std::string& text) {
        Names names;
        static const std::regex name("[^, ]+( [^, ]+)*");
        for (std::sregex_iterator i(text.begin(), text.end(), name), end; i != end; ++i) names.insert(i->str());
        return names;
    }

    /// The command lines of a help: after "Example: " or in a list of them.
    static std::vector<std::string> examplesOf(const std::string& help) {
        std::vector<std::string> examples;
        static const std::regex line("(?:^|\n)(?:Example:)? +(velmo [a-z][^\n]*)");
        for (std::sregex_iterator i(help.begin(), help.end(), line), end; i != end; ++i) examples.push_back((*i)[1]);
        return examples;
    }

    /// Gives files the attributes that the examples read; false if the file system has none.
    bool setAttributes() const {
        return shell(
                   "for i in notes.txt letters/a.txt page.html; do $V attributes set comment text $i && $V attributes "
                   "tags --set Red $i && $V attributes source --set http://h/ $i && $V attributes comment --set text "
                   "$i || exit; done")
                   .code == 0;
    }

    void makePages() const {
        PageStore store = PageStore::openForUpdating((folder_ / "pages.store").string());
        PageRecord page;
        page.url = URL::URLWithString(u"https://example.org/");
        page.key = pageKey(page.url);
        page.title = u"T";
        page.text = u"A cup of tea.";
        page.date = Date();
        page.links = {{URL::URLWithString(u"https://example.org/a"), u"a", {}}};
        EXPECT_NE(store.put(page), PutResult::Failed);
    }

    void runExample(const std::string& example) const {
        std::string line = std::regex_replace(example, std::regex("\\bvelmo "), "\"$V\" ");
        if (line.find(" fetch ") != line.npos || line.find(" gather https") != line.npos)
            line = std::regex_replace(line, std::regex("https://www.example.org"), server_.at(""));
        line = std::regex_replace(line, std::regex("--depth 2"), "--depth 2 --delay 0");
        shell("rm -rf archive.txt.gz *.store *.zip example.webloc extracted mirror");
        if (example.starts_with("velmo attributes") && !setAttributes()) return;
        shell(
            "$V store append notes.store notes.txt; $V records --write-strings list.keyed < notes.txt; "
            "$V archive create notes.zip notes.txt");
        makePages();
        if (example.find("unpack") != example.npos) shell("gzip -k archive.txt; rm archive.txt");
        const std::string helper =
            "export XDG_RUNTIME_DIR=$PWD; $V helper serve pages >/dev/null & pages=$!; $V helper "
            "call --wait 20 pages title x >/dev/null; ";
        if (example.starts_with("velmo serve"))  // until it says where
            line += " --port 0 " + untilItServes_;
        const bool needsHelper = example.find("helper ") != example.npos;
        const Outcome outcome = shell(needsHelper ? helper + line + "; code=$?; kill $pages; exit $code" : line);
        EXPECT_EQ(outcome.code, 0) << example << "\n" << outcome.err;
        EXPECT_NE(outcome.out, "") << example;
        write("archive.txt", "text");
    }

    const std::string untilItServes_ =
        ">said & for i in $(seq 600); do [ -s said ] && break; sleep 0.1; done; kill $!; cat said";
    test::RawServer server_{[](auto& client) { client.send(test::answerOf("<a href=x>a cat</a>")); }};

    /// The commands that are one word for several actions.
    const std::vector<std::string> groups_ = {"archive", "attributes", "helper", "store", "url"};

    std::vector<std::string> topics() const {
        std::vector<std::string> names;
        std::istringstream help(run("help").out);
        for (std::string line; std::getline(help, line) && line != "Topics:";) {}
        for (std::string line; std::getline(help, line) && !line.empty();)
            names.push_back(line.substr(2, line.find(' ', 2) - 2));
        return names;
    }

    /// Every command, and every action of those that have some.
    std::vector<std::string> commands() const {
        std::vector<std::string> names;
        const auto add = [&](const std::string& group) {
            const std::string all = run("help " + group).out;
            std::istringstream help(all.substr(0, all.find("\n\nTopics:")));
            for (std::string line; std::getline(help, line);)
                if (std::smatch match; std::regex_match(line, match, std::regex("  ([a-z]+) +[A-Z].*")))
                    names.push_back(group + match[1].str());
        };
        add("");
        for (const std::string& group : groups_) add(group + " ");
        return names;
    }
};

TEST_F(HelpTool, RunsItsOwnExamples) {
    Names examples;
    const auto addAll = [&](const std::string& help) {
        const std::vector<std::string> found = examplesOf(help);
        examples.insert(found.begin(), found.end());
        return found.size();
    };
    // What stands in a page as it was written, and every help.
    const auto addPage = [&](const std::string& name) {
        std::size_t count = 0;
        const std::string page = manual(name);
        for (std::size_t at = page.find("\n.nf\n"); at != page.npos; at = page.find("\n.nf\n", at + 1))
            count += addAll(std::regex_replace(page.substr(at + 4, page.find("\n.fi\n", at) - at - 4),
                                               std::regex("\nvelmo "), "\n velmo "));
        return count;
    };
    const std::vector<std::string> names = commands();
    EXPECT_EQ(names.size(), 72u);
    for (const std::string& name : names) {
        if (name.find(' ') == name.npos) { EXPECT_NE(addPage(name), 0u) << name; }
        if (std::ranges::count(groups_, name)) continue;
        const std::string help = run("help " + name).out;
        EXPECT_NE(addAll(help), 0u) << name;
        EXPECT_EQ(run(name + " --help").out, help);
    }
    for (const std::string& topic : topics()) addPage(topic);
    addPage("");
    addAll(run("--help").out);
    for (const std::string& example : examples) runExample(example);
    EXPECT_GT(examples.size(), 100u);
}

/// The names of all values in an object, with those of the objects around them.
void addPaths(const Json& value, const std::string& path, Names& paths) {
    paths.insert(path);
    for (const auto& [name, member] : value.items()) {
        if (value.is_object()) addPaths(member, path + (path.empty() ? "" : ".") + name, paths);
        if (value.is_array() && member.is_object()) addPaths(member, path, paths);
    }
}

TEST_F(HelpTool, HasEveryMemberOfItsJSONInATable) {
    write("linked.html", "<title>T</title><meta name=author content=A><a href=/x title=X><img src=t.jpg>text</a>");
    shell("$V store append broken.store notes.txt && printf x | dd of=broken.store bs=1 seek=17 conv=notrunc");
    const std::pair<const char*, std::string> runs[] = {
        {"gather", "site --follow all --query cat"},
        {"gather", "--store gathered.store site pages.jsonl --delay 0 " + server_.at("/")},
        {"gather", "--lines pages.jsonl"},
        {"fetch", server_.at("/")},
        {"text", "page.html"},
        {"links", "--details --base http://h/ page.html"},
        {"robots", "robots.txt mybot http://h/"},
        {"feed", "feed.xml"},
        {"feed", "--html feed.xml"},
        {"thumbs", "linked.html"},
        {"meta", "linked.html"},
        {"strip", "--tags page.html"},
        {"charset", "page.html"},
        {"words", "--list notes.txt"},
        {"language", "notes.txt"},
        {"language", "--web notes.txt"},
        {"lines", "notes.txt"},
        {"clean", "notes.txt"},
        {"digest", "--md5 --sha1 --crc notes.txt"},
        {"pack", "notes.txt"},
        {"unpack", "notes.txt.gz --force"},
        {"match", "cat notes.txt"},
        {"query", "cat"},
        {"excerpts", "cat notes.txt"},
        {"excerpts", "--list cat notes.txt"},
        {"find", "cat notes.txt"},
        {"url resolve", "http://h/ a"},
        {"url accept", "http://h/"},
        {"url unwrap", "--base http://h/ a"},
        {"url simplify", "http://h/"},
        {"url key", "http://h/"},
        {"url parse", "http://h/"},
        {"url host", "h"},
        {"url path", "http://h/"},
        {"url params", "http://h/?a=b"},
        {"url classify", "http://h/"},
        {"url repair", "h.org"},
        {"mime", "html"},
        {"date", "2001-02-03"},
        {"form", "--boundary XyZ form.bin"},
        {"sheet", "prices.csv"},
        {"bib", "refs.bib"},
        {"records", "--write-strings list.keyed < notes.txt"},
        {"records", "list.keyed"},
        {"records", "--strings list.keyed"},
        {"comments", "photos"},
        {"comments", "--name . photos"},
        {"location", "bookmark.webloc"},
        {"attributes list", "--values notes.txt"},
        {"attributes get", "comment notes.txt"},
        {"attributes set", "comment text notes.txt"},
        {"attributes tags", "notes.txt"},
        {"attributes source", "notes.txt"},
        {"attributes comment", "notes.txt"},
        {"attributes remove", "comment notes.txt"},
        {"show", "pages.store https://example.org/"},
        {"search", "tea pages.store"},
        {"serve", "--port 0 pages.store " + untilItServes_},
        {"store stats", "pages.store"},
        {"store append", "notes.store notes.txt mail.txt"},
        {"store list", "notes.store"},
        {"store get", "notes.store 0"},
        {"store update", "notes.store 0 notes.txt"},
        {"store check", "notes.store"},
        {"store check", "broken.store"},
        {"store optimize", "notes.store smaller.store"},
        {"store delete", "notes.store 0"},
        {"store salvage", "notes.store saved.store"},
        {"archive create", "notes.zip notes.txt"},
        {"archive list", "notes.zip"},
        {"archive extract", "notes.zip --output extracted"},
        {"helper serve", "x & $V helper call --wait 20 x title y >/dev/null; kill $!"},
        {"helper call", "--start " VELMO_PAGE_HELPER " org.example.pages text @page.html"},
        {"helper list",
         "& $V helper serve x >/dev/null & $V helper call --wait 20 x title y >/dev/null; $V helper list --json; "
         "kill $!"},
    };
    makePages();
    std::map<std::string, Names> printed;
    const bool hasAttributes = setAttributes();
    for (const auto& [command, arguments] : runs) {
        if (std::string(command).starts_with("attributes") && !setAttributes()) continue;
        const std::vector<Json> objects =
            shell("export XDG_RUNTIME_DIR=$PWD; $V "s + command + " --json " + arguments).lines();
        EXPECT_FALSE(objects.empty()) << command << " " << arguments;
        for (const Json& object : objects) addPaths(object, "", printed[command]);
    }
    std::map<std::string, Names> told;
    for (const auto& [command, members] : table("TABLE OF JSON")) told[command] = listOf(members);
    for (const std::string& command : commands()) {
        if (std::ranges::count(groups_, command) || command == "completions" || command == "manual") continue;
        if (command.starts_with("attributes") && !hasAttributes) continue;
        EXPECT_FALSE(told[command].empty()) << command;
        for (const std::string& path : printed[command]) {
            // What holds others need not be told itself; * is whatever the input names.
            const bool isTold = std::ranges::any_of(told[command], [&](const std::string& member) {
                return member == path || member.starts_with(path + ".") ||
                       (member.ends_with(".*") && path.starts_with(member.substr(0, member.size() - 1)));
            });
            EXPECT_TRUE(path.empty() || isTold) << command << " prints " << path;
        }
        for (std::string member : told[command]) {
            if (member.ends_with(".*")) member.resize(member.size() - 2);
            EXPECT_TRUE(printed[command].contains(member)) << command << " does not print " << member;
        }
    }
    EXPECT_EQ(told.size(), 65u);
}

TEST_F(HelpTool, HasEveryOptionInATable) {
    const std::regex told("(?:(-.), )?(--[a-z0-9-]+)(.*)"), shown("  (?:(-.), |    )(--[a-z0-9-]+).*");
    std::map<std::string, Names> inTable, inHelp, longNames, shortNames;
    const std::vector<std::string> names = commands();
    for (const auto& [term, meanings] : table("TABLE OF OPTIONS")) {
        std::smatch option;
        ASSERT_TRUE(std::regex_match(term, option, told)) << term;
        longNames[option[1]].insert(option[2]);
        shortNames[option[2]].insert(option[1]);
        std::istringstream lines(meanings);
        for (std::string line; std::getline(lines, line);)
            for (const std::string& command : listOf(line.substr(0, line.find(": "))))
                if (std::ranges::count(names, command)) inTable[command].insert(option[1].str() + option[2].str());
    }
    for (const std::string& command : names) {
        if (std::ranges::count(groups_, command)) continue;
        const std::string help = run("help " + command).out;
        std::istringstream lines(help.substr(help.find("\nOptions:\n")));
        for (std::string line; std::getline(lines, line);)
            if (std::smatch option; std::regex_match(line, option, shown) && option[2] != "--help")
                inHelp[command].insert(option[1].str() + option[2].str());
    }
    EXPECT_EQ(inTable, inHelp);
    EXPECT_EQ(inHelp.size(), 66u);
    // A letter stands for one name in all commands, and a name has the same letter in all.
    longNames.erase("");
    EXPECT_GE(longNames.size(), 12u);
    for (const auto& [letter, meant] : longNames) EXPECT_EQ(meant.size(), 1u) << letter;
    for (const auto& [name, letters] : shortNames) EXPECT_EQ(letters.size(), 1u) << name;
}

TEST_F(HelpTool, FitsTerminalsAndGroff) {
    std::vector<std::string> names = topics();
    EXPECT_EQ(names.size(), 10u);
    std::ranges::copy(commands(), std::back_inserter(names));
    EXPECT_EQ(Names(names.begin(), names.end()).size(), names.size()) << "a command has the name of a topic";
    for (const std::string& name : names) {
        std::istringstream help(run("help " + name).out);
        std::size_t count = 0;
        for (std::string line; std::getline(help, line); ++count) EXPECT_LE(line.size(), 100u) << name << ": " << line;
        EXPECT_GE(count, 8u) << name;
    }
    EXPECT_EQ(shell("$V manual --output man && find man -name '*.[17]' | wc -l").out, "50\n");
    if (shell("command -v groff").code != 0) GTEST_SKIP() << "no groff";
    const Outcome formatted = shell("for i in man/man?/*; do groff -man -Tascii -ww $i || exit; done");
    EXPECT_EQ(formatted.code, 0);
    EXPECT_EQ(formatted.err, "");
    EXPECT_NE(formatted.out.find("VELMO-QUERIES(7)"), std::string::npos);
}

/// What stands in code in the first column of the tables of a document.
Names writtenIn(const std::string& document, const std::regex& part) {
    Names found;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        const std::string column = line.starts_with("| `") ? line.substr(0, line.find(" | ")) : "";
        for (std::sregex_iterator i(column.begin(), column.end(), part), end; i != end; ++i) found.insert((*i)[1]);
    }
    return found;
}

TEST_F(HelpTool, SaysInTopicsWhatTheDocumentsSay) {
    const std::string documents = VELMO_PAGES "/../../docs/", web = run("help web").out,
                      queries = run("help queries").out, formats = run("help formats").out;
    Names rules;
    const std::regex term("(?:^|\n)([a-zA-Z]+)\n  [A-Z]");
    for (std::sregex_iterator i(web.begin(), web.end(), term), end; i != end; ++i) rules.insert((*i)[1]);
    EXPECT_EQ(rules, writtenIn(contentOf(documents + "web.md"), std::regex("^\\| `([a-zA-Z]+)`$")));
    EXPECT_EQ(rules.size(), 14u);
    const std::string language = contentOf(documents + "query.md");
    const Names operators = writtenIn(language.substr(0, language.find("## Comparing")), std::regex("`a ([A-Z]+)[ /]"));
    EXPECT_EQ(operators.size(), 10u);
    for (const std::string& name : operators) EXPECT_NE(queries.find("a " + name + " b"), std::string::npos) << name;
    for (const char* shared : {"NEAR without a number is 10 words", "NEXT alone is one word", "BEFORE alone is any"})
        EXPECT_NE(std::regex_replace(queries, std::regex("\n"), " ").find(shared), std::string::npos) << shared;
    for (const char* format : {"Keyed data", "Stores", "Stores of pages", "Location files"}) {
        EXPECT_NE(formats.find("\n"s + format + "\n"), std::string::npos) << format;
        EXPECT_NE(contentOf(documents + "formats.md").find("# "s + format + "\n"), std::string::npos) << format;
    }
}

TEST_F(HelpTool, UnderstandsSlips) {
    const std::pair<const char*, const char*> cases[] = {
        {"exerpts cat", "unknown command exerpts; did you mean excerpts?"},
        {"help gahter", "unknown command gahter; did you mean gather?"},
        {"help quries", "unknown command quries; did you mean queries?"},
        {"help store stat", "store: unknown command stat; did you mean stats?"},
        {"manual quries", "manual: no page quries; did you mean queries?"},
        {"url accpt", "url: unknown command accpt; did you mean accept?"},
        {"wards", "unknown command wards; did you mean words?"},
        {"url simplfy x", "url: unknown command simplfy; did you mean simplify?"},
        {"xylophone", "unknown command xylophone"},
        {"match --recursiv cat .",
         "match: unknown option --recursiv; did you mean --recursive?; put -- before a QUERY that begins with -"},
        {"find --comparison=diacritic x",
         "find: --comparison: 'diacritic' is none of exact, case, diacritics, both, fuzzy, "
         "exact+fuzzy, case+fuzzy, diacritics+fuzzy, both+fuzzy; did you mean diacritics?"},
        {"match '-zebra' notes.txt", "match: unknown option -zebra; put -- before a QUERY that begins with -"},
        {"match", "match: QUERY is missing"},
        {"find", "find: PATTERN is missing"},
        {"query a b", "query: unexpected argument b"},
        {"links --images --media", "links: --media: only one of --frames, --images, --scripts and --media"},
        {"words --page --text", "words: --page does not go with --text"},
        {"digest notes.txt", "digest: one of --md5, --sha1 and --crc is missing"},
        {"", "a command is missing"},
        {"url", "url: an action is missing"}};
    for (const auto& [arguments, complaint] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << arguments;
        EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')), "velmo: "s + complaint);
        EXPECT_NE(outcome.err.find("\nvelmo: see velmo help"), std::string::npos);
    }
    EXPECT_TRUE(std::regex_match(run("-V").out, std::regex("velmo [0-9.]+\n")));
    EXPECT_EQ(run("--version").out, run("-V").out);
    EXPECT_EQ(run("help --help").out, run("--help").out);
    EXPECT_EQ(run("help exit codes").out, run("help exit-codes").out);
    EXPECT_EQ(run("help json").out.substr(0, 20), "Output for programs\n");
    // Brackets mean nothing to the command line.
    EXPECT_EQ(run("url repair '[a,b]' '[]' --json").lines().size(), 2u);
    EXPECT_EQ(run("url repair '[a,b]' --json").lines().at(0)["text"], "[a,b]");
    EXPECT_EQ(run("match '[ab]c' - ", "a bc").out, "-\n");
    EXPECT_EQ(run("query --json '[a]x[b]'").lines().at(0)["standardized"], "[a]x[b]");
}

}  // namespace
}  // namespace velmo
