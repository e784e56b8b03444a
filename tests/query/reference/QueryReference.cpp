#include "query/reference/QueryReference.h"

#include <map>

#include <velmocore/platform/String.h>

#include "query/reference/RunsReference.h"

namespace velmo::test {
namespace {

constexpr std::uint64_t Unbounded = 0x7FFFFFFFFFFFFFFF;

bool isQuote(char16_t c) { return c == u'"' || (c >= 0x201C && c <= 0x201F); }
bool isWhite(char16_t c) { return c == u' ' || c == u'\n' || c == u'\t' || c == 0; }

char16_t up(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; }
std::u16string up(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& c : result) c = up(c);
    return result;
}

std::uint64_t integerOf(const std::u16string& text) {
    std::int64_t value = 0, sign = 1;
    std::size_t i = 0;
    if (!text.empty() && (text[0] == u'-' || text[0] == u'+')) sign = text[i++] == u'-' ? -1 : 1;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) value = value * 10 + (text[i] - u'0');
    return static_cast<std::uint64_t>(sign * value);
}

/// Sets what an operator word says; false if the part is none.
bool takeOperator(const std::u16string& part, RefState& state) {
    const std::u16string word = up(part);
    static const std::map<std::u16string, int> names = {{u"|", 1}, {u"OR", 1},  {u"^", 2},   {u"XOR", 2}, {u"EOR", 2},
                                                        {u"&", 0}, {u"AND", 0}, {u"BUT", 0}, {u"OPT", 7}, {u"NEAR", 3}};
    if (const auto found = names.find(word); found != names.end()) return state.op = found->second, true;
    if (word == u"NOT") return state.negated = !state.negated, true;
    if (word == u"NEXT") return state.op = 6, state.distance = 1, true;
    if (word == u"AFTER") return state.op = 5, state.distance = Unbounded, true;
    if (word == u"BEFORE") return state.op = 4, state.distance = Unbounded, true;
    const std::pair<std::u16string, int> withDistance[] = {
        {u"NEAR/", 3}, {u"NEXT/", 6}, {u"AFTER/", 5}, {u"BEFORE/", 4}};
    for (const auto& [prefix, op] : withDistance) {
        if (word.size() <= prefix.size() || word.substr(0, prefix.size()) != prefix) continue;
        state.op = op;
        state.distance = integerOf(word.substr(prefix.size()));
        return true;
    }
    return false;
}

void addChild(RefNode& group, std::unique_ptr<RefNode> child, int op) {
    if (group.children.empty())
        group.common = 8;
    else if (group.children.size() == 1)
        group.common = op;
    else if (group.common != op)
        group.common = 8;
    group.children.push_back(std::move(child));
}

bool addPart(RefNode& group, std::u16string part, bool phrase, RefState& state, bool wildcard) {
    while (!part.empty() && isWhite(part.front())) part.erase(0, 1);
    while (!part.empty() && isWhite(part.back())) part.pop_back();
    if (part.empty()) return false;
    if (!phrase && takeOperator(part, state)) return false;
    if (wildcard && state.substring && !(part.front() == u'*' && part.back() == u'*')) part = u"*" + part + u"*";
    auto word = std::make_unique<RefNode>();
    word->isWord = true;
    word->word = part;
    word->op = state.op;
    word->negated = state.negated;
    word->substring = state.substring;
    word->phrase = phrase;
    word->distance = state.distance;
    addChild(group, std::move(word), state.op);
    return true;
}

struct RefText {
    std::u16string text;
    const RefFind& find;
    bool withinRuns = false;
};

/// Some words back or forward where words are no runs.
std::size_t backOverWords(const RefText& in, std::size_t n, std::size_t position, std::size_t start) {
    const RefWords words{in.text, true};
    std::vector<std::size_t> begins;
    for (std::size_t i = start; i < position; ++i)
        if (words.isTerm(i) && (i == start || words.mayBegin(i))) begins.push_back(i);
    if (begins.size() < n) return start;
    const std::size_t word = begins[begins.size() - n];
    return word > start && !words.isTerm(word - 1) ? word - 1 : word;
}

