// The pages of a folder put into a store, and the store searched. Run again, it reads what is new.
//
//     library FOLDER STORE QUERY
#include <velmocore/gather/FolderSource.h>
#include <velmocore/gather/Gathering.h>
#include <velmocore/gather/PageSearch.h>

#include <iostream>

using namespace velmo;

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    Error error;
    {
        PageStore store = PageStore::openForUpdating(argv[2], &error);
        FolderSource source(argv[1], {.base = URL::URLWithString(u"https://www.example.org/")});
        const GatherSummary summary =
            gatherPages(source, {.store = &store}, [](GatheredPage&) { return true; });
        if (!store.isValid() || !summary.isStored) return 2;
        std::cout << summary.pages << " pages, " << summary.duplicates << " of them twice\n";
    }
    const PageStore stores[] = {PageStore::openForReading(argv[2], &error)};
    const QueryTerms query(String::fromUTF8(argv[3]), {.wildcard = true});
    const SearchResult found = searchPages(stores, query, {.limit = 3});
    std::cout << found.matching << " match\n";
    for (const SearchHit& hit : found.hits) std::cout << hit.url << '\n' << hit.excerpt << '\n';
}
