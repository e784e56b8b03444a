// Stores of pages, as commands open them.
#pragma once

#include <string>
#include <vector>

#include <velmocore/gather/PageStore.h>

#include "frame/FileBytes.h"
#include "frame/Report.h"

namespace velmo::tool {

/// Throws an InputError if it cannot be read.
inline PageStore openedPageStore(const std::string& path) {
    Error error;
    PageStore store = PageStore::openForReading(path, &error);
    if (!store.isValid()) throw InputError(error.reason.utf8());
    return store;
}

struct OpenStores {
    std::vector<PageStore> open;
    std::vector<std::string> names;  ///< of these
};
/// Those that can be read; the others are told as failures.
inline OpenStores openedPageStores(Report& report, const std::vector<std::string>& names) {
    OpenStores stores;
    for (const std::string& name : names) {
        try {
            stores.open.push_back(openedPageStore(name));
            stores.names.push_back(name);
        } catch (const InputError& error) {
            report.fail(name, error.what());
        }
    }
    return stores;
}

}  // namespace velmo::tool
