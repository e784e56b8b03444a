#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What the robots.txt of a server lets one program load, by RFC 9309.
///
///     const RobotsRules rules("User-agent: *\nDisallow: /a\nAllow: /a/b*.html$", "velmo/1.0");
///     rules.isAllowed(URL::URLWithString(u"http://h.org/a/c"));          // false
///     rules.isAllowed(URL::URLWithString(u"http://h.org/a/b/c.html"));   // true
///
/// Names of programs count up to what is no letter, digit, _ or -, in any case. All groups that
/// name the program count together; those for * if none does; and without either all is allowed.
/// Of the rules that match a path with its query, that with the most octets decides, and of a pair
/// of the same length the one that allows. A * stands for any octets, and a $ at the end of a rule
/// for the end. Rules and URLs are compared in one form: escapes of unreserved characters are
/// decoded, and what is no character of a URL is escaped; in a query, escapes of / : ? and @ are
/// decoded too, which separate nothing there. /robots.txt itself is always allowed.
///
/// Lines end with CR, LF or both, comments begin with #, and a byte-order mark counts for nothing;
/// so do lines that are not understood, and rules in front of all names. No more is read than
/// LargestFile; a line that is cut there is dropped.
///
/// Time to read is linear in the file, but for the sorting of its rules. Each rule is matched in
/// time linear in rule and path, whatever stars it has. Copies share their rules; any thread may
/// read them.
class VELMO_API RobotsRules {
public:
    static constexpr std::size_t LargestFile = 500 * 1024;  ///< bytes that are read
    static constexpr std::size_t MostRedirects = 5;         ///< on the way to the file

    /// Those of a server without a file: all is allowed.
    RobotsRules();
    /// Those that a file has for a program of that name, as it tells it to servers. An empty file
    /// has none: all is allowed.
    RobotsRules(Bytes file, std::string_view agent);

    /// Those of a server that cannot be asked: nothing is allowed.
    [[nodiscard]] static RobotsRules allowingNothing();
    /// Those that follow from the answer of a server: its file with a success; all is allowed if
    /// there is none (a status from 300 to 499, so redirects too that were given up), and nothing
    /// if the server failed (500 and above) or did not answer (0).
    [[nodiscard]] static RobotsRules rulesOfAnswer(std::int64_t status, Bytes file,
                                                   std::string_view agent);
    /// Where the rules for a page stand; absent if its URL is not of the web.
    [[nodiscard]] static URL addressForPage(const URL& page);

    /// Whether a URL may be loaded. The caller sees to it that it is one of the server. An absent
    /// one may not.
    [[nodiscard]] bool isAllowed(const URL& url) const;

    // What is not of the RFC but usual.

    /// The pause between two pages that the server asks for, in seconds; the longest if it names
    /// several, as long as it may be.
    [[nodiscard]] std::optional<double> crawlDelay() const noexcept;
    /// The addresses of site maps, as they stand there, for all programs.
    [[nodiscard]] const std::vector<String>& sitemaps() const noexcept VELMO_LIFETIME;

private:
    struct State;

    explicit RobotsRules(std::shared_ptr<const State> state) noexcept : state_(std::move(state)) {}

    std::shared_ptr<const State> state_;
};

}  // namespace velmo
