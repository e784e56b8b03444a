#include "gather/SiteFrame.h"

#include <array>

namespace velmo::detail {
namespace {

struct HelpRow {
    Literal query, meaning;
};
/// An example of each part of the language; every one is a link that asks it.
constexpr std::array<HelpRow, 12> HelpRows = {{
    {"tea cup", "both words, anywhere"},
    {"tea OR coffee", "one of them, or both"},
    {"tea -sugar", "the first, without the second"},
    {"\"cup of tea\"", "these words in a row"},
    {"tea*", "words that begin so"},
    {"te?", "one unit more"},
    {"c[au]p", "one unit of a set"},
    {"~ea", "also inside a longer word"},
    {"tea NEAR/5 cup", "within five words of each other"},
    {"cup BEFORE tea", "in this order"},
    {"tea NEXT cup", "side by side"},
    {"(tea OR coffee) NEAR/5 cup", "in groups; from left to right otherwise"},
}};

void writeOrders(MarkupWriter& out, SearchOrder chosen) {
    struct Row {
        SearchOrder order;
        Literal name;
    };
    constexpr std::array<Row, 5> Rows = {{{SearchOrder::Relevance, "Relevance"},
                                          {SearchOrder::Newest, "Newest first"},
                                          {SearchOrder::Hits, "Most hits"},
                                          {SearchOrder::Address, "Address"},
                                          {SearchOrder::Stored, "As stored"}}};
    out << "<label class=\"order\">Order <select name=\"sort\">";
    for (const Row& row : Rows) {
        out << "<option value=\"";
        out.text(nameOf(row.order));
        if (row.order == chosen)
            out << "\" selected>";
        else
            out << "\">";
        out << row.name << "</option>";
    }
    out << "</select></label>";
}

void writeForm(MarkupWriter& out, const SiteTarget& target) {
    out << "<form role=\"search\" action=\"/\" method=\"get\">"
           "<label class=\"hidden\" for=\"q\">Search for</label>"
           "<input id=\"q\" name=\"q\" type=\"search\" accesskey=\"s\" maxlength=\"1000\" "
           "autocomplete=\"off\" spellcheck=\"false\" placeholder=\"tea NEAR/5 cup\" value=\"";
    out.text(target.query);
    // Who has just come begins to type; who reads results is left where he is.
    if (target.query.empty() && target.key.empty())
        out << "\" autofocus>";
    else
        out << "\">";
    out << "<button>Search</button>";
    writeOrders(out, target.order);
    out << "</form>";
}

}  // namespace

void beginSitePage(MarkupWriter& out, std::u16string_view title, const SiteTarget& target) {
    out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>";
    out.text(title);
    out << "</title><meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
           "<meta name=\"color-scheme\" content=\"light dark\">"
           "<link rel=\"stylesheet\" href=\"/style.css\"><link rel=\"icon\" href=\"/icon.svg\">";
    if (!target.query.empty()) {
        out << "<link rel=\"alternate\" type=\"application/atom+xml\" title=\"Results\" href=\"";
        out.text(target.addressWith([](SiteTarget& feed) {
            feed.path = "/feed";
            feed.first = 0;
        }));
        out << "\">";
    }
    out << "</head><body><a class=\"skip\" href=\"#content\">To the content</a><header>"
           "<a class=\"home\" href=\"/\" accesskey=\"h\">Pages</a>";
    writeForm(out, target);
    out << "</header><main id=\"content\">";
}

void endSitePage(MarkupWriter& out) { out << "</main></body></html>\n"; }

void writeQueryHelp(MarkupWriter& out, bool isOpen) {
    if (isOpen)
        out << "<details class=\"help\" open>";
    else
        out << "<details class=\"help\">";
    out << "<summary>How to ask</summary><table>";
    for (const HelpRow& row : HelpRows) {
        out << "<tr><td><a href=\"/?q=";
        out.text(escapedInAddress(row.query.text()));
        out << "\"><code>";
        out.text(row.query.text());
        out << "</code></a></td><td>" << row.meaning << "</td></tr>";
    }
    out << "</table></details>";
}

std::string sitePageOfStatus(int status, std::u16string_view reason) {
    MarkupWriter out;
    beginSitePage(out, reason, {.path = "/"});
    out << "<h1>";
    out.text(reason);
    out << "</h1><p class=\"note\">Status ";
    out.number(static_cast<std::size_t>(status));
    out << "</p>";
    endSitePage(out);
    return out.take();
}

}  // namespace velmo::detail
