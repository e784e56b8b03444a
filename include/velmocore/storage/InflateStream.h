#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// Inflates bytes that come piece by piece, into pieces of the caller's own size, so that what is
/// inflated never needs to be in memory as a whole. One thread at a time uses a stream.
///
///     const Data packed = *dataByGzippingData("tea");
///     std::uint8_t out[8];
///     InflateStream stream;
///     const InflateStream::Step step = stream.inflate(packed, out);
///     step.made;                                       // 3
///     step.state == InflateStream::State::End;         // true
class VELMO_API InflateStream {
public:
    /// What stands around the bytes.
    enum class Format : std::uint8_t {
        Any,  ///< zlib or gzip, told by the first bytes
        Raw,  ///< without a frame
    };
    /// How far it is.
    enum class State : std::uint8_t {
        Going,    ///< more comes, of what was given or of what is still to be given
        End,      ///< of a zlib stream, or of a member of a gzip file
        Damaged,  ///< nothing more comes
    };
    /// What one call did.
    struct Step {
        std::size_t taken = 0;  ///< bytes of the input
        std::size_t made = 0;   ///< bytes of the output
        State state = State::Going;
    };

    /// At the start of a stream of that format.
    explicit InflateStream(Format format = Format::Any);
    InflateStream(InflateStream&&) noexcept;
    InflateStream& operator=(InflateStream&&) noexcept;
    ~InflateStream();

    /// Goes on until the input is used up, the output is full, or the stream is over. A step that
    /// neither takes nor makes anything waits for more input.
    Step inflate(Bytes input, std::span<std::uint8_t> output);
    /// For another stream of the format, as the next member of a gzip file.
    void reset();

private:
    struct Stream;
    std::unique_ptr<Stream> stream_;
};

}  // namespace velmo
