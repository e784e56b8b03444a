#include "query/reference/RewritingReference.h"

#include <algorithm>
#include <optional>

#include <velmocore/query/Wildcards.h>

namespace velmo::test {
namespace {

struct Rendering {
    std::uint64_t flags;
    const RefDictionary& dictionary;
    std::u16string out;

    bool has(std::uint64_t flag) const { return flags & flag; }
    std::u16string word(const std::u16string& key) const {
        const auto found = dictionary.find(key);
        return found == dictionary.end() ? key : found->second;
    }
    static std::u16string units(const std::string& text) { return {text.begin(), text.end()}; }

    void joinAnd(const RefNode& child, std::size_t& plus) {
        if (has(0x1) && has(0x8000)) {
            out += child.negated ? u" " : u" " + word(u"AND") + u" ";
            return;
        }
        if (plus != out.npos) out.insert(plus, u"+");
        plus = out.npos;
        out += has(0x4000) && !child.negated ? u" +" : u" ";
    }
    void joinNear(const char16_t* name, const RefNode& child) {
        out += u" " + word(name) + u"/" + units(std::to_string(static_cast<std::int32_t>(child.distance))) + u" ";
    }
    void joinOr() {
        if (has(0x2) && !has(0x4000))
            out += has(0x10000) ? word(u"|") : u" " + word(u"OR") + u" ";
        else
            out += u" ";
    }
    /// False if the child is left out.
    bool join(const RefNode& child, std::size_t& plus) {
        switch (child.op) {
            case 1:
                joinOr();
                break;
            case 2:
                has(0x4) ? void(out += u" " + word(u"XOR") + u" ") : joinOr();
                break;
            case 3:
                has(0x40) ? joinNear(u"NEAR", child) : joinAnd(child, plus);
                break;
            case 5:
                has(0x80) ? joinNear(u"AFTER", child) : joinAnd(child, plus);
                break;
            case 6:
                if (has(0x400) && child.distance == 1) {
                    out += u" " + word(u"NEXT") + u" ";
                    break;
                }
                [[fallthrough]];
            case 4:
                has(0x100) ? joinNear(u"BEFORE", child) : joinAnd(child, plus);
                break;
            case 7:
                if (!has(0x20000)) return false;
                out += u" " + word(u"OPT") + u" ";
                break;
            default:
                joinAnd(child, plus);
        }
        return true;
    }
    void render(const RefNode& node, bool isTop) {
        if (node.negated) out += has(0x800) ? word(u"ANDNOT") + u" " : has(0x8000) ? word(u"NOT") + u" " : word(u"-");
        if (has(0x200) && node.substring) out += u"~";
        if (node.isWord) {
            std::u16string text = node.word;
            for (char16_t& c : text) {
                if (has(0x2000))
                    c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
                else if (has(0x1000))
                    c = c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
            }
            out += has(0x10) && node.phrase ? u"\"" + text + u"\"" : text;
            return;
        }
        const bool several = node.children.size() > 1;
        std::size_t plus = !node.negated && has(0x4000) && several ? out.size() : out.npos;
        const bool brackets = has(0x20) && !isTop && several;
        if (brackets) out += u"(";
        for (std::size_t i = 0; i < node.children.size(); ++i) {
            const RefNode& child = *node.children[i];
            if (child.negated && !has(0x8)) continue;
            if (i > 0 && !join(child, plus)) continue;
            render(child, false);
        }
        if (brackets) out += u")";
    }
};

void addPlusTerms(const RefNode& node, unsigned mask, bool negated, std::vector<const RefNode*>& out) {
    negated = negated != node.negated;
    if (node.isWord && !negated && (mask & (node.substring ? 2 : 1))) out.push_back(&node);
    for (const auto& child : node.children) addPlusTerms(*child, mask, negated, out);
}

using Strings = std::set<std::u16string>;
using Value = std::optional<std::u16string>;

/// Pairs go to the same set, if they are wanted; then the whole text does not.
Value stringsFor(const RefNode& node, Strings& result, bool negated, bool extended) {
    if (node.isWord) {
        const auto [words, hyphenated] = separatedWildcardWords(String(node.word));
        if (negated || words.empty()) return {};
        if (!extended) result.insert(node.word);
        std::u16string spaced(words[0]), joined = spaced;
        for (std::size_t i = 1; i < words.size(); ++i) {
            spaced.append(u" ").append(words[i].view());
            joined += words[i].view();
        }
        result.insert(spaced);
        if (words.size() == 1 || !hyphenated || node.phrase) return spaced;
        result.insert(joined);
        return joined;
    }
    const auto isNear = [](const RefNode& child) { return child.op >= 3 && child.op <= 6; };
    const auto pair = [&](const Value& a, const Value& b, const RefNode& child) {
        if (extended && a && b && (child.op == 0 || isNear(child))) result.insert(*a + u" " + *b);
    };
    Value left;
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        const RefNode& child = *node.children[i];
        const Value r = stringsFor(child, result, negated != child.negated, extended);
        pair(left, r, child);
        left = r;
        if (i + 1 == node.children.size() || !isNear(*node.children[i + 1])) continue;
        const RefNode& next = *node.children[++i];
        left = stringsFor(next, result, child.negated ? !negated : negated != next.negated, extended);
        pair(r, left, next);
    }
    return {};
}

}  // namespace

std::u16string refRender(const RefNode& top, std::uint64_t flags, const RefDictionary& dictionary) {
    Rendering rendering{flags, dictionary, {}};
    rendering.render(top, true);
    return rendering.out;
}

std::vector<const RefNode*> refPlusTerms(const RefNode& top, unsigned mask) {
    std::vector<const RefNode*> out;
    addPlusTerms(top, mask, top.negated, out);
    return out;
}

std::vector<std::u16string> refPlusWildcards(const RefNode& top, bool extended) {
    Strings strings;
    stringsFor(top, strings, top.negated, extended);
    std::vector<std::u16string> out(strings.begin(), strings.end());
    std::ranges::stable_sort(out, {}, &std::u16string::size);
    return out;
}

}  // namespace velmo::test
