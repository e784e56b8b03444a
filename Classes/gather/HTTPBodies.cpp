#include "gather/HTTPBodies.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include <velmocore/gather/InputStream.h>
#include <velmocore/storage/InflateStream.h>

#include "gather/StreamReading.h"
#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

/// The size that a line begins with; none if it begins with none.
std::optional<std::size_t> chunkSize(std::string_view line) {
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), size, 16);
    if (error != std::errc() || end == line.data()) return std::nullopt;
    const std::string_view rest(end, static_cast<std::size_t>(line.data() + line.size() - end));
    // What follows are extensions, or the spaces that some servers fill it up with.
    if (!rest.empty() && std::string_view(" \t;\r").find(rest.front()) == rest.npos)
        return std::nullopt;
    return size;
}

/// Takes a line off the front, without its end; none if no line ends.
std::optional<std::string_view> takeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    if (end == rest.npos) return std::nullopt;
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return line;
}

/// Of zlib, or without a frame, as some servers have it.
Data inflatedPlainly(Bytes bytes, InflateStream::Format format, std::size_t mostBytes) {
    constexpr std::size_t Portion = std::size_t{1} << 16;
    InflateStream stream(format);
    Data out;
    for (std::size_t length = 0;;) {
        out.resize(length + Portion);
        const auto step = stream.inflate(bytes, std::span(out).subspan(length));
        bytes = bytes.subspan(step.taken);
        length += step.made;
        out.resize(length);
        const bool isStuck = step.taken + step.made == 0;
        if (step.state != InflateStream::State::Going || isStuck || length > mostBytes) return out;
    }
}

Data inflatedBody(Bytes body, std::size_t mostBytes) {
    Data out = inflatedPlainly(body, InflateStream::Format::Any, mostBytes);
    return out.empty() ? inflatedPlainly(body, InflateStream::Format::Raw, mostBytes) : out;
}

Data gunzippedBody(Data&& body, std::size_t mostBytes) {
    InputStream stream = InputStream::ofBytes(std::move(body));
    return readBytes(stream, mostBytes + 1);
}

bool isNamed(std::string_view coding, std::string_view name) {
    return std::ranges::equal(coding, name, [](char a, char b) { return ascii::toLower(a) == b; });
}

/// The last coding of a list, which was applied last; takes it off.
std::string_view takeLastCoding(std::string_view& list) {
    const std::size_t comma = list.rfind(',');
    std::string_view coding = comma == list.npos ? list : list.substr(comma + 1);
    list = comma == list.npos ? std::string_view() : list.substr(0, comma);
    while (coding.starts_with(' ')) coding.remove_prefix(1);
    while (coding.ends_with(' ')) coding.remove_suffix(1);
    return coding;
}

}  // namespace

Data dechunked(Data&& body) {
    std::string_view rest = charsOf(body);
    Data out;
    for (bool isFirst = true;; isFirst = false) {
        const auto line = takeLine(rest);
        const auto size = line ? chunkSize(*line) : std::nullopt;
        if (!size && isFirst) return std::move(body);
        if (!size || *size == 0) return out;
        const std::string_view chunk = rest.substr(0, *size);
        out.insert(out.end(), chunk.begin(), chunk.end());
        rest.remove_prefix(chunk.size());
        if (!takeLine(rest)) return out;
    }
}

std::optional<Data> decodedBody(Data&& given, const String& contentEncoding,
                                std::size_t mostBytes) {
    Data body = std::move(given);
    const std::string codings = contentEncoding.utf8();
    for (std::string_view list = codings; !list.empty() && !body.empty();) {
        const std::string_view coding = takeLastCoding(list);
        if (isNamed(coding, "gzip") || isNamed(coding, "x-gzip"))
            body = gunzippedBody(std::move(body), mostBytes);
        else if (isNamed(coding, "deflate"))
            body = inflatedBody(body, mostBytes);
        else if (!coding.empty() && !isNamed(coding, "identity"))
            return std::nullopt;
        if (body.empty() || body.size() > mostBytes) return std::nullopt;
    }
    return body;
}

}  // namespace velmo::detail
