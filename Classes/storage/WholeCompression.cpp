// How much will come out is not known ahead. A buffer that is too small is tried again with a larger
// one; what makes far more of itself than texts do is left to the stream, which holds no more than
// there is, and so is what is very long.
#include "storage/WholeCompression.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <new>

namespace velmo::detail {
namespace {

/// What is shorter is not compressed by libdeflate, but stored.
constexpr std::size_t LeastInput = 64;
constexpr std::size_t LargestInput = std::size_t{64} << 20, LargestOutput = std::size_t{256} << 20;
constexpr std::size_t FirstOutput = 1024, UsualRatio = 6, Growth = 4;

constexpr std::uint8_t GzipMagic = 0x1F;
constexpr std::size_t GzipFlags = 3, LeastGzip = 18;
/// A checksum of the header follows it, which would not be looked at.
constexpr std::uint8_t HasHeaderChecksum = 2;

using Compressor = std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)>;
using Decompressor =
    std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;
using Buffer = std::unique_ptr<std::uint8_t[]>;

/// Uninitialised; null if there is no memory for it.
Buffer bufferOf(std::size_t size) { return Buffer(new (std::nothrow) std::uint8_t[size]); }

Data copyOf(const Buffer& buffer, std::size_t size) {
    return Data(buffer.get(), buffer.get() + size);
}

libdeflate_result inflateOnce(libdeflate_decompressor* inflater, Bytes bytes, std::uint8_t* out,
                              std::size_t space, std::size_t& made) {
    const auto inflate =
        bytes[0] == GzipMagic ? libdeflate_gzip_decompress_ex : libdeflate_zlib_decompress_ex;
    std::size_t used = 0;
    const auto result = inflate(inflater, bytes.data(), bytes.size(), out, space, &used, &made);
    // Bytes behind the end of the stream are damage.
    return result == LIBDEFLATE_SUCCESS && used < bytes.size() ? LIBDEFLATE_BAD_DATA : result;
}

bool hasHeaderChecksum(Bytes bytes) {
    return bytes[0] == GzipMagic && bytes.size() >= LeastGzip &&
           (bytes[GzipFlags] & HasHeaderChecksum) != 0;
}

}  // namespace

std::optional<Data> deflatedWhole(Bytes bytes, int level, bool useGzip) {
    if (bytes.size() < LeastInput || bytes.size() > LargestInput) return std::nullopt;
    const Compressor deflater(libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    if (!deflater) return std::nullopt;
    const auto bound = useGzip ? libdeflate_gzip_compress_bound : libdeflate_zlib_compress_bound;
    const auto deflate = useGzip ? libdeflate_gzip_compress : libdeflate_zlib_compress;
    const std::size_t space = bound(deflater.get(), bytes.size());
    const Buffer out = bufferOf(space);
    if (!out) return std::nullopt;
    const std::size_t made = deflate(deflater.get(), bytes.data(), bytes.size(), out.get(), space);
    return made > 0 ? std::optional(copyOf(out, made)) : std::nullopt;
}

std::optional<Data> inflatedWhole(Bytes bytes, std::size_t maximumLength) {
    if (bytes.empty() || bytes.size() > LargestInput || hasHeaderChecksum(bytes))
        return std::nullopt;
    const Decompressor inflater(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    if (!inflater) return std::nullopt;
    const std::size_t most = std::min(maximumLength, LargestOutput);
    for (std::size_t space = FirstOutput + UsualRatio * bytes.size();; space *= Growth) {
        space = std::min(space, most);
        const Buffer out = bufferOf(space);
        if (!out) return std::nullopt;
        std::size_t made = 0;
        const auto result = inflateOnce(inflater.get(), bytes, out.get(), space, made);
        if (result == LIBDEFLATE_SUCCESS) return copyOf(out, made);
        if (result != LIBDEFLATE_INSUFFICIENT_SPACE || space == most) return std::nullopt;
    }
}

}  // namespace velmo::detail
