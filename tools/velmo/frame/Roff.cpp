// What groff would take for its own is escaped in one place; the rest is which macro stands for
// which kind of line (see Manual.h).
#include "Roff.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>

#include "Manual.h"

namespace velmo::tool {
namespace {

/// When the texts of the manual were last gone over as a whole.
constexpr std::string_view Day = "2026-11-23";

bool isOfName(unsigned char c) {
    return c == '-' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The length of the name of an option that begins there; 0 if none does.
std::size_t optionAt(std::string_view text, std::size_t at) {
    constexpr std::string_view Before = " (,/";
    if (text[at] != '-' || (at > 0 && Before.find(text[at - 1]) == Before.npos)) return 0;
    std::size_t end = at;
    while (end < text.size() && isOfName(static_cast<unsigned char>(text[end]))) ++end;
    return text.substr(at, end - at).find_first_not_of('-') == text.npos ? 0 : end - at;
}

bool isIndented(std::string_view text, std::string_view by) {
    return text.starts_with(by) && text.size() > by.size() && text[by.size()] != ' ';
}

/// The first line of a text without its indentation, and what is left of the text.
std::string_view takeLine(std::string_view& text, std::size_t indentation = 0) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line.substr(std::min(line.size(), indentation));
}

}  // namespace

std::string roffEscaped(std::string_view text) {
    static const std::map<char, std::string_view> escapes = {
        {'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'`', "\\(ga"},
        {'^', "\\(ha"}, {'~', "\\(ti"}, {'"', "\\(dq"}};
    std::string out;
    for (const char c : text) {
        const auto escape = escapes.find(c);
        if (escape != escapes.end())
            out += escape->second;
        else
            out += c;
    }
    return out.starts_with('.') ? "\\&" + out : out;
}

std::string bold(std::string_view text) { return "\\fB" + roffEscaped(text) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + roffEscaped(text) + "\\fR"; }

std::string roffOf(std::string_view text) {
    std::string out;
    std::size_t from = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = optionAt(text, at);
        if (length > 0) {
            out += roffEscaped(text.substr(from, at - from)) + bold(text.substr(at, length));
            from = at + length;
        }
        at += std::max<std::size_t>(length, 1);
    }
    return out + roffEscaped(text.substr(from));
}

RoffPage::RoffPage(std::string_view name, char section) {
    std::string title(name);
    std::ranges::transform(title, title.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    out_ =
        fmt::format(".TH {} {} \"{}\" \"velmocore " VELMO_VERSION "\" \"{}\"\n", roffEscaped(title),
                    section, Day, section == '1' ? "User Commands" : "Miscellanea");
}

void RoffPage::section(std::string_view heading) {
    out_ += fmt::format(".SH {}\n", roffEscaped(heading));
}

void RoffPage::subsection(std::string_view heading) {
    out_ += fmt::format(".SS {}\n", roffEscaped(heading));
}

void RoffPage::verbatim(std::string_view lines) {
    out_ += ".nf\n";
    while (!lines.empty()) line(roffEscaped(takeLine(lines, 4)));
    out_ += ".fi\n";
}

void RoffPage::term(std::string_view roff, std::string_view meaning) {
    out_ += ".TP\n";
    line(roff);
    // A term without a meaning would take the next macro for it.
    line(meaning.empty() ? "\\&" : roffOf(meaning));
}

void RoffPage::line(std::string_view roff) { (out_ += roff) += '\n'; }

void RoffPage::filled(std::string_view block) {
    while (!block.empty()) {
        const std::string_view head = takeLine(block);
        const bool explains = isIndented(head, "  ");
        if (!explains && isIndented(block, "  ")) out_ += ".TP\n";
        line(roffOf(explains ? head.substr(2) : head));
    }
}

void RoffPage::text(std::string_view text) {
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        const std::size_t end = std::min(text.find("\n\n"), text.size());
        const std::string_view block = text.substr(0, end);
        text.remove_prefix(std::min(text.size(), end + 2));
        const std::size_t lineEnd = std::min(block.find('\n'), block.size() - 1);
        // The macro of a term begins a paragraph by itself.
        if (!isFirst && !isIndented(block.substr(lineEnd + 1), "  ")) paragraph();
        block.starts_with("    ") ? verbatim(block) : filled(block);
    }
}

}  // namespace velmo::tool
