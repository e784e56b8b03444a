// Markup of constants and foreign text: what is not a literal of this program is escaped, always.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Only a literal can be markup.
class Literal {
public:
    template <std::size_t Size>
    consteval Literal(const char (&text)[Size]) : text_(text, Size - 1) {}
    constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

/// Writes HTML or XML in UTF-8.
class MarkupWriter {
public:
    MarkupWriter& operator<<(Literal markup) {
        out_ += markup.text();
        return *this;
    }
    /// Text, also within quotes. Control characters are left out, and those that change the order in
    /// which text is read: nothing that they could do belongs on somebody else's page.
    MarkupWriter& text(std::u16string_view units);
    MarkupWriter& text(std::string_view utf8);
    MarkupWriter& number(std::size_t number);

    std::string take() { return std::move(out_); }

private:
    std::string out_;
};

/// Of a part of an address; all but letters, digits and -._~ is escaped.
std::string escapedInAddress(std::string_view utf8);

}  // namespace velmo::detail
