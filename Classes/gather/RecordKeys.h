// The keys of the records that blocks of a page store are made of; docs/formats.md tells them too.
#pragma once

#include <velmocore/storage/KeyedData.h>

namespace velmo::detail {

// Of a page. What a search looks at first stands first in the block.
inline constexpr std::uint32_t SignatureKey = keyOfCode("SIGN");    ///< bytes
inline constexpr std::uint32_t PageKeyKey = keyOfCode("PKEY");      ///< text
inline constexpr std::uint32_t AddressKey = keyOfCode("PURL");      ///< text
inline constexpr std::uint32_t DigestKey = keyOfCode("DIGS");       ///< bytes
inline constexpr std::uint32_t KindKey = keyOfCode("KIND");         ///< unsigned: a PageKind
inline constexpr std::uint32_t TitleKey = keyOfCode("TITL");        ///< text
inline constexpr std::uint32_t AuthorKey = keyOfCode("AUTH");       ///< text
inline constexpr std::uint32_t DescriptionKey = keyOfCode("DESC");  ///< text
inline constexpr std::uint32_t DateKey = keyOfCode("DATE");         ///< date
inline constexpr std::uint32_t LanguageKey = keyOfCode("LANG");     ///< text
inline constexpr std::uint32_t CharsetKey = keyOfCode("CSET");      ///< text
inline constexpr std::uint32_t FetchedKey = keyOfCode("FETC");      ///< date
inline constexpr std::uint32_t EntityTagKey = keyOfCode("ETAG");    ///< text
inline constexpr std::uint32_t ModifiedKey = keyOfCode("LMOD");     ///< text
inline constexpr std::uint32_t StatusKey = keyOfCode("STAT");       ///< signed, 64 bits
inline constexpr std::uint32_t ErrorPageKey = keyOfCode("ERRP");    ///< bool
inline constexpr std::uint32_t WordsKey = keyOfCode("WORD");        ///< unsigned
inline constexpr std::uint32_t TextKey = keyOfCode("TEXT");         ///< text, or bytes: packed
inline constexpr std::uint32_t LinksKey = keyOfCode("LNKS");        ///< bytes: keyed data
inline constexpr std::uint32_t PackedLinksKey = keyOfCode("LNKZ");  ///< bytes: the same, packed
inline constexpr std::uint32_t BytesKey = keyOfCode("BYTE");        ///< bytes
inline constexpr std::uint32_t PackedBytesKey = keyOfCode("BYTZ");  ///< bytes: the same, packed

// Of a link, one behind the other; each begins with its address.
inline constexpr std::uint32_t LinkAddressKey = keyOfCode("LURL");
inline constexpr std::uint32_t LinkTextKey = keyOfCode("LTXT");
inline constexpr std::uint32_t LinkThumbnailKey = keyOfCode("LTHU");

// Of the notes of a crawl. An address stands behind its place, as does the base of a start.
inline constexpr std::uint32_t CrawlKey = keyOfCode("CRWL");         ///< unsigned, 64 bits: which
inline constexpr std::uint32_t CrawlBegunKey = keyOfCode("CBEG");    ///< date
inline constexpr std::uint32_t CrawlPlaceKey = keyOfCode("CPLC");    ///< unsigned, 64 bits
inline constexpr std::uint32_t CrawlAddressKey = keyOfCode("CURL");  ///< text
inline constexpr std::uint32_t CrawlBaseKey = keyOfCode("CBAS");     ///< text
inline constexpr std::uint32_t CrawlReadKey = keyOfCode("CRED");     ///< bytes: numbers of pages
inline constexpr std::uint32_t CrawlDoneKey = keyOfCode("CDON");     ///< bytes: numbers of pages

}  // namespace velmo::detail
