// Eight threads walk one store of pages, ask it for pages and search it: all find what one finds.
#include <velmocore/gather/PageSearch.h>
#include <velmocore/gather/PageStore.h>

#include <thread>

#include "FolderFixture.h"

namespace velmo {
namespace {

class StoreReaders : public test::FolderTest {};

TEST_F(StoreReaders, FindTheSame) {
    constexpr std::size_t Threads = 8, Pages = 200;
    {
        PageStore store = PageStore::openForUpdating(at("s"));
        for (std::size_t i = 0; i < Pages; ++i) {
            PageRecord page;
            page.key = String::fromUTF8("http://h.org/" + std::to_string(i));
            page.text = test::repeated(page.key, 1 + i % 50);
            const Data block = dataFromPageRecord(page, {.compressText = i % 2 == 0});
            ASSERT_EQ(store.put(page, block), PutResult::Added);
        }
    }
    const PageStore store = PageStore::openForReading(at("s"));
    const auto texts = [&](std::size_t from, std::size_t to) {
        std::vector<String> found;
        store.forEachPage(from, to, [&](const StoredPage& page) {
            const auto record = store.page(String::fromUTF8(page.key()));
            if (record && record->text == page.text()) found.push_back(page.text());
            return true;
        });
        return found;
    };
    const auto search = [&](std::size_t own) {
        return searchPages({&store, 1}, QueryTerms(u"19* OR 7"), {.facets = true, .threads = own}).matching;
    };
    std::vector<std::vector<String>> found(Threads);
    std::vector<std::size_t> matching(Threads);
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < Threads; ++t)
            threads.emplace_back([&, t] {
                found[t] = texts(t % 2 * 10, Pages + t);
                matching[t] = search(1 + t % 3);
            });
    }
    for (std::size_t t = 0; t < Threads; ++t) {
        EXPECT_EQ(matching[t], search(1));
        EXPECT_EQ(found[t], texts(t % 2 * 10, Pages));
        EXPECT_EQ(found[t].size(), Pages - t % 2 * 10);
    }
}

}  // namespace
}  // namespace velmo
