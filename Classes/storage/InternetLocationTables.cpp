#include "storage/InternetLocationTables.h"

#include <velmocore/storage/KeyedData.h>

namespace velmo::detail {
namespace {

constexpr std::string_view Types[] = {
    "'ilht'", "'ilft'", "'ilfi'", "'ilma'",  "'ilnw'",     "'ilaf'",      "'ilat'", "'ilns'",
    "'ilge'", "'ilvn'", "webloc", "mailloc", "newsloc",    "fileloc",     "ftploc", "inetloc",
    "vncloc", "url",    "URL",    "'LINK'",  "webhistory", "webbookmark",
};
static_assert(std::size(Types) == 22);

// Without 'ilvn', though it is among the types.
constexpr std::uint32_t TypeCodes[] = {
    keyOfCode("LINK"), keyOfCode("ilaf"), keyOfCode("ilat"), keyOfCode("ilfi"), keyOfCode("ilft"),
    keyOfCode("ilge"), keyOfCode("ilht"), keyOfCode("ilma"), keyOfCode("ilns"), keyOfCode("ilnw"),
};
static_assert(std::size(TypeCodes) == 10);

constexpr std::string_view Extensions[] = {
    "WEBLOC",  "MAILLOC", "FTPLOC", "INETLOC",    "NEWSLOC",
    "FILELOC", "VNCLOC",  "URL",    "WEBHISTORY", "WEBBOOKMARK",
};
static_assert(std::size(Extensions) == 10);

constexpr LocationScheme Schemes[] = {
    {"HTTP", u"webloc"},  {"HTTPS", u"webloc"}, {"FTP", u"ftploc"},
    {"SFTP", u"ftploc"},  {"FTPS", u"ftploc"},  {"MAILTO", u"mailloc"},
    {"NEWS", u"newsloc"}, {"NNTP", u"newsloc"}, {"VNC", u"vncloc"},
};
static_assert(std::size(Schemes) == 9);

}  // namespace

std::span<const std::string_view> locationTypes() noexcept { return Types; }
std::span<const std::uint32_t> locationTypeCodes() noexcept { return TypeCodes; }
std::span<const std::string_view> locationExtensions() noexcept { return Extensions; }
std::span<const LocationScheme> locationSchemes() noexcept { return Schemes; }

}  // namespace velmo::detail
