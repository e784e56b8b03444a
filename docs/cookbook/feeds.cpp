// The items of feeds: when, what and where.
//
//     feeds FEED...
#include <velmocore/feeds/FeedItems.h>
#include <velmocore/markup/Page.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/readers/Dates.h>

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
    for (int i = 1; i < argc; ++i) {
        const Page page(bytesOf(argv[i]));  // finds the charset of a feed as that of any page
        const Feed feed = readFeed(page.markup(), {.boundCData = true});
        std::cout << feed.title << (feed.isComplete ? "\n" : " (broken off)\n");
        for (const FeedItem& item : feed.items) {
            const auto when = date(item.date, {.offsets = true});
            std::cout << "    " << (when ? stringInISO8601(*when) : item.date) << "  " << item.title
                      << "  " << item.link << '\n';
        }
    }
}
