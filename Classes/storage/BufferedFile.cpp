// Reading ahead and writing behind. The two buffers meet in two places only: before anything is
// read, what waits is written; and what is written is put into the bytes read ahead as well.
#include "storage/BufferedFile.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <limits>
#include <utility>

#include <velmocore/platform/Log.h>

namespace velmo::detail {
namespace {

// A look at a single place reads little; going on from there, more and more.
constexpr std::size_t LeastPortion = 4096, LargestPortion = std::size_t{1} << 20;
constexpr std::size_t ZeroPortion = 2048;
constexpr std::uint64_t FarthestPosition = std::numeric_limits<off_t>::max();

}  // namespace

BufferedFile::~BufferedFile() {
    // Nobody is left to be told but the log.
    if (close() != 0) log("A store was closed, and not all that was written to it could be stored");
}

bool BufferedFile::seek(std::uint64_t position) {
    if (position > FarthestPosition) return false;
    position_ = position;
    isAtEnd_ = false;
    return true;
}

std::optional<std::uint64_t> BufferedFile::size() {
    struct stat info;
    if (calls_.fstat(file_, info) != 0 || info.st_size < 0) return std::nullopt;
    const auto stored = static_cast<std::uint64_t>(info.st_size);
    return behind_.empty() ? stored : std::max(stored, behindStart_ + behind_.size());
}

std::size_t BufferedFile::readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got =
            calls_.pread(file_, bytes + done, count - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        readFailed_ = got < 0;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::size_t BufferedFile::writeAt(std::uint64_t offset, Bytes bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put = calls_.pwrite(file_, bytes.data() + done, bytes.size() - done,
                                          static_cast<off_t>(offset + done));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) break;
        done += static_cast<std::size_t>(put);
    }
    return done;
}

bool BufferedFile::fill(std::uint64_t offset, std::size_t count) {
    const std::uint64_t aheadEnd = aheadStart_ + aheadLength_;
    const bool goesOn = aheadLength_ > 0 && offset >= aheadStart_ && offset <= aheadEnd;
    portion_ = goesOn ? std::min(2 * portion_, LargestPortion) : LeastPortion;
    if (count > portion_) {
        // A length that is not true must not become memory.
        const std::uint64_t end = size().value_or(0);
        count = offset < end
                    ? static_cast<std::size_t>(std::min<std::uint64_t>(count, end - offset))
                    : 0;
    }
    const std::size_t wanted = std::max(count, portion_);
    const std::size_t kept = goesOn ? static_cast<std::size_t>(aheadEnd - offset) : 0;
    const std::size_t start = static_cast<std::size_t>(offset - aheadStart_);
    if (ahead_.size() < wanted) {
        Data larger(std::max(wanted, std::min(2 * ahead_.size(), LargestPortion)));
        if (kept > 0) std::copy_n(ahead_.data() + start, kept, larger.data());
        ahead_.swap(larger);
    } else if (kept > 0) {
        std::memmove(ahead_.data(), ahead_.data() + start, kept);
    }
    aheadStart_ = offset;
    aheadLength_ = kept;
    if (!flush()) return false;
    aheadLength_ += readAt(offset + kept, ahead_.data() + kept, wanted - kept);
    return true;
}

Bytes BufferedFile::view(std::uint64_t offset, std::size_t count) {
    readFailed_ = false;
    if (access_ == Access::Append || offset > FarthestPosition - count) return {};
    const bool isThere = offset >= aheadStart_ && offset + count <= aheadStart_ + aheadLength_;
    if (!isThere && !fill(offset, count)) readFailed_ = true;
    const std::size_t skipped = static_cast<std::size_t>(offset - aheadStart_);
    return Bytes(ahead_.data(), aheadLength_)
        .subspan(skipped, std::min(count, aheadLength_ - skipped));
}

bool BufferedFile::isOwn(Bytes bytes) const {
    const std::less<const std::uint8_t*> isBelow;
    return !isBelow(bytes.data(), ahead_.data()) &&
           isBelow(bytes.data(), ahead_.data() + ahead_.size());
}

void BufferedFile::keepInStep(std::uint64_t offset, Bytes bytes) {
    const std::uint64_t first = std::max(offset, aheadStart_);
    const std::uint64_t last = std::min(offset + bytes.size(), aheadStart_ + aheadLength_);
    if (first < last)
        std::copy_n(bytes.data() + (first - offset), last - first,
                    ahead_.data() + (first - aheadStart_));
}

/// Where a file that is appended to is written. No place is taken for the end that is not known to
/// be: a block might be written over others.
bool BufferedFile::goToEnd() {
    if (access_ != Access::Append || isAtEnd_) return true;
    const auto end = size();
    if (!end) return false;
    position_ = *end;
    return isAtEnd_ = true;
}

bool BufferedFile::write(Bytes bytes) {
    if (!goToEnd()) return false;
    if (position_ > FarthestPosition - bytes.size()) return false;
    const bool goesOn = position_ == behindStart_ + behind_.size();
    if ((!goesOn || behind_.size() + bytes.size() > LargestPortion) && !flush()) return false;
    if (behind_.empty()) behindStart_ = position_;
    std::size_t done = bytes.size();
    if (bytes.size() >= LargestPortion)
        done = writeAt(position_, bytes);
    else
        behind_.insert(behind_.end(), bytes.begin(), bytes.end());
    keepInStep(position_, bytes.subspan(0, done));
    position_ += done;
    return done == bytes.size();
}

bool BufferedFile::writeZeros(std::uint64_t count) {
    static constexpr std::uint8_t Zeros[ZeroPortion] = {};
    for (; count > 0; count -= std::min<std::uint64_t>(count, ZeroPortion))
        if (!write(Bytes(Zeros,
                         static_cast<std::size_t>(std::min<std::uint64_t>(count, ZeroPortion)))))
            return false;
    return true;
}

bool BufferedFile::flush() {
    const std::size_t done = writeAt(behindStart_, behind_);
    behind_.erase(behind_.begin(), behind_.begin() + static_cast<std::ptrdiff_t>(done));
    behindStart_ += done;
    return behind_.empty();
}

void BufferedFile::dropFrom(std::uint64_t offset) {
    if (offset < behindStart_ + behind_.size())
        behind_.resize(offset > behindStart_ ? static_cast<std::size_t>(offset - behindStart_) : 0);
    if (offset < aheadStart_ + aheadLength_) aheadLength_ = 0;
    isAtEnd_ = false;
}

bool BufferedFile::synchronize() {
    if (!flush()) return false;
    int result;
    do result = calls_.fsync(file_);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

bool BufferedFile::truncate(std::uint64_t length) {
    if (length > FarthestPosition || !flush()) return false;
    int result;
    do result = calls_.ftruncate(file_, static_cast<off_t>(length));
    while (result != 0 && errno == EINTR);
    if (result == 0) aheadLength_ = 0;
    isAtEnd_ = false;
    return result == 0;
}

int BufferedFile::close() {
    if (file_ < 0) return 0;
    const bool isWritten = flush();
    const int file = std::exchange(file_, -1);
    calls_.flock(file, LOCK_UN);  // closing would do it too
    return calls_.close(file) == 0 && isWritten ? 0 : -1;
}

}  // namespace velmo::detail