std::size_t forwardOverWords(const RefText& in, std::size_t n, std::size_t position, std::size_t end) {
    const RefWords words{in.text, true};
    for (std::size_t i = position + 1; i <= end; ++i)
        if (words.isTerm(i - 1) && (i == end || words.mayEnd(i)) && --n == 0) return i;
    return end;
}

bool isTerm(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9'); }

std::size_t back(const RefText& in, std::size_t n, std::size_t position, std::size_t start) {
    if (position <= start) return start;
    if (in.withinRuns) return backOverWords(in, n, position, start);
    std::size_t p = position - 1;
    if (p - start <= n) return start;
    for (; n > 0; --n) {
        while (p > start && !isTerm(in.text[p])) --p;
        while (p > start && isTerm(in.text[p])) --p;
    }
    return p;
}

std::size_t forward(const RefText& in, std::size_t n, std::size_t position, std::size_t end) {
    if (position >= end || end - position <= n) return end;
    if (in.withinRuns) return forwardOverWords(in, n, position, end);
    for (; n > 0; --n) {
        while (position < end && !isTerm(in.text[position])) ++position;
        while (position < end && isTerm(in.text[position])) ++position;
    }
    return position;
}

struct RefProximity {
    const RefNode* left = nullptr;
    int op = 8;
    std::uint64_t distance = 0;
};

bool matches(const RefText& in, const RefNode& node, const RefProximity& near, std::size_t start, std::size_t end);

/// The stretch around a hit in which the term before it must hold.
std::pair<std::size_t, std::size_t> windowOf(const RefText& in, const RefProximity& near, const RefHit& hit,
                                             std::size_t start, std::size_t end) {
    const std::size_t behind = hit.location + hit.length;
    return {near.op == 5 ? hit.location : back(in, near.distance, hit.location, start),
            near.op == 3 || near.op == 5 ? forward(in, near.distance, behind, end) : behind};
}

bool matchesNear(const RefText& in, const RefNode& word, const RefProximity& near, std::size_t start, std::size_t end) {
    const auto leftHolds = [&](std::size_t from, std::size_t to) { return matches(in, *near.left, {}, from, to); };
    std::size_t cursor = start, lastEnd = start;
    for (;;) {
        const auto hit = in.find(word, cursor, end);
        if (!hit) return word.negated && lastEnd < end && leftHolds(lastEnd, end);
        const auto [windowStart, windowEnd] = windowOf(in, near, *hit, start, end);
        cursor = hit->location + hit->length;
        if (word.negated && windowStart > lastEnd && leftHolds(lastEnd, windowStart)) return true;
        const bool holds = leftHolds(windowStart, std::min(windowEnd, end));
        if (!word.negated && holds) return true;
        lastEnd = windowEnd;
        if (cursor >= end) return false;
    }
}

bool matches(const RefText& in, const RefNode& node, const RefProximity& near, std::size_t start, std::size_t end) {
    if (node.isWord) {
        if (near.left) return matchesNear(in, node, near, start, end);
        return in.find(node, start, end).has_value() != node.negated;
    }
    bool value = false;
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        const RefNode& child = *node.children[i];
        const bool isNear = child.op >= 3 && child.op <= 6;
        if (i == 0)
            value = matches(in, child, near, start, end);
        else if (child.op == 0 || (isNear && child.distance == 0))
            value = value && matches(in, child, near, start, end);
        else if (child.op == 1)
            value = value || matches(in, child, near, start, end);
        else if (child.op == 2)
            value = value != matches(in, child, near, start, end);
        else if (isNear)
            value = value && matches(in, child, {node.children[i - 1].get(), child.op, child.distance}, start, end);
    }
    return value != node.negated;
}

struct RefCollection {
    const RefText& in;
    const std::function<bool(const RefNode&)>& isEverywhere;
    std::set<RefHit> hits;

    /// What there is to show of a node that holds on a stretch.
    void collect(const RefNode& node, const RefProximity& near, std::size_t start, std::size_t end) {
        if (node.isWord && near.left) return collectNear(node, near, start, end);
        if (node.negated) return;
        if (!node.isWord) return collectGroup(node, near, start, end);
        for (auto hit = in.find(node, start, end); hit && !isEverywhere(node);) {
            hits.insert(*hit);
            const std::size_t behind = hit->location + hit->length;
            hit = behind < end ? in.find(node, behind, end) : std::nullopt;
        }
    }

