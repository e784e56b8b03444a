#include "url/KeyParameters.h"

#include <algorithm>

#include "text/Keyword.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// What is left of a & that was written as a reference.
constexpr Units Reference = u"amp";

/// Its first four units as a number that sorts as they do. No name holds a zero, so that what is
/// less is shorter, or comes before by its units.
std::uint64_t orderOf(Units name) {
    const auto unit = [name](std::size_t i) {
        return i < name.size() ? std::uint64_t{name[i]} << (48 - 16 * i) : 0;
    };
    return unit(0) | unit(1) | unit(2) | unit(3);
}

bool isClient(Units name) { return keyword::equals(name, "CFID"); }

}  // namespace

void KeyParameters::add(Units text, std::size_t nameLength) {
    if (text.empty() || text == Reference) return;
    if (options_.emptyParams && nameLength + 1 == text.size()) return;
    const Units name = text.substr(0, nameLength);
    if (isKnown(name, text.substr(std::min(nameLength + 1, text.size())))) return;
    hasClient_ = hasClient_ || isClient(name);
    kept_[count_++] = {text.data(), static_cast<std::uint32_t>(text.size()),
                       static_cast<std::uint32_t>(nameLength), orderOf(name)};
}

void KeyParameters::write(KeyUnits& out, Units query) {
    if (hasClient_ && options_.sessionIDs) removeColdFusionIds(query);
    const std::span<Parameter> parameters(kept_.data(), count_);
    if (options_.sortQuery) sortByName(parameters);
    char16_t separator = u'?';
    for (const Parameter& parameter : parameters) {
        out.append(separator);
        out.append(parameter.text());
        separator = u'&';
    }
}

/// Sorts by name; those of one name keep their order. Few of them, as nearly all queries have, are
/// sorted without room beside them.
void KeyParameters::sortByName(std::span<Parameter> parameters) {
    constexpr std::size_t Few = 16;
    if (parameters.size() > Few)
        return std::stable_sort(parameters.begin(), parameters.end(), isBefore);
    for (std::size_t i = 1; i < parameters.size(); ++i) {
        if (!isBefore(parameters[i], parameters[i - 1])) continue;
        const Parameter parameter = parameters[i];
        std::size_t place = i;
        for (; place > 0 && isBefore(parameter, parameters[place - 1]); --place)
            parameters[place] = parameters[place - 1];
        parameters[place] = parameter;
    }
}

/// The number of a client is one of a session only beside the token, which is gone already.
void KeyParameters::removeColdFusionIds(Units query) {
    if (!keyword::contains(query, "CFTOKEN")) return;
    Parameter* const end =
        std::remove_if(kept_.data(), kept_.data() + count_,
                       [](const Parameter& parameter) { return isClient(parameter.name()); });
    count_ = static_cast<std::size_t>(end - kept_.data());
}

}  // namespace velmo::detail
