#include "markup/WideTags.h"

#include "markup/TagSupport.h"
#include "platform/Utf8.h"

namespace velmo::detail {
namespace {

/// The opening tag alone of a script or a style; any other tag is all of it.
std::string_view withoutBody(const ByteTag& tag) {
    const bool mayHaveBody = tag.isNamed("SCRIPT") || tag.isNamed("STYLE");
    return mayHaveBody && !tag.isClosing() ? openingTagOf(tag) : tag.whole();
}

}  // namespace

bool WideTags::wantsText(const ByteTag& tag) const {
    if (parts_.text == TagParts::Text::OfTitles) return tag.isNamed("TITLE");
    return parts_.text == TagParts::Text::All;
}

char16_t* WideTags::room(std::size_t bytes) {
    if (bytes + Utf8Slack > capacity_) {
        capacity_ = bytes + bytes / 2 + 512;
        units_ = std::make_unique_for_overwrite<char16_t[]>(capacity_);
    }
    return units_.get();
}

const Tag& WideTags::of(const ByteTag& tag) {
    const std::string_view text = wantsText(tag) ? tag.text() : std::string_view();
    const std::string_view whole = parts_.bodies ? tag.whole() : withoutBody(tag);
    char16_t* const units = room(text.size() + whole.size());
    const std::size_t textLength = decodeUtf8(text, units);
    const std::size_t length = decodeUtf8(whole, units + textLength);
    tag_.characters = {units, textLength + length};
    tag_.kind = tag.kind;
    tag_.web = tag.web;
    tag_.textLocation = 0;
    tag_.tagLocation = textLength;
    // An element that is never closed reaches one unit too far.
    tag_.tagLength = length + (whole.size() < tag.tagLength && tag.whole() == whole);
    tag_.nameLength = lengthOfName(tag);
    tag_.nameLocation = NotFound;
    if (tag.nameLength > 0) {
        // Mostly it is the < alone, or </.
        const std::string_view front = whole.substr(0, tag.nameLocation - tag.tagLocation);
        const std::size_t frontLength =
            front.size() > 2 ? String::fromUTF8(front).length() : front.size();
        tag_.nameLocation = textLength + frontLength;
    }
    return tag_;
}

}  // namespace velmo::detail
