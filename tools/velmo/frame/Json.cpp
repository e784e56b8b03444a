// With JsonRows.cpp, which reads, the only source that knows the JSON library. It escapes the
// pieces of texts and writes numbers; what it cannot do is done here: lone surrogates, and writing
// in pieces.
#include "Json.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Terminal.h"

namespace velmo::tool {
namespace {

using Sink = FunctionRef<void(std::string_view)>;

/// So many units are escaped at a time: few enough to stay in the cache.
constexpr std::size_t PieceUnits = 4096;

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// What JSON lets pass but a terminal may obey.
bool isLateControl(char16_t unit) { return (unit >= 0x7F && unit < 0xA0) || turnsDirection(unit); }

/// How many units from the start on the library can write: up to the first lone surrogate or
/// late control, and no more than a piece. No pair is split.
std::size_t plainUnits(std::u16string_view text) {
    std::size_t i = 0;
    while (i < text.size() && i < PieceUnits) {
        const bool isPair = isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1]);
        if (!isPair && (isHigh(text[i]) || isLow(text[i]) || isLateControl(text[i]))) break;
        i += isPair ? 2 : 1;
    }
    return i;
}

/// Whether UTF-8 can stand in JSON as it is.
bool needsNoEscape(std::string_view bytes) {
    return std::ranges::none_of(bytes, [](char byte) {
        return byte == '"' || byte == '\\' || static_cast<unsigned char>(byte) < 0x20;
    });
}

/// Most pieces go out as they are; the library, which copies each, escapes the others.
void writePiece(const std::string& bytes, Sink sink) {
    if (needsNoEscape(bytes)) return sink(bytes);
    const std::string quoted = nlohmann::json(bytes).dump();
    sink(std::string_view(quoted).substr(1, quoted.size() - 2));
}

void writeText(std::u16string_view text, Sink sink) {
    sink("\"");
    while (!text.empty()) {
        if (const std::size_t plain = plainUnits(text)) {
            writePiece(utf8(text.substr(0, plain)), sink);
            text.remove_prefix(plain);
        } else {
            sink(fmt::format("\\u{:04x}", static_cast<unsigned>(text.front())));
            text.remove_prefix(1);
        }
    }
    sink("\"");
}

struct Writer {
    Sink sink;

    void operator()(std::monostate) const { sink("null"); }
    void operator()(bool value) const { sink(value ? "true" : "false"); }
    void operator()(std::int64_t number) const { sink(std::to_string(number)); }
    void operator()(std::uint64_t number) const { sink(std::to_string(number)); }
    void operator()(double number) const { sink(nlohmann::json(number).dump()); }
    void operator()(const std::string& text) const {
        const bool isAscii =
            std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; });
        if (!isAscii || !needsNoEscape(text)) return writeText(String::fromUTF8(text), sink);
        sink("\"");
        sink(text);
        sink("\"");
    }
    void operator()(std::u16string_view text) const { writeText(text, sink); }
    void operator()(const Json::Array& values) const {
        sink("[");
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i > 0) sink(",");
            values[i].write(sink);
        }
        sink("]");
    }
    void operator()(const Json::Object& members) const {
        sink("{");
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i > 0) sink(",");
            members[i].name.write(sink);
            sink(":");
            members[i].value.write(sink);
        }
        sink("}");
    }
};

}  // namespace

Json::Json() = default;
Json::Json(bool value) : value_(value) {}
Json::Json(double number) : value_(number) {}
Json::Json(const char* text) : value_(std::string(text)) {}
Json::Json(std::string_view text) : value_(std::string(text)) {}
Json::Json(std::string text) : value_(std::move(text)) {}
Json::Json(String text) {
    if (!text.isAbsent()) value_ = std::move(text);
}
Json::Json(std::u16string text) : value_(std::move(text)) {}
Json::Json(Array values) : value_(std::move(values)) {}
Json::Json(Object members) : value_(std::move(members)) {}
Json::Json(const Json&) = default;
Json::Json(Json&&) noexcept = default;
Json& Json::operator=(Json other) noexcept {
    value_.swap(other.value_);
    return *this;
}
Json::~Json() = default;

const Json::Object* Json::members() const { return std::get_if<Object>(&value_); }
const Json::Array* Json::values() const { return std::get_if<Array>(&value_); }
bool Json::isNull() const { return value_.index() == 0; }

std::string Json::plain() const {
    if (const auto* bytes = std::get_if<std::string>(&value_)) return *bytes;
    if (const auto* text = std::get_if<String>(&value_)) return text->utf8();
    std::string line;
    write([&line](std::string_view piece) { line += piece; });
    return line;
}

void Json::write(Sink sink) const { std::visit(Writer{sink}, value_); }

JsonArray jsonArray(const std::vector<String>& strings) { return {strings.begin(), strings.end()}; }

}  // namespace velmo::tool
