// How many pages there are in each language.
//
//     languages PAGE...
#include <velmocore/markup/Page.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/words/LanguageFilter.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>

using namespace velmo;

namespace {

Data bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    Error error;
    const LanguageFilter filter(velmoResourcesDirectory(), false, &error);
    if (filter.languages().empty()) {
        std::cerr << error << '\n';
        return 2;
    }
    std::map<String, int> pages;
    for (int i = 1; i < argc; ++i) {
        const String language = Page(bytesOf(argv[i])).language(filter);
        ++pages[language.isAbsent() ? String(u"unclear") : language];
    }
    for (const auto& [language, count] : pages)
        std::cout << language << '\t' << std::string(static_cast<std::size_t>(count), '#') << '\n';
}
