// The commands that work on plain text and on bytes.
#include "ToolFixture.h"

namespace velmo {
namespace {

TEST_F(Tool, TellsLanguages) {
    const auto object = [&](const std::string& arguments) { return run("language --json " + arguments).lines().at(0); };
    const std::string site = VELMO_PAGES "/";
    for (const auto& [page, language, iso] :
         {std::tuple("httpd-de-iso-8859-1.html", "DE", 0x4445), std::tuple("httpd-es-utf8.html", "ES", 0x4553),
          std::tuple("httpd-ru-koi8-r.html", "RU", 0x5255)}) {
        const Json found = object(site + page);
        EXPECT_EQ(found["language"], language);
        EXPECT_EQ(found["iso"], iso);
        EXPECT_TRUE(found["ratio"].is_number());
    }
    const Json unclear = object(write("short.txt", "xyzzy"));
    EXPECT_TRUE(unclear["language"].is_null() && unclear["iso"].is_null() && unclear["ratio"].is_null());
    const std::string lists = write("StopWordsQQ", "ruq\nmuq\nluq\nduq\nbuq\n");
    const std::string text = write("q.txt", "Ruq muq luq d\xC3\xBCq buq ruq muq luq buq.");
    EXPECT_EQ(object("--lists " + folder_.string() + " " + text)["language"], "QQ");
    EXPECT_EQ(run("language --lists " + (folder_ / "missing").string() + " " + text).code, 2);
    // Gathering goes on without a language.
    const Outcome without = shell("VELMO_RESOURCES=/none $V gather --json " + pages());
    EXPECT_TRUE(without.err.starts_with("velmo: /none: No such file or directory\n")) << without.err;
    EXPECT_EQ(without.code, 2);
    EXPECT_GT(without.lines().size(), 30u);
}

TEST_F(Tool, CleansInTheOrderOfTheFlags) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"--trim", " \n a  b \t", "a  b"},
        {"--collapse", " a \n\t b ", " a b "},
        {"--trim --collapse", " a \n b ", "a b"},
        {"--feeds", "a\r\n\r\nb", "a\nb"},
        {"--normalize=kc", "a\xCC\x88\xEF\xBD\x81", "\xC3\xA4\x61"},
        {"--normalize=d", "\xC3\xA4", "a\xCC\x88"},
        {"--ligatures", "\xEF\xAC\x81sh", "fish"},
        {"--unwrap", "one\ntwo\n\n> three", "one two\n\n> three"},
        {"--expand-tabs=4", "a\tb", "a   b"},
        {"--expand-tabs=4 --collapse", "a\tb", "a b"},
        {"--collapse --expand-tabs=4", "a\tb", "a b"},
        {"--feeds --expand-tabs 2 --expand-tabs 8", "a\tb", "a b"},
        {"--unwrap --feeds", "one\n\ntwo", "one\ntwo"},
        {"--feeds --unwrap", "one\n\ntwo", "one two"},
        {"", " a ", " a "}};
    for (const auto& [flags, text, expected] : cases)
        EXPECT_EQ(run(std::string("clean --json ") + flags + " -", text).lines().at(0)["text"], expected) << flags;
    for (const char* wrong : {"clean --normalize=x -", "clean --expand-tabs=0 -", "clean --expand-tabs=x -"})
        EXPECT_EQ(run(wrong).code, 2) << wrong;
}

TEST_F(Tool, TakesLinesApart) {
    const Outcome outcome = run("lines --json -", "one\r\n\ntwo");
    EXPECT_EQ(outcome.lines().at(0)["lines"], Json({"one\r\n", "\n", "two"}));
    EXPECT_EQ(run("lines -", "one\r\n\ntwo").out, "one\n\ntwo\n");
}

TEST_F(Tool, PrintsDigests) {
    const std::string file = write("digits", "123456789");
    const Json all = run("digest --json --md5 --sha1 --crc " + file).lines().at(0);
    EXPECT_EQ(all["md5"], "25f9e794323b453885f5181f1b624d0b");
    EXPECT_EQ(all["sha1"], "f7c3bc1d808e04732adf679965ccc34ca7ae3441");
    EXPECT_EQ(all["crc"], "2dfd2d88");
    EXPECT_EQ(run("digest --crc " + write("empty", "")).out, "00000000  " + (folder_ / "empty").string() + "\n");
    EXPECT_EQ(run("digest " + file).code, 2);
}

