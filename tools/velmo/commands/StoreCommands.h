// The actions of "velmo store", and what they share.
#pragma once

#include <memory>
#include <string>

#include <velmocore/storage/KeyedStorage.h>

#include "frame/Command.h"

namespace velmo::tool {

Command makeStoreListCommand(Session& session);
Command makeStoreGetCommand(Session& session);
Command makeStoreCheckCommand(Session& session);
Command makeStoreAppendCommand(Session& session);
Command makeStoreUpdateCommand(Session& session);
Command makeStoreDeleteCommand(Session& session);
Command makeStoreOptimizeCommand(Session& session);
Command makeStoreSalvageCommand(Session& session);
Command makeStoreStatsCommand(Session& session);

/// What they are called with; each uses what it names.
struct StoreOptions {
    std::string store, to, file;
    std::vector<std::string> files;
    std::uint64_t offset = 0, blockSize = 0, top = 0;
    bool compressed = false, skipErrors = false, force = false;
};

Argument storeArgument(StoreOptions& options);
Argument offsetArgument(StoreOptions& options);

/// The store, opened one way or the other. Throws an InputError if it cannot be.
KeyedStorage openedStore(const std::string& path, KeyedStorage (*open)(const Path& path));

/// A command whose work may throw an InputError, which is the failure of the store.
Command storeCommand(std::shared_ptr<StoreOptions> options,
                     void (*work)(Report& report, const StoreOptions& options));

}  // namespace velmo::tool
