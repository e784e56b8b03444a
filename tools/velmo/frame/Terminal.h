// What may be shown on a terminal, and how hits are coloured there.
#pragma once

#include <string>
#include <string_view>

namespace velmo::tool {

/// Whether a file descriptor is a terminal.
bool isTerminal(int descriptor);

/// Whether standard output is a terminal that shows colours: not dumb, and with no NO_COLOR in
/// the environment.
bool isColorTerminal();

/// Foreign bytes such that a terminal obeys none of them: a control unit is shown as ^[ and its
/// like, one above U+007F and what turns the direction of writing as <U+009B>, and a byte that is
/// not UTF-8 as <9B>. Tabs and line ends stay.
std::string shown(std::string_view bytes);

/// Whether a unit embeds, overrides or isolates a direction of writing: it can make a name look
/// like another one.
bool turnsDirection(char16_t unit);

/// Units as one line: line ends become spaces.
std::string oneLine(std::u16string_view units);

/// A line for people, with parts in colour. What is added is made fit for a terminal where it
/// goes to one, so the colours are the only escapes in it.
class Line {
public:
    enum class Color { Hit, File, Number };

    /// How lines are written.
    struct Style {
        bool colors = false;
        bool visible = false;  ///< controls are shown instead of sent
    };

    explicit Line(Style style) : style_(style) {}
    Line& add(std::string_view text);
    Line& add(Color color, std::string_view text);
    const std::string& text() const { return text_; }

private:
    Style style_;
    std::string text_;
};

}  // namespace velmo::tool
