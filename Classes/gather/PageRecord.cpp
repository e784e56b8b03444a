// Pages as keyed data. A block of a page store is not compressed as a whole: a search looks at its
// first records, and inflates the text of those pages only in which its words may be.
#include <velmocore/gather/PageRecord.h>

#include <algorithm>
#include <string>

#include <velmocore/storage/Compression.h>
#include <velmocore/storage/KeyedData.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/text/Checksums.h>

#include "gather/PageSignature.h"
#include "gather/RecordKeys.h"
#include "gather/StoredURL.h"

namespace velmo {
namespace {

using namespace detail;

constexpr int FastestCompression = 1;
/// What is packed inflates to less than a block can hold plainly.
constexpr std::size_t LongestPart = 0xFFFFFFFF;

/// The bytes packed; none if that would not save an eighth of them.
std::optional<Data> packed(Bytes bytes) {
    std::optional<Data> result = dataByDeflatingData(bytes, FastestCompression);
    if (result && result->size() > bytes.size() - bytes.size() / 8) result.reset();
    return result;
}

void addPacked(Data& block, Bytes bytes, std::uint32_t plainKey, std::uint32_t packedKey,
               const PageRecordWriting& options) {
    const std::optional<Data> small = options.compressOthers ? packed(bytes) : std::nullopt;
    addData(block, small ? Bytes(*small) : bytes, small ? packedKey : plainKey);
}

std::optional<Data> unpackedData(Bytes block, std::uint32_t plainKey, std::uint32_t packedKey) {
    if (const Bytes small = dataNoCopyForKey(block, packedKey); small.data() != nullptr)
        return dataByInflatingData(small, LongestPart);
    return dataForKey(block, plainKey);
}

/// As UTF-8, in which lone surrogates are U+FFFD.
void addText(Data& block, const String& text, std::uint32_t key) {
    if (!text.isEmpty()) addUTF8String(block, text.utf8(), key);
}

void addSignature(Data& block, const String& text, std::size_t bytes) {
    if (const Data signature = signatureOfText(text, bytes); !signature.empty())
        addData(block, signature, SignatureKey);
}

void addWhole(Data& block, const std::string& utf8, const PageRecordWriting& options) {
    if (utf8.empty()) return;
    if (const auto small = options.compressText ? packed(Bytes(utf8)) : std::nullopt)
        addData(block, *small, TextKey);
    else
        addUTF8String(block, utf8, TextKey);
}

bool leadsNowhere(const PageLink& link) { return link.url.absoluteString().isEmpty(); }

Data dataOfLinks(const std::vector<PageLink>& links) {
    Data data;
    for (const PageLink& link : links) {
        if (leadsNowhere(link)) continue;
        addText(data, link.url.absoluteString(), LinkAddressKey);
        addText(data, link.text, LinkTextKey);
        addText(data, link.thumbnail.absoluteString(), LinkThumbnailKey);
    }
    return data;
}

/// Takes over what a record says of the last of the links, or of a new one.
void takeLinkRecord(std::vector<PageLink>& links, std::uint32_t key, const String& value) {
    if (key == LinkAddressKey)
        links.push_back({.url = urlOfStored(value), .text = {}, .thumbnail = {}});
    else if (!links.empty() && key == LinkTextKey)
        links.back().text = value;
    else if (!links.empty() && key == LinkThumbnailKey)
        links.back().thumbnail = urlOfStored(value);
}

PageKind kindOfNumber(std::uint32_t number) {
    return number <= static_cast<std::uint32_t>(PageKind::Text) ? static_cast<PageKind>(number)
                                                                : PageKind::Page;
}

bool hasDigest(const PageRecord& page) {
    return std::ranges::any_of(page.digest, [](std::uint8_t byte) { return byte != 0; });
}

/// What is short and asked for of many pages: by a store that is opened, and by a search before it
/// looks at the signature, which follows.
void addFilters(Data& block, const PageRecord& page, Bytes digest) {
    addText(block, page.key, PageKeyKey);
    addData(block, digest, DigestKey);
    addUnsigned(block, static_cast<std::uint32_t>(page.kind), KindKey);
    addText(block, page.language, LanguageKey);
    addDate(block, page.date, DateKey);
    addDate(block, page.fetched, FetchedKey);
    addText(block, page.entityTag, EntityTagKey);
    addText(block, page.lastModified, ModifiedKey);
    addUnsigned(block, page.words, WordsKey);
}

void addDetails(Data& block, const PageRecord& page) {
    addText(block, page.url.absoluteString(), AddressKey);
    addText(block, page.title, TitleKey);
    addText(block, page.author, AuthorKey);
    addText(block, page.description, DescriptionKey);
    addText(block, page.charset, CharsetKey);
    addSignedLongLong(block, page.status, StatusKey);
    if (page.isErrorPage) addBool(block, true, ErrorPageKey);
}

}  // namespace

std::array<std::uint8_t, SHA1DigestSize> digestOfText(const PageRecord& page) {
    return hasDigest(page) ? page.digest : SHA1Digest(page.text.utf8());
}

Data dataFromPageRecord(const PageRecord& page, const PageRecordWriting& options) {
    const std::string text = page.text.utf8();  // once, for its digest and for itself
    Data block;
    addFilters(block, page, hasDigest(page) ? page.digest : SHA1Digest(text));
    addSignature(block, page.text, text.size());
    addDetails(block, page);
    addWhole(block, text, options);
    addPacked(block, dataOfLinks(page.links), LinksKey, PackedLinksKey, options);
    if (page.bytes) addPacked(block, *page.bytes, BytesKey, PackedBytesKey, options);
    return block;
}

std::optional<PageRecord> pageRecordFromData(Bytes block) {
    const StoredPage stored(block);
    if (!stored.isPage()) return std::nullopt;
    PageRecord page;
    page.url = urlOfStored(stringForKey(block, AddressKey));
    page.key = stringForKey(block, PageKeyKey);
    page.kind = stored.kind();
    page.title = stringForKey(block, TitleKey);
    page.author = stringForKey(block, AuthorKey);
    page.description = stringForKey(block, DescriptionKey);
    page.date = stored.date();
    page.language = stringForKey(block, LanguageKey);
    page.charset = stringForKey(block, CharsetKey);
    page.text = stored.text();
    page.words = stored.words();
    page.links = stored.links();
    page.fetched = stored.fetched();
    page.entityTag = stringForKey(block, EntityTagKey);
    page.lastModified = stringForKey(block, ModifiedKey);
    page.status = signedLongLongForKey(block, StatusKey);
    page.isErrorPage = boolForKey(block, ErrorPageKey);
    std::ranges::copy(stored.digest(), page.digest.begin());
    page.bytes = stored.bytes();
    return page;
}

bool StoredPage::isPage() const { return !key().empty(); }

std::string_view StoredPage::key() const { return stringNoCopyForKey(block_, PageKeyKey); }
std::string_view StoredPage::address() const { return stringNoCopyForKey(block_, AddressKey); }
std::string_view StoredPage::title() const { return stringNoCopyForKey(block_, TitleKey); }
std::string_view StoredPage::language() const { return stringNoCopyForKey(block_, LanguageKey); }

PageKind StoredPage::kind() const { return kindOfNumber(unsignedForKey(block_, KindKey)); }
std::optional<Date> StoredPage::date() const { return dateForKey(block_, DateKey); }
std::optional<Date> StoredPage::fetched() const { return dateForKey(block_, FetchedKey); }
std::uint32_t StoredPage::words() const { return unsignedForKey(block_, WordsKey); }

Bytes StoredPage::digest() const {
    const Bytes digest = dataNoCopyForKey(block_, DigestKey);
    return digest.size() == SHA1DigestSize ? digest : Bytes();
}

Bytes StoredPage::signature() const { return dataNoCopyForKey(block_, SignatureKey); }

bool StoredPage::isIntact() const { return !checksum_ || CRC32(block_) == *checksum_; }

String StoredPage::text() const {
    if (!isIntact()) return {};
    const Bytes small = dataNoCopyForKey(block_, TextKey);
    if (small.data() == nullptr) return stringForKey(block_, TextKey);
    const std::optional<Data> utf8 = dataByInflatingData(small, LongestPart);
    return utf8 ? String::fromUTF8(charsOf(*utf8)) : String();
}

std::vector<PageLink> StoredPage::links() const {
    std::vector<PageLink> links;
    if (!isIntact()) return links;
    const std::optional<Data> data = unpackedData(block_, LinksKey, PackedLinksKey);
    if (!data) return links;
    forEachKeyedRecord(*data, [&](const KeyedRecord& record) {
        if (record.type.tag == KeyedTag::Text && record.payload)
            takeLinkRecord(links, record.key, String::fromUTF8(charsOf(*record.payload)));
        return true;
    });
    std::erase_if(links, leadsNowhere);
    return links;
}

std::optional<Data> StoredPage::bytes() const {
    if (!isIntact()) return std::nullopt;
    return unpackedData(block_, BytesKey, PackedBytesKey);
}

}  // namespace velmo
