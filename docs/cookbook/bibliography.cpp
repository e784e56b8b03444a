// The entries of BibTeX files, one a line.
//
//     bibliography FILE...
#include <velmocore/readers/BibTeX.h>
#include <velmocore/text/StringFiles.h>

#include <iostream>

using namespace velmo;

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const String text = stringWithContentsOfFile(argv[i], UTF8StringEncoding).text;
        for (const BibTeXEntry& entry : BibTeXEntriesNamed(text).entries) {
            if (entry.value(u"title").isAbsent()) continue;  // comments, macros
            std::cout << entry.value(CitationKey) << ": " << entry.value(u"author") << ", "
                      << entry.value(u"title") << " (" << entry.value(u"year") << ")\n";
        }
    }
}
