#include <velmocore/url/QueryParameters.h>

#include <algorithm>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/url/PercentEscapes.h>

namespace velmo {
namespace {

using Units = std::u16string_view;

/// Walks the pairs of a text from a position on. All operations are loops over it.
class Pairs {
public:
    explicit Pairs(Units text, std::size_t position = 0) : text_(text), position_(position) {}

    /// Goes to the next pair; false if there is none.
    /// A name goes up to its =, over all separators in between, as pages write them anyhow.
    bool next() {
        while (position_ < text_.size() && !alphanumeric_.contains(text_[position_])) ++position_;
        const std::size_t equals = text_.find(u'=', position_);
        if (equals == Units::npos) return false;
        name = text_.substr(position_, equals - position_);
        value = text_.substr(equals + 1);
        value = value.substr(0, value.find_first_of(u"&;"));
        // Behind the separator; beyond the end of the text after the last pair, which ends the
        // walk.
        position_ = equals + 1 + value.size() + 1;
        return true;
    }

    Units name;
    Units value;

private:
    Units text_;
    std::size_t position_;
    const CharacterSetRep& alphanumeric_ = alphaNumCharacterSetRep();
};

/// A name needs at least its = behind it.
bool canHold(Units text, Units name) { return !name.empty() && name.size() < text.size(); }

/// The value of the first pair of that name that has one; else null.
Units valueOf(Units text, std::size_t start, Units name) {
    if (!canHold(text, name)) return {};
    Pairs pairs(text, start);
    while (pairs.next())
        if (!pairs.value.empty() && pairs.name == name) return pairs.value;
    return {};
}

bool contains(Units text, std::size_t start, Units name) {
    if (!canHold(text, name)) return false;
    Pairs pairs(text, start);
    while (pairs.next())
        if (pairs.name == name) return true;
    return false;
}

std::optional<QueryParams> paramsOf(Units text, std::size_t start) {
    if (start >= text.size()) return std::nullopt;
    QueryParams params;
    Pairs pairs(text, start);
    while (pairs.next())
        if (!pairs.value.empty()) params.insert_or_assign(pairs.name, pairs.value);
    return params;
}

std::size_t numberOf(Units text, std::size_t start) {
    std::size_t number = 0;
    Pairs pairs(text, start);
    while (pairs.next()) ++number;
    return number;
}

String replaced(const String& string, std::size_t start, Units name, Units replacement) {
    const Units value = valueOf(string, start, name);
    if (value.empty()) return string;
    const Units text = string;
    const auto location = static_cast<std::size_t>(value.data() - text.data());
    StringBuilder out(text.size() - value.size() + replacement.size());
    out.append(text.substr(0, location));
    out.append(replacement);
    out.append(text.substr(location + value.size()));
    return out.finish();
}

/// Where the query starts; the end of the string without one.
std::size_t queryOf(Units string) { return std::min(string.find(u'?'), string.size()); }

Units queryOf(const URL& url) { return url.part(URLPart::Query); }

}  // namespace

String paramNamed(Units string, Units name) { return valueOf(string, 0, name); }
String queryParamNamed(Units string, Units name) { return valueOf(string, queryOf(string), name); }
String queryParamNamed(const URL& url, Units name) { return valueOf(queryOf(url), 0, name); }

bool containsParamNamed(Units string, Units name) { return contains(string, 0, name); }
bool containsQueryParamNamed(Units string, Units name) {
    return contains(string, queryOf(string), name);
}
bool containsQueryParamNamed(const URL& url, Units name) { return contains(queryOf(url), 0, name); }

std::optional<QueryParams> queryParams(Units string) { return paramsOf(string, queryOf(string)); }
std::optional<QueryParams> queryParams(const URL& url) { return paramsOf(queryOf(url), 0); }

std::size_t numberOfQueryParams(Units string) { return numberOf(string, queryOf(string)); }
std::size_t numberOfQueryParams(const URL& url) { return numberOf(queryOf(url), 0); }

String stringByReplacingQueryParamNamed(const String& string, Units name, Units replacement) {
    return replaced(string, queryOf(string), name, replacement);
}
String stringByReplacingQueryParamNamed(const URL& url, Units name, Units replacement) {
    return replaced(url.query(), 0, name, replacement);
}

void appendParameter(std::u16string& string, Units name, Units value) {
    if (name.empty() || value.empty()) return;
    // A % of the value is no escape, so it is escaped like the units that separate.
    const String escaped = stringByAddingPercentEscapesToURL(value, {.toBeEscaped = u":/?&;@#%"});
    if (escaped.isAbsent()) return;
    string += string.find(u'?') == string.npos ? u'?' : u'&';
    string += name;
    string += u'=';
    string += escaped;
}

}  // namespace velmo
