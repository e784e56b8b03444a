// Two buffers: one of bytes as they are in the file, which only packed ones need, and one of those
// that are handed out. A large piece that was asked for once does not keep its memory.
#include <velmocore/gather/InputStream.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <velmocore/storage/InflateStream.h>

#include "gather/GatherErrors.h"

namespace velmo {
namespace {

constexpr std::size_t PortionSize = std::size_t{1} << 17;
/// A buffer above this is given back when it is empty.
constexpr std::size_t LastingSize = std::size_t{1} << 21;
constexpr std::uint8_t GzipMark = 0x1F;

Error errorOfSystem(int number) {
    return {.domain = u"posix",
            .code = number,
            .text = String::fromUTF8(std::generic_category().message(number))};
}

/// Bytes of which the front is taken off.
class Buffer {
public:
    Bytes bytes() const { return Bytes(data_).subspan(start_, end_ - start_); }
    void skip(std::size_t count) {
        start_ += count;
        if (start_ < end_) return;
        start_ = end_ = 0;
        if (data_.size() > LastingSize) data_ = Data();
    }
    /// Room for a portion more behind what there is.
    std::span<std::uint8_t> room() {
        if (data_.size() - end_ < PortionSize && start_ > data_.size() / 2) {
            std::memmove(data_.data(), data_.data() + start_, end_ - start_);
            end_ -= std::exchange(start_, 0);
        }
        if (data_.size() - end_ < PortionSize)
            data_.resize(std::max(2 * data_.size(), end_ + PortionSize));
        return std::span(data_).subspan(end_, PortionSize);
    }
    void add(std::size_t count) { end_ += count; }

private:
    Data data_;
    std::size_t start_ = 0, end_ = 0;
};

}  // namespace

struct InputStream::State {
    enum class Packing { Unknown, None, Gzip, Over };

    int file = -1;
    bool isOwned = false;
    Data memory;  ///< in the place of a file
    std::uint64_t position = 0, size = 0;
    Packing packing = Packing::Unknown;
    Buffer out, raw;
    std::optional<InflateStream> inflation;
    bool isInMember = false;
    std::optional<Error> error;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (isOwned && file >= 0) ::close(file);
    }

    /// 0 at the end, and after an error.
    std::size_t readInto(std::span<std::uint8_t> room) {
        std::size_t count = 0;
        if (file < 0) {
            count = std::min(room.size(), memory.size() - static_cast<std::size_t>(position));
            if (count > 0) std::memcpy(room.data(), memory.data() + position, count);
        } else {
            ssize_t got = 0;
            do got = ::read(file, room.data(), room.size());
            while (got < 0 && errno == EINTR);
            if (got < 0) error = errorOfSystem(errno);
            count = got > 0 ? static_cast<std::size_t>(got) : 0;
        }
        position += count;
        return count;
    }

    bool fillRaw() {
        const std::size_t count = readInto(raw.room());
        raw.add(count);
        return count > 0;
    }

    bool fillPlainly() {
        const std::size_t count = readInto(out.room());
        out.add(count);
        return count > 0;
    }

    /// The first bytes tell; they go where they belong.
    bool begin() {
        const std::span<std::uint8_t> room = out.room();
        const std::size_t count = readInto(room);
        if (count == 0) return false;
        packing = room[0] == GzipMark ? Packing::Gzip : Packing::None;
        if (packing == Packing::None) {
            out.add(count);
            return true;
        }
        std::memcpy(raw.room().data(), room.data(), count);
        raw.add(count);
        inflation.emplace();
        return fillByInflating();
    }

    bool fail(const char* text) {
        packing = Packing::Over;
        if (!error) error = detail::sourceError(text);
        return false;
    }

    /// Between two members; zeros may fill up a block of a tape.
    bool hasMember() {
        if (raw.bytes().empty() && !fillRaw()) {
            packing = Packing::Over;
            return false;
        }
        if (raw.bytes()[0] == GzipMark) return true;
        if (raw.bytes()[0] != 0) return fail("more bytes after the end of the compressed data");
        packing = Packing::Over;
        return false;
    }

