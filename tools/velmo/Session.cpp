#include "Session.h"

#include <cstdio>

namespace velmo::tool {
namespace {

// A lone surrogate is written as U+FDD0, a code point that is no character, and four
// hexadecimal digits; so is U+FDD0 itself. The JSON library passes them through.
constexpr char16_t Mark = 0xFDD0;
constexpr std::string_view MarkUtf8 = "\xEF\xB7\x90";

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

std::u16string disguised(std::u16string_view units) {
    std::u16string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        if (isHigh(unit) && i + 1 < units.size() && isLow(units[i + 1])) {
            out += unit;
            out += units[++i];
        } else if (isHigh(unit) || isLow(unit) || unit == Mark) {
            out += Mark;
            for (char digit : fmt::format("{:04x}", static_cast<unsigned>(unit)))
                out += static_cast<char16_t>(digit);
        } else {
            out += unit;
        }
    }
    return out;
}

}  // namespace

void Session::fail(std::string_view file, std::string_view reason) {
    std::fflush(stdout);
    fmt::print(stderr, "velmo: {}: {}\n", file, reason);
    failed_ = true;
}

int Session::exitCode() const {
    if (failed_) return Failure;
    return anyMiss_ && !anyHit_ ? NoHit : Done;
}

void Session::print(std::string_view output) {
    std::fwrite(output.data(), 1, output.size(), stdout);
    if (json) std::fflush(stdout);
}

void Session::printLine(std::string_view line) { fmt::print("{}\n", line); }

void Session::printObject(const Json& object) {
    fmt::print("{}\n", lineOf(object));
    std::fflush(stdout);
}

Json text(std::u16string_view units) { return utf8(disguised(units)); }

Json text(const String& string) { return string.isAbsent() ? Json(nullptr) : text(string.view()); }

Json text(std::string_view bytes) { return text(String::fromUTF8(bytes).view()); }

std::string lineOf(const Json& object) {
    std::string line = object.dump();
    for (std::size_t at = 0; (at = line.find(MarkUtf8, at)) != line.npos; at += 2)
        line.replace(at, MarkUtf8.size(), "\\u");
    return line;
}

}  // namespace velmo::tool
