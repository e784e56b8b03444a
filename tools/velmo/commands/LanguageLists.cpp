#include "LanguageLists.h"

namespace velmo::tool {

namespace {

template <class How>
LanguageFilter readFilter(Report& report, const std::string& folder, const How& how) {
    Error error;
    LanguageFilter filter(folder, how, &error);
    // The library makes a filter of no lists too, but here nothing could come of it.
    if (filter.languages().empty())
        report.fail(folder.empty() ? "stop words" : folder, error.text.utf8());
    return filter;
}

}  // namespace

LanguageFilter readLanguageFilter(Report& report, const std::string& folder, bool ignoreUmlauts) {
    return readFilter(report, folder, ignoreUmlauts);
}

LanguageFilter readLanguageFilterOfToday(Report& report, const std::string& folder) {
    return readFilter(report, folder, LanguageRules::today());
}

}  // namespace velmo::tool
