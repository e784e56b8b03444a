// The comments that the Finder keeps of the files in a folder.
//
//     comments FOLDER
#include <velmocore/storage/DSStore.h>

#include <iostream>

using namespace velmo;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const auto store = DSStore::storeWithDirectory(argv[1]);
    if (!store) {
        std::cerr << "no comments can be read there\n";
        return 2;
    }
    store->forEachEntry([&](const DSStoreEntry& entry) {
        const String comment = store->finderCommentForFilename(entry.filename());
        if (entry.codec() == FinderCommentCodec && !comment.isAbsent())
            std::cout << entry.filename() << '\t' << comment << '\n';
        return true;
    });
}
