// Bytes as JSON lines: the same lines come out whether they are read as a whole or one by one.
#include <velmocore/gather/Gathering.h>
#include <velmocore/gather/JSONLinesSource.h>
#include <velmocore/platform/Log.h>

#include <string>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

std::string gathered(std::string_view bytes) {
    JSONLinesSource source(InputStream::ofBytes(Data(bytes.begin(), bytes.end())),
                           {.mostBytes = 2048});
    std::string all;
    gatherPages(source, {.threads = 1}, [&](GatheredPage& page) {
        require(page.error.has_value() == page.record.url.isAbsent());
        all += page.name.utf8() + (page.error ? page.error->text : page.record.text).utf8() + "\n";
        return true;
    });
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const std::string_view bytes = charsOf(Bytes(data, size));
    if (bytes.starts_with('\x1F')) return gathered(bytes), 0;  // packed, which no line is
    std::string joined;
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        if (!rest.starts_with('\x1F'))
            joined += gathered(rest.substr(0, end));
        else
            return 0;
        rest.remove_prefix(end);
    }
    require(joined == gathered(bytes));
    return 0;
}
