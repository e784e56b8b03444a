// Stores of pages, as commands open them.
#pragma once

#include <string>

#include <velmocore/gather/PageStore.h>

#include "frame/FileBytes.h"

namespace velmo::tool {

/// Throws an InputError if it cannot be read.
inline PageStore openedPageStore(const std::string& path) {
    Error error;
    PageStore store = PageStore::openForReading(path, &error);
    if (!store.isValid()) throw InputError(error.reason.utf8());
    return store;
}

}  // namespace velmo::tool
