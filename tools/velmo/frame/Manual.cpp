#include "Manual.h"

#include <algorithm>

namespace velmo::tool {
namespace {

constexpr std::string_view TopicFolder = "topics/";

/// The first line of a text, which it loses with the line end.
std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line;
}

bool isHeading(std::string_view line) {
    const auto isCapital = [](unsigned char c) { return c == ' ' || (c >= 'A' && c <= 'Z'); };
    return line.size() > 1 && line.front() != ' ' && std::ranges::all_of(line, isCapital);
}

std::string_view withoutLineEnds(std::string_view text) {
    while (text.ends_with('\n')) text.remove_suffix(1);
    while (text.starts_with('\n')) text.remove_prefix(1);
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    return text;
}

/// A row of members is one name, and then nothing or at least two spaces.
JsonMember memberOf(std::string_view row) {
    const std::size_t space = row.find(' ');
    if (space == row.npos) return {std::string(row), {}};
    if (row.substr(space, 2) != "  ") return {{}, std::string(row)};
    return {std::string(row.substr(0, space)), std::string(trimmed(row.substr(space)))};
}

}  // namespace

std::string_view manualText(std::string_view name) {
    for (const ManualText& text : manualTexts())
        if (text.name == name) return text.text;
    return {};
}

const std::vector<Topic>& allTopics() {
    static const std::vector<Topic> topics = [] {
        std::vector<Topic> found;
        for (const auto& [name, text] : manualTexts())
            if (name.starts_with(TopicFolder))
                found.push_back(
                    {name.substr(TopicFolder.size()), text.substr(0, text.find('\n')), text});
        return found;
    }();
    return topics;
}

const Topic* topicNamed(std::string_view name) {
    const auto found = std::ranges::find(allTopics(), name, &Topic::name);
    return found == allTopics().end() ? nullptr : &*found;
}

std::vector<ManualPart> partsOf(std::string_view text) {
    std::vector<ManualPart> parts = {{}};
    const char* start = text.data();
    bool isAfterBlank = true;
    const auto endPart = [&](const char* end) {
        parts.back().text = withoutLineEnds({start, static_cast<std::size_t>(end - start)});
    };
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (isAfterBlank && isHeading(line)) {
            endPart(line.data());
            parts.push_back({line, {}});
            start = text.data();
        }
        isAfterBlank = line.empty();
    }
    endPart(text.data());
    return parts;
}

std::vector<JsonMember> jsonMembersOf(std::string_view text) {
    std::vector<JsonMember> members;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (!line.starts_with(' '))
            members.push_back(memberOf(line));
        else  // more of the same
            (members.back().meaning += ' ') += trimmed(line);
    }
    return members;
}

}  // namespace velmo::tool
