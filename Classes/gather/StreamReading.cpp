#include "gather/StreamReading.h"

#include <algorithm>

namespace velmo::detail {

std::optional<Data> readAll(InputStream& stream, std::size_t mostBytes) {
    Data all = readBytes(stream, mostBytes);
    if (!stream.peek(1).empty()) return std::nullopt;
    return all;
}

Data readBytes(InputStream& stream, std::size_t count) {
    Data bytes;
    while (bytes.size() < count) {
        const Bytes here = stream.peek(1);
        if (here.empty()) break;
        const std::size_t taken = std::min(here.size(), count - bytes.size());
        bytes.insert(bytes.end(), here.begin(), here.begin() + static_cast<std::ptrdiff_t>(taken));
        stream.skip(taken);
    }
    return bytes;
}

}  // namespace velmo::detail
