#include "feeds/FeedStyleSheet.h"

#include <filesystem>

#include <velmocore/platform/Resources.h>
#include <velmocore/platform/UserDefaults.h>
#include <velmocore/text/StringFiles.h>

#include "feeds/FeedTemplates.h"

namespace velmo {
namespace {

using namespace detail;

/// The file URL with the name of its host, as saved pages have it.
std::u16string linkTo(const String& path) {
    constexpr std::u16string_view Plain = u"file:///", WithHost = u"file://localhost/";
    std::u16string link(URL::fileURLWithPath(path).absoluteString());
    if (link.starts_with(Plain)) link.replace(0, Plain.size(), WithHost);
    return link;
}

String textOfSheet(const Path& path) {
    return stringWithContentsOfFile(path, UTF8StringEncoding).text;
}

}  // namespace

void detail::appendStyleSheet(StringBuilder& out, const FeedDisplayOptions& options, bool linked) {
    const Path sheet =
        options.styleSheet.isAbsent() ? Path(linkableFeedStyleSheet()) : options.styleSheet;
    if (sheet.isAbsent()) return;
    if (linked)
        feedTemplates::append(out, feedTemplates::LinkedSheet, {linkTo(sheet.string())});
    else
        feedTemplates::append(out, feedTemplates::InlineSheet, {textOfSheet(sheet)});
}

String linkableFeedStyleSheet() {
    const std::vector<String> chosen = userDefaultStrings(u"linkableFeedStyleSheet");
    if (!chosen.empty() && !chosen.front().isEmpty()) return chosen.front();
    const std::string folder = velmoResourcesDirectory();
    if (folder.empty()) return {};
    const std::filesystem::path own = std::filesystem::path(folder) / "velmo.feeds.stylesheet.css";
    std::error_code ignored;
    return std::filesystem::exists(own, ignored) ? Path(own).string() : String();
}

String stringByReplacingLinkedStyleSheet(const String& page) {
    constexpr std::u16string_view Start =
        u"<link rel=\"stylesheet\" type=\"text/css\" href=\"file://localhost/";
    constexpr std::u16string_view End = u".feeds.stylesheet.css\"/>";
    const std::size_t start = page.view().find(Start);
    if (start == page.view().npos) return page;
    const std::size_t end = page.view().find(End, start);
    if (end == page.view().npos) return page;
    StringBuilder out(page.length());
    out.append(page.view().substr(0, start));
    const String sheet = linkableFeedStyleSheet();
    if (const String text = sheet.isAbsent() ? String() : textOfSheet(sheet); !text.isAbsent())
        feedTemplates::append(out, feedTemplates::InlineSheet, {text});
    // The line end of the template goes with it.
    out.append(page.view().substr(std::min(end + End.size() + 1, page.length())));
    return out.finish();
}

}  // namespace velmo
