// Peer: the tokenizer of myhtml, which is in the package modest. It reads UTF-8 and gives UTF-8. No
// tree is built and no attribute decoded but those that are asked for. Links are given as they
// stand, each as often as it stands there; text is not changed but for entities.
#include <benchmark/benchmark.h>
#include <myhtml/myhtml.h>
#include <myhtml/parser.h>

#include <cstring>
#include <memory>
#include <string_view>

#include "peers/Inputs.h"

namespace velmo::bench {
namespace {

/// What the callback works on.
struct Collected {
    std::string_view page;
    std::vector<std::string> links = {};
    std::string text = {};
    bool inHidden = false;  ///< in a script or a style
};

/// A piece of the page with its entities decoded.
template <class Result>
void appendDecoded(myhtml_tree_t* tree, std::string_view page, std::size_t begin,
                   std::size_t length, bool isAttribute, Result& result) {
    const std::string_view raw = page.substr(begin, length);
    if (raw.find('&') == raw.npos) {
        result.append(raw);
        return;
    }
    myhtml_data_process_entry_t entry;
    myhtml_data_process_entry_clean(&entry);
    entry.encoding = tree->encoding;
    entry.is_attributes = isAttribute;
    mycore_string_t decoded;
    mycore_string_init(tree->mchar, tree->mchar_node_id, &decoded, length + 1);
    myhtml_parser_token_data_to_string_charef(tree, &decoded, &entry, begin, length);
    result.append(decoded.data, decoded.length);
}

void* collectLinks(myhtml_tree_t* tree, myhtml_token_node_t* token, void* data) {
    auto* collected = static_cast<Collected*>(data);
    const bool canLink = token->tag_id == MyHTML_TAG_A || token->tag_id == MyHTML_TAG_AREA;
    if (!canLink || (token->type & MyHTML_TOKEN_TYPE_CLOSE)) return data;
    for (auto* attribute = token->attr_first; attribute; attribute = attribute->next) {
        if (attribute->raw_key_length != 4) continue;
        if (strncasecmp(&collected->page[attribute->raw_key_begin], "href", 4)) continue;
        appendDecoded(tree, collected->page, attribute->raw_value_begin,
                      attribute->raw_value_length, true, collected->links.emplace_back());
        break;
    }
    return data;
}

void* collectText(myhtml_tree_t* tree, myhtml_token_node_t* token, void* data) {
    auto* collected = static_cast<Collected*>(data);
    if (token->tag_id == MyHTML_TAG_SCRIPT || token->tag_id == MyHTML_TAG_STYLE)
        collected->inHidden = !(token->type & MyHTML_TOKEN_TYPE_CLOSE);
    else if (token->tag_id == MyHTML_TAG__TEXT && !collected->inHidden)
        appendDecoded(tree, collected->page, token->raw_begin, token->raw_length, false,
                      collected->text);
    return data;
}

/// One parser for all pages, as its authors advise.
class Parser {
public:
    explicit Parser(myhtml_callback_token_f callback) : callback_(callback) {
        myhtml_init(library_.get(), MyHTML_OPTIONS_PARSE_MODE_SINGLE, 1, 0);
        myhtml_tree_init(tree_.get(), library_.get());
        myhtml_tree_parse_flags_set(tree_.get(), MyHTML_TREE_PARSE_FLAGS_WITHOUT_PROCESS_TOKEN);
    }

    Collected parse(const std::string& page) {
        Collected collected{.page = page};
        myhtml_callback_after_token_done_set(tree_.get(), callback_, &collected);
        myhtml_parse_single(tree_.get(), MyENCODING_UTF_8, page.data(), page.size());
        return collected;
    }

private:
    struct Destroyed {
        void operator()(myhtml_t* library) const { myhtml_destroy(library); }
        void operator()(myhtml_tree_t* tree) const { myhtml_tree_destroy(tree); }
    };
    std::unique_ptr<myhtml_t, Destroyed> library_{myhtml_create()};
    std::unique_ptr<myhtml_tree_t, Destroyed> tree_{myhtml_tree_create()};
    myhtml_callback_token_f callback_;
};

void links(benchmark::State& state) {
    Parser parser(collectLinks);
    countEachPage(state, pagesInUtf8(),
                  [&](const std::string& page) { return parser.parse(page).links.size(); });
}
BENCHMARK(links)->Name("links/myhtml")->Unit(benchmark::kMillisecond);

void plainText(benchmark::State& state) {
    Parser parser(collectText);
    countEachPage(state, pagesInUtf8(),
                  [&](const std::string& page) { return parser.parse(page).text.size(); });
}
BENCHMARK(plainText)->Name("plain-text/myhtml")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmo::bench
