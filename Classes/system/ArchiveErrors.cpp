#include "system/ArchiveErrors.h"

#include <fmt/core.h>

#include <cerrno>

#include "system/FileErrors.h"

namespace velmo::detail {

ArchiveFailure::ArchiveFailure(ArchiveProblem problem, std::string_view entry,
                               std::string_view reason)
    : error_{u"velmo.archive", static_cast<std::int64_t>(problem),
             String::fromUTF8(entry.empty() ? std::string(reason)
                                            : fmt::format("{}: {}", entry, reason))} {}

void demand(bool isDone, std::string_view about) {
    if (!isDone) throw ArchiveFailure(systemError(errno, about));
}

}  // namespace velmo::detail
