// What is printed is collected and written in portions, each at once: lines of two inputs never
// mix, and a call for each line would cost more than the work. A report that has its turn writes
// when a portion is full; one that has not waits for it then, so that little is ever kept.
#include "Report.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <velmocore/platform/Bytes.h>
#include <velmocore/storage/Base64.h>

namespace velmo::tool {
namespace {

/// So much is kept before it is written.
constexpr std::size_t PortionSize = 65536;

// The library's diagnostics name no file: whom they are about is told by the thread they come on.
thread_local Report* current = nullptr;

/// How many units of a text make its next piece; no pair is split.
std::size_t pieceOf(std::u16string_view text) {
    if (text.size() <= PortionSize) return text.size();
    return (text[PortionSize - 1] & 0xFC00) == 0xD800 ? PortionSize - 1 : PortionSize;
}

}  // namespace

Report::Report(Session& session, Turn turn)
    : session_(session), turn_(std::move(turn)), former_(std::exchange(current, this)) {}

Report::~Report() {
    if (current == this) current = former_;
}

void Report::append(std::string_view bytes) {
    // Complaints are told even so.
    if (session_.isQuiet) return;
    out_ += bytes;
    if (out_.size() >= PortionSize) flush();
}

void Report::printLine(std::string_view foreign) { printLine(line().add(foreign)); }

Line Report::line() const {
    const bool colors = session_.hasColors;
    return Line({.colors = colors, .visible = colors || session_.console.outputIsTerminal()});
}

void Report::printLine(const Line& line) {
    append(line.text());
    append("\n");
}

void Report::printName(std::string_view name) {
    if (!session_.printsNuls) return printLine(line().add(Line::Color::File, name));
    append(name);
    append(std::string_view("\0", 1));
}

void Report::printHeading(std::string_view name) {
    if (session_.hasSeveralInputs)
        printLine(line().add("==> ").add(Line::Color::File, name).add(" <=="));
}

void Report::printText(std::u16string_view text) {
    const bool visible = session_.console.outputIsTerminal();
    while (!text.empty()) {
        const std::size_t piece = pieceOf(text);
        const std::string bytes = utf8(text.substr(0, piece));
        append(visible ? shown(bytes) : bytes);
        text.remove_prefix(piece);
    }
    append("\n");
}

void Report::printBytes(std::string_view bytes) {
    flush();
    if (turn_) turn_();
    const bool visible = session_.console.outputIsTerminal();
    session_.console.writeOutput(visible ? shown(bytes) : bytes);
}

void Report::printObject(JsonObject members) {
    Json(std::move(members)).write([this](std::string_view piece) { append(piece); });
    append("\n");
}

void Report::fail(std::string_view file, std::string_view reason) {
    session_.noteFailure();
    warn(file, reason);
}

void Report::warn(std::string_view file, std::string_view text) {
    std::string complaint = fmt::format("{}: {}", file, text);
    if (said_.insert(complaint).second) complaints_.push_back(std::move(complaint));
}

void Report::flush() {
    // With nothing to say there is no turn to wait for.
    if (complaints_.empty() && out_.empty()) return;
    if (turn_) turn_();
    for (const std::string& complaint : complaints_) session_.console.complain(complaint);
    complaints_.clear();
    if (!out_.empty()) session_.console.writeOutput(out_);
    out_.clear();
}

void Report::logLine(std::string_view line) {
    if (!current) return;
    if (current->file_.empty())
        current->session_.console.complain(line);
    else
        current->warn(current->file_, line);
}

JsonObject fileObject(std::string_view name, JsonObject more) {
    JsonObject members = {{"file", name}};
    if (String::fromUTF8(name).utf8() != name)
        members.push_back({"fileBytes", encodedBase64Data(name)});
    std::ranges::move(more, std::back_inserter(members));
    return members;
}

}  // namespace velmo::tool
