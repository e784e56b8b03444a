// Blocks of a store appended, replaced and deleted. What the tool says was done is stored by then.
#include <fmt/core.h>

#include "StoreCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

constexpr std::uint64_t Alignment = 512;

void require(bool isDone, const std::string& reason) {
    if (!isDone) throw InputError(reason);
}

KeyedStorage openedForUpdating(const StoreOptions& options) {
    KeyedStorage store = openedStore(options.store, KeyedStorage::keyedStorageForUpdatingAtPath);
    store.setCompressed(options.compressed);
    store.setBlockSize(options.blockSize);
    return store;
}

/// Appends a file's bytes as a block.
void appendFile(KeyedStorage& store, const std::string& file, Report& report) {
    const Data bytes = readFile(file);
    require(!bytes.empty(), "nothing to append");
    require(store.appendBlock(bytes) && store.synchronizeFile(), "cannot be appended");
    const std::uint64_t offset = store.offsetOfAppendedBlock(),
                        length = store.offsetInFile() - offset;
    if (report.json())
        report.printObject(fileObject(file, {{"offset", offset}, {"length", length}}));
    else
        report.printLine(fmt::format("{} at {}", file, offset));
}

void appendFiles(Report& report, const StoreOptions& options) {
    KeyedStorage store = openedForUpdating(options);
    store.seekToEndOfFile();
    for (const std::string& file : options.files) try {
            appendFile(store, file, report);
        } catch (const InputError& error) {
            report.fail(file, error.what());
        }
}

void tellDone(Report& report, std::string_view what, const StoreOptions& options) {
    if (report.json())
        return report.printObject(fileObject(options.store, {{"offset", options.offset}}));
    report.printLine(fmt::format("{} {}", what, options.offset));
}

void updateBlock(Report& report, const StoreOptions& options) {
    const Data bytes = readFile(options.file);
    // A store that is not there is not made here.
    openedStore(options.store, KeyedStorage::keyedStorageForReadingAtPath);
    KeyedStorage store = openedForUpdating(options);
    require(store.updateBlock(bytes, options.offset),
            fmt::format("no block at {}, or without room for {}", options.offset, options.file));
    require(store.synchronizeFile(), "cannot be written");
    tellDone(report, "updated", options);
}

void deleteBlock(Report& report, const StoreOptions& options) {
    openedStore(options.store, KeyedStorage::keyedStorageForReadingAtPath);
    KeyedStorage store = openedForUpdating(options);
    require(store.deleteBlockAtFileOffset(options.offset),
            fmt::format("no block at {}", options.offset));
    require(store.synchronizeFile(), "cannot be written");
    tellDone(report, "deleted", options);
}

}  // namespace

Command makeStoreAppendCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, appendFiles);
    command.summary = "Append files to a store, a block each; the store is made if there is none";
    command.examples = {"velmo store append notes.store notes.txt --compress"};
    command.arguments = {storeArgument(*options),
                         list("FILE", options->files, "any files; - is standard input")};
    command.arguments.back().isRequired = true;
    Option blockSize = number("--block-size", "N", options->blockSize,
                              "fill blocks up to a multiple of N bytes, itself one of 512");
    blockSize.take = [take = blockSize.take, options](const std::string& value) {
        take(value);
        if (options->blockSize % Alignment != 0) throw UsageError(value + " is no multiple of 512");
    };
    command.add({flag("--compress", options->compressed, "compress what gets shorter by it"),
                 std::move(blockSize), jsonFlag(session, "one JSON object a file")});
    return command;
}

Command makeStoreUpdateCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, updateBlock);
    command.summary = "Replace what the block at an offset holds, if it has the room";
    command.examples = {"velmo store update notes.store 0 mail.txt"};
    command.arguments = {storeArgument(*options), offsetArgument(*options),
                         required("FILE", options->file, "any file; - is standard input")};
    command.add({flag("--compress", options->compressed, "compress it if it gets shorter by it"),
                 jsonFlag(session, "a JSON object")});
    command.more =
        "A crash while the block is written may lose it: append the new one instead, then\n"
        "delete the old.";
    return command;
}

Command makeStoreDeleteCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, deleteBlock);
    command.summary = "Delete the block at an offset; its room stays until optimize";
    command.examples = {"velmo store delete notes.store 0"};
    command.arguments = {storeArgument(*options), offsetArgument(*options)};
    command.add({jsonFlag(session, "a JSON object")});
    return command;
}

}  // namespace velmo::tool
