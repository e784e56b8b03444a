#include "gather/SiteTarget.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "gather/MarkupWriter.h"
#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

constexpr std::size_t LongestTarget = 16384;
constexpr std::size_t LastResult = 1000000000;

struct NamedOrder {
    SearchOrder order;
    std::string_view name;
};
constexpr std::array<NamedOrder, 5> Orders = {{
    {SearchOrder::Relevance, "relevance"},
    {SearchOrder::Newest, "date"},
    {SearchOrder::Address, "url"},
    {SearchOrder::Hits, "hits"},
    {SearchOrder::Stored, "stored"},
}};

std::optional<char> byteOfEscape(std::string_view text) {
    unsigned byte = 0;
    if (text.size() < 2) return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + 2, byte, 16);
    if (error != std::errc() || end != text.data() + 2) return std::nullopt;
    return static_cast<char>(byte);
}

/// Of a form: a plus is a space, and an escape that is none stands for itself.
std::string decoded(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = text[i] == '%' ? byteOfEscape(text.substr(i + 1)) : std::nullopt;
        out += byte ? *byte : text[i] == '+' ? ' ' : text[i];
        if (byte) i += 2;
    }
    return out;
}

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || at != end || text.empty()) return std::nullopt;
    return number;
}

SearchOrder orderOf(std::string_view name) {
    const auto* const found = std::ranges::find(Orders, name, &NamedOrder::name);
    return found == Orders.end() ? SearchOrder::Relevance : found->order;
}

void takeParameter(SiteTarget& target, std::string_view name, std::string value) {
    if (name == "q")
        target.query = std::move(value);
    else if (name == "sort")
        target.order = orderOf(value);
    else if (name == "language")
        target.language = std::move(value);
    else if (name == "host")
        target.host = std::move(value);
    else if (name == "year")
        target.year = numberOf<int>(value);
    else if (name == "first")
        target.first = std::min(numberOf<std::size_t>(value).value_or(0), LastResult);
    else if (name == "key")
        target.key = std::move(value);
    else if (name == "store")
        target.store = numberOf<std::size_t>(value).value_or(0);
}

void addParameter(std::string& address, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    address += address.find('?') == address.npos ? '?' : '&';
    ((address += name) += '=') += escapedInAddress(value);
}

}  // namespace

std::string_view nameOf(SearchOrder order) {
    return std::ranges::find(Orders, order, &NamedOrder::order)->name;
}

std::string SiteTarget::address() const {
    std::string address = path;
    addParameter(address, "q", query);
    if (order != SearchOrder::Relevance) addParameter(address, "sort", nameOf(order));
    addParameter(address, "language", language);
    addParameter(address, "host", host);
    if (year) addParameter(address, "year", std::to_string(*year));
    if (first > 0) addParameter(address, "first", std::to_string(first));
    addParameter(address, "key", key);
    if (store > 0) addParameter(address, "store", std::to_string(store));
    return address;
}

std::optional<SiteTarget> readSiteTarget(std::string_view text) {
    if (text.size() > LongestTarget || !text.starts_with('/')) return std::nullopt;
    text = text.substr(0, text.find('#'));
    const std::size_t question = text.find('?');
    SiteTarget target;
    target.path = text.substr(0, question);
    std::string_view rest = question == text.npos ? std::string_view() : text.substr(question + 1);
    while (!rest.empty()) {
        const std::string_view parameter = rest.substr(0, rest.find('&'));
        rest.remove_prefix(std::min(rest.size(), parameter.size() + 1));
        const std::size_t equals = std::min(parameter.find('='), parameter.size());
        const std::size_t value = std::min(equals + 1, parameter.size());
        takeParameter(target, parameter.substr(0, equals), decoded(parameter.substr(value)));
    }
    return target;
}

}  // namespace velmo::detail
