#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

/// Bytes that are read one after the other, of any number: of a file, of standard input or of
/// memory. Those that begin as gzip does are inflated, all members, as one stream. Only what is
/// looked at stands in memory. One thread at a time uses a stream.
///
///     InputStream stream = InputStream::ofBytes(*dataByGzippingData("tea and cup"));
///     charsOf(stream.peek(3)).substr(0, 3);     // tea
///     stream.skip(4);                           // 4
///     charsOf(stream.peek(3)).substr(0, 3);     // and
class VELMO_API InputStream {
public:
    /// A file; one that cannot be opened has no bytes, and an error.
    [[nodiscard]] static InputStream ofFile(const Path& path);
    /// An open file, which stays open and is not owned, as 0 for standard input.
    [[nodiscard]] static InputStream ofDescriptor(int descriptor);
    /// Bytes in memory, which it owns.
    [[nodiscard]] static InputStream ofBytes(Data bytes);

    InputStream(InputStream&&) noexcept;
    InputStream& operator=(InputStream&&) noexcept;
    ~InputStream();

    /// What was read and not skipped; good until the next call.
    [[nodiscard]] Bytes buffered() const noexcept;
    /// Reads more, as much as comes at once; false at the end.
    bool fill();
    /// At least so many bytes, and fewer only at the end.
    Bytes peek(std::size_t count);
    /// Passes over bytes; how many there were of them.
    std::uint64_t skip(std::uint64_t count);

    /// Whether fill() need not wait for another program; waits so long for that itself.
    [[nodiscard]] bool isReady(int milliseconds = 0) const;
    /// What ended it too early: that it could not be read, or that what is packed is damaged or
    /// breaks off. None as long as fill() gives more.
    [[nodiscard]] const std::optional<Error>& error() const noexcept;

    /// How many bytes were read, packed as they are, and how many there are; 0 if that is not
    /// known.
    [[nodiscard]] std::uint64_t position() const noexcept;
    [[nodiscard]] std::uint64_t size() const noexcept;

private:
    struct State;
    explicit InputStream(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace velmo
