// What the benchmarks read: the pages of examples/site over and over, up to 25 MB.
#pragma once

#include <string>
#include <vector>

#include <velmocore/platform/String.h>

namespace velmo::bench {

struct Corpus {
    std::vector<std::string> pages;  ///< as they are on disk, in all their charsets
    std::size_t pageBytes = 0;
    std::vector<std::string> utf8;  ///< the same pages in UTF-8
    std::size_t utf8Bytes = 0;
    std::vector<String> texts;  ///< their plain text
    std::vector<std::string> textsUtf8;
    std::size_t textBytes = 0;  ///< of textsUtf8
};

/// Read once, at first use.
const Corpus& corpus();

}  // namespace velmo::bench
