// Feeds from bytes to items, beside the SAX reader of libxml2 and the tree of pugixml. The feeds
// are the well-formed ones of tests/data in UTF-8, each with as many items as large feeds have, and
// all of these over and over up to 25 MB.
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
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/MarkupDecoding.h>

#include "Corpus.h"

namespace velmo::bench {
namespace {

constexpr std::size_t Total = 25'000'000, Items = 100, ArticleSize = 4000;

/// What feeds carry along that hold whole articles: pieces of real pages, in turn escaped and as
/// CDATA sections.
const std::vector<std::string>& articles() {
    static const std::vector<std::string> made = [] {
        std::vector<std::string> list;
        for (const std::string& page : corpus().utf8) {
            const std::size_t body = std::max<std::size_t>(page.find("<body"), 1) - 1;
            std::string piece = page.substr(std::min(body, page.size()), ArticleSize);
            while (!piece.empty() && (piece.back() & 0x80)) piece.pop_back();
            if (piece.size() < ArticleSize / 2 || piece.find("]>") != piece.npos) continue;
            const String escaped =
                stringByConvertingCharactersToStandardEntities(String::fromUTF8(piece));
            list.push_back(list.size() % 2 ? "<![CDATA[" + piece + "]]>" : escaped.utf8());
        }
        return list;
    }();
    return made;
}

std::string articleElement(std::size_t index) {
    return "<content:encoded>" + articles()[index % articles().size()] + "</content:encoded>";
}

/// The feed with its items so often, and with articles in them.
std::string grown(std::string feed, std::size_t times, bool hasArticles) {
    constexpr std::string_view Namespace =
        " xmlns:content=\"http://purl.org/rss/1.0/modules/content/\"";
    for (const std::string_view root : {"<rss", "<rdf:RDF", "<feed"})
        if (const std::size_t at = feed.find(root);
            at != feed.npos && feed.find("xmlns:content") == feed.npos)
            feed.insert(at + root.size(), Namespace);
    const std::size_t start = std::min(feed.find("<item"), feed.find("<entry"));
    const std::size_t end = std::max(feed.rfind("</item>") + 1, feed.rfind("</entry>") + 1);
    if (start == feed.npos || end == 0) return {};
    // The <items> of RDF stand in front of its items.
    const std::size_t first =
        feed.compare(start, 7, "<items>") ? start : feed.find("<item ", start);
    const std::string inside = feed.substr(first, end - 1 - first);
    const std::string closing = feed.substr(end - 1, feed.find('>', end) + 1 - (end - 1));
    std::string items;
    for (std::size_t i = 0; i < times; ++i)
        items += inside + (hasArticles ? articleElement(i) : std::string()) + closing;
    return feed.substr(0, first) + items + feed.substr(end - 1 + closing.size());
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
template <class Name>
std::string* slotOf(PeerItem& item, const Name& name) {
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

/// Attributes come as name, prefix, URI, and where the value begins and ends.
std::string_view attributeOf(const xmlChar** attributes, int count, std::string_view name) {
    for (; count-- > 0; attributes += 5)
        if (viewOf(attributes[0]) == name)
            return {viewOf(attributes[3]).data(), std::size_t(attributes[4] - attributes[3])};
    return {};
}

/// The name with the prefix that feeds use for its namespace.
struct Name {
    Name(const xmlChar* local, const xmlChar* prefix) : local_(viewOf(local)) {
        if (prefix) prefix_ = viewOf(prefix);
    }
    bool operator==(std::string_view name) const {
        if (prefix_.empty() || prefix_ == "rss") return local_ == name;
        return name.size() == prefix_.size() + 1 + local_.size() && name.starts_with(prefix_) &&
               name.ends_with(local_);
    }

private:
    std::string_view local_, prefix_;
};

void startElement(void* data, const xmlChar* local, const xmlChar* prefix, const xmlChar*, int,
                  const xmlChar**, int count, int, const xmlChar** attributes) {
    auto& state = *static_cast<SaxState*>(data);
    const Name name(local, prefix);
    state.text.clear();
    if (name == "item" || name == "entry") {
        state.items.emplace_back();
        state.inItem = true;
    } else if (!state.inItem) {
        return;
    } else if (name == "link") {
        fill(state.items.back().link, attributeOf(attributes, count, "href"));
    } else if (name == "category" && count > 0) {
        if (const auto term = attributeOf(attributes, count, "term"); !term.empty())
            state.items.back().tags.emplace_back(term);
    } else if (name == "enclosure") {
        state.items.back().enclosures.emplace_back(attributeOf(attributes, count, "url"),
                                                   attributeOf(attributes, count, "length"));
    }
}

void endElement(void* data, const xmlChar* local, const xmlChar* prefix, const xmlChar*) {
    auto& state = *static_cast<SaxState*>(data);
    if (!state.inItem) return;
    const Name name(local, prefix);
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
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startElement;
    handler.endElementNs = endElement;
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
std::vector<std::string> makeFeeds(bool haveArticles) {
    std::vector<std::string> list;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_FEEDS)) {
        std::ifstream file(entry.path(), std::ios::binary);
        std::string feed = grown({std::istreambuf_iterator<char>(file), {}}, Items, haveArticles);
        const std::size_t count = itemsOfVelmo(feed).size();
        if (count > 0 && itemsOfSax(feed).size() == count && itemsOfTree(feed).size() == count)
            list.push_back(std::move(feed));
    }
    return list;
}

const std::vector<std::string>& feeds(bool haveArticles) {
    static const std::vector<std::string> bare = makeFeeds(false), full = makeFeeds(true);
    return haveArticles ? full : bare;
}

template <class Read>
void eachFeed(benchmark::State& state, bool haveArticles, Read read) {
    std::size_t bytes = 0;
    for (const std::string& feed : feeds(haveArticles)) bytes += feed.size();
    const std::size_t rounds = Total / bytes + 1;
    for (auto _ : state)
        for (std::size_t round = 0; round < rounds; ++round)
            for (const std::string& feed : feeds(haveArticles))
                benchmark::DoNotOptimize(read(feed));
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes * rounds * state.iterations()));
    state.counters["feeds"] = static_cast<double>(feeds(haveArticles).size());
}

/// Handed out as views, which no peer does.
std::size_t unitsOfViews(const std::string& feed) {
    std::size_t units = 0;
    (void)parseFeedWithHandler(stringWithMarkupData(Bytes(feed)), [&](const FeedItemView& item) {
        units += item.title.size() + item.content.size();
        return false;
    });
    return units;
}

/// The feeds as they are, whose items are mostly tags, and with articles, as most feeds have them.
template <class Read>
void add(const std::string& peer, const std::string& name, Read read) {
    for (const bool haveArticles : {false, true})
        benchmark::RegisterBenchmark(
            (name + (haveArticles ? "/" : "-bare/") + peer).c_str(),
            [=](benchmark::State& state) { eachFeed(state, haveArticles, read); })
            ->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool isRegistered = [] {
    add("velmo", "feed-items", itemsOfVelmo);
    add("libxml2", "feed-items", itemsOfSax);
    add("pugixml", "feed-items", itemsOfTree);
    add("velmo", "feed-views", unitsOfViews);
    return true;
}();

}  // namespace
}  // namespace velmo::bench
