// Walking trees of folders: however deep one is, nothing recurses and one folder is open at a time.
// No link is followed, and nobody who moves folders about meanwhile can lead a walk elsewhere.
#pragma once

#include <string>
#include <vector>

#include "system/OpenFile.h"

namespace velmo::detail {

/// A folder in a tree, from which one goes down and back up.
class FolderCursor {
public:
    /// Takes over the folder that the tree begins at.
    explicit FolderCursor(OpenFile root) : folder_(std::move(root)) {}

    const OpenFile& folder() const { return folder_; }
    int number() const { return folder_.number(); }
    std::size_t depth() const { return above_.size(); }

    /// False, and errno, if that is not possible; the cursor stays where it is then.
    bool enter(const std::string& name);
    bool leave();

private:
    bool become(const std::string& path, const struct stat* expected);

    OpenFile folder_;
    std::vector<struct stat> above_;
};

/// What is done with a tree. Each gives false, and errno, if the walk is to end there.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;
    /// Whatever is no folder. The folder is the one that it stands in.
    virtual bool visit(int folder, const std::string& name, const struct stat& info) = 0;
    /// A folder, before what is in it.
    virtual bool enter(int folder, const std::string& name, const struct stat& info) = 0;
    /// The same one behind it.
    virtual bool leave(int folder, const std::string& name, const struct stat& info) = 0;
};

/// Walks what is in a folder, sorted by name.
bool walkTree(OpenFile root, TreeVisitor& visitor);
/// What stands under a name in a folder: it alone, or a folder and what is in it.
bool walk(FileCalls& calls, int folder, const std::string& name, TreeVisitor& visitor);

/// Removes what stands under a name, whatever it is. A link is removed and not what it leads to.
bool removeTree(FileCalls& calls, int folder, const std::string& name);

}  // namespace velmo::detail
