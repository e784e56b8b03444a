// Bytes as a WARC archive: each page has an address and few enough bytes, an error is the last of
// what ends it, and the bodies of responses are decoded as they come.
#include <velmocore/gather/WARCSource.h>
#include <velmocore/platform/Log.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    constexpr std::size_t MostBytes = 4096;
    WARCSource source(InputStream::ofBytes(Data(data, data + size)), {.mostBytes = MostBytes});
    SourcePage page;
    std::size_t pages = 0;
    for (bool isOver = false; source.next(page) == PageSource::State::Page;) {
        require(!isOver && ++pages <= 100 * size);
        if (page.complete && !page.error) page.complete(page);
        require(page.bytes.size() <= MostBytes);
        isOver = page.error && page.url.isAbsent();
        require(isOver || !page.url.isAbsent());
    }
    require(source.next(page) == PageSource::State::End);
    return 0;
}
