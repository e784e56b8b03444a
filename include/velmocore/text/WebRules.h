#pragma once

namespace velmo {

/// How pages are read. What is off here reads them by the rules of this library, which were made for
/// the web of their day; what is on, as browsers of today do. The rules are ours, and off where
/// nothing else is said.
///
///     const std::string bytes = "<meta charset=latin1>caf\xE9 \x80";
///     decodeMarkup(bytes, {.web = WebRules::today()}).text.view().substr(21);   // caf\u00E9 \u20AC
struct WebRules {
    /// Names of charsets mean what the encoding standard says, so that Latin 1 is Windows-1252; a
    /// byte-order mark counts before all, then the header, then the head of the page as browsers look
    /// through it; and a page that names none is in UTF-8 if its bytes are, else in Windows-1252. See
    /// markup/WebCharsets.h.
    bool charsets = false;

    /// All of them.
    [[nodiscard]] static constexpr WebRules today() noexcept { return {.charsets = true}; }
};

}  // namespace velmo
