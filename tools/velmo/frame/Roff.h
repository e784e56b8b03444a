// A man page as it is written: the macros of man(7), and the texts of the manual in them.
#pragma once

#include <string>
#include <string_view>

namespace velmo::tool {

/// Text as groff reads it; names of options are bold.
std::string roffOf(std::string_view text);
/// The same without any bold.
std::string roffEscaped(std::string_view text);
std::string bold(std::string_view text);
std::string italic(std::string_view text);

class RoffPage {
public:
    RoffPage(std::string_view name, char section);

    void section(std::string_view heading);
    void subsection(std::string_view heading);
    void paragraph() { out_ += ".PP\n"; }
    /// Lines that begin where they stand.
    void verbatim(std::string_view lines);
    /// A term, which is roff, and what it means.
    void term(std::string_view roff, std::string_view meaning);
    /// A line of roff.
    void line(std::string_view roff);
    /// A text of the manual.
    void text(std::string_view text);

    std::string take() { return std::move(out_); }

private:
    /// Paragraphs, and terms with what they mean.
    void filled(std::string_view block);

    std::string out_;
};

}  // namespace velmo::tool
