// Character references decoded while a text is copied, one where it stands, so that a text with
// some of them is still copied in one pass.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "markup/EntityReference.h"
#include "platform/Ascii.h"
#include "text/TextCopy.h"

namespace velmo::detail {

/// Whether the reference that a text begins with ends in it, whatever may follow.
inline bool isReferenceTold(std::u16string_view text) {
    for (std::size_t i = 1; i + 1 < text.size(); ++i)
        if (!ascii::isLetterOrDigit(text[i]) && !(i == 1 && text[i] == u'#')) return true;
    return false;
}

/// Copies the reference at which a copy has stopped, or the & that begins none; false, and nothing
/// done, if it takes more than the next 32 units to tell.
template <class Unit>
bool copyReference(TextCopy<Unit>& copy, const EntityOptions& options) {
    char16_t units[TextMarks::Units];
    const std::u16string_view text = copy.next(units);
    if (text.size() < copy.left() && !isReferenceTold(text)) return false;
    const Reference reference = readReference(text, options);
    for (std::size_t i = 0; i < reference.count; ++i)
        copy.put(reference.taken ? reference.units[i] : u'&');
    copy.skip(std::max<std::size_t>(reference.taken, 1));
    return true;
}

}  // namespace velmo::detail
