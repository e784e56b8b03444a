#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include <velmocore/gather/PageStore.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// What is in a store, in numbers. Pages without a language, a host or a date are counted under an
/// empty string, and under no year.
struct PageStatistics {
    std::size_t pages = 0;    ///< that are whole
    std::size_t damaged = 0;  ///< others
    std::uint64_t words = 0;  ///< of their texts
    std::uint64_t bytes = 0;  ///< that they take in the store
    // How many pages each has; years are those of their own dates, else of when they were fetched.
    std::map<String, std::size_t> languages, hosts;
    std::map<int, std::size_t> years;
};

/// Of a store that was opened for reading; all 0 for one that is not valid. Looks at every byte of
/// it, for the damage. Any thread may call what is told here.
///
///     const PageStatistics found = pageStatistics(PageStore::openForReading("pages.store"));
///     for (const auto& [host, pages] : found.hosts) print(host);
[[nodiscard]] VELMO_API PageStatistics pageStatistics(const PageStore& store);

/// The host of a page's address, and the year of its date in UTC, as they are counted above.
[[nodiscard]] VELMO_API String hostOfPage(const StoredPage& page);
[[nodiscard]] VELMO_API std::optional<int> yearOfPage(const StoredPage& page);

}  // namespace velmo
