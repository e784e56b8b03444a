// Bytes as a page, under every default and header that the first two bytes choose; also
// through each converter into too little room, and as a property list.
#include <velmocore/markup/MarkupCharset.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Log.h>
#include <velmocore/platform/PropertyList.h>

#include <algorithm>
#include <vector>

#include "Input.h"
#include "platform/Converter.h"
#include "platform/EncodingTables.h"

using namespace velmo;
using fuzz::require;

namespace {

/// The reading of the page keeps its bound, and goes back to bytes without harm.
void readPage(Bytes bytes, const MarkupDecodingOptions& options) {
    const MarkupDecoding page = decodeMarkup(bytes, options);
    require(page.text.length() <= std::max<std::size_t>(bytes.size(), 32));
    require(!page.declared.isAbsent());
    (void)markupData(page.text);
}

/// Part of the room gives the beginning of what all of it gives.
void convert(std::uint32_t encoding, Bytes bytes, std::size_t room) {
    std::vector<char16_t> whole(std::max<std::size_t>(bytes.size(), 32)), part(room);
    const auto all = detail::decode(encoding, bytes, whole, true);
    const auto some = detail::decode(encoding, bytes, part);
    require(all.written <= whole.size() && some.written <= part.size());
    require(std::equal(part.begin(), part.begin() + some.written, whole.begin()));
    const std::u16string_view text(whole.data(), all.written);
    require(detail::encode(encoding, text, true).has_value());
    detail::encode(encoding, text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isQuiet = (setLogHandler([](std::string_view) {}), true);
    (void)isQuiet;
    if (size < 2) return 0;
    const auto rows = detail::encodingRows();
    const detail::EncodingRow& row = rows[data[0] % rows.size()];
    const Bytes bytes(data + 2, size - 2);
    const String name = String::fromUTF8(row.iana);
    readPage(bytes, {});
    readPage(bytes, {.encodingName = name});
    readPage(bytes, {.defaultEncoding = data[1]});
    readPage(bytes, {.encodingName = u"utf-8", .defaultEncoding = ISOLatin1StringEncoding});
    readPage(bytes, {.encodingName = name, .web = WebRules::today()});
    convert(row.number, bytes, data[1]);
    propertyListAsXML({data, size});
    return 0;
}
