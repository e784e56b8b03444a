#include "NewFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

#include "FileBytes.h"

namespace velmo::tool {
namespace {

// As many links as the system itself follows.
constexpr int MostLinks = 40, MostTries = 100;
constexpr mode_t UsualMode = 0666;

[[noreturn]] void throwError(int number) {
    throw InputError(std::generic_category().message(number));
}

/// A name beside the target that nobody has and nobody can guess.
std::string nameBeside(const std::string& target) {
    thread_local std::random_device random;
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == target.npos ? "" : target.substr(0, slash + 1);
    return fmt::format("{}.velmo-{:08x}{:08x}", folder, random(), random());
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash + 1);
}

/// The file that a name leads to, over all links, also if there is none yet.
std::string targetOf(std::string name) {
    std::error_code error;
    for (int i = 0; i < MostLinks; ++i) {
        const std::filesystem::path link = std::filesystem::read_symlink(name, error);
        if (error) return name;
        name = (std::filesystem::path(name).parent_path() / link).string();
    }
    throwError(ELOOP);
}

/// The mask of a process can be read only by changing it, which all threads would see: so it is
/// read once.
mode_t usualMode() {
    static const mode_t mask = [] {
        const mode_t own = umask(0);
        umask(own);
        return own;
    }();
    return UsualMode & ~mask;
}

mode_t modeFor(const std::string& target, const std::string& madeFrom) {
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) throw InputError("not a regular file");
        return status.st_mode & 07777;
    }
    if (!madeFrom.empty() && stat(madeFrom.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        return status.st_mode & 0777;
    return usualMode();
}

/// A file that has no name yet, or one of its own; either is gone if it gets no other.
class Draft {
public:
    explicit Draft(const std::string& target) : target_(target) {
        // Readable by nobody else until all of it is there, whatever the mode of the file will be.
        file_ = ::open(folderOf(target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        for (int i = 0; file_ < 0 && i < MostTries; ++i) {
            name_ = nameBeside(target);
            file_ = ::open(name_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
            if (file_ < 0 && errno != EEXIST) break;
        }
        if (file_ < 0) {
            name_.clear();
            throwError(errno);
        }
    }
    ~Draft() {
        ::close(file_);
        if (!name_.empty()) ::unlink(name_.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void write(Bytes bytes, mode_t mode) const {
        while (!bytes.empty()) {
            const ssize_t count = ::write(file_, bytes.data(), bytes.size());
            if (count >= 0)
                bytes = bytes.subspan(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                throwError(errno);
        }
        if (::fchmod(file_, mode) != 0) throwError(errno);
    }

    /// Takes a name that nobody has.
    void giveName() const {
        if (!linkTo(target_)) throwError(errno);
    }
    /// Takes a name that another file may have, in one step.
    void replaceName() {
        if (name_.empty()) {
            std::string name = nameBeside(target_);
            for (int i = 0; !linkTo(name); name = nameBeside(target_))
                if (errno != EEXIST || ++i == MostTries) throwError(errno);
            name_ = name;
        }
        // A link cannot replace a name, so a nameless draft took one of its own first.
        if (::rename(name_.c_str(), target_.c_str()) != 0) throwError(errno);
        name_.clear();
    }

private:
    bool linkTo(const std::string& name) const {
        const std::string from = name_.empty() ? fmt::format("/proc/self/fd/{}", file_) : name_;
        return ::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

    const std::string target_;
    std::string name_;
    int file_ = -1;
};

}  // namespace

void writeNewFile(const std::string& name, Bytes bytes, bool replace, const std::string& madeFrom) {
    const std::string target = replace ? targetOf(name) : name;
    Draft draft(target);
    draft.write(bytes, modeFor(target, madeFrom));
    if (replace)
        draft.replaceName();
    else
        draft.giveName();
}

}  // namespace velmo::tool
