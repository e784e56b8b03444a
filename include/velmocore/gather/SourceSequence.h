#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include <velmocore/gather/PageSource.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// Sources one after the other, each opened when its turn has come. One thread at a time.
class VELMO_API SourceSequence : public PageSource {
public:
    SourceSequence() = default;
    /// The next page of the source whose turn it is.
    State next(SourcePage& page) override;
    /// Told the source that gave the page.
    void didRead(const PageRecord& record) override;

protected:
    /// The next one; null at the end.
    virtual std::unique_ptr<PageSource> open() = 0;
    /// The one that is asked at present; null if there is none.
    [[nodiscard]] const PageSource* current() const;

private:
    struct Part {
        std::unique_ptr<PageSource> source;
        std::size_t untold = 0;  ///< pages that it gave and was not told of
    };
    void dropTold();

    std::deque<Part> parts_;  ///< of all but the last nothing more comes
    bool hasCurrent_ = false;
};

/// Those of a list.
///
///     SourceList all;
///     all.add([] { return openSource("site.warc.gz"); });
///     all.add([] { return std::make_unique<FolderSource>("site"); });
///     gatherPages(all, {}, [](GatheredPage&) { return true; }).pages;
class VELMO_API SourceList final : public SourceSequence {
public:
    /// Opens a source when its turn has come. Null ends the list.
    using Opening = std::function<std::unique_ptr<PageSource>()>;

    /// Puts one at the end of the list, also while the others are read.
    void add(Opening opening);
    /// In sources, or in bytes if there is only one and it knows.
    [[nodiscard]] SourceProgress progress() const override;

protected:
    std::unique_ptr<PageSource> open() override;

private:
    std::vector<Opening> openings_;
    std::size_t opened_ = 0;
};

}  // namespace velmo
