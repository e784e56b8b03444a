#include "LanguageLists.h"

namespace velmo::tool {

LanguageFilter readLanguageFilter(Report& report, const std::string& folder, bool ignoreUmlauts) {
    Error error;
    LanguageFilter filter(folder, ignoreUmlauts, &error);
    // The library makes a filter of no lists too, but here nothing could come of it.
    if (filter.languages().empty())
        report.fail(folder.empty() ? "stop words" : folder, error.text.utf8());
    return filter;
}

}  // namespace velmo::tool
