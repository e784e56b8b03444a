// The rows of a sheet as keyed records in a store: one block a row, a text for each field that is
// not empty. Read again, the store prints the sheet.
//
//     records SHEET STORE
#include <velmocore/readers/Sheets.h>
#include <velmocore/storage/KeyedDataEditing.h>
#include <velmocore/storage/KeyedStorage.h>

#include <iostream>

using namespace velmo;

namespace {

bool writeRows(const Sheet& sheet, const char* path) {
    auto store = KeyedStorage::keyedStorageForAppendingAtPath(path);
    for (const SheetRow& row : sheet.rows) {
        Data block;
        for (std::uint32_t column = 0; column < row.size(); ++column)
            addString(block, row[column], column);
        if (!block.empty() && !store.appendBlock(block)) return false;
    }
    return store.synchronizeFile();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const auto sheet = sheetWithContentsOfFile(argv[1], UTF8StringEncoding);
    if (!sheet || !writeRows(*sheet, argv[2])) return 2;
    auto store = KeyedStorage::keyedStorageForReadingAtPath(argv[2]);
    while (const auto block = store.nextAvailableBlock()) {
        for (std::uint32_t column = 0; column < sheet->numberOfColumns; ++column)
            std::cout << (column ? " | " : "") << stringForKey(*block, column);
        std::cout << '\n';
    }
}
