#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <velmocore/markup/ContentKinds.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

struct PageRecord;

/// What kept a page from being read: the codes of errors of the domain u"velmo.gather".
enum class GatherProblem : std::int64_t {
    Page = 1,    ///< the page itself, and the others go on
    Source = 2,  ///< what it comes from: nothing more comes from there
};

/// What a source gives: the bytes of a page, and what is known of it besides.
struct SourcePage {
    String name = {};         ///< for people: a path, an address, a place in an archive
    URL url = {};             ///< where it stands; absent if that is not known
    Data bytes = {};          ///< without any coding of their transport
    String contentType = {};  ///< as a header told it; absent if none did
    ContentKind kind = ContentKind::Unclear;   ///< where it is not, its bytes and its name decide
    std::int64_t status = 200;                 ///< of HTTP; 0 where there was none
    std::optional<Date> fetched = {};          ///< when it was loaded
    String entityTag = {}, lastModified = {};  ///< by which its server knows this version again
    // Of what stands in a list, as the items of feeds; absent if the page itself is to tell.
    String title = {}, author = {}, date = {};
    std::optional<Error> error =
        {};                  ///< why there is no page; all but the name counts for nothing then
    bool isLeftOut = false;  ///< it is no page after all, as an image in an archive: not told
    /// Where the same bytes stand that it has, if it is only told of again; absent if that is not
    /// known. It has none itself then, and is not read.
    std::optional<URL> repeats = {};
    /// What is left to do, called once before the page is read, on the thread that reads it: so
    /// work that needs no order, as parsing and inflating, holds up no other page. The size of the
    /// bytes until then says how much is ahead.
    std::function<void(SourcePage& page)> complete = {};
};

/// How far a source is, for a display.
struct SourceProgress {
    std::uint64_t done = 0;   ///< in what the source counts: bytes, items or pages
    std::uint64_t total = 0;  ///< 0 if it is not known
};

/// Where pages come from: files, archives, feeds, sites. One thread at a time uses a source.
///
///     struct OneText : PageSource {
///         State next(SourcePage& page) override {
///             if (std::exchange(isOver, true)) return State::End;
///             page = {.name = u"notes", .bytes = {'T', 'e', 'a'}, .kind = ContentKind::Text};
///             return State::Page;
///         }
///         bool isOver = false;
///     };
///     OneText source;
///     gatherPages(source, {}, [](GatheredPage&) { return true; }).pages;    // 1
class VELMO_API PageSource {
public:
    /// What next() has to give.
    enum class State : std::uint8_t {
        Page,  ///< there is one, or an error in place of one
        Wait,  ///< none now: more may come when those that were given have been read, or a little later
        End,  ///< none any more
    };

    virtual ~PageSource() = default;
    /// Puts the next page into the argument if there is one. A source that waits for others may
    /// take some tenths of a second for it.
    virtual State next(SourcePage& page) = 0;
    /// Told what each page was found to be, in the order in which they were given: a source that
    /// follows links finds them there. Of one with an error, or that was left out, the record is
    /// empty; none is told of pages behind which the run was ended.
    virtual void didRead(const PageRecord& record) { (void)record; }
    /// How far it is; asked between two calls of next().
    [[nodiscard]] virtual SourceProgress progress() const { return {}; }
};

}  // namespace velmo
