// The introspection of an object has a fixed form, of which only the names of methods in one
// interface matter: tags are looked at one by one, and what stands between them is passed over. A
// name is one of the protocol's, which needs no escapes.
#include "system/Introspection.h"

#include <optional>

#include "system/Bus.h"

namespace velmo::detail {
namespace {

/// The text of the next tag, without its brackets; the XML goes on behind it.
std::optional<std::string_view> nextTag(std::string_view& xml) {
    const std::size_t start = xml.find('<');
    if (start == xml.npos) return std::nullopt;
    const std::size_t end = xml.find('>', start);
    if (end == xml.npos) return std::nullopt;
    const std::string_view tag = xml.substr(start + 1, end - start - 1);
    xml.remove_prefix(end + 1);
    return tag;
}

bool isTag(std::string_view tag, std::string_view name) {
    return tag.starts_with(name) && (tag.size() == name.size() || tag[name.size()] == ' ' ||
                                     tag[name.size()] == '/' || tag[name.size()] == '\n');
}

std::string_view nameIn(std::string_view tag) {
    constexpr std::string_view Name = "name=";
    const std::size_t at = tag.find(Name);
    if (at == tag.npos || at + Name.size() >= tag.size()) return {};
    const char quote = tag[at + Name.size()];
    const std::string_view value = tag.substr(at + Name.size() + 1);
    const bool isQuoted = quote == '"' || quote == '\'';
    return isQuoted ? value.substr(0, value.find(quote)) : std::string_view();
}

}  // namespace

std::set<String, std::less<>> operationsOfIntrospection(std::string_view xml) {
    std::set<String, std::less<>> operations;
    bool isOurs = false;
    while (const auto tag = nextTag(xml)) {
        if (isTag(*tag, "interface"))
            isOurs = nameIn(*tag) == HelperInterface;
        else if (isTag(*tag, "/interface"))
            isOurs = false;
        else if (isOurs && isTag(*tag, "method") && !nameIn(*tag).empty())
            operations.insert(String::fromUTF8(nameIn(*tag)));
    }
    return operations;
}

}  // namespace velmo::detail
