// The macros of a bibliography.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

#include "platform/UnitHash.h"

namespace velmo::detail {

class BibTeXMacros {
public:
    /// The length of the text limits the work.
    explicit BibTeXMacros(std::size_t textLength);

    /// The latest definition of a name counts, at the place of the first. A name has a unit at
    /// least.
    void define(const String& name, const String& value);

    /// Replaces the name of each macro by its value, in the order of the definitions, as long as
    /// there is work left.
    void replaceIn(std::u16string& text);

private:
    struct Macro {
        String name, value;
    };
    struct EdgeHash {
        std::size_t operator()(std::uint64_t edge) const noexcept {
            return mixedHash(edge ^ hashSeed(), 0x9E3779B97F4A7C15);
        }
    };
    static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

    std::size_t firstIn(std::u16string_view text, std::size_t from);
    std::size_t firstAt(std::u16string_view text, std::size_t from);
    bool replace(std::u16string& text, const Macro& macro);
    bool spend(std::size_t work);

    std::vector<Macro> macros_;
    /// A tree of the names: the edges by node and unit, and the macro that ends at each node.
    std::unordered_map<std::uint64_t, std::uint32_t, EdgeHash> edges_;
    std::vector<std::size_t> ends_;
    CharacterSetRep firstUnits_;
    std::size_t work_;
};

}  // namespace velmo::detail
