// A copy is made beside its final place, open to nobody else, and gets its permissions when all is
// in it. What is copied may change meanwhile: each file is opened once, and what is copied is what
// was opened.
#include "system/TreeCopy.h"

#include <fcntl.h>
#include <sys/xattr.h>

#include <cerrno>
#include <optional>

#include "system/FileErrors.h"
#include "system/TreeWalk.h"

namespace velmo::detail {
namespace {

constexpr std::size_t Portion = 0x40000;
/// Without the rights that come with the owner, who is another one perhaps.
constexpr mode_t CopiedBits = 01777;

/// That a file system has none, or takes none, is no failure of the copy.
void copyAttributes(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    std::string names(static_cast<std::size_t>(size), '\0');
    const ssize_t length = ::flistxattr(from, names.data(), names.size());
    for (std::size_t start = 0; length > 0 && start < static_cast<std::size_t>(length);) {
        const char* name = names.c_str() + start;
        std::string value(Portion, '\0');  // above what any file system keeps
        const ssize_t count = ::fgetxattr(from, name, value.data(), value.size());
        if (count >= 0) ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(count), 0);
        start += std::string_view(name).size() + 1;
    }
}

bool finish(const OpenFile& from, const OpenFile& to, const struct stat& info) {
    copyAttributes(from.number(), to.number());
    const timespec times[2] = {info.st_atim, info.st_mtim};
    return to.calls().fchmod(to.number(), info.st_mode & CopiedBits) == 0 &&
           to.calls().futimens(to.number(), times) == 0;
}

bool copyBytes(OpenFile& from, OpenFile& to) {
    Data buffer(Portion);
    for (;;) {
        const auto count = from.read(buffer);
        if (!count) return false;
        if (*count == 0) return true;
        if (!to.write(Bytes(buffer).first(*count))) return false;
    }
}

bool copyFile(FileCalls& calls, int folder, const std::string& name, OpenFile to) {
    OpenFile from(calls, folder, name, O_RDONLY | O_NOFOLLOW);
    if (!from || !to) return false;
    const auto info = from.info();
    if (!info) return false;
    if (!S_ISREG(info->st_mode)) return refused(EINVAL);
    return copyBytes(from, to) && finish(from, to, *info) && to.close();
}

class Copying : public TreeVisitor {
public:
    Copying(FileCalls& calls, NewPlace& place) : calls_(calls), place_(place) {}

    bool visit(int folder, const std::string& name, const struct stat& info) override {
        if (S_ISLNK(info.st_mode)) {
            const auto target = targetOfLink(calls_, folder, name);
            return target && makeLink(*target, name);
        }
        return S_ISREG(info.st_mode) ? copyFile(calls_, folder, name, newFile(name))
                                     : refused(ENOTSUP);
    }
    bool enter(int, const std::string& name, const struct stat& info) override {
        // The copy of a folder into itself would never end.
        if (root_ && isSameFile(info, *root_)) return refused(EINVAL);
        return into_
                   ? calls_.mkdirat(into_->number(), name.c_str(), 0700) == 0 && into_->enter(name)
                   : begin();
    }
    bool leave(int folder, const std::string& name, const struct stat& info) override {
        constexpr int Flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
        const OpenFile from(calls_, folder, name, Flags);
        if (!from) return false;
        if (into_->depth() == 0) return finish(from, into_->folder(), info);
        // Out of it first: the permissions that it gets may forbid to look into it.
        if (!into_->leave()) return false;
        const OpenFile to(calls_, into_->number(), name, Flags);
        return to && finish(from, to, info);
    }

private:
    bool begin() {
        if (!place_.makeFolder(0700)) return false;
        OpenFile root(calls_, place_.folder(), place_.name(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (!root) return false;
        root_ = root.info();
        into_.emplace(std::move(root));
        return root_.has_value();
    }
    OpenFile newFile(const std::string& name) {
        if (!into_) return place_.makeFile(0600);
        return {calls_, into_->number(), name, O_WRONLY | O_CREAT | O_EXCL, 0600};
    }
    bool makeLink(const std::string& target, const std::string& name) {
        return into_ ? calls_.symlinkat(target.c_str(), into_->number(), name.c_str()) == 0
                     : place_.makeLink(target);
    }

    FileCalls& calls_;
    NewPlace& place_;
    std::optional<FolderCursor> into_;
    std::optional<struct stat> root_;
};

}  // namespace

bool copyTree(FileCalls& calls, int folder, const std::string& name, NewPlace& place) {
    Copying copying(calls, place);
    return walk(calls, folder, name, copying);
}

}  // namespace velmo::detail
