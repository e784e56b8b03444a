// The links of pages, as whole addresses, with the text that people click on.
//
//     links PAGE... (each as it stands at http://www.example.org/)
#include <velmocore/markup/Page.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace velmo;

namespace {

Data bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    const URL base = URL::URLWithString(u"http://www.example.org/");
    for (int i = 1; i < argc; ++i) {
        const Page page(bytesOf(argv[i]), {.url = base, .web = WebRules::today()});
        const LinkThumbnails& known = page.linkThumbnails();
        for (const URL& link : page.links()) {
            const auto text = known.texts.find(link.absoluteString());
            std::cout << link << '\t' << (text == known.texts.end() ? String() : text->second)
                      << '\n';
        }
    }
}
