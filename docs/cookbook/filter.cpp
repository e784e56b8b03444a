// Pages for which a query holds, each with the sentences that made it hold.
//
//     filter QUERY PAGE...
#include <velmocore/markup/Page.h>
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryTerms.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace velmo;

namespace {

Data bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const QueryTerms query(String::fromUTF8(argv[1]), {.wildcard = true});
    bool isHit = false;
    for (int i = 2; i < argc; ++i) {
        const Page page(bytesOf(argv[i]));
        if (!query.matchesString(page.plainText())) continue;
        isHit = true;
        std::cout << page.title() << '\n';
        const String excerpt = assembleOccurrencesOfQueryTerms(page.plainText(), query,
                                                               {.ellipsizeAfterNCharacters = 160,
                                                                .gapSeparator = u" ... ",
                                                                .strictSentenceEnds = true});
        std::cout << "    " << excerpt << '\n';
    }
    return isHit ? 0 : 1;
}
