#include "StoreCommands.h"

#include <charconv>
#include <filesystem>

#include "Commands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {

Argument storeArgument(StoreOptions& options) {
    return required("STORE", options.store, "a file of blocks");
}

Argument offsetArgument(StoreOptions& options) {
    return {.name = "OFFSET",
            .help = "where the block begins, as list tells it",
            .take =
                [&options](const std::string& value) {
                    const char* end = value.data() + value.size();
                    const auto result = std::from_chars(value.data(), end, options.offset);
                    if (result.ec != std::errc() || result.ptr != end)
                        throw UsageError("OFFSET: " + value + " is no offset");
                },
            .isRequired = true};
}

KeyedStorage openedStore(const std::string& path, KeyedStorage (*open)(const Path& path)) {
    KeyedStorage store = open(path);
    if (store.isValid()) return store;
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw InputError("cannot be opened: " + error.message());
    if (!std::filesystem::is_regular_file(status)) throw InputError("not a regular file");
    throw InputError("cannot be opened, or another program has it open");
}

Command storeCommand(std::shared_ptr<StoreOptions> options,
                     void (*work)(Report& report, const StoreOptions& options)) {
    Command command;
    command.run = [options, work](Report& report) {
        report.nameFile(options->store);
        try {
            work(report, *options);
        } catch (const InputError& error) {
            report.fail(options->store, error.what());
        }
    };
    return command;
}

std::span<const CommandEntry> storeActions() {
    // In the order of the help.
    static const CommandEntry actions[] = {
        {"list", makeStoreListCommand},         {"get", makeStoreGetCommand},
        {"append", makeStoreAppendCommand},     {"update", makeStoreUpdateCommand},
        {"delete", makeStoreDeleteCommand},     {"check", makeStoreCheckCommand},
        {"optimize", makeStoreOptimizeCommand}, {"salvage", makeStoreSalvageCommand},
        {"stats", makeStoreStatsCommand},
    };
    return actions;
}

}  // namespace velmo::tool
