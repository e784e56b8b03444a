#pragma once

#include <memory>
#include <optional>

#include <velmocore/gather/SourceOpening.h>
#include <velmocore/gather/SourceSequence.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/system/FolderWalk.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// Which files of a folder are taken, and where they stand.
struct FolderSourceOptions {
    FolderWalkOptions files = {};  ///< which of them
    /// Where the folder stands on the web; absent for pages that stand in files.
    URL base = {};
    bool texts = true;  ///< plain texts too, but for style sheets, scripts and data
    std::size_t mostBytes = MostPageBytes;  ///< of a page; see SourceOptions
};

/// The pages of a folder and of all below it, in the order of their names, and those of the
/// archives, JSON lines and feeds in it. What is no page and no text is left out; what cannot be
/// read is an error of its own, and the others go on. One thread at a time.
///
///     FolderSource site("site", {.base = URL::URLWithString(u"https://h.org/")});
///     SourcePage page;
///     while (site.next(page) == PageSource::State::Page) print(page.name);
class VELMO_API FolderSource final : public SourceSequence {
public:
    /// Of a folder, as FolderWalk takes it.
    explicit FolderSource(const Path& folder, const FolderSourceOptions& options = {});
    /// In bytes of files. The folder is walked once more when this is first asked.
    [[nodiscard]] SourceProgress progress() const override;

protected:
    std::unique_ptr<PageSource> open() override;

private:
    Path folder_;
    FolderSourceOptions options_;
    FolderWalk walk_;
    std::uint64_t done_ = 0;
    mutable std::optional<std::uint64_t> total_;
};

/// Where a file stands that was found in a folder: below the base, or without one in its file, with no
/// dot segments however the folder was named. What has a meaning in a URL is escaped.
///
///     const URL base = URL::URLWithString(u"http://h.org/a/");
///     urlOfFile("site/b c.html", "site", base);      // http://h.org/a/b%20c.html
///     urlOfFile("/x/./y/../b.html", "/x/./y/..", URL()).absoluteString();  // file:///x/b.html
[[nodiscard]] VELMO_API URL urlOfFile(const Path& file, const Path& folder, const URL& base);

}  // namespace velmo
