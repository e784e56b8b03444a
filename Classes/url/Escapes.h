// The units of a text as percent escapes of their bytes in an encoding.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

#include "platform/Surrogates.h"
#include "text/UnitScan.h"
#include "url/Grammar.h"

namespace velmo::detail::escapes {

/// Appends the bytes of units as escapes, with capital digits. False if the encoding
/// cannot hold them.
bool appendBytes(StringBuilder& out, std::u16string_view units, StringEncoding encoding);

/// Whether ASCII is what it is in the encoding: not so in UTF-16 and UTF-32.
bool holdsAscii(StringEncoding encoding);

/// Room for a result whose length is known only when it is written. A short one is written on
/// the stack and copied once; of a long one the room that is left goes back.
class Room {
public:
    static constexpr std::size_t Short = 4096;

    explicit Room(std::size_t units) { units_ = units <= Short ? small_ : builder_.prepare(units); }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    char16_t* units() noexcept { return units_; }
    String finish(const char16_t* end) {
        const auto length = static_cast<std::size_t>(end - units_);
        if (units_ == small_) return std::u16string_view(small_, length);
        builder_.commit(length);
        return builder_.finish();
    }

private:
    char16_t small_[Short];
    StringBuilder builder_;
    char16_t* units_;
};

/// What may stand for a byte, in one piece of memory.
using Spelling = std::array<char16_t, 4>;
/// A byte as its escape, and as a unit.
inline constexpr std::array<std::array<Spelling, 256>, 2> Spellings = [] {
    std::array<std::array<Spelling, 256>, 2> spellings{};
    for (std::size_t byte = 0; byte < 256; ++byte) {
        spellings[0][byte] = {u'%', u"0123456789ABCDEF"[byte >> 4], u"0123456789ABCDEF"[byte & 15]};
        spellings[1][byte] = {static_cast<char16_t>(byte)};
    }
    return spellings;
}();

/// Writes the escape of a byte, and one unit more behind it.
inline char16_t* writeEscape(char16_t* write, char32_t byte) noexcept {
    std::memcpy(write, Spellings[0][byte & 0xFF].data(), sizeof(Spelling));
    return write + 3;
}

using detail::isHighSurrogate;
using detail::isLowSurrogate;
using detail::isSurrogate;

/// Writes the escapes of the UTF-8 of a character outside ASCII, and one unit more.
inline char16_t* writeEscapes(char16_t* write, char32_t c) noexcept {
    if (c < 0x800) {
        write = writeEscape(write, 0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            write = writeEscape(write, 0xE0 | c >> 12);
        } else {
            write = writeEscape(write, 0xF0 | c >> 18);
            write = writeEscape(write, 0x80 | (c >> 12 & 0x3F));
        }
        write = writeEscape(write, 0x80 | (c >> 6 & 0x3F));
    }
    return writeEscape(write, 0x80 | (c & 0x3F));
}

/// The room that writeUtf8() needs for a text at most.
inline std::size_t roomForUtf8(std::u16string_view text) noexcept {
    constexpr std::size_t MostUnits = 9;  // the escapes of three bytes
    std::size_t room = text.size() * MostUnits;
    if (room + sizeof(Spelling) > Room::Short) {
        room = 0;
        for (char16_t unit : text) room += unit < 0x80 ? 3 : unit < 0x800 ? 6 : MostUnits;
    }
    return room + sizeof(Spelling);
}

/// Writes a text: the units that keep(index) wants as they are, all others as the escapes of
/// their UTF-8. Gives the end of what was written, null for a lone surrogate.
template <class Keep>
char16_t* writeUtf8(char16_t* write, std::u16string_view text, Keep keep) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t unit = text[i];
        const bool kept = keep(i);
        if (unit < 128) {  // without a branch on what is kept
            std::memcpy(write, Spellings[kept][unit].data(), sizeof(Spelling));
            write += 3 - 2 * kept;
            continue;
        }
        if (kept) {
            *write++ = static_cast<char16_t>(unit);
            continue;
        }
        if (isSurrogate(unit)) {
            if (!isHighSurrogate(unit) || ++i == text.size() || !isLowSurrogate(text[i]))
                return nullptr;
            unit = characterOfPair(static_cast<char16_t>(unit), text[i]);
        }
        write = writeEscapes(write, unit);
    }
    return write;
}

/// The same as a string, in any encoding; absent if it cannot hold what is to be escaped.
template <class Keep>
String escaped(std::u16string_view text, StringEncoding encoding, Keep keep) {
    if (encoding == UTF8StringEncoding) {
        Room room(roomForUtf8(text));
        const char16_t* const end = writeUtf8(room.units(), text, keep);
        return end ? room.finish(end) : String();
    }
    StringBuilder out(text.size() * 2);
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t kept = i;
        while (i < text.size() && keep(i)) ++i;
        out.append(text.substr(kept, i - kept));
        const std::size_t start = i;
        while (i < text.size() && !keep(i)) ++i;
        if (i > start && !appendBytes(out, text.substr(start, i - start), encoding)) return {};
    }
    return out.finish();
}

/// The value of the escape whose % stands there, with two units behind it; below 0 if it is
/// none.
inline int escapeValue(const char16_t* percent) noexcept {
    if ((percent[1] | percent[2]) > 0xFF) return -1;
    const int high = grammar::HexDigitValues[percent[1]], low = grammar::HexDigitValues[percent[2]];
    return (high * 16) | low;  // a value below 0 has all its high bits set
}
/// The value of the escape that stands at a position; below 0 if none does.
inline int escapeAt(std::u16string_view text, std::size_t i) noexcept {
    return text[i] != u'%' || text.size() - i < 3 ? -1 : escapeValue(text.data() + i);
}

/// Copies a text to a place with room for it and CopySlack units more. Of each escape,
/// replace(value, read, write) writes what it becomes and moves both on, or gives false to
/// stop. Gives the end of what was written.
inline constexpr std::size_t CopySlack = 16;
template <class Replace>
char16_t* copyReplacing(std::u16string_view text, char16_t* write, Replace replace) {
    const char16_t* read = text.data();
    const char16_t* const end = read + text.size();
    while (read < end) {
        if (*read == u'%') {
            const int value = end - read < 3 ? -1 : escapeValue(read);
            if (value < 0)
                *write++ = *read++;
            else if (!replace(value, read, write))
                break;
            continue;
        }
#if defined(__SSE2__)
        // Sixteen units in one step, which most words fit into; those from the % on are written
        // again.
        if (end - read >= 2 * scan::BlockUnits) {
            const __m128i head = scan::loadBlock(read);
            const __m128i tail = scan::loadBlock(read + scan::BlockUnits);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(write), head);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(write + scan::BlockUnits), tail);
            const __m128i marks =
                _mm_packs_epi16(scan::equalTo(head, u'%'), scan::equalTo(tail, u'%'));
            const int clean =
                std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(marks)) | 0x10000u);
            read += clean;
            write += clean;
            continue;
        }
#endif
        *write++ = *read++;
    }
    return write;
}

/// The text with every escape decoded. Absent if the bytes of the escapes are nothing in
/// the encoding; the text itself if it has no escapes.
String decoded(const String& text, StringEncoding encoding);

}  // namespace velmo::detail::escapes
