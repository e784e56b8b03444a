// Stores written anew: without what is deleted, or all that can be saved. The new file appears
// whole or not at all.
#include <fmt/core.h>

#include <filesystem>

#include "StoreCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

void refuseToReplace(const StoreOptions& options) {
    if (std::error_code error; !options.force && std::filesystem::exists(options.to, error))
        throw InputError(options.to + " is there already; --force replaces it");
}

void optimize(Report& report, const StoreOptions& options) {
    openedStore(options.store, KeyedStorage::keyedStorageForReadingAtPath);
    refuseToReplace(options);
    // As if all were compressed: blocks that are stay so as they are stored.
    // Only a store that is replaced by itself must be kept from others.
    KeyedStorage store = openedStore(
        options.store, options.to == options.store ? KeyedStorage::keyedStorageForUpdatingAtPath
                                                   : KeyedStorage::keyedStorageForReadingAtPath);
    store.setCompressed(true);
    const std::uint64_t before = store.lengthOfFile();
    if (!store.optimizeSafelyToPath(options.to, options.skipErrors))
        throw InputError("damaged, or " + options.to + " cannot be written; see velmo store check");
    const std::uint64_t after = std::filesystem::file_size(options.to);
    if (report.json())
        return report.printObject(fileObject(
            options.store, {{"output", options.to}, {"before", before}, {"after", after}}));
    report.printLine(
        fmt::format("{} -> {}, {} -> {} bytes", options.store, options.to, before, after));
}

void salvage(Report& report, const StoreOptions& options) {
    KeyedStorage store = openedStore(options.store, KeyedStorage::keyedStorageForReadingAtPath);
    refuseToReplace(options);
    const auto found = store.salvageToPath(options.to);
    if (!found.isWritten) throw InputError(options.to + " cannot be written");
    if (report.json())
        return report.printObject(fileObject(
            options.store,
            {{"output", options.to}, {"blocks", found.blocks}, {"damages", found.damages}}));
    report.printLine(fmt::format("{} -> {}, {} blocks over {} damages", options.store, options.to,
                                 found.blocks, found.damages));
}

Option forceFlag(StoreOptions& options) {
    return flag("-f,--force", options.force, "replace TO if it is there");
}

}  // namespace

Command makeStoreOptimizeCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, optimize);
    command.summary = "Write the blocks of a store that are not deleted into a new one";
    command.examples = {"velmo store optimize notes.store smaller.store"};
    command.arguments = {storeArgument(*options),
                         required("TO", options->to, "the new store; with --force STORE itself")};
    command.add({
        flag("--skip-errors", options->skipErrors, "leave out blocks with a wrong checksum"),
        forceFlag(*options),
        jsonFlag(session, "a JSON object"),
    });
    return command;
}

Command makeStoreSalvageCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, salvage);
    command.summary = "Write every block of a damaged store that is whole into a new one";
    command.examples = {"velmo store salvage notes.store saved.store"};
    command.arguments = {storeArgument(*options), required("TO", options->to, "the new store")};
    command.add({forceFlag(*options), jsonFlag(session, "a JSON object")});
    return command;
}

}  // namespace velmo::tool
