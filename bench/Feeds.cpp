// Feeds from bytes to items, beside the SAX reader of libxml2 and the tree of pugixml. The feeds
// are the well-formed ones of tests/data in UTF-8, each with its items over and over up to the
// size of a large feed, and all of these over and over up to 25 MB.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/markup/MarkupDecoding.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

constexpr std::size_t Total = 25'000'000, LargeFeed = 100'000;

/// The feed with what its first item begins and its last one ends as often as fills the size.
std::string grown(const std::string& feed, std::size_t size) {
    const std::size_t start = std::min(feed.find("<item"), feed.find("<entry"));
    const std::size_t end = std::max(feed.rfind("</item>") + 1, feed.rfind("</entry>") + 1);
    if (start == feed.npos || end == 0) return {};
    // The <items> of RDF stand in front of its items.
    const std::size_t first =
        feed.compare(start, 7, "<items>") ? start : feed.find("<item ", start);
    const std::size_t behind = feed.find('>', end) + 1;
    std::string items;
    while (items.size() < size) items += feed.substr(first, behind - first);
    return feed.substr(0, first) + items + feed.substr(behind);
}

/// What the peers keep of an item.
struct PeerItem {
    std::string title, description, content, author, guid, date, link;
    std::vector<std::string> tags;
    std::vector<std::pair<std::string, std::string>> enclosures;
};

std::string trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == text.npos) return {};
    return std::string(text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1));
}

/// Which text an element holds; null if none.
std::string* slotOf(PeerItem& item, std::string_view name) {
    if (name == "title") return &item.title;
    if (name == "description" || name == "summary") return &item.description;
    if (name == "content" || name == "content:encoded") return &item.content;
    if (name == "author" || name == "dc:creator") return &item.author;
    if (name == "guid") return &item.guid;
    if (name == "pubDate" || name == "dc:date" || name == "updated" || name == "published" ||
        name == "issued")
        return &item.date;
    if (name == "link") return &item.link;
    return nullptr;
}

void fill(std::string& slot, std::string_view text) {
    if (slot.empty()) slot = trimmed(text);
}

// libxml2

struct SaxState {
    std::vector<PeerItem> items;
    std::string text;
    bool inItem = false;
};

