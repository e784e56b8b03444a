// The values travel as the protocol's own types and not as bytes of ours, so that any program that
// speaks the protocol can call a helper or be one. What the protocol cannot say, a text with a NUL
// or a lone surrogate, goes as its units. So does a long text: the bus library checks each byte of
// a text on both sides, which takes longer than all the rest of a call.
//
// What comes in is foreign. The bus library checks that each value lies within its message and that
// texts are UTF-8; here every type but those of the table is refused. The depth is bounded on both
// ways, so that the recursion is too.
#include "system/BusValues.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <span>

namespace velmo::detail {
namespace {

/// In UTF-16 units.
constexpr std::size_t LongestPlainText = 4096;

/// What goes with a value at most: signature, length, padding and what is no text, in bytes.
constexpr std::size_t MostAroundValue = 24;

constexpr const char* OfVariants = "v";
constexpr const char* Entry = "{sv}";
constexpr const char* EntryOfAny = "(vv)";

bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

/// Whether it goes as a text of the protocol.
bool isPlain(const String& text) {
    const std::u16string_view units = text.view();
    if (units.size() > LongestPlainText) return false;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] == 0) return false;
        if (!isSurrogate(units[i])) continue;
        const bool isPair =
            units[i] < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
        if (!isPair) return false;
        ++i;
    }
    return true;
}

/// Writes values and counts what they take.
class Writer {
public:
    explicit Writer(sd_bus_message* message) : message_(message) {}

    int variant(const PropertyList& value, int depth) {
        if (depth > DeepestValue) return -ELOOP;
        return std::visit([&](const auto& held) { return write(held, depth); }, value.value);
    }
    int array(const PropertyListArray& values, int depth) {
        return container('a', OfVariants, [&] {
            int result = 0;
            for (const PropertyList& value : values)
                if (result = variant(value, depth + 1); result < 0) break;
            return result;
        });
    }

private:
    template <class Content>
    int container(char type, const char* contents, Content&& content) {
        if (!count(MostAroundValue)) return -EMSGSIZE;
        int result = sd_bus_message_open_container(message_, type, contents);
        if (result >= 0) result = content();
        return result < 0 ? result : sd_bus_message_close_container(message_);
    }
    template <class Content>
    int inVariant(const char* type, Content&& content) {
        return container('v', type, content);
    }
    int basic(char type, const void* value) {
        const char signature[] = {type, 0};
        return inVariant(signature,
                         [&] { return sd_bus_message_append_basic(message_, type, value); });
    }
    int numbers(char type, const char* signature, std::span<const std::uint8_t> bytes) {
        if (!count(bytes.size())) return -EMSGSIZE;
        return inVariant(signature, [&] {
            return sd_bus_message_append_array(message_, type, bytes.data(), bytes.size());
        });
    }
    bool count(std::size_t bytes) {
        if (bytes > left_) return false;
        left_ -= bytes;
        return true;
    }

    int write(std::monostate, int) { return basic('g', ""); }
    int write(bool value, int) {
        const int number = value;
        return basic('b', &number);
    }
    int write(std::int64_t value, int) { return basic('x', &value); }
    int write(double value, int) { return basic('d', &value); }
    int write(const Date& value, int) {
        return inVariant("(d)", [&] {
            return sd_bus_message_append(message_, "(d)", value.time_since_epoch().count());
        });
    }
    int write(const String& text, int depth) {
        if (text.isAbsent()) return write(std::monostate(), depth);
        if (!isPlain(text))
            return numbers('q', "aq",
                           {reinterpret_cast<const std::uint8_t*>(text.characters()),
                            text.length() * sizeof(char16_t)});
        const std::string bytes = text.utf8();
        return count(bytes.size()) ? basic('s', bytes.c_str()) : -EMSGSIZE;
    }
    int write(const Data& bytes, int) { return numbers('y', "ay", bytes); }
    int write(const PropertyListArray& values, int depth) {
        return inVariant("av", [&] { return array(values, depth); });
    }
    int write(const PropertyListDictionary& values, int depth) {
        const bool hasPlainKeys = std::ranges::all_of(values, [](const auto& entry) {
            return !entry.first.isAbsent() && isPlain(entry.first);
        });
        const char* contents = hasPlainKeys ? Entry : EntryOfAny;
        const auto entries = [&] {
            int result = 0;
            for (const auto& [key, value] : values)
                if (result = entry(key, value, hasPlainKeys, depth); result < 0) break;
            return result;
        };
        return inVariant(hasPlainKeys ? "a{sv}" : "a(vv)",
                         [&] { return container('a', contents, entries); });
    }
    int entry(const String& key, const PropertyList& value, bool hasPlainKey, int depth) {
        const auto pair = [&] {
            const std::string bytes = hasPlainKey ? key.utf8() : std::string();
            if (!count(bytes.size())) return -EMSGSIZE;
            const int result = hasPlainKey
                                   ? sd_bus_message_append_basic(message_, 's', bytes.c_str())
                                   : write(key, depth);
            return result < 0 ? result : variant(value, depth + 1);
        };
        return hasPlainKey ? container('e', "sv", pair) : container('r', "vv", pair);
    }

    sd_bus_message* message_;
    std::size_t left_ = LargestMessage;
};

class Reader {
public:
    explicit Reader(sd_bus_message* message) : message_(message) {}

