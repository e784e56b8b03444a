// A file with a position, read ahead and written behind in large portions.
//
// Bytes are handed out where they stand in the buffer, so that a block is never copied to be
// looked at. What is written waits in a buffer of its own, and what is read ahead is kept in step
// with it: a store may be read and changed by turns, as compaction in place does, without reading
// a portion anew for each block.
//
// What a failed write has left to write is kept: if the reason goes away, a later flush goes on
// where it broke off, and until then no flush gives true.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

#include "system/FileCalls.h"

namespace velmo::detail {

class VELMO_API BufferedFile {
public:
    enum class Access { Read, ReadAndWrite, Append };

    /// Takes over a descriptor.
    BufferedFile(FileCalls& calls, int file, Access access)
        : calls_(calls), file_(file), access_(access) {}
    ~BufferedFile();
    BufferedFile(const BufferedFile&) = delete;
    BufferedFile& operator=(const BufferedFile&) = delete;

    FileCalls& calls() const { return calls_; }
    int descriptor() const { return file_; }
    Access access() const { return access_; }

    std::uint64_t position() const { return position_; }
    /// False for what no file can have.
    bool seek(std::uint64_t position);
    /// With what has not been written yet; none if the system does not tell.
    std::optional<std::uint64_t> size();

    /// So many bytes from an offset, fewer only at the end of the file; good until the next
    /// operation. Of a file that is appended to there are none.
    Bytes view(std::uint64_t offset, std::size_t count);
    /// The same straight from the file, past the buffers, for reading here and there: how many
    /// bytes there were. What waits to be written is not seen.
    std::size_t readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
    /// Whether the last view is short because reading failed.
    bool readFailed() const { return readFailed_; }
    /// Whether bytes stand in the buffer, which writing may change.
    bool isOwn(Bytes bytes) const;

    /// Moves to where the next write goes. False if that is not known.
    bool goToEnd();
    /// Writes at the position, which moves behind it; when a file is appended to, at its end.
    bool write(Bytes bytes);
    /// Zeros, in portions.
    bool writeZeros(std::uint64_t count);
    /// Gives all that was written to the system.
    bool flush();
    /// Forgets what was written from an offset on and has not reached the system.
    void dropFrom(std::uint64_t offset);
    /// Flushes, and asks the system to store everything.
    bool synchronize();
    bool truncate(std::uint64_t length);
    /// Flushes, unlocks and closes; 0 if both succeeded, else -1.
    int close();

private:
    bool fill(std::uint64_t offset, std::size_t count);
    std::size_t writeAt(std::uint64_t offset, Bytes bytes);
    void keepInStep(std::uint64_t offset, Bytes bytes);

    FileCalls& calls_;
    int file_;
    Access access_;
    std::uint64_t position_ = 0;
    bool isAtEnd_ = false;  // known without asking, when the file is appended to

    Data ahead_;  // allocated once; aheadLength_ bytes of it are those of the file
    std::uint64_t aheadStart_ = 0;
    std::size_t aheadLength_ = 0, portion_ = 0;
    bool readFailed_ = false;

    Data behind_;
    std::uint64_t behindStart_ = 0;
};

}  // namespace velmo::detail
