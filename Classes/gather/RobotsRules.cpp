// Two steps: the file becomes a list of patterns for one program, and a path is compared with them.
//
// Both sides are brought into one form first (see comparable()), so that comparing is comparing of
// octets. In a pattern that form has no zero, which therefore stands for the star. The rules are
// sorted by the length that decides between them, so that the first one that matches decides.
//
// A star needs no backtracking: what stands between two stars may as well be matched by its first
// occurrence, since all that could stand behind a later one can stand behind the first too. The
// search for it is memmem(), which is linear for any pattern.
#include <velmocore/gather/RobotsRules.h>

#include <velmocore/url/URLSchemes.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

#include "platform/Ascii.h"

namespace velmo {
namespace {

using detail::ascii::hexValue;
using detail::ascii::isLetterOrDigit;
using detail::ascii::toLower;

using Chars = std::string_view;

constexpr char Star = '\0';
constexpr Chars Mark = "\xEF\xBB\xBF";
constexpr Chars Blanks = " \t";

struct Rule {
    std::string pattern;  ///< comparable, with Star for each star
    bool isAnchored = false;
    bool allows = false;

    /// How many octets decide.
    std::size_t length() const { return pattern.size() + isAnchored; }
};

bool comesFirst(const Rule& a, const Rule& b) {
    if (a.length() != b.length()) return a.length() > b.length();
    if (a.allows != b.allows) return a.allows;
    return a.pattern < b.pattern;
}

bool isSame(const Rule& a, const Rule& b) {
    return a.pattern == b.pattern && a.isAnchored == b.isAnchored && a.allows == b.allows;
}

bool isUnreserved(char c) { return isLetterOrDigit(c) || (c != 0 && std::strchr("-._~", c)); }
bool isReserved(char c) { return c != 0 && std::strchr(":/?#[]@!$&'()*+,;=", c); }
/// What may stand in a query and has no meaning there.
bool isPlainInQuery(char c) { return c != 0 && std::strchr("/:?@", c); }

void appendEscape(std::string& text, char octet) {
    constexpr char Digits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(octet);
    text += {'%', Digits[value / 16], Digits[value % 16]};
}

/// The octet of an escape at the start; none if there is none.
std::optional<char> escapedOctet(Chars text) {
    if (text.size() < 3 || text[0] != '%') return std::nullopt;
    const unsigned high = hexValue(text[1]), low = hexValue(text[2]);
    if (high > 15 || low > 15) return std::nullopt;
    return static_cast<char>(high * 16 + low);
}

/// The form in which paths and patterns are compared; octets that stand for themselves in one of
/// them only, as a star in a path, are escaped.
std::string comparable(Chars text, Chars escaped) {
    std::string result;
    result.reserve(text.size());
    bool isQuery = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::optional<char> octet = escapedOctet(text.substr(i));
        const char c = octet.value_or(text[i]);
        const bool stays =
            octet ? isUnreserved(c) || (isQuery && isPlainInQuery(c))
                  : (isUnreserved(c) || isReserved(c)) && escaped.find(c) == Chars::npos;
        if (stays)
            result += c;
        else
            appendEscape(result, c);
        isQuery |= !octet && c == '?';
        if (octet) i += 2;
    }
    return result;
}

Rule ruleOf(Chars pattern, bool allows) {
    Rule rule = {.pattern = {}, .isAnchored = pattern.ends_with('$'), .allows = allows};
    if (rule.isAnchored) pattern.remove_suffix(1);
    rule.pattern = comparable(pattern, "$");
    std::ranges::replace(rule.pattern, '*', Star);
    return rule;
}

std::size_t find(Chars text, Chars part, std::size_t from) {
    const void* found = ::memmem(text.data() + from, text.size() - from, part.data(), part.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : Chars::npos;
}

/// Whether a pattern matches the beginning of a path, or all of it if it is anchored.
bool matches(const Rule& rule, Chars path) {
    Chars rest = rule.pattern;
    Chars part = rest.substr(0, rest.find(Star));
    if (!path.starts_with(part)) return false;
    std::size_t end = part.size();
    while (part.size() < rest.size()) {
        rest.remove_prefix(part.size() + 1);
        part = rest.substr(0, rest.find(Star));
        const bool isLast = part.size() == rest.size();
        if (isLast && rule.isAnchored)
            return path.size() - end >= part.size() && path.ends_with(part);
        const std::size_t found = find(path, part, end);
        if (found == Chars::npos) return false;
        end = found + part.size();
    }
    return !rule.isAnchored || end == path.size();
}

/// Path and query, as they stand.
std::string pathOf(const URL& url) {
    const std::u16string_view whole = url.absoluteString();
    const std::u16string_view authority = url.part(URLPart::Authority);
    const char16_t* const start =
        authority.data() ? authority.data() + authority.size() : url.part(URLPart::Path).data();
    const std::size_t from = static_cast<std::size_t>(start - whole.data());
    const std::u16string_view path = whole.substr(from, whole.find(u'#', from) - from);
    std::string octets(path.begin(), path.end());  // a URL is ASCII
    return octets.starts_with('/') ? octets : "/" + octets;
}

Chars trimmed(Chars text) {
    const std::size_t start = std::min(text.find_first_not_of(Blanks), text.size());
    const std::size_t end = text.find_last_not_of(Blanks) + 1;
    return text.substr(start, std::max(start, end) - start);
}

/// The part of a name that programs are known by.
Chars tokenOf(Chars name) {
    const auto end = std::ranges::find_if_not(
        name, [](char c) { return isLetterOrDigit(c) || c == '-' || c == '_'; });
    return name.substr(0, static_cast<std::size_t>(end - name.begin()));
}

bool isSameName(Chars a, Chars b) {
    return std::ranges::equal(a, b, {}, toLower<char>, toLower<char>);
}

bool isForAll(Chars name) {
    return name.starts_with('*') && (name.size() == 1 || Blanks.find(name[1]) != Chars::npos);
}

/// The lines of a file, as far as it is read.
class Lines {
public:
    explicit Lines(Chars file) : rest_(file.substr(0, RobotsRules::LargestFile)) {
        if (rest_.size() < file.size()) rest_ = rest_.substr(0, rest_.find_last_of("\r\n") + 1);
        if (rest_.starts_with(Mark)) rest_.remove_prefix(Mark.size());
    }
    /// False at the end. An end of line by CR and LF gives an empty line more.
    bool next(Chars& line) {
        if (rest_.empty()) return false;
        line = rest_.substr(0, rest_.find_first_of("\r\n"));
        rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
        return true;
    }

private:
    Chars rest_;
};

/// What groups for one name say.
struct Group {
    std::vector<Rule> rules;
    std::optional<double> delay;
    bool isNamed = false;  ///< whether there is one
};

}  // namespace

struct RobotsRules::State {
    std::vector<Rule> rules = {};
    std::optional<double> delay = {};
    std::vector<String> sitemaps = {};
};

namespace {

/// Reads a file, line by line.
class Reader {
public:
    explicit Reader(Chars agent) : agent_(tokenOf(agent)) {}