    void collectNear(const RefNode& word, const RefProximity& near, std::size_t start, std::size_t end) {
        const auto leftHolds = [&](std::size_t from, std::size_t to) {
            if (from >= to || !matches(in, *near.left, {}, from, to)) return false;
            collect(*near.left, {}, from, to);
            return true;
        };
        std::size_t cursor = start, lastEnd = start;
        while (cursor < end) {
            const auto hit = in.find(word, cursor, end);
            if (!hit) {
                if (word.negated) leftHolds(lastEnd, end);
                return;
            }
            const auto [windowStart, windowEnd] = windowOf(in, near, *hit, start, end);
            if (word.negated)
                leftHolds(lastEnd, windowStart);
            else if (leftHolds(windowStart, std::min(windowEnd, end)) && !isEverywhere(word))
                hits.insert(*hit);
            cursor = hit->location + hit->length;
            lastEnd = windowEnd;
        }
    }

    void collectGroup(const RefNode& group, const RefProximity& near, std::size_t start, std::size_t end) {
        const auto isNear = [&](std::size_t i) {
            const RefNode& child = *group.children[i];
            return i > 0 && child.op >= 3 && child.op <= 6 && child.distance != 0;
        };
        const auto nearOf = [&](std::size_t i) {
            const RefNode& child = *group.children[i];
            return isNear(i) ? RefProximity{group.children[i - 1].get(), child.op, child.distance} : near;
        };
        std::set<std::size_t> sources;
        bool value = false;
        for (std::size_t i = 0; i < group.children.size(); ++i) {
            const int op = i == 0 ? 1 : group.children[i]->op;
            if (op == 7) continue;
            const bool holds = matches(in, *group.children[i], nearOf(i), start, end);
            if (op == 1)
                value = value || holds;
            else if (op == 2)
                value = value != holds;
            else
                value = value && holds;
            if (!value) sources.clear();
            if (value && holds) sources.insert(i);
        }
        for (std::size_t i : sources) {
            const bool isShown = sources.count(i + 1) && isNear(i + 1) &&
                                 (group.children[i + 1]->isWord || !group.children[i + 1]->negated);
            if (!isShown || isNear(i)) collect(*group.children[i], nearOf(i), start, end);
        }
    }
};

bool contains(const RefText& in, const RefNode& node, bool inherited) {
    const bool negated = node.negated != inherited;
    if (node.isWord) return !negated && in.find(node, 0, in.text.size());
    for (const auto& child : node.children)
        if (contains(in, *child, negated)) return true;
    return false;
}

}  // namespace

