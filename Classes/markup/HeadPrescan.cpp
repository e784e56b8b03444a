#include "markup/HeadPrescan.h"

#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/markup/WebCharsets.h>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

using Chars = std::string_view;
constexpr Chars White = "\t\n\f\r ";

struct Attribute {
    std::string name, value;  ///< in lower case
};

Chars fromFirstNotOf(Chars text, Chars units) {
    return text.substr(std::min(text.find_first_not_of(units), text.size()));
}

std::string lowered(Chars text) {
    std::string copy(text);
    for (char& c : copy) c = ascii::toLower(c);
    return copy;
}

bool isLabel(Chars label) {
    return encodingOfCharsetLabel(String::fromUTF8(label)) != UnknownTextEncoding;
}

/// Moves behind the text, or to the end if it is not there.
void skipBehind(Chars& text, Chars sought) {
    const std::size_t at = text.find(sought);
    text.remove_prefix(at == Chars::npos ? text.size() : at + sought.size());
}

/// The value that the text begins with, which is left behind it.
std::string takeValue(Chars& text) {
    text = fromFirstNotOf(text, White);
    if (text.empty()) return {};
    if (text[0] == '"' || text[0] == '\'') {
        const std::size_t end = text.find(text[0], 1);
        std::string value = lowered(text.substr(1, end == Chars::npos ? end : end - 1));
        text.remove_prefix(end == Chars::npos ? text.size() : end + 1);
        return value;
    }
    const Chars value = text.substr(0, text.find_first_of("\t\n\f\r >"));
    text.remove_prefix(value.size());
    return lowered(value);
}

/// The next attribute of a tag; absent at its end.
std::optional<Attribute> takeAttribute(Chars& text) {
    text = fromFirstNotOf(text, "\t\n\f\r /");
    if (text.empty() || text[0] == '>') return std::nullopt;
    // An = at the start belongs to the name.
    const std::size_t end = std::min(text.find_first_of("\t\n\f\r />=", 1), text.size());
    Attribute attribute{lowered(text.substr(0, end)), {}};
    text.remove_prefix(end);
    const Chars behind = fromFirstNotOf(text, White);
    if (behind.empty() || behind[0] != '=') return attribute;
    text = behind.substr(1);
    attribute.value = takeValue(text);
    return attribute;
}

/// What the content of a meta tag names behind the word "charset".
std::string labelOfContent(Chars content) {
    for (std::size_t at; (at = content.find("charset")) != Chars::npos;) {
        content = fromFirstNotOf(content.substr(at + 7), White);
        if (content.empty() || content[0] != '=') continue;
        content = fromFirstNotOf(content.substr(1), White);
        if (content.empty()) return {};
        if (content[0] != '"' && content[0] != '\'')
            return std::string(content.substr(0, content.find_first_of("\t\n\f\r ;")));
        const std::size_t end = content.find(content[0], 1);
        return end == Chars::npos ? std::string() : std::string(content.substr(1, end - 1));
    }
    return {};
}

/// Takes the attributes of a meta tag; gives the label that it names, if that is one. A tag that
/// does not end in what is looked at names none.
std::string labelOfMetaTag(Chars& text) {
    std::vector<std::string> names;
    bool isPragma = false;
    std::optional<bool> needsPragma;
    std::string label;
    while (auto attribute = takeAttribute(text)) {
        const auto& [name, value] = *attribute;
        if (std::find(names.begin(), names.end(), name) != names.end()) continue;
        names.push_back(name);
        if (name == "http-equiv") isPragma = value == "content-type";
        if (name == "content" && label.empty() && !needsPragma) {
            label = labelOfContent(value);
            if (!label.empty()) needsPragma = true;
        }
        if (name == "charset") {
            label = value;
            needsPragma = false;
        }
    }
    const bool counts =
        !text.empty() && needsPragma && (!*needsPragma || isPragma) && isLabel(label);
    return counts ? label : std::string();
}

bool isMetaTag(Chars text) {
    return text.size() > 5 && lowered(text.substr(0, 5)) == "<meta" &&
           Chars("\t\n\f\r /").find(text[5]) != Chars::npos;
}

/// Moves behind a tag and its attributes.
void skipTag(Chars& text) {
    text.remove_prefix(std::min(text.find_first_of("\t\n\f\r >"), text.size()));
    while (takeAttribute(text)) {
    }
}

}  // namespace

std::string labelOfMetaTags(Bytes head) {
    Chars text = charsOf(head.first(std::min(head.size(), PrescannedBytes)));
    while (!text.empty()) {
        skipBehind(text, "<");
        if (text.empty()) break;
        text = {text.data() - 1, text.size() + 1};  // which begins with the < now
        const std::size_t name = text[1] == '/' ? 2 : 1;
        if (text.starts_with("<!--")) {
            text.remove_prefix(2);  // the dashes of the end may be those of the start
            skipBehind(text, "-->");
        } else if (isMetaTag(text)) {
            text.remove_prefix(5);
            if (std::string label = labelOfMetaTag(text); !label.empty()) return label;
        } else if (name < text.size() && ascii::isLetter(text[name])) {
            skipTag(text);
        } else if (text[1] == '!' || text[1] == '/' || text[1] == '?') {
            skipBehind(text, ">");
        } else {
            text.remove_prefix(1);
        }
    }
    return {};
}

std::string labelOfXMLDeclaration(Bytes head) {
    Chars text = charsOf(head.first(std::min(head.size(), PrescannedBytes)));
    if (!text.starts_with("<?xml")) return {};
    text = text.substr(0, text.find('>'));
    const std::size_t at = text.find("encoding");
    if (at == Chars::npos) return {};
    text = fromFirstNotOf(text.substr(at + 8), " \t\r\n");
    if (text.empty() || text[0] != '=') return {};
    text.remove_prefix(1);
    std::string label = takeValue(text);
    return isLabel(label) ? label : std::string();
}

}  // namespace velmo::detail
