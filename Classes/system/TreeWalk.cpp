// A walk holds the names that are still to come of each folder above, not the folders themselves:
// a process may have a thousand files open, and trees are deeper. Going up is by "..", and must
// lead to the very folder that was left.
#include "system/TreeWalk.h"

#include <fcntl.h>

#include <cerrno>

#include "system/FileErrors.h"

namespace velmo::detail {
namespace {

constexpr int FolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;

struct Level {
    std::vector<std::string> names;  // in reverse
    std::string name;
    struct stat info;
};

class Walk {
public:
    Walk(OpenFile root, TreeVisitor& visitor) : cursor_(std::move(root)), visitor_(visitor) {}

    bool run() {
        if (!push({}, {})) return false;
        while (!levels_.empty()) {
            std::vector<std::string>& names = levels_.back().names;
            if (names.empty()) {
                if (!pop()) return false;
                continue;
            }
            const std::string name = std::move(names.back());
            names.pop_back();
            if (!step(name)) return false;
        }
        return true;
    }

private:
    bool push(const std::string& name, const struct stat& info) {
        auto names = namesInFolder(cursor_.folder().calls(), cursor_.number());
        if (!names) return false;
        levels_.push_back({{names->rbegin(), names->rend()}, name, info});
        return true;
    }
    bool pop() {
        const Level level = std::move(levels_.back());
        levels_.pop_back();
        if (levels_.empty()) return true;
        return cursor_.leave() && visitor_.leave(cursor_.number(), level.name, level.info);
    }
    bool step(const std::string& name) {
        const auto info = infoOf(cursor_.folder().calls(), cursor_.number(), name);
        if (!info) return false;
        if (!S_ISDIR(info->st_mode)) return visitor_.visit(cursor_.number(), name, *info);
        return visitor_.enter(cursor_.number(), name, *info) && cursor_.enter(name) &&
               push(name, *info);
    }

    FolderCursor cursor_;
    TreeVisitor& visitor_;
    std::vector<Level> levels_;
};

class Removal : public TreeVisitor {
public:
    explicit Removal(FileCalls& calls) : calls_(calls) {}
    bool visit(int folder, const std::string& name, const struct stat&) override {
        return calls_.unlinkat(folder, name.c_str(), 0) == 0;
    }
    bool enter(int, const std::string&, const struct stat&) override { return true; }
    bool leave(int folder, const std::string& name, const struct stat&) override {
        return calls_.unlinkat(folder, name.c_str(), AT_REMOVEDIR) == 0;
    }

private:
    FileCalls& calls_;
};

}  // namespace

bool FolderCursor::become(const std::string& path, const struct stat* expected) {
    OpenFile next(folder_.calls(), number(), path, FolderFlags);
    if (!next) return false;
    const auto info = next.info();
    if (!info) return false;
    if (expected && !isSameFile(*info, *expected)) return refused(ESTALE);
    folder_ = std::move(next);
    return true;
}

bool FolderCursor::enter(const std::string& name) {
    const auto own = folder_.info();
    if (!own || !become(name, nullptr)) return false;
    above_.push_back(*own);
    return true;
}

bool FolderCursor::leave() {
    if (!become("..", &above_.back())) return false;
    above_.pop_back();
    return true;
}

bool walkTree(OpenFile root, TreeVisitor& visitor) { return Walk(std::move(root), visitor).run(); }

bool walk(FileCalls& calls, int folder, const std::string& name, TreeVisitor& visitor) {
    const auto info = infoOf(calls, folder, name);
    if (!info) return false;
    if (!S_ISDIR(info->st_mode)) return visitor.visit(folder, name, *info);
    if (!visitor.enter(folder, name, *info)) return false;
    OpenFile root(calls, folder, name, FolderFlags);
    return root && walkTree(std::move(root), visitor) && visitor.leave(folder, name, *info);
}

bool removeTree(FileCalls& calls, int folder, const std::string& name) {
    Removal removal(calls);
    return walk(calls, folder, name, removal);
}

}  // namespace velmo::detail
