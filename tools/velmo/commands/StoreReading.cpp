// Stores looked at: what blocks there are, what one holds, and whether all is whole.
#include <fmt/core.h>

#include <velmocore/storage/Base64.h>

#include "StoreCommands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

KeyedStorage openedForReading(const StoreOptions& options) {
    return openedStore(options.store, KeyedStorage::keyedStorageForReadingAtPath);
}

void walk(KeyedStorage& store, StorageBlockHandler handler, BlockWalking walking) {
    if (!store.forEachBlock(handler, walking)) throw InputError("cannot be read");
}

std::string_view nameOf(BlockState state) {
    switch (state) {
        case BlockState::InvalidHeader:
            return "invalid header";
        case BlockState::Truncated:
            return "truncated block";
        case BlockState::InvalidChecksum:
            return "invalid checksum";
        default:
            return "";
    }
}

/// What is wrong with it; empty if nothing is.
std::string_view damageOf(const StorageBlock& block) {
    const bool isPacked = block.state == BlockState::Live && block.isCompressed;
    if (isPacked && !block.unpacked(UsualLimit)) return "cannot be inflated";
    return nameOf(block.state);
}

JsonObject blockObject(const StorageBlock& block, std::size_t size) {
    return {{"offset", block.offset},
            {"length", block.length},
            {"size", size},
            {"compressed", block.isCompressed}};
}

void printBlock(const StorageBlock& block, std::size_t size, Report& report) {
    if (report.json()) return report.printObject(blockObject(block, size));
    report.printLine(fmt::format("{:12} {:12} {:12}{}", block.offset, block.length, size,
                                 block.isCompressed ? "  compressed" : ""));
}

void listBlocks(Report& report, const StoreOptions& options) {
    KeyedStorage store = openedForReading(options);
    const auto list = [&](const StorageBlock& block) {
        const std::string_view damage = damageOf(block);
        if (!damage.empty())
            report.fail(options.store, fmt::format("{} at {}", damage, block.offset));
        else if (block.state == BlockState::Live)
            printBlock(block, block.isCompressed ? block.unpacked()->size() : block.stored.size(),
                       report);
        return true;
    };
    walk(store, list, {});
}

void getBlock(Report& report, const StoreOptions& options) {
    KeyedStorage store = openedForReading(options);
    if (!store.seekToFileOffset(options.offset)) throw InputError("no such offset");
    const auto block = store.mutableCopyOfNextAvailableBlockWithCompressed();
    if (!block || store.offsetOfLastBlock() != options.offset)
        throw InputError(fmt::format("no block at {}", options.offset));
    if (!report.json()) return report.printBytes(charsOf(block->data));
    report.printObject({{"offset", options.offset},
                        {"length", store.lengthOfLastBlock()},
                        {"size", block->data.size()},
                        {"compressed", block->compressed.has_value()},
                        {"data", encodedBase64Data(block->data)}});
}

void checkStore(Report& report, const StoreOptions& options) {
    KeyedStorage store = openedForReading(options);
    std::size_t blocks = 0, deleted = 0, damages = 0;
    const auto check = [&](const StorageBlock& block) {
        const std::string_view damage = damageOf(block);
        blocks += damage.empty() && block.state == BlockState::Live;
        deleted += block.state == BlockState::Dead;
        if (damage.empty()) return true;
        ++damages;
        if (report.json())
            report.printObject({{"offset", block.offset}, {"damage", damage}});
        else
            report.printLine(fmt::format("{} at {}", damage, block.offset));
        return true;
    };
    walk(store, check, {.salvage = true});
    report.noteHit(damages == 0);
    if (report.json())
        return report.printObject(fileObject(
            options.store, {{"blocks", blocks}, {"deleted", deleted}, {"damages", damages}}));
    report.printLine(fmt::format("{}: {} blocks, {} deleted, {} damages", options.store, blocks,
                                 deleted, damages));
}

}  // namespace

Command makeStoreListCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, listBlocks);
    command.summary =
        "List the blocks of a store: offset, length in the file, size of what it holds";
    command.examples = {"velmo store list notes.store"};
    command.arguments = {storeArgument(*options)};
    command.add({jsonFlag(session, "one JSON object a block")});
    return command;
}

Command makeStoreGetCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, getBlock);
    command.summary = "Print what the block at an offset holds";
    command.examples = {"velmo store get notes.store 0"};
    command.arguments = {storeArgument(*options), offsetArgument(*options)};
    command.add({jsonFlag(session, "a JSON object, with the bytes as base64")});
    return command;
}

Command makeStoreCheckCommand(Session& session) {
    auto options = std::make_shared<StoreOptions>();
    Command command = storeCommand(options, checkStore);
    command.summary = "Tell every damage of a store with its offset; exit code 1 if there is any";
    command.examples = {"velmo store check notes.store"};
    command.arguments = {storeArgument(*options)};
    command.add({jsonFlag(session, "one JSON object a damage, and one for the store")});
    return command;
}

}  // namespace velmo::tool