void refParse(RefNode& group, std::u16string_view text, const RefDefaults& defaults) {
    const RefState fresh{defaults.op, false, false, defaults.distance};
    RefState state = fresh;
    std::size_t index = 0, partStart = 0;
    const auto flush = [&] {
        const std::u16string part(text.substr(partStart, index - partStart));
        if (addPart(group, part, false, state, defaults.wildcard)) state = fresh;
    };
    const auto pastBracket = [&](std::size_t i) {
        while (i < text.size() && text[i] != u']') ++i;
        return std::min(i + 1, text.size());
    };
    while (index < text.size()) {
        const char16_t c = text[index];
        if (isQuote(c)) {
            flush();
            std::size_t close = index + 1;
            while (close < text.size() && !isQuote(text[close])) ++close;
            const std::u16string part(text.substr(index + 1, close - index - 1));
            addPart(group, part, true, state, defaults.wildcard);
            state = fresh;
            partStart = index = std::min(close + 1, text.size());
        } else if (c == u'(') {
            flush();
            std::size_t close = index + 1;
            for (int depth = 1; close < text.size(); ++close) {
                if (text[close] == u'(') ++depth;
                if (text[close] == u')' && --depth == 0) break;
            }
            auto inner = std::make_unique<RefNode>();
            inner->op = state.op;
            inner->negated = state.negated;
            inner->substring = state.substring;
            inner->distance = state.distance;
            refParse(*inner, text.substr(index + 1, close - index - 1), defaults);
            if (inner->children.size() == 1) {
                auto only = std::move(inner->children[0]);
                only->op = state.op;
                only->negated = only->negated != state.negated;
                only->substring = only->substring || state.substring;
                addChild(group, std::move(only), state.op);
            } else if (inner->children.size() > 1) {
                addChild(group, std::move(inner), state.op);
            }
            state = fresh;
            partStart = index = std::min(close + 1, text.size());
        } else if (c == u'[' && defaults.wildcard) {
            index = pastBracket(index + 1);
        } else if (c == u'[') {
            flush();
            partStart = index = pastBracket(index + 1);
        } else if (c == u'&' || c == u'^' || c == u'|' || c == u'!' || c == u'~' || c == u')' ||
                   (c == u']' && !defaults.wildcard) || isWhite(c) ||
                   ((c == u'-' || c == u'+') && index == partStart)) {
            flush();
            if (c == u'&') state.op = 0;
            if (c == u'|') state.op = 1;
            if (c == u'^') state.op = 2;
            if (c == u'!' || c == u'-') state.negated = true;
            if (c == u'+') state.negated = false;
            if (c == u'~') state.substring = true;
            partStart = ++index;
        } else {
            ++index;
        }
    }
    flush();
}

std::string refDump(const RefNode& node, std::size_t depth) {
    static const char* const names[] = {"AND", "OR", "XOR", "NEAR", "BEFORE", "AFTER", "NEXT", "OPT", "NONE"};
    std::string line(2 * depth, ' ');
    line += names[node.op];
    if (node.op >= 3 && node.op <= 6) line += node.distance == Unbounded ? "/any" : "/" + std::to_string(node.distance);
    line += node.negated ? " -" : " ";
    if (node.substring) line += "~";
    if (node.isWord) {
        const std::string quote = node.phrase ? "\"" : "";
        return line + quote + utf8(node.word) + quote + "\n";
    }
    line += "group of " + std::to_string(node.children.size()) + " (" + names[node.common] + ")\n";
    for (const auto& child : node.children) line += refDump(*child, depth + 1);
    return line;
}

RefFind refPlainWords(std::u16string_view text, Case letterCase, bool withinRuns) {
    const auto folded = [=](std::u16string_view units) {
        return letterCase == Case::Sensitive ? std::u16string(units) : up(units);
    };
    return [text = folded(text), folded, words = RefWords{std::u16string(text), withinRuns}](
               const RefNode& node, std::size_t start, std::size_t end) -> std::optional<RefHit> {
        const std::u16string word = folded(node.word);
        if (word.empty()) return {};
        if (word[0] == u'*') return RefHit{start, word.size()};
        for (std::size_t i = start; i + word.size() <= end; ++i) {
            if (text.compare(i, word.size(), word) != 0) continue;
            const bool cutsFront = i != start && !words.mayBegin(i);
            const bool cutsBack = i + word.size() != end && !words.mayEnd(i + word.size());
            if (node.substring || !(cutsFront || cutsBack)) return RefHit{i, word.size()};
        }
        return {};
    };
}

bool refMatches(const RefNode& top, std::u16string_view text, const RefFind& find, bool withinRuns) {
    return !text.empty() && matches({std::u16string(text), find, withinRuns}, top, {}, 0, text.size());
}

std::set<RefHit> refHits(const RefNode& top, std::u16string_view text, const RefFind& find,
                         const std::function<bool(const RefNode&)>& isEverywhere, bool withinRuns) {
    const RefText in{std::u16string(text), find, withinRuns};
    RefCollection collection{in, isEverywhere, {}};
    if (refMatches(top, text, find, withinRuns)) collection.collect(top, {}, 0, text.size());
    return collection.hits;
}

bool refContains(const RefNode& top, std::u16string_view text, const RefFind& find) {
    return !text.empty() && contains({std::u16string(text), find}, top, top.negated);
}

}  // namespace velmo::test
