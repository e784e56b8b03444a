// Files are read by the calls of the system, so that each failure has its own reason, and not
// mapped: a mapped file that is cut short while it is read would end the program.
#include "FileBytes.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
#include <system_error>

#include <velmocore/storage/InflateStream.h>

#include "Remote.h"

namespace velmo::tool {
namespace {

/// Most bytes that a device may give, /dev/null none.
constexpr std::size_t DeviceLimit = std::size_t{1} << 24;
constexpr std::size_t PortionSize = std::size_t{1} << 18;
constexpr std::string_view Damaged = "damaged gzip or zlib data";

[[noreturn]] void throwError(int number) {
    throw InputError(std::generic_category().message(number));
}

/// An open file; standard input stays open.
class Descriptor {
public:
    explicit Descriptor(const std::string& name)
        : number_(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (number_ < 0) throwError(errno);
    }
    ~Descriptor() {
        if (number_ != STDIN_FILENO) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// The size that the system tells, 0 for what is no regular file.
    std::size_t size() const {
        struct stat status = {};
        if (::fstat(number_, &status) != 0) throwError(errno);
        if (S_ISDIR(status.st_mode)) throwError(EISDIR);
        return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
    }
    /// Whether it may have no end, as /dev/zero: a device at which nobody types.
    bool isDevice() const {
        struct stat status = {};
        if (::fstat(number_, &status) != 0) throwError(errno);
        return S_ISCHR(status.st_mode) && ::isatty(number_) == 0;
    }
    /// As many bytes as there are at once; 0 at the end.
    std::size_t read(std::uint8_t* bytes, std::size_t count) const {
        for (;;) {
            const ssize_t got = ::read(number_, bytes, count);
            if (got >= 0) return static_cast<std::size_t>(got);
            if (errno != EINTR) throwError(errno);
        }
    }

private:
    int number_;
};

/// Reads to the end, or until there are that many bytes.
Data readUpTo(const Descriptor& file, std::size_t count) {
    Data bytes;
    // A file tells its size, and one byte more finds its end without another growth.
    const std::size_t size = file.size();
    bytes.resize(std::min(count, size > 0 ? size + 1 : PortionSize));
    std::size_t length = 0;
    while (const std::size_t got = file.read(bytes.data() + length, bytes.size() - length)) {
        length += got;
        if (length == count) break;
        if (length == bytes.size()) bytes.resize(std::min(count, 2 * length));
    }
    bytes.resize(length);
    return bytes;
}

/// One inflation, of all members.
class Inflation {
public:
    explicit Inflation(Bytes bytes) : rest_(bytes) {}

    /// Inflates into a portion and gives how much came out; 0 only at the end.
    std::size_t next(std::span<std::uint8_t> portion) {
        std::size_t made = 0;
        while (made < portion.size() && !isAtEnd_) made += step(portion.subspan(made));
        return made;
    }

private:
    std::size_t step(std::span<std::uint8_t> room) {
        const InflateStream::Step step = stream_.inflate(rest_, room);
        rest_ = rest_.subspan(step.taken);
        if (step.state == InflateStream::State::End)
            endMember();
        else if (step.state == InflateStream::State::Damaged || step.taken + step.made == 0)
            throw InputError(std::string(Damaged));
        return step.made;
    }

    /// Goes on with the next member, if there is one; zeros may fill up a block of a tape.
    void endMember() {
        isAtEnd_ = std::ranges::all_of(rest_, [](std::uint8_t byte) { return byte == 0; });
        if (isAtEnd_) return;
        if (!isGzip(rest_)) throw InputError("more bytes after the end of the compressed data");
        stream_.reset();
    }

    InflateStream stream_;
    Bytes rest_;
    bool isAtEnd_ = false;
};

}  // namespace

Data readFile(const std::string& name) {
    if (isRemote(name)) return readRemote(name).bytes;
    const Descriptor file(name);
    if (!file.isDevice()) return readUpTo(file, std::numeric_limits<std::size_t>::max());
    Data bytes = readUpTo(file, DeviceLimit + 1);
    if (bytes.size() > DeviceLimit) throw InputError("a device without an end");
    return bytes;
}

Data readHead(const std::string& name, std::size_t count) {
    return readUpTo(Descriptor(name), count);
}

bool isGzip(Bytes bytes) {
    return bytes.size() > 3 && bytes[0] == 0x1F && bytes[1] == 0x8B && bytes[2] == 8;
}

Data inflated(Bytes bytes, std::size_t limit) {
    Inflation inflation(bytes);
    Data out;
    Data portion(PortionSize);
    while (const std::size_t count = inflation.next(portion)) {
        if (count > limit - out.size())
            throw InputError(fmt::format("more than {} bytes come out", limit));
        out.insert(out.end(), portion.begin(),
                   portion.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return out;
}

Data inflatedHead(Bytes bytes, std::size_t count) {
    Data head(count);
    try {
        head.resize(Inflation(bytes).next(head));
    } catch (const InputError&) {
        head.clear();
    }
    return head;
}

}  // namespace velmo::tool
