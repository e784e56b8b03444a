#include <velmocore/storage/Compression.h>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace velmo {
namespace {

constexpr int ZlibWindowBits = 15, GzipWindowBits = 31, AnyWindowBits = 47;
constexpr int MemoryLevel = 8;
constexpr std::size_t LongestInput = 0xFFFFFFFF;
constexpr std::size_t PortionSize = 16384;

int usableLevel(int level) {
    return level == DefaultCompressionLevel ? level : std::clamp(level, 1, 9);
}

z_stream streamOver(Bytes bytes) {
    z_stream stream = {};
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    return stream;
}

/// Runs the step, with an output portion on the stack each time, until it reports the end of
/// the stream. False if it reports anything else, or more than the limit comes out.
template <class Step>
bool runToEnd(z_stream& stream, Data& out, std::size_t limit, Step step) {
    std::array<std::uint8_t, PortionSize> portion;
    for (;;) {
        stream.next_out = portion.data();
        stream.avail_out = static_cast<uInt>(portion.size());
        const int status = step(stream);
        if (status != Z_OK && status != Z_STREAM_END) return false;
        const std::size_t made = portion.size() - stream.avail_out;
        const std::size_t taken = std::min(made, limit - out.size());
        out.insert(out.end(), portion.begin(),
                   portion.begin() + static_cast<std::ptrdiff_t>(taken));
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

std::optional<Data> dataByCompressingBytes(Bytes bytes, int compressionLevel, bool useGzip) {
    if (bytes.empty() || bytes.size() > LongestInput) return std::nullopt;
    z_stream stream = streamOver(bytes);
    if (deflateInit2(&stream, usableLevel(compressionLevel), Z_DEFLATED,
                     useGzip ? GzipWindowBits : ZlibWindowBits, MemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    const StreamGuard<deflateEnd> guard{stream};
    Data result;
    result.reserve(bytes.size() / 4);
    if (!runToEnd(stream, result, NoInflatedLimit,
                  [](z_stream& s) { return deflate(&s, Z_FINISH); }))
        return std::nullopt;
    return result;
}

bool setDataByInflating(Data& data, Bytes bytes, std::size_t maximumLength) {
    if (bytes.empty() || bytes.size() > LongestInput) return false;
    z_stream stream = streamOver(bytes);
    if (inflateInit2(&stream, AnyWindowBits) != Z_OK) return false;
    const StreamGuard<inflateEnd> guard{stream};
    const Data former = std::exchange(data, {});  // may hold the bytes
    return runToEnd(stream, data, maximumLength,
                    [](z_stream& s) { return inflate(&s, Z_NO_FLUSH); }) &&
           stream.avail_in == 0;
}

std::optional<Data> dataByInflatingData(Bytes bytes, std::size_t maximumLength) {
    Data result;
    if (!setDataByInflating(result, bytes, maximumLength)) return std::nullopt;
    return result;
}

}  // namespace velmo
