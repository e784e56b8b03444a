// What the examples of the headers and the guide take as given, and how their values are compared.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <velmocore/gather/SearchSite.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/gather/SourceSequence.h>
#include <velmocore/net/SynchronousDownload.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/system/HelperService.h>

namespace velmo::examples {

extern const int Count, Values, Calls;
/// Hands each example to the function, with its place.
void runAll(void (*run)(const char* place, void (*example)()));

/// Notes a difference between what an example says and what is.
void compare(const std::string& value, std::string_view expected, const char* header, int line);

// A value as comments write it.

inline std::string shown(bool value) { return value ? "true" : "false"; }
template <std::integral Value>
std::string shown(Value value) {
    return std::cmp_equal(value, NotFound) ? "NotFound" : std::to_string(value);
}
std::string shown(double value);
inline std::string shown(const String& value) { return value.isAbsent() ? "absent" : value.utf8(); }
inline std::string shown(std::u16string_view value) { return utf8(value); }
inline std::string shown(const std::u16string& value) { return utf8(value); }
inline std::string shown(std::string_view value) { return std::string(value); }
inline std::string shown(const std::string& value) { return value; }
inline std::string shown(const URL& value) { return value.isAbsent() ? "absent" : value.absoluteString().utf8(); }
inline std::string shown(Range value) { return printed(value); }
template <class List>
requires requires(const List& list) { list.begin()->length(); }
std::string shown(const List& list) {
    std::string all;
    for (const String& item : list) all += (all.empty() ? "" : ", ") + shown(item);
    return all;
}

template <class Value>
void check(const Value& value, std::string_view expected, const char* header, int line) {
    compare(shown(value), expected, header, line);
}
inline void check(bool holds, const char* header, int line) {
    compare(holds ? "as told" : "another value", "as told", header, line);
}

// Names that examples use without declaring them.
template <class... Values>
void print(const Values&...) {}
template <class... Values>
void connect(const Values&...) {}
template <class... Values>
void warn(const Values&...) {}

inline std::u16string text = u"A well-known fact. Tea\u00AD and $PAGE of it.";
inline const String page = u"<title>Tea</title><p>Tea, and coffee. A name, a name.";
inline const String title = u"Tea";
inline const Range range{6, 5}, selection{0, 0};
inline const std::u16string url = u"http://ads.example.com/";
inline const std::string bytes = "<p>caf\xC3\xA9";

/// Takes whatever a call hands out.
struct AnyHandler {
    template <class... Arguments>
    bool operator()(Arguments&&...) const {
        return false;
    }
};

/// The names that the calls of the guide use; the calls need only compile.
struct Guide {
    void calls();

    String text, page, link, address, title, a, b;
    std::u16string units;
    std::u16string_view tag;
    std::string bytes;
    Data data;
    std::uint8_t room[8];
    std::size_t index, limit;
    StringEncoding encoding;
    Date when;
    Error error;
    AnyHandler handler;
    std::vector<String> strings;
    std::vector<std::string_view> keywords;
    std::u16string rules, name;
    URL url, base;
    QueryTerms query;
    Path path, from, to, folder, archive;
    std::vector<std::string> arguments;
    HelperService service;
    HelperOperation operation;
    URLRequest request;
    URLResponse response;
    DownloadDelegate delegate;
    String boundary;
    std::vector<URL> starts;
    PageRecord record;
    SourcePage sourcePage;
    PageStore store;
    std::vector<PageStore> stores;
    SourceList source;
    SourceList::Opening opening;
    InputStream stream;
};

}  // namespace velmo::examples