    bool fillByInflating() {
        for (;;) {
            if (!isInMember && !hasMember()) return false;
            isInMember = true;
            const std::span<std::uint8_t> room = out.room();
            const InflateStream::Step step = inflation->inflate(raw.bytes(), room);
            raw.skip(step.taken);
            out.add(step.made);
            if (step.state == InflateStream::State::End) {
                isInMember = false;
                inflation->reset();
            } else if (step.state == InflateStream::State::Damaged) {
                fail("damaged gzip data");
                return step.made > 0;
            }
            if (step.made > 0) return true;
            if (isInMember && raw.bytes().empty() && !fillRaw())
                return fail("the gzip data break off");
        }
    }
};

InputStream::InputStream(std::unique_ptr<State> state) : state_(std::move(state)) {}
InputStream::InputStream(InputStream&&) noexcept = default;
InputStream& InputStream::operator=(InputStream&&) noexcept = default;
InputStream::~InputStream() = default;

InputStream InputStream::ofFile(const Path& path) {
    auto state = std::make_unique<State>();
    state->file = path.isAbsent() ? -1 : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    state->isOwned = true;
    struct stat info = {};
    if (state->file < 0)
        state->error = errorOfSystem(path.isAbsent() ? ENOENT : errno);
    else if (::fstat(state->file, &info) == 0 && S_ISREG(info.st_mode))
        state->size = static_cast<std::uint64_t>(info.st_size);
    else if (S_ISDIR(info.st_mode))
        state->error = errorOfSystem(EISDIR);
    if (state->error) {
        state->error->path = path.string();
        state->packing = State::Packing::Over;
    }
    return InputStream(std::move(state));
}

InputStream InputStream::ofDescriptor(int descriptor) {
    auto state = std::make_unique<State>();
    state->file = descriptor;
    struct stat info = {};
    if (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode))
        state->size = static_cast<std::uint64_t>(info.st_size);
    return InputStream(std::move(state));
}

InputStream InputStream::ofBytes(Data bytes) {
    auto state = std::make_unique<State>();
    state->size = bytes.size();
    state->memory = std::move(bytes);
    return InputStream(std::move(state));
}

Bytes InputStream::buffered() const noexcept { return state_->out.bytes(); }

bool InputStream::fill() {
    switch (state_->packing) {
        case State::Packing::Unknown:
            return state_->begin();
        case State::Packing::None:
            return state_->fillPlainly();
        case State::Packing::Gzip:
            return state_->fillByInflating();
        case State::Packing::Over:
            break;
    }
    return false;
}

Bytes InputStream::peek(std::size_t count) {
    while (buffered().size() < count && fill()) {
    }
    return buffered();
}

std::uint64_t InputStream::skip(std::uint64_t count) {
    std::uint64_t rest = count;
    for (;;) {
        const std::uint64_t here = std::min<std::uint64_t>(rest, buffered().size());
        state_->out.skip(static_cast<std::size_t>(here));
        rest -= here;
        if (rest == 0 || !fill()) return count - rest;
    }
}

bool InputStream::isReady(int milliseconds) const {
    if (state_->file < 0 || !state_->raw.bytes().empty()) return true;
    pollfd wanted = {.fd = state_->file, .events = POLLIN, .revents = 0};
    const int count = ::poll(&wanted, 1, milliseconds);
    // A signal ends the wait and brings nothing; another error is told by whoever reads.
    return count > 0 || (count < 0 && errno != EINTR);
}

const std::optional<Error>& InputStream::error() const noexcept { return state_->error; }
std::uint64_t InputStream::position() const noexcept { return state_->position; }
std::uint64_t InputStream::size() const noexcept { return state_->size; }

}  // namespace velmo