std::string_view viewOf(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

std::string_view attributeOf(const xmlChar** attributes, std::string_view name) {
    for (; attributes && attributes[0]; attributes += 2)
        if (viewOf(attributes[0]) == name) return viewOf(attributes[1]);
    return {};
}

void startElement(void* data, const xmlChar* element, const xmlChar** attributes) {
    auto& state = *static_cast<SaxState*>(data);
    const std::string_view name = viewOf(element);
    state.text.clear();
    if (name == "item" || name == "entry") {
        state.items.emplace_back();
        state.inItem = true;
    } else if (!state.inItem) {
        return;
    } else if (name == "link") {
        fill(state.items.back().link, attributeOf(attributes, "href"));
    } else if (name == "category" && attributes) {
        if (const auto term = attributeOf(attributes, "term"); !term.empty())
            state.items.back().tags.emplace_back(term);
    } else if (name == "enclosure") {
        state.items.back().enclosures.emplace_back(attributeOf(attributes, "url"),
                                                   attributeOf(attributes, "length"));
    }
}

void endElement(void* data, const xmlChar* element) {
    auto& state = *static_cast<SaxState*>(data);
    if (!state.inItem) return;
    const std::string_view name = viewOf(element);
    if (name == "item" || name == "entry")
        state.inItem = false;
    else if (name == "name")
        fill(state.items.back().author, state.text);
    else if (name == "category")
        state.items.back().tags.push_back(trimmed(state.text));
    else if (std::string* slot = slotOf(state.items.back(), name))
        fill(*slot, state.text);
}

void characters(void* data, const xmlChar* text, int length) {
    auto& state = *static_cast<SaxState*>(data);
    if (state.inItem)
        state.text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
}

std::vector<PeerItem> itemsOfSax(const std::string& feed) {
    xmlSAXHandler handler{};
    handler.startElement = startElement;
    handler.endElement = endElement;
    handler.characters = characters;
    handler.cdataBlock = characters;
    handler.getEntity = [](void*, const xmlChar* name) { return xmlGetPredefinedEntity(name); };
    SaxState state;
    xmlSAXUserParseMemory(&handler, &state, feed.data(), static_cast<int>(feed.size()));
    return std::move(state.items);
}

// pugixml

PeerItem itemOf(pugi::xml_node node) {
    PeerItem item;
    for (const pugi::xml_node child : node.children()) {
        const std::string_view name = child.name();
        if (name == "category") {
            const std::string_view term = child.attribute("term").value();
            item.tags.push_back(trimmed(term.empty() ? child.child_value() : term));
        } else if (name == "enclosure") {
            item.enclosures.emplace_back(child.attribute("url").value(),
                                         child.attribute("length").value());
        } else if (std::string* slot = slotOf(item, name)) {
            if (name == "link") fill(*slot, child.attribute("href").value());
            fill(*slot, name == "author" && child.child("name") ? child.child_value("name")
                                                                : child.child_value());
        }
    }
    return item;
}

std::vector<PeerItem> itemsOfTree(const std::string& feed) {
    pugi::xml_document document;
    document.load_buffer(feed.data(), feed.size());
    const pugi::xml_node root = document.document_element();
    const pugi::xml_node parent = std::strcmp(root.name(), "rss") ? root : root.child("channel");
    std::vector<PeerItem> items;
    for (const pugi::xml_node child : parent.children())
        if (!std::strcmp(child.name(), "item") || !std::strcmp(child.name(), "entry"))
            items.push_back(itemOf(child));
    return items;
}

std::vector<FeedItem> itemsOfVelmo(const std::string& feed) {
    return getItemsOfFeed(stringWithMarkupData(Bytes(feed)));
}

/// The feeds, of which all readers find as many items.
const std::vector<std::string>& feeds() {
    static const std::vector<std::string> made = [] {
        std::vector<std::string> list;
        for (const auto& entry : std::filesystem::directory_iterator(VELMO_FEEDS)) {
            std::ifstream file(entry.path(), std::ios::binary);
            std::string feed = grown({std::istreambuf_iterator<char>(file), {}}, LargeFeed);
            const std::size_t count = itemsOfVelmo(feed).size();
            if (count > 0 && itemsOfSax(feed).size() == count && itemsOfTree(feed).size() == count)
                list.push_back(std::move(feed));
        }
        return list;
    }();
    return made;
}

template <class Read>
void eachFeed(benchmark::State& state, Read read) {
    std::size_t bytes = 0;
    for (const std::string& feed : feeds()) bytes += feed.size();
    const std::size_t rounds = Total / bytes + 1;
    for (auto _ : state)
        for (std::size_t round = 0; round < rounds; ++round)
            for (const std::string& feed : feeds()) benchmark::DoNotOptimize(read(feed));
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes * rounds * state.iterations()));
    state.counters["feeds"] = static_cast<double>(feeds().size());
}

void feedsVelmo(benchmark::State& state) { eachFeed(state, itemsOfVelmo); }
BENCHMARK(feedsVelmo)->Name("feed-items/velmo")->Unit(benchmark::kMillisecond);

void feedsLibxml2(benchmark::State& state) { eachFeed(state, itemsOfSax); }
BENCHMARK(feedsLibxml2)->Name("feed-items/libxml2")->Unit(benchmark::kMillisecond);

void feedsPugixml(benchmark::State& state) { eachFeed(state, itemsOfTree); }
BENCHMARK(feedsPugixml)->Name("feed-items/pugixml")->Unit(benchmark::kMillisecond);

/// Handed out as views, which no peer does.
void feedsHandled(benchmark::State& state) {
    eachFeed(state, [](const std::string& feed) {
        std::size_t units = 0;
        (void)parseFeedWithHandler(stringWithMarkupData(Bytes(feed)),
                                   [&](const FeedItemView& item) {
                                       units += item.title.size() + item.content.size();
                                       return false;
                                   });
        return units;
    });
}
BENCHMARK(feedsHandled)->Name("feed-views/velmo")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
