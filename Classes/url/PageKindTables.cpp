#include "url/ClassificationTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

/// 2: the form without scripts, on its own host and on Google's.
constexpr std::string_view Recaptchas[] = {
    "api.recaptcha.net/noscript?",
    "google.com/recaptcha/api/noscript?",
};
static_assert(std::size(Recaptchas) == 2);

/// 11 pages that show another page in translation.
constexpr std::string_view Translations[] = {
    // Microsoft
    "microsofttranslator.com/bv.aspx?",
    // Google
    "translate.google.",
    "translate.googleusercontent.com/",
    ".translate.goog/",
    // Baidu
    "fanyi.baidu.com/transpage?",
    // any host
    "/language/translation/translatedpage",
    "/wp-content/plugins/global-translator/translator.php?",
    "language/translatedpage",
    "/language/interstitial",
    "/translate_c?",
    "/translate?hl=",
};
static_assert(std::size(Translations) == 11);

/// 5 scripts of forums that show a topic or a thread.
constexpr std::string_view Topics[] = {
    "viewtopic.php", "viewthread.php", "showtopic.php", "showpost.php", "showthread.php",
};
static_assert(std::size(Topics) == 5);

/// 5 words that forums have in their addresses.
constexpr std::string_view Forums[] = {
    "comment", "forum", "board", "phpbb", "yabb",
};
static_assert(std::size(Forums) == 5);

/// 18 hosts and forms of pages that show what another page once was.
constexpr std::string_view Caches[] = {
    // Microsoft
    "cc.msnscache.com",
    "cc.bingj.com",
    // Ask
    "cache.ask.com",
    // Exalead
    "cache.exalead.com",
    // Google
    "webcache.googleusercontent.com",
    // any host
    "/cache?q=",
    "search/cache?",
    "/search/cache%3f",
    "/mac?q=cache:",
    "/linux?q=cache:",
    "/scholar?q=cache:",
    "/bsd?q=cache:",
    "/windows?q=cache:",
    "/custom?q=cache:",
    "/unclesam?q=cache:",
    "search?q=cache:",
    "&cached=http://",
    "/search/srpcache?",
};
static_assert(std::size(Caches) == 18);

constexpr LinkTableRows Tables[] = {
    {LinkTable::Recaptchas, Recaptchas}, {LinkTable::Translations, Translations},
    {LinkTable::Topics, Topics},         {LinkTable::Forums, Forums},
    {LinkTable::Caches, Caches},
};

// clang-format on

}  // namespace

std::span<const LinkTableRows> pageKindTables() noexcept { return Tables; }

}  // namespace velmo::detail
