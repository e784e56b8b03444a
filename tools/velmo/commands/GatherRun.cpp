#include "GatherRun.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include <velmocore/gather/FolderSource.h>
#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/gather/SourceSequence.h>
#include <velmocore/query/Wildcards.h>

#include "frame/FileBytes.h"
#include "frame/Remote.h"

namespace velmo::tool {
namespace {

using Patterns = std::vector<String>;

/// A pattern with a slash is one for addresses, all others are for their last part.
bool isForAddresses(const String& pattern) {
    return pattern.view().find(u'/') != std::u16string_view::npos;
}

Patterns stringsOf(const std::vector<std::string>& patterns) {
    Patterns strings;
    for (const std::string& pattern : patterns) strings.push_back(String::fromUTF8(pattern));
    return strings;
}

bool matchesAny(const URL& url, const Patterns& patterns) {
    return std::ranges::any_of(patterns, [&](const String& pattern) {
        return isLikeUnixWildcard(
            isForAddresses(pattern) ? url.absoluteString() : url.lastPathComponent(), pattern);
    });
}

/// Which pages are kept; any thread may ask.
struct Choice {
    Patterns include, exclude;
    String language;
    const Query* query;

    bool operator()(const PageRecord& page) const {
        if (!include.empty() && !matchesAny(page.url, include)) return false;
        if (matchesAny(page.url, exclude)) return false;
        if (!language.isEmpty() && !isCaseInsensitiveLikeWildcard(page.language, language))
            return false;
        return query == nullptr || query->holdsFor(page.text);
    }
};

/// Names are no reason to open a file only to leave it out.
Patterns forNames(const std::vector<std::string>& patterns) {
    Patterns names = stringsOf(patterns);
    std::erase_if(names, isForAddresses);
    return names;
}

std::unique_ptr<PageSource> folderOf(const std::string& path, const GatherRun& run) {
    const NameOptions& names = run.input.names;
    // With patterns for addresses among them, a file may be wanted for its address.
    const Patterns include = forNames(names.include);
    const bool areAllNames = include.size() == names.include.size();
    return std::make_unique<FolderSource>(
        path, FolderSourceOptions{.files = {.include = areAllNames ? include : Patterns(),
                                            .exclude = forNames(names.exclude)},
                                  .base = run.base});
}

std::unique_ptr<PageSource> fileOf(const std::string& path, const GatherRun& run) {
    if (path == "-")
        return openSource(InputStream::ofDescriptor(STDIN_FILENO), {.name = u"-", .url = run.base});
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    return openSource(Path(path), {.url = urlOfFile(path, folder, run.base)});
}

void addSite(Session& session, GatherRun& run, const std::string& address) {
    try {
        requireNetwork();
        run.sites.starts.push_back(address);
    } catch (const InputError& error) {
        session.fail(address, error.what());
    }
}

}  // namespace

GatherOptions GatherRun::options(const LanguageFilter& languages) const {
    const NameOptions& names = input.names;
    GatherOptions options;
    options.reading.web = input.content.web;
    options.reading.languages = &languages;
    options.reading.keepBytes = keepPages;
    options.writing.compressText = compress;
    options.threads = input.jobs;
    options.limit = limit;
    options.keep = Choice{.include = stringsOf(names.include),
                          .exclude = stringsOf(names.exclude),
                          .language = String::fromUTF8(language),
                          .query = query};
    return options;
}

std::unique_ptr<PageSource> sourceOf(Session& session, GatherRun& run, PageStore* store) {
    NameOptions names = run.input.names;
    names.recursive = false;
    auto sources = std::make_unique<SourceList>();
    for (const FileName& name : listFiles(session, names)) {
        if (store != nullptr && isRemote(name.path)) {
            addSite(session, run, name.path);
            continue;
        }
        const bool isFolder = std::filesystem::is_directory(name.path);
        sources->add([path = name.path, isFolder, &run] {
            return isFolder ? folderOf(path, run) : fileOf(path, run);
        });
    }
    if (!run.sites.starts.empty())
        sources->add([&run, store] { return sourceOf(run.sites, store); });
    return sources;
}

}  // namespace velmo::tool
