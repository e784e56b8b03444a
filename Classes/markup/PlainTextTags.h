// What each tag does to plain text: the break that it writes, the state that it leaves, and what
// is done then. Tags that are not here do nothing.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "markup/TagName.h"

namespace velmo::detail::plainText {

enum class Break : std::uint8_t { None, Line, Paragraph };  ///< in line feeds

/// What is done at a tag behind its break; markup/PlainText.cpp tells what each of them means.
enum class Action : std::uint8_t {
    None,
    Body,
    Cell,
    Citation,
    Code,
    DataList,
    Division,
    Example,
    Font,
    FrameAlternative,
    Heading,
    Image,
    Input,
    Link,
    Marquee,
    NoEmbed,
    NoScript,
    Option,
    Plaintext,
    Preformatted,
    Row,
    RubyBase,
    RubyText,
    Select,
    Span,
    Table,
    Template,
    Textarea,
};

struct TagRule {
    std::string_view name;
    Break breakIfPending = Break::None;
    Action action = Action::None;
    bool leavesForm = false;  ///< ends marquee and textarea
};

// clang-format off
inline constexpr TagRule Rules[] = {
    {"a", Break::None, Action::Link},
    {"p", Break::Paragraph},
    {"br", Break::Line},
    {"dd", Break::Line},
    {"dl", Break::Line},
    {"dt", Break::Line},
    {"hr", Break::Paragraph},
    {"li", Break::Line},
    {"ol", Break::Line},
    {"rb", Break::None, Action::RubyBase},
    {"rp", Break::None, Action::RubyText},
    {"rt", Break::None, Action::RubyText},
    {"td", Break::None, Action::Cell},
    {"th", Break::None, Action::Cell},
    {"tr", Break::Line, Action::Row},
    {"ul", Break::Line},
    {"dir", Break::Paragraph},
    {"div", Break::Paragraph, Action::Division, true},
    {"img", Break::None, Action::Image},
    {"pre", Break::None, Action::Preformatted, true},
    {"xmp", Break::None, Action::Example},
    {"body", Break::None, Action::Body},
    {"cite", Break::None, Action::Citation},
    {"code", Break::None, Action::Code, true},
    {"font", Break::None, Action::Font},
    {"menu", Break::Paragraph},
    {"ruby", Break::None, Action::RubyBase},
    {"span", Break::None, Action::Span},
    {"input", Break::None, Action::Input, true},
    {"table", Break::Paragraph, Action::Table, true},
    {"iframe", Break::None, Action::FrameAlternative},
    {"option", Break::None, Action::Option, true},
    {"select", Break::None, Action::Select, true},
    {"marquee", Break::None, Action::Marquee},
    {"datalist", Break::None, Action::DataList},
    {"noframes", Break::None, Action::FrameAlternative},
    {"noscript", Break::None, Action::NoScript},
    {"template", Break::None, Action::Template},
    {"noembed", Break::None, Action::NoEmbed},
    {"textarea", Break::None, Action::Textarea},
    {"h0", Break::Paragraph, Action::Heading, true},
    {"h1", Break::Paragraph, Action::Heading, true},
    {"h2", Break::Paragraph, Action::Heading, true},
    {"h3", Break::Paragraph, Action::Heading, true},
    {"h4", Break::Paragraph, Action::Heading, true},
    {"h5", Break::Paragraph, Action::Heading, true},
    {"h6", Break::Paragraph, Action::Heading, true},
    {"h7", Break::Paragraph, Action::Heading, true},
    {"h8", Break::Paragraph, Action::Heading, true},
    {"h9", Break::Paragraph, Action::Heading, true},
    {},  // all other tags
};
// Names that are too long for a number.
inline constexpr TagRule LongRules[] = {
    {"BLOCKQUOTE", Break::Paragraph},
    {"PLAINTEXT", Break::None, Action::Plaintext, true},
};
// clang-format on

inline constexpr int NoRuleRow = std::size(Rules) - 1;

inline constexpr NameTable RuleTable([] {
    std::array<PackedName, NoRuleRow> names{};
    for (std::size_t i = 0; i < names.size(); ++i) names[i] = packed(Rules[i].name);
    return names;
}());

/// Tags whose names are too long for a number.
template <class Tag>
[[gnu::noinline]] const TagRule& longRuleOf(const Tag& tag) {
    for (const TagRule& rule : LongRules)
        if (tag.isNamed(rule.name)) return rule;
    return Rules[RuleTable.find(packedName(tag), NoRuleRow)];
}

template <class Tag>
[[gnu::always_inline]] inline const TagRule& ruleOf(const Tag& tag) {
    if (tag.nameLength > MaxPackedUnits) return longRuleOf(tag);
    return Rules[RuleTable.find(packedName(tag), NoRuleRow)];
}

}  // namespace velmo::detail::plainText
