// What the tool tells of itself: its examples run as they stand, its man page tells every member of
// its JSON, and a slip of the keyboard is understood.
#include <regex>

#include <velmocore/gather/PageStore.h>
#include <velmocore/url/PageKey.h>

#include "ToolFixture.h"
#include "net/RawServer.h"

namespace velmo {
namespace {

using namespace std::string_literals;

constexpr const char* Manual = VELMO_PAGES "/../../tools/velmo/velmo.1";

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

    /// Every command, and every action of those that have some.
    std::vector<std::string> commands() const {
        std::vector<std::string> names;
        const auto add = [&](const std::string& group) {
            std::istringstream help(run("help " + group).out);
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
    std::size_t count = 0;
    const auto runAll = [&](const std::string& help) {
        for (const std::string& example : examplesOf(help)) runExample(example), ++count;
    };
    const std::vector<std::string> names = commands();
    EXPECT_EQ(names.size(), 71u);
    for (const std::string& name : names) {
        if (std::ranges::count(groups_, name)) continue;
        const std::string help = run("help " + name).out;
        EXPECT_FALSE(examplesOf(help).empty()) << name;
        EXPECT_EQ(run(name + " --help").out + (name == "query" ? run("help query").out : ""),
                  (name == "query" ? run("query --help").out : "") + help);
        runAll(help);
    }
    runAll(run("--help").out);
    std::string manual = contentOf(Manual);
    manual = std::regex_replace(std::regex_replace(manual, std::regex("\\\\\\(aq"), "'"), std::regex("\\\\-"), "-");
    runAll(std::regex_replace(manual, std::regex("\nvelmo "), "\n velmo "));
    EXPECT_GT(count, 50u);
}

TEST_F(HelpTool, TellsEveryMemberOfItsJSONInTheManual) {
    const std::string manual = contentOf(Manual);
    const std::size_t start = manual.find("\n.SH JSON"), end = manual.find("\n.SH ENVIRONMENT");
    std::vector<std::string> paragraphs;
    for (std::size_t at = manual.find("\n.TP\n.B ", start); at < end; at = manual.find("\n.TP\n.B ", at + 1))
        paragraphs.push_back(manual.substr(at + 8, manual.find("\n.TP", at + 1) - at - 8));
    const std::pair<const char*, std::string> runs[] = {
        {"gather", "site --follow all --query cat"},
        {"gather", "--store gathered.store site"},
        {"gather", "--lines pages.jsonl"},
        {"fetch", server_.at("/")},
        {"text", "page.html"},
        {"links", "--details --base http://h/ page.html"},
        {"robots", "robots.txt mybot http://h/"},
        {"feed", "feed.xml"},
        {"thumbs", "page.html"},
        {"meta", "page.html"},
        {"strip", "--tags page.html"},
        {"charset", "page.html"},
        {"words", "--list notes.txt"},
        {"language", "notes.txt"},
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
        {"store optimize", "notes.store smaller.store"},
        {"store delete", "notes.store 0"},
        {"store salvage", "notes.store saved.store"},
        {"archive create", "notes.zip notes.txt"},
        {"archive list", "notes.zip"},
        {"archive extract", "notes.zip --to extracted"},
        {"helper serve", "x & $V helper call --wait 20 x title y >/dev/null; kill $!"},
        {"helper call", "--start " VELMO_PAGE_HELPER " org.example.pages text @page.html"},
        {"helper list",
         "& $V helper serve x >/dev/null & $V helper call --wait 20 x title y >/dev/null; $V helper list --json; "
         "kill $!"},
    };
    for (const std::string& name : commands())
        EXPECT_TRUE(name == "completions" || std::ranges::count(groups_, name) ||
                    std::ranges::count(runs, name, [](const auto& run) { return std::string(run.first); }))
            << name;
    makePages();
    for (const auto& [command, arguments] : runs) {
        // The paragraph whose heading names the command, with its group if it is an action.
        const std::string whole = command, group = whole.substr(0, whole.find(' ')),
                          action = whole.substr(whole.find(' ') + 1);
        if (group == "attributes" && !setAttributes()) continue;
        const auto told = std::ranges::find_if(paragraphs, [&](const std::string& paragraph) {
            const std::string heading = paragraph.substr(0, paragraph.find('\n'));
            return heading.find(group) != heading.npos &&
                   std::regex_search(heading, std::regex("\\b" + action + "\\b"));
        });
        ASSERT_NE(told, paragraphs.end()) << command;
        const std::function<void(const Json&)> check = [&](const Json& value) {
            if (!value.is_structured()) return;
            for (const auto& [name, member] : value.items()) {
                const bool isToldWithAll = !value.is_object() || name == "file" || name == "a" || name == "x";
                EXPECT_TRUE(isToldWithAll || told->find("\\(dq" + name + "\\(dq") != std::string::npos)
                    << command << " " << name;
                check(member);
            }
        };
        const std::vector<Json> objects =
            shell("export XDG_RUNTIME_DIR=$PWD; $V "s + command + " --json " + arguments).lines();
        EXPECT_FALSE(objects.empty()) << command;
        for (const Json& object : objects) check(object);
    }
}

TEST_F(HelpTool, UnderstandsSlips) {
    const std::pair<const char*, const char*> cases[] = {
        {"exerpts cat", "unknown command exerpts; did you mean excerpts?"},
        {"help gahter", "unknown command gahter; did you mean gather?"},
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
}

}  // namespace
}  // namespace velmo