    void take(Chars line) {
        line = line.substr(0, line.find('#'));
        const std::size_t colon = line.find(':');
        if (colon == Chars::npos) return;
        take(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
    }

    /// The group that counts, with its rules in order.
    Group finish() {
        Group group = std::move(own_.isNamed ? own_ : all_);
        std::ranges::sort(group.rules, comesFirst);
        const auto same = std::ranges::unique(group.rules, isSame);
        group.rules.erase(same.begin(), same.end());
        return group;
    }

    std::vector<String> sitemaps = {};

private:
    void take(Chars key, Chars value) {
        if (isSameName(key, "user-agent"))
            takeName(value);
        else if (isSameName(key, "allow"))
            takeRule(value, true);
        else if (isSameName(key, "disallow"))
            takeRule(value, false);
        else if (isSameName(key, "crawl-delay"))
            takeDelay(value);
        else if (isSameName(key, "sitemap") && !value.empty())
            sitemaps.push_back(String::fromUTF8(value));
    }

    void takeName(Chars name) {
        // Names one behind the other, whatever else stands between them but rules, are of one group.
        if (!isInNames_) isOwn_ = isAll_ = false;
        isInNames_ = true;
        if (isForAll(name)) isAll_ = all_.isNamed = true;
        if (!agent_.empty() && isSameName(tokenOf(name), agent_)) isOwn_ = own_.isNamed = true;
    }

    void takeRule(Chars pattern, bool allows) {
        isInNames_ = false;
        if (pattern.empty()) return;  // which forbids nothing
        if (isOwn_) own_.rules.push_back(ruleOf(pattern, allows));
        if (isAll_) all_.rules.push_back(ruleOf(pattern, allows));
    }

    void takeDelay(Chars value) {
        double delay = 0;
        const auto result = std::from_chars(value.data(), value.data() + value.size(), delay);
        if (result.ec != std::errc() || !std::isfinite(delay) || delay < 0) return;
        if (isOwn_) own_.delay = std::max(own_.delay.value_or(0), delay);
        if (isAll_) all_.delay = std::max(all_.delay.value_or(0), delay);
    }

    const Chars agent_;
    Group own_, all_;
    bool isInNames_ = false, isOwn_ = false, isAll_ = false;
};

}  // namespace

RobotsRules::RobotsRules() : state_(std::make_shared<State>()) {}

RobotsRules::RobotsRules(Bytes file, std::string_view agent) {
    Reader reader(agent);
    Lines lines(charsOf(file));
    for (Chars line; lines.next(line);) reader.take(line);
    Group group = reader.finish();
    state_ = std::make_shared<State>(
        State{std::move(group.rules), group.delay, std::move(reader.sitemaps)});
}

RobotsRules RobotsRules::allowingNothing() {
    return RobotsRules(std::make_shared<State>(State{.rules = {ruleOf("/", false)}}));
}

RobotsRules RobotsRules::rulesOfAnswer(std::int64_t status, Bytes file, std::string_view agent) {
    if (status >= 200 && status < 300) return RobotsRules(file, agent);
    if (status >= 300 && status < 500) return RobotsRules();
    return allowingNothing();
}

URL RobotsRules::addressForPage(const URL& page) {
    return isHTTPURL(page) ? URL::URLWithString(u"/robots.txt", page) : URL();
}

bool RobotsRules::isAllowed(const URL& url) const {
    if (url.isAbsent()) return false;
    const std::string path = comparable(pathOf(url), "*$");
    if (path == "/robots.txt") return true;
    const auto rule =
        std::ranges::find_if(state_->rules, [&](const Rule& one) { return matches(one, path); });
    return rule == state_->rules.end() || rule->allows;
}

std::optional<double> RobotsRules::crawlDelay() const noexcept { return state_->delay; }
const std::vector<String>& RobotsRules::sitemaps() const noexcept { return state_->sitemaps; }

}  // namespace velmo
