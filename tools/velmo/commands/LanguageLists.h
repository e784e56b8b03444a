// The lists of stop words that tell languages.
#pragma once

#include <string>

#include <velmocore/words/LanguageFilter.h>

#include "frame/Report.h"

namespace velmo::tool {

/// The filter of a folder of lists. One that knows no language is told as a failure, with why.
LanguageFilter readLanguageFilter(Report& report, const std::string& folder,
                                  bool ignoreUmlauts = false);

/// The same under the rules of today.
LanguageFilter readLanguageFilterOfToday(Report& report, const std::string& folder);

}  // namespace velmo::tool
