// A socket file outlives a helper that is killed. Whether one is stale is told by connecting:
// nobody who listens refuses. Between that and its removal another helper may take the name, and so
// whoever makes or removes a file holds the lock of the folder and looks again under it. The folder
// itself is what is locked: the system lets go of the lock of who dies, and no further file is
// needed.
//
// Addresses of sockets are short. They are made through the descriptor of the folder, in /proc, so
// that only the length of the name counts, wherever the folder is.
#include "system/ConnectionFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <openssl/evp.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "text/HomeFolder.h"

namespace velmo::detail {
namespace {

/// In bytes, without the digest; with it and the folder's path a name still fits into an address.
constexpr std::size_t LongestFile = 64, KeptOfLongFile = 20, DigestBytes = 20;

bool isKept(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'_';
}

std::string digestOf(std::string_view text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();
    std::string digits;
    for (std::size_t i = 0; i < DigestBytes; ++i) digits += fmt::format("{:02x}", digest[i]);
    return digits;
}

int failWith(Error* error, int number, std::string_view what) {
    if (error)
        *error = {u"posix", number,
                  String::fromUTF8(fmt::format("{}: {}", what, std::strerror(number)))};
    return number;
}

/// The lock of the folder; its holders have it for a few calls only, so it is asked for again, and
/// given up after a while for the case that one of them was stopped.
class FolderLock {
public:
    explicit FolderLock(int folder) : folder_(folder) {
        constexpr int MostAttempts = 200;
        for (int attempt = 0; attempt < MostAttempts && !isHeld_; ++attempt) {
            isHeld_ = ::flock(folder, LOCK_EX | LOCK_NB) == 0;
            if (!isHeld_) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    ~FolderLock() {
        if (isHeld_) ::flock(folder_, LOCK_UN);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool isHeld() const { return isHeld_; }

private:
    const int folder_;
    bool isHeld_ = false;
};

sockaddr_un addressOf(int folder, const std::string& file) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    fmt::format_to_n(address.sun_path, sizeof address.sun_path - 1, "/proc/self/fd/{}/{}", folder,
                     file);
    return address;
}

Descriptor newSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// 0, or why not.
int connectTo(const Descriptor& socket, int folder, const std::string& file) {
    const sockaddr_un address = addressOf(folder, file);
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(socket.get(), general, sizeof address) == 0 ? 0 : errno;
}

/// Whether somebody listens, or may.
bool isServed(int folder, const std::string& file) {
    const int failure = connectTo(newSocket(), folder, file);
    return failure != ECONNREFUSED && failure != ENOENT;
}

bool isSocket(int folder, const std::string& file) {
    struct stat info;
    return ::fstatat(folder, file.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISSOCK(info.st_mode);
}

/// Under the lock.
void removeIfStale(int folder, const std::string& file) {
    if (isSocket(folder, file) && !isServed(folder, file)) ::unlinkat(folder, file.c_str(), 0);
}

bool isFolder(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string pathOfFolder() {
    const auto variable = [](const char* name) -> const char* { return std::getenv(name); };
    const String runtime = folderOfVariable(variable, "XDG_RUNTIME_DIR");
    if (!runtime.isAbsent() && isFolder(runtime.utf8())) return runtime.utf8() + "/velmo";
    const String temporary = folderOfVariable(variable, "TMPDIR");
    return fmt::format("{}/velmo-{}", temporary.isAbsent() ? "/tmp" : temporary.utf8(),
                       ::geteuid());
}

/// 0, or why a folder is not for this user alone.
int faultOf(const Descriptor& folder) {
    struct stat info;
    if (::fstat(folder.get(), &info) != 0) return errno;
    return info.st_uid == ::geteuid() && (info.st_mode & 077) == 0 ? 0 : EPERM;
}

}  // namespace

std::string fileOfRegisteredName(std::u16string_view name) {
    std::string file;
    for (const char16_t unit : name) {
        const bool isInnerDot = unit == u'.' && !file.empty();
        if (isKept(unit) || isInnerDot)
            file += static_cast<char>(unit);
        else
            file += fmt::format("%{:04X}", static_cast<unsigned>(unit));
    }
    if (file.size() <= LongestFile) return file;
    return file.substr(0, KeptOfLongFile) + "~" + digestOf(file);
}

String registeredNameOfFile(std::string_view file) {
    if (file.find('~') != file.npos) return String::fromUTF8(file);
    std::u16string name;
    for (std::size_t i = 0; i < file.size(); ++i) {
        unsigned unit = static_cast<unsigned char>(file[i]);
        if (file[i] == '%') {
            const char* digits = file.data() + i + 1;
            const char* end = digits + std::min<std::size_t>(4, file.size() - i - 1);
            if (std::from_chars(digits, end, unit, 16).ptr != digits + 4) return {};
            i += 4;
        }
        name += static_cast<char16_t>(unit);
    }
    return fileOfRegisteredName(name) == file ? String(name) : String();
}

std::optional<ConnectionFolder> ConnectionFolder::open(Error* error) {
    const std::string path = pathOfFolder();
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        failWith(error, errno, path);
        return std::nullopt;
    }
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const int fault = folder ? faultOf(folder) : errno;
    if (fault == 0) return ConnectionFolder(std::move(folder));
    failWith(error, fault, folder ? path + " is not for this user alone" : path);
    return std::nullopt;
}

Descriptor ConnectionFolder::bindAndListen(const std::string& file) const {
    Descriptor socket = newSocket();
    const sockaddr_un address = addressOf(folder_.get(), file);
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (!socket || ::bind(socket.get(), general, sizeof address) != 0) return Descriptor();
    if (::listen(socket.get(), SOMAXCONN) == 0) return socket;
    const int number = errno;
    ::unlinkat(folder_.get(), file.c_str(), 0);
    errno = number;
    return Descriptor();
}

Descriptor ConnectionFolder::publish(const std::string& file, Error* error) {
    const FolderLock lock(folder_.get());
    if (!lock.isHeld()) {
        failWith(error, EBUSY, "the folder of connections");
        return Descriptor();
    }
    removeIfStale(folder_.get(), file);
    Descriptor socket = bindAndListen(file);
    if (!socket)
        failWith(error, errno, file);
    else if (::fstatat(folder_.get(), file.c_str(), &published_, AT_SYMLINK_NOFOLLOW) != 0)
        published_ = {};
    return socket;
}

void ConnectionFolder::withdraw(const std::string& file) {
    const FolderLock lock(folder_.get());
    struct stat now;
    // Who lost its file may find that of another one there.
    if (::fstatat(folder_.get(), file.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0 &&
        now.st_ino == published_.st_ino && now.st_dev == published_.st_dev)
        ::unlinkat(folder_.get(), file.c_str(), 0);
}

Descriptor ConnectionFolder::connect(const std::string& file, int& failure) const {
    Descriptor socket = newSocket();
    failure = socket ? connectTo(socket, folder_.get(), file) : errno;
    if (failure == 0) return socket;
    if (failure == ECONNREFUSED) {
        const FolderLock lock(folder_.get());
        if (lock.isHeld()) removeIfStale(folder_.get(), file);
    }
    if (failure == ECONNREFUSED || failure == ENOENT) failure = 0;
    return Descriptor();
}

std::vector<std::string> ConnectionFolder::files() const {
    std::vector<std::string> found;
    const int copy = ::openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* entries = copy < 0 ? nullptr : ::fdopendir(copy);
    if (!entries) return found;
    while (const dirent* entry = ::readdir(entries))
        if (isSocket(folder_.get(), entry->d_name)) found.emplace_back(entry->d_name);
    ::closedir(entries);
    std::erase_if(found, [this](const std::string& file) {
        int failure = 0;
        return !connect(file, failure) && failure == 0;
    });
    std::ranges::sort(found);
    return found;
}

}  // namespace velmo::detail
