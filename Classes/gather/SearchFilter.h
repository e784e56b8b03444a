// Which pages a search looks at, by what their records tell.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <velmocore/gather/PageSearch.h>

namespace velmo::detail {

/// The host of an address as it stands in a record, in lower case; empty if it has none.
std::string hostOfAddress(std::string_view address);

/// The page's own date, else when it was fetched.
std::optional<Date> dateOfPage(const StoredPage& page);

/// Any number of threads may share it.
class SearchFilter {
public:
    explicit SearchFilter(const PageSearchOptions& options);
    bool accepts(const StoredPage& page) const;

private:
    bool hasLanguage(const StoredPage& page) const;
    bool hasHost(const StoredPage& page) const;
    bool hasDate(const StoredPage& page) const;

    std::string language_, host_;  // in lower case
    std::optional<Date> since_, before_;
};

}  // namespace velmo::detail
