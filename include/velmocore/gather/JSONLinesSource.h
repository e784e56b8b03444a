#pragma once

#include <cstddef>

#include <velmocore/gather/InputStream.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// Pages as JSON, one object a line, in any number. Each has these members; others are passed over:
///
/// - "url", where the page stands, and "html", the page, or in its place "text", a plain text
/// - "title", "author" and "date", which count where the page does not tell
/// - "contentType", without regard to its charset, as JSON is in UTF-8
/// - "fetched", a date as text or in seconds since 1970, and "status", of HTTP
///
/// A line that is not so, or too long, is an error in its place, and the next ones are read. Lines
/// of white space are passed over. In errors a line goes by the name of the source and its number,
/// or by no name if the source has none, once its address is known by that. A source waits for more
/// input only when all that it gave was told, so that who writes a line gets an answer to it. One
/// thread at a time.
///
///     const std::string_view line = "{\"url\": \"http://h.org/\", \"html\": \"<p>Tea\"}";
///     JSONLinesSource lines(InputStream::ofBytes(Data(line.begin(), line.end())));
///     SourcePage page;
///     lines.next(page) == PageSource::State::Page;     // true
class VELMO_API JSONLinesSource final : public PageSource {
public:
    /// Reads nothing yet.
    explicit JSONLinesSource(InputStream&& stream, const SourceOptions& options = {});
    /// The page of the next line.
    State next(SourcePage& page) override;
    void didRead(const PageRecord& record) override;
    /// In bytes.
    [[nodiscard]] SourceProgress progress() const override;

private:
    /// Whether there is one.
    enum class Line : std::uint8_t { Whole, TooLong, None, Later };
    Line readLine(Data& line);
    bool mayWait();
    void give(SourcePage& page, Line line, Data&& bytes);

    InputStream stream_;
    SourceOptions options_;
    std::size_t scanned_ = 0;  ///< of what is buffered, without the end of a line
    std::uint64_t number_ = 0;
    std::size_t untold_ = 0;
    bool isPassing_ = false;  ///< the rest of a line that is too long
    bool isOver_ = false;
};

}  // namespace velmo
