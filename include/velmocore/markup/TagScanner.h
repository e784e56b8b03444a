#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

/// What a call of a tag handler reports.
enum class TagKind : std::uint8_t {
    End = 0,          ///< the final call, after the last unit
    Element = 1,      ///< every tag; also closing tags, <?xml ...?> and <!DOCTYPE ...>
    Comment = 2,      ///< <!- and <!--
    Declaration = 3,  ///< <![, so CDATA sections and conditional declarations alike
};

/// One call of a tag handler. All locations and lengths count UTF-16 units of characters.
struct Tag {
    std::u16string_view characters;       ///< all units of the scanned text
    std::size_t nameLocation = NotFound;  ///< NotFound where the tag has no name
    std::size_t nameLength = 0;
    std::size_t tagLocation = 0;   ///< of the opening <; the text's length on the final call
    std::size_t tagLength = 0;     ///< with both angle brackets; see whole()
    std::size_t textLocation = 0;  ///< one past the end of the tag before
    TagKind kind = TagKind::End;
    WebRules web = {};  ///< by which it was scanned, and its attributes are read

    /// The name as it stands, without regard to case; a closing tag's is the same as
    /// its opening one's. Empty where there is none.
    [[nodiscard]] std::u16string_view name() const {
        return nameLength ? characters.substr(nameLocation, nameLength) : std::u16string_view();
    }
    /// Whether the tag has that name, an ASCII one, in any case.
    [[nodiscard]] bool isNamed(std::string_view ascii) const {
        return nameLength == ascii.size() && hasNameUnits(ascii);
    }
    /// The tag from < to >, cut at the end of the text: a script that is never closed
    /// has a tagLength that reaches one unit too far.
    [[nodiscard]] std::u16string_view whole() const { return part(tagLocation, tagLength); }
    /// Whether there is any text in front of it.
    [[nodiscard]] bool hasText() const { return tagLocation > textLocation; }
    /// The text between the tag before and this one.
    [[nodiscard]] std::u16string_view text() const {
        return hasText() ? part(textLocation, tagLocation - textLocation) : std::u16string_view();
    }
    /// Whether a / stands after the <.
    [[nodiscard]] bool isClosing() const {
        return tagLength > 1 && tagLocation + 1 < characters.size() &&
               characters[tagLocation + 1] == u'/';
    }

private:
    /// What of a range is in the text.
    std::u16string_view part(std::size_t location, std::size_t length) const {
        const std::size_t start = std::min<std::size_t>(location, characters.size());
        return {characters.data() + start,
                std::min<std::size_t>(length, characters.size() - start)};
    }
    VELMO_API bool hasNameUnits(std::string_view ascii) const;
};

/// Called for each tag; true stops the scan at once.
using TagHandler = FunctionRef<bool(const Tag&)>;

/// Walks a page once and calls the handler for every tag, comment and declaration, with
/// the text before it, and a last time at the end. Builds no tree and knows no errors:
/// it only decides where a tag ends. A script or style element is one tag with its body.
///
/// False for an empty text, which makes no call; true in every other case, also if a
/// handler stopped the scan. An exception out of the handler passes through.
///
///     std::size_t images = 0;
///     GetTagsOfString(u"<p>a <IMG src=b>", [&](const Tag& tag) {
///         images += tag.isNamed("IMG");
///         return false;
///     });
///     images;   // 1
///
/// Time is linear in the text. Any thread may scan; all state is on the stack. Nothing is cut
/// short for want of memory: here and in all that reads pages, std::bad_alloc passes through.
///
/// The rules of WebRules for attributes, tags, comments, raw texts and self-closing tags decide
/// otherwise where they are on. A tag in which the page ends is then reported as a comment is.
VELMO_API bool GetTagsOfString(std::u16string_view string, TagHandler handler,
                               const WebRules& web = {});

/// The same under a guard: an exception out of the handler is logged and the result is
/// false. Only std::bad_alloc passes through, since a text that is cut is none.
VELMO_API bool parseXmlWithHandler(std::u16string_view string, TagHandler handler,
                                   const WebRules& web = {});

/// The string with every unit below 32 but tab, LF and CR replaced by a space; the
/// string itself if there is none.
[[nodiscard]] VELMO_API String fixedXml(const String& string);

/// The string itself: its units are always directly addressable.
[[nodiscard]] inline String optimizedXml(const String& string) { return string; }

}  // namespace velmo
