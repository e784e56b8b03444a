#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/storage/Digests.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What a page turned out to be.
enum class PageKind : std::uint8_t { Page, Feed, Text };

/// Where a page leads to.
struct PageLink {
    URL url;        ///< whole
    String text;    ///< on one line; absent if it has none
    URL thumbnail;  ///< absent if it has none
};

/// All that is kept of a page. Strings are absent where the page does not tell.
struct PageRecord {
    URL url = {};                    ///< where it stands
    String key = {};                 ///< by which it is known again; see pageKey()
    PageKind kind = PageKind::Page;  ///< what it turned out to be
    String title = {}, author = {}, description = {};  ///< as it says itself, for people
    std::optional<Date> date = {};                     ///< that the page gives itself
    String language = {};                              ///< a key of the language filter
    String charset = {};                               ///< IANA name of what its bytes are in
    String text = {};                                  ///< plain
    std::uint32_t words = 0;                           ///< of the text, for the length of it
    std::vector<PageLink> links = {};                  ///< in the order of the page
    std::optional<Date> fetched = {};                  ///< when it was loaded
    String entityTag = {}, lastModified = {};  ///< by which its server knows this version again
    std::int64_t status = 0;                   ///< of HTTP; 0 where there was none
    bool isErrorPage = false;                  ///< whether it only says that there is no such page
    /// SHA-1 of the text in UTF-8; zeros if it is to be computed when it is needed. It tells texts
    /// apart, but proves nothing against who wants to deceive.
    std::array<std::uint8_t, SHA1DigestSize> digest = {};
    std::optional<Data> bytes = {};  ///< as they came, if they are kept
};

/// The digest of a page's text, computed if the record has none.
[[nodiscard]] VELMO_API std::array<std::uint8_t, SHA1DigestSize> digestOfText(
    const PageRecord& page);

/// What is compressed where that makes it an eighth shorter. The text is what a search reads:
/// plain, it takes about twice the room and is read in a third of the time.
struct PageRecordWriting {
    bool compressText = false;   ///< the plain text
    bool compressOthers = true;  ///< the links, and the bytes of the page
};
/// A page as keyed data (storage/KeyedData.h), which is a block of a page store; docs/formats.md
/// has the table of its keys.
///
///     const Data block = dataFromPageRecord({.key = u"http://h.org", .title = u"Tea"});
///     pageRecordFromData(block)->title;     // Tea
///     StoredPage(block).key();              // http://h.org
[[nodiscard]] VELMO_API Data dataFromPageRecord(const PageRecord& page,
                                                const PageRecordWriting& options = {});
/// The page again; none if the bytes are no page. What is damaged in them is absent.
[[nodiscard]] VELMO_API std::optional<PageRecord> pageRecordFromData(Bytes block);

/// A page where it stands in a block: each part is read when it is asked for. The bytes are not
/// owned. Any thread may read it; views are good as long as the bytes are.
///
/// Of a block with a checksum, damage shows when the text, the links or the bytes are asked for:
/// they are absent then. To look at what is short costs no look at all of the block; so who goes by
/// it, or by what the text does not hold, asks isIntact() first.
class VELMO_API StoredPage {
public:
    /// Of a block, which any bytes may be, and of the checksum that it is to have.
    explicit StoredPage(Bytes block VELMO_LIFETIME,
                        std::optional<std::uint32_t> checksum = std::nullopt) noexcept
        : block_(block), checksum_(checksum) {}

    /// Whether it is one; a store keeps other things too.
    [[nodiscard]] bool isPage() const;
    /// Whether the checksum is that of the block, which is computed each time; true without one.
    [[nodiscard]] bool isIntact() const;
    [[nodiscard]] Bytes block() const noexcept { return block_; }

    // In UTF-8, without a copy; the data() of what is absent is null.
    [[nodiscard]] std::string_view key() const;
    [[nodiscard]] std::string_view address() const;
    [[nodiscard]] std::string_view title() const;
    [[nodiscard]] std::string_view language() const;

    // As those of PageRecord.
    [[nodiscard]] PageKind kind() const;
    [[nodiscard]] std::optional<Date> date() const;
    [[nodiscard]] std::optional<Date> fetched() const;
    [[nodiscard]] std::uint32_t words() const;
    /// Of as many bytes as a digest has, or none.
    [[nodiscard]] Bytes digest() const;
    /// By which a search knows what cannot stand in the text; none if there is none.
    [[nodiscard]] Bytes signature() const;

    /// The plain text, inflated if it was compressed; absent if there is none, or if it is damaged.
    [[nodiscard]] String text() const;
    [[nodiscard]] std::vector<PageLink> links() const;
    /// As they came; none if they were not kept.
    [[nodiscard]] std::optional<Data> bytes() const;

private:
    Bytes block_;
    std::optional<std::uint32_t> checksum_;
};

}  // namespace velmo
