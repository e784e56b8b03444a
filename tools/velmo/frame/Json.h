// JSON for programs: values, and how they are written.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>

namespace velmo::tool {

/// One JSON value. Text is UTF-16 or UTF-8; bytes that are not UTF-8 become U+FFFD, and a lone
/// surrogate, which UTF-8 cannot hold, is written as its \uXXXX escape, so that nothing is lost.
///
///     JsonObject object = {{"file", name}, {"words", count}, {"language", Json()}};
class Json {
public:
    struct Member;
    using Array = std::vector<Json>;
    using Object = std::vector<Member>;

    Json();  ///< null
    Json(bool value);
    template <class Number>
    requires(std::integral<Number> && !std::same_as<Number, bool>) Json(Number number)
        : value_(static_cast<
                 std::conditional_t<std::is_signed_v<Number>, std::int64_t, std::uint64_t>>(
              number)) {}
    Json(double number);
    Json(const char* utf8);
    Json(std::string_view utf8);
    Json(std::string utf8);
    Json(String text);  ///< null if absent
    Json(std::u16string text);
    Json(Array values);
    Json(Object members);
    Json(const Json&);
    Json(Json&&) noexcept;
    Json& operator=(Json) noexcept;
    ~Json();

    /// The kinds a caller may want to look at; null where it is of another one.
    const Object* members() const;
    const Array* values() const;
    bool isNull() const;
    /// A text as it is, and every other value as JSON.
    std::string plain() const;

    /// Writes the value on one line, in pieces, so that a long text is never copied whole. The
    /// time is linear in what is written.
    void write(FunctionRef<void(std::string_view piece)> sink) const;

private:
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, String,
                 std::u16string, Array, Object>
        value_;
};

struct Json::Member {
    Json name, value;
};

using JsonArray = Json::Array;
using JsonObject = Json::Object;

/// Each string as a value.
JsonArray jsonArray(const std::vector<String>& strings);

}  // namespace velmo::tool
