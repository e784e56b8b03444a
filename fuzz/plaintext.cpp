// The plain-text conversion with all its options, chosen by the first two bytes.
#include <velmocore/markup/PlainText.h>

#include "Input.h"

using namespace velmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const unsigned bits = data[0] | unsigned(data[1]) << 8;
    const String page = fuzz::unitsOf(data + 1, size - 1);
    const PlainTextOptions options{.entities = !(bits & 2),
                                   .stdEntities = !(bits & 4),
                                   .nonUmlauted = (bits & 8) != 0,
                                   .reformat = (bits & 16) != 0,
                                   .onlyBody = (bits & 32) != 0,
                                   .removeJunk = (bits & 64) != 0,
                                   .googleTags = (bits & 128) != 0,
                                   .imageAlts = !(bits & 256),
                                   .web = fuzz::rulesOf(data, size)};
    const String text = stringByConvertingHtml2PlainText(page, options);
    fuzz::require(text.length() <= 8 * page.length());
    fuzz::require(text == stringByConvertingHtml2PlainText(page, options));
    (void)stringByConvertingHtml2SimplifiedPlainText(page, options.web);
    return 0;
}
