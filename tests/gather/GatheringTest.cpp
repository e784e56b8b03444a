#include <velmocore/gather/Gathering.h>

#include <atomic>
#include <chrono>
#include <new>
#include <stdexcept>
#include <thread>

#include "FolderFixture.h"

namespace velmo {
namespace {

/// Pages by number, some of which are something else; with a pause, each waits for those before it.
class Numbers : public PageSource {
public:
    explicit Numbers(std::size_t count, bool pauses = false) : count_(count), pauses_(pauses) {}

    State next(SourcePage& page) override {
        EXPECT_EQ(std::this_thread::get_id(), thread);
        if (given == count_) return State::End;
        if (pauses_ && told < given && given % 3 == 0) return ++waits, State::Wait;
        page = SourcePage();
        page.name = String::fromUTF8(std::to_string(given));
        page.url = URL::URLWithString(u"http://h.org/" + page.name);
        const std::string bytes = "<title>" + page.name.utf8() + "</title><p>Page " + page.name.utf8();
        page.bytes.assign(bytes.begin(), bytes.end());
        spoil(page, given++);
        return State::Page;
    }
    void didRead(const PageRecord& record) override {
        const bool isEmpty = told % 20 >= 15 && told % 20 <= 18;
        EXPECT_EQ(record.title, isEmpty ? String() : String::fromUTF8(std::to_string(told)));
        ++told;
    }

    std::size_t given = 0, told = 0, waits = 0;
    std::thread::id thread = std::this_thread::get_id();

private:
    static void spoil(SourcePage& page, std::size_t number) {
        switch (number % 20) {
            case 4:  // slow, so that later ones are ready before
                page.complete = [](SourcePage&) { std::this_thread::sleep_for(std::chrono::milliseconds(3)); };
                break;
            case 15:
                page.error = Error{.domain = u"test", .text = u"none"};
                break;
            case 16:
                page.complete = [](SourcePage&) { throw std::runtime_error("broken"); };
                break;
            case 17:
                page.complete = [](SourcePage&) { throw std::bad_alloc(); };
                break;
            case 18:
                page.complete = [](SourcePage& late) { late.isLeftOut = true; };
                break;
            default:
                break;
        }
    }

    std::size_t count_;
    bool pauses_;
};

using GatheringTest = test::FolderTest;

TEST_F(GatheringTest, GivesPagesInOrderWithAnyNumberOfThreads) {
    for (const std::size_t threads : {1, 2, 3, 8})
        for (const bool pauses : {false, true}) {
            Numbers source(100, pauses);
            std::vector<std::string> told;
            const GatherSummary summary = gatherPages(source, {.threads = threads}, [&](GatheredPage& page) {
                EXPECT_EQ(std::this_thread::get_id(), source.thread);
                told.push_back(page.name.utf8() + (page.error ? "!" + page.error->text.utf8() : ""));
                EXPECT_EQ(page.record.title.isAbsent(), page.error.has_value());
                return true;
            });
            ASSERT_EQ(told.size(), 95U);
            EXPECT_EQ(told[15], "15!none");
            EXPECT_EQ(told[16], "16!broken");
            EXPECT_EQ(told[17], "17!not enough memory");
            EXPECT_EQ(told[18], "19") << "what is left out is not told";
            EXPECT_EQ(told.back(), "99");
            EXPECT_EQ(summary.pages, 80U);
            EXPECT_EQ(summary.failed, 15U);
            EXPECT_EQ(source.told, 100U) << "but the source knows of each";
            EXPECT_EQ(source.waits > 0, pauses);
        }
}

TEST_F(GatheringTest, EndsWhereItIsTold) {
    const auto gathered = [](GatherOptions options, std::size_t most = 1000) {
        Numbers source(100);
        std::size_t count = 0;
        options.threads = 3;
        gatherPages(source, options, [&](GatheredPage&) { return ++count < most; });
        EXPECT_LE(source.given, count + 3 * 8 + 1) << "no more is read ahead";
        return count;
    };
    EXPECT_EQ(gathered({}, 7), 7U);
    EXPECT_EQ(gathered({.limit = 5}), 5U);
    EXPECT_EQ(gathered({.limit = 5, .keep = [](const PageRecord& page) { return page.title.length() == 2; }}), 15U)
        << "only what is kept counts";
    std::size_t asked = 0;
    EXPECT_LT(gathered({.shouldStop = [&] { return ++asked > 40; }}), 41U);
    Numbers source(100);
    EXPECT_THROW(gatherPages(source, {.threads = 3}, [](GatheredPage&) -> bool { throw std::logic_error("handler"); }),
                 std::logic_error);
}

TEST_F(GatheringTest, StoresEachPageOnce) {
    const std::vector<std::tuple<const char*, const char*, std::optional<PutResult>>> cases = {
        {"http://h.org/a", "<p>One", PutResult::Added},
        {"https://www.h.org/a?utm_source=x", "<p>One", PutResult::Unchanged},
        {"http://h.org/b", "<p>Two", PutResult::Added},
        {"http://h.org/a", "<p>Other", PutResult::Replaced},
        {"http://h.org/c", "<p>Two", PutResult::Duplicate},
        {"http://h.org/e", "<title>404 Not Found</title><p>404 Not Found nginx", std::nullopt},
        {"", "<p>Nowhere", std::nullopt},
    };
    class Cases : public PageSource {
    public:
        explicit Cases(decltype(cases)& all) : all_(all) {}
        State next(SourcePage& page) override {
            if (at_ == all_.size()) return State::End;
            page = SourcePage();
            page.url = URL::URLWithString(String::fromUTF8(std::get<0>(all_[at_])));
            const std::string_view bytes = std::get<1>(all_[at_++]);
            page.bytes.assign(bytes.begin(), bytes.end());
            return State::Page;
        }

    private:
        decltype(cases)& all_;
        std::size_t at_ = 0;
    } source(cases);
    PageStore store = PageStore::openForUpdating(at("s"));
    std::size_t number = 0;
    const GatherSummary summary = gatherPages(source, {.threads = 2, .store = &store}, [&](GatheredPage& page) {
        EXPECT_EQ(page.stored, std::get<2>(cases[number])) << number;
        EXPECT_EQ(page.duplicateOf, number == 4 ? String(u"http://h.org/b") : String());
        ++number;
        return true;
    });
    EXPECT_EQ(number, cases.size());
    EXPECT_EQ(summary.added, 2U);
    EXPECT_EQ(summary.leftOut, 1U);
    EXPECT_EQ(summary.failed, 1U) << "a page without an address";
    EXPECT_TRUE(summary.isStored);
    EXPECT_EQ(store.numberOfPages(), 2U);
    EXPECT_EQ(store.page(u"http://h.org/a")->text, u"Other");
}

}  // namespace
}  // namespace velmo
