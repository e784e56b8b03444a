#include "markup/ErrorPageTables.h"

#include <iterator>

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

// One row a line.
// clang-format off

/// 10 wordings.
constexpr Units ErrorPageTitles[] = {
    u"403 Forbidden",
    u"403 Access Denied",
    u"404 Not Found",
    u"404 Page Not Found",
    u"404 File Not Found",
    u"404 Error File Not Found",
    u"Error 404 Page Not found",
    u"Page Not Found",
    u"Sorry Page Not Found",
    u"Error 404",
};
static_assert(std::size(ErrorPageTitles) == 10);

/// 9 texts of sites that limit how often pages are loaded.
constexpr Units PageLoadNotices[] = {
    u"You have exceeded the allowed page load frequency.",
    u"Sorry. You have exceeded the allowed page load frequency. Come back later...",
    u"You have exceeded the allowed page load frequency. Please try again in a minute.",
    u"You have exceeded the allowed page load frequency. Please reload the page in 15 seconds.",
    u"You have exceeded the allowed page load frequency. Wait a few seconds, then you can refresh and continue.",
    u"You have exceeded the allowed page load frequency. Please wait a few seconds before reloading the page.",
    u"Due to spam, we limit the number of times a page can be loaded. You have exceeded the allowed page load frequency.",
    u"You have exceeded the allowed page load frequency. Please wait a moment then try again. Thank you.",
    u"Woah, slow down! You have exceeded the allowed page load frequency.",
};
static_assert(std::size(PageLoadNotices) == 9);

/// 5 names of files.
constexpr Units ErrorPageEndings[] = {
    u"/404.php",
    u"/404.htm",
    u"/404.html",
    u"/404.shtml",
    u"/404-index.html",
};
static_assert(std::size(ErrorPageEndings) == 5);

/// 5 wordings, English and German.
constexpr std::string_view MissingPageWordings[] = {
    "not found",
    "does not exist",
    "doesn't exist",
    "nicht gefunden",
    "nicht vorhanden",
};
static_assert(std::size(MissingPageWordings) == 5);

// clang-format on

}  // namespace

std::span<const Units> errorPageTitles() noexcept { return ErrorPageTitles; }
std::span<const Units> pageLoadNotices() noexcept { return PageLoadNotices; }
std::span<const Units> errorPageEndings() noexcept { return ErrorPageEndings; }
std::span<const std::string_view> missingPageWordings() noexcept { return MissingPageWordings; }

}  // namespace velmo::detail
