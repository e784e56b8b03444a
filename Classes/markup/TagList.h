// The tags of a page that is asked for more than one thing, kept from one scan.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/markup/TagScanner.h>

#include "markup/ByteTag.h"

namespace velmo::detail {

/// The tags of a text for all who ask for them: those of one scan, or, if the text is long, those of
/// a scan for each who asks, as all of them take a fifth of the memory of the text. The text must
/// outlive them.
template <class Unit>
class TagListOf {
    using Text = std::basic_string_view<Unit>;
    using AnyTag = TagOf<Unit>;
    using Handler = FunctionRef<bool(const AnyTag&)>;

public:
    TagListOf(Text text, const WebRules& web) : text_(text), web_(web) {
        if (isKept()) keepTags();
    }

    void operator()(Handler handler) const { each(handler); }

    /// The same with a handler of any type, for those that do little at most tags.
    template <class AnyHandler>
    void each(AnyHandler& handler) const {
        if (!isKept()) return scan(handler);
        AnyTag tag;
        tag.characters = text_;
        tag.web = web_;
        for (const Kept& kept : tags_) {
            tag.nameLocation = kept.nameLength > 0 ? kept.nameLocation : NotFound;
            tag.nameLength = kept.nameLength;
            tag.tagLocation = kept.tagLocation;
            tag.tagLength = kept.lengthAndKind >> KindBits;
            tag.kind = static_cast<TagKind>(kept.lengthAndKind & ((1u << (KindBits - 1)) - 1));
            if constexpr (IsBytes) tag.isNamePlain = !(kept.lengthAndKind >> (KindBits - 1) & 1);
            if (handler(tag)) return;
            // Text begins where the tag before ended, so it need not be kept.
            tag.textLocation = tag.tagLocation + tag.tagLength;
        }
    }

private:
    static constexpr std::size_t LongText = std::size_t{1} << 20;  ///< in units or bytes
    static constexpr unsigned KindBits = 3;  ///< and one of them for a name outside ASCII
    static constexpr bool IsBytes = sizeof(Unit) == 1;

    /// What a tag does not have in common with those beside it.
    struct Kept {
        std::uint32_t nameLocation, nameLength, tagLocation, lengthAndKind;
    };

    static Kept kept(const AnyTag& tag) {
        std::uint32_t hasOddName = 0;
        if constexpr (IsBytes) hasOddName = !tag.isNamePlain;
        return {static_cast<std::uint32_t>(tag.nameLocation),
                static_cast<std::uint32_t>(tag.nameLength),
                static_cast<std::uint32_t>(tag.tagLocation),
                static_cast<std::uint32_t>(tag.tagLength) << KindBits |
                    hasOddName << (KindBits - 1) | static_cast<std::uint32_t>(tag.kind)};
    }

    bool isKept() const { return text_.size() < LongText; }
    void keepTags();
    void scan(Handler handler) const;

    Text text_;
    const WebRules web_;
    std::vector<Kept> tags_;
};
using TagList = TagListOf<char16_t>;
using ByteTagList = TagListOf<char>;

}  // namespace velmo::detail