    int variant(PropertyList& value, int depth) {
        if (depth > DeepestValue) return -ELOOP;
        char type = 0;
        const char* contents = nullptr;
        const int result = sd_bus_message_peek_type(message_, &type, &contents);
        if (result < 0 || type != 'v') return -EBADMSG;
        const std::string_view signature = contents;
        return container('v', contents, [&] { return read(signature, value, depth); });
    }
    int array(PropertyListArray& values, int depth) {
        return each('a', OfVariants, [&] { return variant(values.emplace_back(), depth + 1); });
    }

private:
    template <class Content>
    int container(char type, const char* contents, Content&& content) {
        int result = sd_bus_message_enter_container(message_, type, contents);
        if (result <= 0) return result < 0 ? result : -EBADMSG;
        result = content();
        return result < 0 ? result : std::min(sd_bus_message_exit_container(message_), 0);
    }
    /// The elements of an array, whatever they are.
    template <class Element>
    int each(char type, const char* contents, Element&& element) {
        return container(type, contents, [&] {
            int atEnd = 0;
            while ((atEnd = sd_bus_message_at_end(message_, 0)) == 0)
                if (const int result = element(); result < 0) return result;
            return std::min(atEnd, 0);
        });
    }

    int read(std::string_view signature, PropertyList& value, int depth) {
        if (signature.size() == 1) return basic(signature.front(), value);
        if (signature == "av") return array(value.value.emplace<PropertyListArray>(), depth);
        if (signature == "ay") return bytes(value.value.emplace<Data>());
        if (signature == "aq") return units(value);
        if (signature == "(d)") return date(value);
        auto& dictionary = value.value.emplace<PropertyListDictionary>();
        if (signature == "a{sv}")
            return each('a', Entry, [&] { return entry('e', "sv", dictionary, depth); });
        if (signature == "a(vv)")
            return each('a', EntryOfAny, [&] { return entry('r', "vv", dictionary, depth); });
        return -EBADMSG;
    }

    template <class Held, class Kept = Held>
    int number(char type, PropertyList& value) {
        Held held{};
        const int result = sd_bus_message_read_basic(message_, type, &held);
        if (result <= 0) return result < 0 ? result : -EBADMSG;
        value.value = static_cast<Kept>(held);
        return 0;
    }
    int basic(char type, PropertyList& value) {
        switch (type) {
            case 'b': {
                int held = 0;
                const int result = sd_bus_message_read_basic(message_, type, &held);
                value.value = held != 0;
                return std::min(result, 0);
            }
            case 'y':
                return number<std::uint8_t, std::int64_t>(type, value);
            case 'n':
                return number<std::int16_t, std::int64_t>(type, value);
            case 'q':
                return number<std::uint16_t, std::int64_t>(type, value);
            case 'i':
                return number<std::int32_t, std::int64_t>(type, value);
            case 'u':
                return number<std::uint32_t, std::int64_t>(type, value);
            case 'x':
                return number<std::int64_t>(type, value);
            case 't':
                return unsignedNumber(value);
            case 'd':
                return number<double>(type, value);
            default:
                return text(type, value);
        }
    }
    int unsignedNumber(PropertyList& value) {
        std::uint64_t held = 0;
        const int result = sd_bus_message_read_basic(message_, 't', &held);
        if (result < 0) return result;
        if (held > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return -ERANGE;
        value.value = static_cast<std::int64_t>(held);
        return 0;
    }
    int text(char type, PropertyList& value) {
        if (type != 's' && type != 'o' && type != 'g') return -EBADMSG;
        const char* held = nullptr;
        const int result = sd_bus_message_read_basic(message_, type, &held);
        if (result < 0 || !held) return result < 0 ? result : -EBADMSG;
        if (type == 'g' && !*held)
            value.value = std::monostate();
        else
            value.value = String::fromUTF8(held);
        return 0;
    }
    int bytes(Data& data) {
        const void* held = nullptr;
        std::size_t size = 0;
        const int result = sd_bus_message_read_array(message_, 'y', &held, &size);
        if (result < 0) return result;
        const auto* first = static_cast<const std::uint8_t*>(held);
        data.assign(first, first + size);
        return 0;
    }
    int units(PropertyList& value) {
        const void* held = nullptr;
        std::size_t size = 0;
        const int result = sd_bus_message_read_array(message_, 'q', &held, &size);
        if (result < 0) return result;
        // The library does not look whether the length is one of units.
        if (size % sizeof(char16_t) != 0) return -EBADMSG;
        StringBuilder text(size / sizeof(char16_t));
        if (size > 0) std::memcpy(text.prepare(size / sizeof(char16_t)), held, size);
        text.commit(size / sizeof(char16_t));
        value.value = text.finish();
        return 0;
    }
    int date(PropertyList& value) {
        double seconds = 0;
        const int result = sd_bus_message_read(message_, "(d)", &seconds);
        value.value = Date(std::chrono::duration<double>(seconds));
        return std::min(result, 0);
    }
    int entry(char type, const char* contents, PropertyListDictionary& dictionary, int depth) {
        return container(type, contents, [&] {
            PropertyList key, value;
            int result = type == 'e' ? text('s', key) : variant(key, depth + 1);
            if (result >= 0) result = variant(value, depth + 1);
            if (result < 0) return result;
            const String* name = std::get_if<String>(&key.value);
            if (!name && !std::holds_alternative<std::monostate>(key.value)) return -EBADMSG;
            dictionary[name ? *name : String()] = std::move(value);
            return 0;
        });
    }

    sd_bus_message* message_;
};

}  // namespace

int appendArguments(sd_bus_message* message, const PropertyListArray& values) {
    return std::min(Writer(message).array(values, 0), 0);
}

int appendResult(sd_bus_message* message, const PropertyList& value) {
    return std::min(Writer(message).variant(value, 0), 0);
}

int readArguments(sd_bus_message* message, PropertyListArray& values) {
    return Reader(message).array(values, 0);
}

int readResult(sd_bus_message* message, PropertyList& value) {
    return Reader(message).variant(value, 0);
}

}  // namespace velmo::detail
