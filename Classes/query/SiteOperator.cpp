#include <velmocore/query/QueryRewriting.h>
#include <velmocore/words/Words.h>

namespace velmo {

String queryTermWithoutSiteOperator(const String& query) {
    if (query.isAbsent()) return {};
    StringBuilder out(query.length());
    for (const String& word : wordsUsingWhiteSeparation(query)) {
        if (word.view().starts_with(u"site:")) continue;
        if (!out.isEmpty()) out.append(u' ');
        out.append(word);
    }
    return out.finish();
}

}  // namespace velmo
