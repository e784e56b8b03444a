#include <velmocore/storage/InflateStream.h>

#include <zlib.h>

#include <algorithm>
#include <new>

#include "storage/CompressionPieces.h"

namespace velmo {

// The largest window, without a frame; 32 above it is zlib or gzip by the first bytes.
constexpr int RawWindowBits = -15, AnyWindowBits = 47;

struct InflateStream::Stream {
    z_stream zlib = {};

    explicit Stream(int windowBits) {
        if (inflateInit2(&zlib, windowBits) != Z_OK) throw std::bad_alloc();
    }
    ~Stream() { inflateEnd(&zlib); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
};

InflateStream::InflateStream(Format format)
    : stream_(std::make_unique<Stream>(format == Format::Raw ? RawWindowBits : AnyWindowBits)) {}
InflateStream::InflateStream(InflateStream&&) noexcept = default;
InflateStream& InflateStream::operator=(InflateStream&&) noexcept = default;
InflateStream::~InflateStream() = default;

InflateStream::Step InflateStream::inflate(Bytes input, std::span<std::uint8_t> output) {
    z_stream& zlib = stream_->zlib;
    const auto given = static_cast<uInt>(std::min(input.size(), detail::LargestPiece));
    const auto room = static_cast<uInt>(std::min(output.size(), detail::LargestPiece));
    zlib.next_in = const_cast<Bytef*>(input.data());
    zlib.avail_in = given;
    zlib.next_out = output.data();
    zlib.avail_out = room;
    const int status = ::inflate(&zlib, Z_NO_FLUSH);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    const bool isGoing = status == Z_OK || status == Z_BUF_ERROR;
    return {given - zlib.avail_in, room - zlib.avail_out,
            status == Z_STREAM_END ? State::End
            : isGoing              ? State::Going
                                   : State::Damaged};
}

void InflateStream::reset() { inflateReset(&stream_->zlib); }

}  // namespace velmo
