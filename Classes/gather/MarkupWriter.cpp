#include "gather/MarkupWriter.h"

#include <fmt/core.h>

#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

bool isHarmful(char16_t unit) {
    const bool isControl = (unit < 0x20 && unit != u'\n' && unit != u'\t') ||
                           (unit >= 0x7F && unit < 0xA0) || unit >= 0xFFFE;
    const bool changesOrder = unit == 0x200E || unit == 0x200F ||
                              (unit >= 0x202A && unit <= 0x202E) ||
                              (unit >= 0x2066 && unit <= 0x2069);
    return isControl || changesOrder;
}

std::string_view escapeOf(char16_t unit) {
    switch (unit) {
        case u'<':
            return "&lt;";
        case u'>':
            return "&gt;";
        case u'&':
            return "&amp;";
        case u'"':
            return "&quot;";
        case u'\'':
            return "&#39;";
        default:
            return {};
    }
}

}  // namespace

MarkupWriter& MarkupWriter::text(std::u16string_view units) {
    std::size_t start = 0;
    const auto copyTo = [&](std::size_t end) {
        out_ += utf8(units.substr(start, end - start));
        start = end + 1;
    };
    for (std::size_t i = 0; i < units.size(); ++i) {
        const std::string_view escape = escapeOf(units[i]);
        if (escape.empty() && !isHarmful(units[i])) continue;
        copyTo(i);
        out_ += escape;
    }
    copyTo(units.size());
    return *this;
}

MarkupWriter& MarkupWriter::text(std::string_view utf8) { return text(String::fromUTF8(utf8)); }

MarkupWriter& MarkupWriter::number(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
    out_ += digits;
    return *this;
}

std::string escapedInAddress(std::string_view utf8) {
    std::string escaped;
    for (const char byte : utf8) {
        const bool isPlain = ascii::isLetter(byte) || ascii::isDigit(byte) ||
                             std::string_view("-._~").find(byte) != std::string_view::npos;
        escaped += isPlain ? std::string(1, byte)
                           : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return escaped;
}

}  // namespace velmo::detail
