#pragma once

#include <cstddef>
#include <cstdint>

#include <velmocore/gather/InputStream.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/net/HTTPHeaders.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// Whether bytes begin as a WARC archive does (ISO 28500), packed ones aside; no bytes do not. Any
/// thread.
[[nodiscard]] VELMO_API bool isWARC(Bytes head);

/// The pages of a WARC archive, in its order; members of gzip or plain. Pages are the records of
/// these types, where they are of the web and what they hold is a page or a text:
///
/// - response: what a server sent with a status of success, its chunks put together and its coding
///   (gzip or deflate) undone
/// - resource and conversion: the bytes of a page as they are
/// - revisit: that the page was as before; see SourcePage::repeats
///
/// All others are passed over, and so are images and programs. A page that is larger than the
/// options allow is an error, and so is one in a coding that is not known; the others go on. Where
/// the archive is damaged or breaks off, an error comes after all that was whole, and ends it. One
/// thread at a time.
///
///     WARCSource archive(InputStream::ofFile("site.warc.gz"));
///     SourcePage page;
///     while (archive.next(page) == PageSource::State::Page) print(page.url);
class VELMO_API WARCSource final : public PageSource {
public:
    /// Reads nothing yet.
    explicit WARCSource(InputStream&& stream, const SourceOptions& options = {});
    /// The page of the next record that is one.
    State next(SourcePage& page) override;
    /// In bytes.
    [[nodiscard]] SourceProgress progress() const override;

private:
    struct Record {
        HTTPHeaders headers;
        std::uint64_t length = 0;  ///< of what is left of its block
    };
    /// False at the end, or for what is no record: the error tells then.
    bool readRecord(Record& record, std::optional<Error>& error);
    /// True if the record is a page, or an error in place of one.
    bool takeRecord(Record& record, SourcePage& page);
    bool takeResponse(Record& record, SourcePage& page);
    bool takePlain(Record& record, SourcePage& page);
    bool takeRevisit(Record& record, SourcePage& page);
    void takeBlock(Record& record, SourcePage& page);
    State end(SourcePage& page, std::optional<Error> error);

    InputStream stream_;
    SourceOptions options_;
    bool isOver_ = false;
};

}  // namespace velmo