TEST_F(Tool, PacksAndUnpacks) {
    const std::string text = test::readPage("httpd-es-utf8.html"), file = write("page.html", text);
    for (const auto& [flags, suffix] : {std::pair("", ".gz"), std::pair("--zlib --level 9", ".z")}) {
        const Json packed = run(std::string("pack --json ") + flags + " " + file).lines().at(0);
        EXPECT_EQ(packed["output"], file + suffix);
        EXPECT_LT(packed["after"].get<std::size_t>(), text.size() / 2);
        EXPECT_EQ(run(std::string("pack ") + flags + " " + file).code, 2);  // is there already
        EXPECT_EQ(run("unpack --stdout " + file + suffix).out, text);
        EXPECT_EQ(run("unpack " + file + suffix).code, 2);
        std::filesystem::remove(file);
        EXPECT_EQ(run("unpack " + file + suffix).code, 0);
        EXPECT_EQ(read("page.html"), text);
        EXPECT_EQ(run("unpack --force " + file + suffix).code, 0);
        EXPECT_EQ(read("page.html"), text);
        EXPECT_FALSE(std::filesystem::exists(file + ".part"));
        EXPECT_EQ(run("unpack --stdout --max-size 100 " + file + suffix).code, 2);
    }
    EXPECT_EQ(run("unpack " + file).code, 2);
    EXPECT_EQ(run("pack -", "").code, 2);
}

TEST_F(Tool, ReadsPagesAsBrowsersOfTodayDo) {
    write("p.html", "<meta charset=latin1>\x93&nexist;<td>x<td>y<template>z</template><a href='/a%20'>");
    EXPECT_EQ(run("charset p.html").out, "p.html: iso-8859-1 (declared iso-8859-1)\n");
    EXPECT_EQ(run("charset --web p.html").out, "p.html: windows-1252 (declared windows-1252)\n");
    EXPECT_EQ(run("text p.html").out, "\xC2\x93&nexist; x yz\n");
    EXPECT_EQ(run("text --web --tabs p.html").out, "\xE2\x80\x9C\xE2\x88\x84x\ty\n");
    EXPECT_EQ(run("links p.html").out + run("links --web p.html").out, "/a\n/a%20\n");
    write("r.html",
          "<base href=x/><title><b></title><meta name=author content='a>b'><a title=it's href=c><img src=d.jpg>e</a>1 "
          "< 2");
    EXPECT_EQ(run("meta --json r.html").lines().at(0)["author"], "a");
    const Json meta = run("meta --web --base http://h/ --json r.html").lines().at(0);
    EXPECT_EQ(meta["author"], "a>b");
    EXPECT_EQ(meta["title"], "<b>");
    EXPECT_EQ(meta["base"], "http://h/x/");
    EXPECT_EQ(run("strip --web --attributes a --inner a r.html").out, "<img src=d.jpg>e\n");
    EXPECT_EQ(run("links --web --base http://h/ --details r.html").out,
              "a\thttp://h/x/c\te\nimage\thttp://h/x/d.jpg\t\n");
    EXPECT_EQ(run("thumbs --web --base http://h/ r.html").out, "c\thttp://h/d.jpg\tit's\te\n");
    const auto gathered = [&](const std::string& option) {
        return run("gather --json " + option + " --base http://h/ r.html").lines().at(0);
    };
    EXPECT_EQ(gathered("")["title"], "<b>");
    EXPECT_EQ(gathered("")["links"], 1);
    EXPECT_EQ(gathered(""), gathered("--web"));
    EXPECT_EQ(gathered("--described")["title"], "");
    EXPECT_EQ(gathered("--described")["links"], 0);
    write("f.xml", "<feed xml:base='http://h/x/'><entry><link x=it's href=a /><title>1 < 2</title></entry></feed>");
    EXPECT_EQ(run("feed f.xml").out + run("feed --web f.xml").out,
              " (atom, 0, incomplete)\n (atom, 1)\n\thttp://h/x/a\t1 < 2\n");
    write("q.html", "<p>Zu&shy;cker");
    EXPECT_EQ(run("find zucker q.html").code + run("find --web zucker q.html").code, 1);
}

}  // namespace
}  // namespace velmo
