// The events of the parser are enough: what is an array of fields is told when it ends. No tree is
// made, and nothing is called as deep as the arrays are nested.
#include "JsonRows.h"

#include <nlohmann/json.hpp>

namespace velmo::tool {
namespace {

class RowEvents : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit RowEvents(FunctionRef<void(const std::vector<String>&)> handler) : handler_(handler) {}

    std::string reason;

    bool null() override { return add(""); }
    bool boolean(bool value) override { return add(value ? "true" : "false"); }
    bool number_integer(number_integer_t value) override { return add(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override { return add(std::to_string(value)); }
    bool number_float(number_float_t, const string_t& written) override { return add(written); }
    bool string(string_t& value) override { return add(value); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return begin(false); }
    bool end_object() override { return end(); }
    bool key(string_t&) override { return true; }
    bool start_array(std::size_t) override { return begin(true); }
    bool end_array() override {
        if (!row_.empty()) handler_(row_);
        row_.clear();
        return end();
    }
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override {
        reason = error.what();
        return false;
    }

private:
    bool begin(bool isArray) {
        arrays_.push_back(isArray);
        if (!row_.empty()) reason = "a row holds more than fields";
        return reason.empty();
    }
    bool end() {
        arrays_.pop_back();
        return true;
    }
    bool add(std::string_view field) {
        if (!arrays_.empty() && arrays_.back()) row_.push_back(String::fromUTF8(field));
        return true;
    }

    FunctionRef<void(const std::vector<String>&)> handler_;
    std::vector<bool> arrays_;  ///< what is open, the outermost first; the others are objects
    std::vector<String> row_;
};

}  // namespace

std::string forEachJsonRow(std::istream& stream,
                           FunctionRef<void(const std::vector<String>& row)> handler) {
    RowEvents events(handler);
    while (events.reason.empty() && (stream >> std::ws).good())
        nlohmann::json::sax_parse(stream, &events, nlohmann::json::input_format_t::json, false);
    return stream.bad() ? "cannot be read" : events.reason;
}

}  // namespace velmo::tool
