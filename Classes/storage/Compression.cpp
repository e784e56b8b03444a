// What is in memory as a whole is given to libdeflate, which is several times as fast. What that
// refuses, for its size or because it is damaged, goes to zlib: it holds no more than comes out, and
// what came out of damaged bytes is kept.
//
// zlib's streams under the two operations. It counts what goes in in 32 bits and what comes out is
// not known ahead, so both go in portions: the input as views of the caller's bytes, the output
// through a buffer on the stack, which is checked against the limit before anything is kept.
#include <velmocore/storage/Compression.h>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "storage/CompressionPieces.h"
#include "storage/WholeCompression.h"

namespace velmo {
namespace {

// A window of 2^15 bytes, the largest; zlib adds 16 to it for gzip and 32 for either format, told
// by the first bytes. The memory level is zlib's own default.
constexpr int ZlibWindowBits = 15, GzipWindowBits = 31, AnyWindowBits = 47;
constexpr int MemoryLevel = 8;
/// What the usual level is.
constexpr int UsualLevel = 6;
/// Bytes.
constexpr std::size_t PortionSize = 16384;

/// 0, zlib's level that only stores, is no level here, and counts as the nearest one.
int usableLevel(int level) {
    return level == DefaultCompressionLevel ? level : std::clamp(level, 1, 9);
}

/// The input of a stream, which zlib counts in 32 bits: longer ones are handed on in pieces.
class Input {
public:
    Input(Bytes bytes, std::size_t piece) : rest_(bytes), piece_(piece) {}

    /// Gives the stream the next piece when it has used up the one before.
    void feed(z_stream& stream) {
        if (stream.avail_in > 0) return;
        const Bytes next = rest_.first(std::min(rest_.size(), piece_));
        stream.next_in = const_cast<Bytef*>(next.data());
        stream.avail_in = static_cast<uInt>(next.size());
        rest_ = rest_.subspan(next.size());
    }
    /// Whether the stream has its last piece.
    bool isLast() const { return rest_.empty(); }

private:
    Bytes rest_;
    std::size_t piece_;
};

/// Runs the step, with an output portion on the stack each time, until it reports the end of
/// the stream. False if it reports anything else, or more than the limit comes out.
template <class Step>
bool runToEnd(z_stream& stream, Input& input, Data& out, std::size_t limit, Step step) {
    std::array<std::uint8_t, PortionSize> portion;
    for (;;) {
        input.feed(stream);
        stream.next_out = portion.data();
        stream.avail_out = static_cast<uInt>(portion.size());
        // A stream that breaks off ends here too: when nothing is left to go in, zlib reports that
        // it cannot go on, so that the loop always ends.
        const int status = step(stream);
        if (status != Z_OK && status != Z_STREAM_END) return false;
        const std::size_t made = portion.size() - stream.avail_out;
        const std::size_t taken = std::min(made, limit - out.size());
        out.insert(out.end(), portion.begin(),
                   portion.begin() + static_cast<std::ptrdiff_t>(taken));
        // What fits was kept, as the caller may want the start of what was too long.
        if (taken < made) return false;
        if (status == Z_STREAM_END) return true;
    }
}

/// Frees the stream's state at the end of the scope.
template <int (*End)(z_streamp)>
struct StreamGuard {
    z_stream& stream;
    ~StreamGuard() { End(&stream); }
};

}  // namespace

std::optional<Data> detail::deflated(Bytes bytes, int level, bool useGzip, std::size_t piece) {
    if (bytes.empty()) return std::nullopt;
    z_stream stream = {};
    if (deflateInit2(&stream, usableLevel(level), Z_DEFLATED,
                     useGzip ? GzipWindowBits : ZlibWindowBits, MemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    const StreamGuard<deflateEnd> guard{stream};
    Input input(bytes, piece);
    Data result;
    result.reserve(bytes.size() / 4);
    if (!runToEnd(stream, input, result, NoInflatedLimit,
                  [&](z_stream& s) { return deflate(&s, input.isLast() ? Z_FINISH : Z_NO_FLUSH); }))
        return std::nullopt;
    return result;
}

bool detail::inflateInto(Data& data, Bytes bytes, std::size_t maximumLength, std::size_t piece) {
    if (bytes.empty()) return false;
    z_stream stream = {};
    if (inflateInit2(&stream, AnyWindowBits) != Z_OK) return false;
    const StreamGuard<inflateEnd> guard{stream};
    Input input(bytes, piece);
    const Data former = std::exchange(data, {});  // may hold the bytes
    return runToEnd(stream, input, data, maximumLength,
                    [](z_stream& s) { return inflate(&s, Z_NO_FLUSH); }) &&
           // Bytes behind the end of the stream are damage, another gzip member too.
           stream.avail_in == 0 && input.isLast();
}

std::optional<Data> dataByCompressingBytes(Bytes bytes, int compressionLevel, bool useGzip) {
    const int level =
        compressionLevel == DefaultCompressionLevel ? UsualLevel : usableLevel(compressionLevel);
    std::optional<Data> whole = detail::deflatedWhole(bytes, level, useGzip);
    return whole ? std::move(whole) : detail::deflated(bytes, compressionLevel, useGzip);
}

bool setDataByInflating(Data& data, Bytes bytes, std::size_t maximumLength) {
    if (std::optional<Data> whole = detail::inflatedWhole(bytes, maximumLength)) {
        data = std::move(*whole);
        return true;
    }
    return detail::inflateInto(data, bytes, maximumLength);
}

std::optional<Data> dataByInflatingData(Bytes bytes, std::size_t maximumLength) {
    Data result;
    if (!setDataByInflating(result, bytes, maximumLength)) return std::nullopt;
    return result;
}

}  // namespace velmo
