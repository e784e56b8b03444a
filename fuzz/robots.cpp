// Bytes as a robots.txt behind a path: whatever they are, the same is allowed for every way to write
// them, and the file itself always is.
#include <velmocore/gather/RobotsRules.h>

#include <algorithm>
#include <string>

#include "Input.h"

using namespace velmo;

namespace {

using fuzz::require;

bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

/// With escapes in the place of what needs none.
std::string escaped(std::string_view path) {
    constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (const char c : path)
        if (isUnreserved(c) && (text.size() < 2 || text.find('%', text.size() - 2) == text.npos))
            text += {'%', Digits[c / 16], Digits[c % 16]};
        else
            text += c;
    return text;
}

std::string withOtherLineEnds(std::string_view file) {
    std::string text;
    for (const char c : file) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return text;
}

URL urlOf(std::string_view path) {
    return URL::URLWithString(u"http://h.org/" + String::fromUTF8(path));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    const std::string_view path = all.substr(0, all.find('\n'));
    const std::string_view file = all.substr(std::min(path.size() + 1, all.size()));
    const RobotsRules rules(file, "velmo/1.0");
    require(rules.isAllowed(urlOf("robots.txt")) && rules.crawlDelay().value_or(0) >= 0);
    const URL url = urlOf(path);
    const bool isAllowed = rules.isAllowed(url);
    if (url.isAbsent()) return 0;
    // A % could take a letter for its own.
    if (path.find('%') == path.npos) require(rules.isAllowed(urlOf(escaped(path))) == isAllowed);
    require(RobotsRules(withOtherLineEnds(file), "VELMO").isAllowed(url) == isAllowed);
    require(RobotsRules::rulesOfAnswer(200, file, "velmo").isAllowed(url) == isAllowed);
    return 0;
}
