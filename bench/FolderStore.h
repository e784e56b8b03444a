// Makes files of folder metadata: trees of any shape, sound or not. The tests use it too, and the
// check of growth.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmo::bench {

inline std::string bigEndian(std::uint64_t number, int bytes = 4) {
    std::string out;
    while (bytes-- > 0) out += static_cast<char>(number >> bytes * 8);
    return out;
}

inline std::string counted(std::u16string_view text) {
    std::string out = bigEndian(text.size());
    for (const char16_t unit : text) out += bigEndian(unit, 2);
    return out;
}

/// A record with its value as it is stored.
inline std::string record(std::u16string_view name, std::string_view codec, std::string_view type,
                          const std::string& value) {
    return counted(name) + std::string(codec) + std::string(type) + value;
}
inline std::string comment(std::u16string_view name, std::u16string_view text) {
    return record(name, "cmmt", "ustr", counted(text));
}

class FolderStore {
public:
    /// The index of a new block, or of a second one at the place of another.
    std::uint32_t add(std::string content) { return add(Block{std::move(content), 0}); }
    std::uint32_t addAgain(std::uint32_t other) { return add(Block{{}, other}); }
    std::uint32_t nextIndex() const { return static_cast<std::uint32_t>(blocks_.size()); }

    /// A node of records; an inner one has next and a child for each.
    std::uint32_t addNode(std::span<const std::string> records, std::uint32_t next = 0,
                          std::span<const std::uint32_t> children = {}) {
        std::string node = bigEndian(next) + bigEndian(records.size());
        for (std::size_t i = 0; i < records.size(); ++i)
            node += (next ? bigEndian(children[i]) : "") + records[i];
        return add(std::move(node));
    }
    /// A tree of sorted records: its root.
    std::uint32_t addTree(std::span<const std::string> records, std::size_t perNode) {
        if (records.size() <= perNode) return addNode(records);
        const std::size_t count = std::min(perNode, records.size() / (perNode + 1));
        std::vector<std::string> own;
        std::vector<std::uint32_t> children;
        for (std::size_t left = count; left > 0; --left) {
            const std::size_t below = (records.size() - left) / (left + 1);
            children.push_back(addTree(records.first(below), perNode));
            own.push_back(records[below]);
            records = records.subspan(below + 1);
        }
        const std::uint32_t next = addTree(records, perNode);
        return addNode(own, next, children);
    }
    /// The file, with that node as the root of the tree.
    std::string file(std::uint32_t tree) const {
        const std::string head =
            bigEndian(tree) + bigEndian(1) + bigEndian(2) + bigEndian(3) + bigEndian(4096);
        const std::size_t places = (blocks_.size() + 255) / 256 * 256;
        const std::size_t rootSize = std::bit_ceil(4 * places + 4 * 8);
        std::string body(32, '\0');
        std::vector<std::size_t> table = {body.size() | std::countr_zero(rootSize)};
        body.resize(body.size() + rootSize);
        for (std::size_t i = 1; i < blocks_.size(); ++i) {
            if (blocks_[i].sameAs) {
                table.push_back(table[blocks_[i].sameAs]);
                continue;
            }
            const std::string& content = i == 1 ? head : blocks_[i].content;
            const std::size_t size = std::max<std::size_t>(32, std::bit_ceil(content.size()));
            table.push_back(body.size() | std::countr_zero(size));
            body += content + std::string(size - content.size(), '\0');
        }
        table.resize(places);
        std::string root = bigEndian(blocks_.size()) + bigEndian(0);
        for (const std::size_t place : table) root += bigEndian(place);
        root += bigEndian(1) + "\4DSDB" + bigEndian(1);
        body.replace(32, root.size(), root);
        const std::string header = "Bud1" + bigEndian(32) + bigEndian(rootSize) + bigEndian(32);
        return bigEndian(1) + body.replace(0, header.size(), header);
    }

private:
    struct Block {
        std::string content;
        std::uint32_t sameAs;
    };
    std::uint32_t add(Block block) {
        blocks_.push_back(std::move(block));
        return nextIndex() - 1;
    }

    std::vector<Block> blocks_{2};  // the root block and the head of the tree are made last
};

/// So many comments in order, on files of names that are not alike.
inline std::vector<std::string> sortedComments(std::size_t count) {
    std::vector<std::string> records;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string digits = std::to_string(1'000'000 + i);
        const std::u16string number(digits.begin(), digits.end());
        records.push_back(comment(u"file " + number + u".txt", u"a comment on " + number));
    }
    return records;
}

}  // namespace velmo::bench
