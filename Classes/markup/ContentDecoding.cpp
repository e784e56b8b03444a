// Decoding of what no header says much of. Most texts are short UTF-8, and are decoded at once; of
// a large one the bytes go back to the system piece by piece, so that a text of gigabytes takes
// little more than its own memory.
#include <velmocore/markup/ContentDecoding.h>

#include <algorithm>
#include <utility>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/WebCharsets.h>
#include <velmocore/platform/Memory.h>
#include <velmocore/text/CharacterFinding.h>

#include "markup/ByteOrderMarks.h"

namespace velmo {
namespace {

using detail::ByteOrderMark;
using detail::encodingOfZeros;
using detail::markOf;

// In bytes.
constexpr std::size_t PieceSize = std::size_t{1} << 20;
constexpr char16_t Replacement = 0xFFFD;
constexpr std::string_view ReplacementUtf8 = "\xEF\xBF\xBD";

/// The length of the next piece, which ends between two UTF-8 sequences if there are any.
std::size_t pieceOf(Bytes bytes) {
    if (bytes.size() <= PieceSize) return bytes.size();
    std::size_t end = PieceSize;
    while (end > PieceSize - 4 && (bytes[end] & 0xC0) == 0x80) --end;
    return end;
}

std::size_t countOf(std::string_view bytes, std::string_view sought) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = bytes.find(sought, at)) != bytes.npos; at += sought.size())
        ++count;
    return count;
}

/// Whether decoding UTF-8 gave no U+FFFD but those that are in it.
bool isWhole(std::u16string_view units, std::string_view bytes) {
    const std::size_t first = findCharacter(units, Replacement);
    if (first == NotFound) return true;
    return static_cast<std::size_t>(std::ranges::count(units.substr(first), Replacement)) ==
           countOf(bytes, ReplacementUtf8);
}

bool isUTF8(Bytes bytes) {
    while (!bytes.empty()) {
        const std::string_view piece = charsOf(bytes.first(pieceOf(bytes)));
        if (!isWhole(String::fromUTF8(piece), piece)) return false;
        bytes = bytes.subspan(piece.size());
    }
    return true;
}

/// Large UTF-8; its bytes are lost.
String decodedInPieces(Bytes bytes) {
    StringBuilder units(bytes.size());
    while (!bytes.empty()) {
        const Bytes piece = bytes.first(pieceOf(bytes));
        units.append(String::fromUTF8(charsOf(piece)));
        giveBack(piece.data(), piece.size());
        bytes = bytes.subspan(piece.size());
    }
    return units.finish();
}

/// Bytes in a given encoding, without their mark; what has no meaning there becomes U+FFFD.
String decoded(Data&& data, StringEncoding encoding) {
    const Data owned = std::move(data);
    const ByteOrderMark mark = markOf(owned);
    const Bytes bytes = Bytes(owned).subspan(mark.encoding == encoding ? mark.bytes.size() : 0);
    if (encoding == UTF8StringEncoding)
        return bytes.size() > PieceSize ? decodedInPieces(bytes) : String::fromUTF8(charsOf(bytes));
    StringBuilder units(bytes.size());
    const std::span<char16_t> room(units.prepare(bytes.size()), bytes.size());
    units.commit(convertEncodingToUnicode(bytes, textEncodingOf(encoding), room).count);
    return units.finish();
}

/// A text of ordinary length in UTF-8 without a mark, which is what most are, decoded at once;
/// absent if it is not that.
String decodedPlainText(Bytes bytes) {
    const bool isPlain = bytes.size() <= PieceSize && markOf(bytes).encoding == 0 &&
                         charsOf(bytes).find('\0') == std::string_view::npos;
    if (!isPlain) return {};
    String units = String::fromUTF8(charsOf(bytes));
    return isWhole(units, charsOf(bytes)) ? units : String();
}

StringEncoding encodingOfText(Bytes bytes) {
    if (const StringEncoding marked = markOf(bytes).encoding) return marked;
    const StringEncoding wide =
        encodingOfZeros(bytes.first(std::min(bytes.size(), ContentHeadSize)));
    if (wide != UnknownStringEncoding) return wide;
    return isUTF8(bytes) ? UTF8StringEncoding : WindowsCP1252StringEncoding;
}

/// The encoding of a page that its bytes tell before it can say anything itself.
StringEncoding encodingOfWidePage(Bytes bytes) {
    const ByteOrderMark mark = markOf(bytes);
    if (mark.bytes.size() == 4) return mark.encoding;  // UTF-32, of which pages know nothing
    if (mark.encoding != 0) return UnknownStringEncoding;
    return encodingOfZeros(bytes.first(std::min(bytes.size(), ContentHeadSize)));
}

/// A page in UTF-8, as its charset is found today, that is kept so, or that is long, so that its
/// bytes are lost; nothing of others. By the own rules several readings may have to be made of one
/// page.
DecodedContent readUTF8(Data& bytes, const ContentDecodingOptions& options) {
    if (!options.web.charsets || (bytes.size() <= PieceSize && !options.keepsUTF8)) return {};
    const String charset = headerCharset(options.contentType);
    WebCharset found = webCharset(bytes, charset.isEmpty() ? options.encodingName : charset.view());
    if (stringEncodingOf(found.encoding) != UTF8StringEncoding) return {};
    if (options.keepsUTF8)
        return {{}, UTF8StringEncoding, std::move(found.declared), std::move(bytes)};
    return {decoded(std::move(bytes), UTF8StringEncoding), UTF8StringEncoding,
            std::move(found.declared)};
}

}  // namespace

DecodedContent decodeContent(Data&& data, const ContentDecodingOptions& options) {
    const bool isPage = options.kind == ContentKind::Page;
    Data bytes = std::move(data);
    StringEncoding encoding = options.encoding;
    if (encoding == UnknownStringEncoding && !isPage) {
        if (String text = decodedPlainText(bytes); !text.isAbsent())
            return {std::move(text), UTF8StringEncoding, {}};
        encoding = encodingOfText(bytes);
    } else if (encoding == UnknownStringEncoding) {
        encoding = encodingOfWidePage(bytes);
    }
    if (isPage && encoding == UnknownStringEncoding)
        if (DecodedContent page = readUTF8(bytes, options);
            !page.text.isAbsent() || !page.utf8.empty())
            return page;
    if (encoding != UnknownStringEncoding)
        return {decoded(std::move(bytes), encoding), encoding, {}};
    MarkupDecoding page = decodeMarkup(bytes, {.contentType = options.contentType,
                                               .encodingName = options.encodingName,
                                               .web = options.web});
    return {std::move(page.text), page.encoding, std::move(page.declared)};
}

}  // namespace velmo
