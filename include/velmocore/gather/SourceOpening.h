#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <velmocore/gather/InputStream.h>
#include <velmocore/gather/PageSource.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What a source takes of one page, in bytes; longer ones are an error. It bounds what a damaged
/// length, or a file of nothing but zeros, can cost.
inline constexpr std::size_t MostPageBytes = std::size_t{1} << 26;

/// What is known of an input, and what is taken of it.
struct SourceOptions {
    String name = {};  ///< for people
    URL url = {};      ///< where a page stands; of a feed, what its links are relative to
    /// What is taken of an input that neither its content nor its name tells.
    ContentKind unclear = ContentKind::Page;
    /// What is no page and no text is left out, and is no error.
    bool leavesOut = false;
    std::size_t mostBytes = MostPageBytes;  ///< of a page; a longer one is an error
};

/// An input as a source, by what its first bytes tell: a WARC archive (gather/WARCSource.h), JSON
/// lines (gather/JSONLinesSource.h), a feed (gather/FeedSource.h), or else one page or text. Gzip
/// is inflated. What cannot be read is a source of one error. Any thread may open a source.
///
///     const auto source = openSource(InputStream::ofFile("site.warc.gz"), {.name = u"site"});
[[nodiscard]] VELMO_API std::unique_ptr<PageSource> openSource(InputStream&& stream,
                                                               const SourceOptions& options = {});
/// The same for a file, named by its path and standing there if nothing else is told.
[[nodiscard]] VELMO_API std::unique_ptr<PageSource> openSource(const Path& path,
                                                               SourceOptions options = {});

}  // namespace velmo
