#include "Corpus.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/words/LanguageFilter.h>

namespace velmo::bench {
namespace {

constexpr std::size_t Size = 25'000'000;

std::string folderOfPages() {
    const char* folder = std::getenv("VELMO_BENCH_SITE");
    return folder ? folder : VELMO_PAGES;
}

std::vector<std::string> readPages() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folderOfPages()))
        if (entry.path().extension().string().find("htm") != std::string::npos)
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> pages;
    std::size_t bytes = 0;
    for (const auto& path : paths) {
        if (bytes > Size) break;
        std::ifstream file(path, std::ios::binary);
        pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        bytes += pages.back().size();
    }
    return pages;
}

Corpus makeCorpus() {
    Corpus corpus;
    corpus.pages = readPages();
    std::size_t bytes = 0;
    for (const std::string& page : corpus.pages) {
        const String units = stringWithMarkupData(Bytes(page));
        const String text = stringByConvertingHtml2PlainText(units);
        corpus.utf8.push_back(units.utf8());
        corpus.texts.push_back(text);
        corpus.textsUtf8.push_back(text.utf8());
        bytes += page.size();
    }
    corpus.rounds = Size / bytes + 1;
    return corpus;
}

}  // namespace

const Corpus& corpus() {
    static const Corpus made = makeCorpus();
    return made;
}

std::string languageLists() {
    std::string folder = velmoResourcesDirectory();
    if (LanguageFilter(folder).languages().empty())
        throw std::runtime_error("no lists of languages in " + folder);
    return folder;
}

}  // namespace velmo::bench
