// Reading of keyed buffers. Every operation is a question to the one walk of KeyedWalk.h; values
// are taken from the bytes where they stand, and only the one that is asked for is converted.
#include <velmocore/storage/KeyedData.h>

#include <bit>
#include <cmath>
#include <ctime>

#include "platform/Surrogates.h"
#include "storage/KeyedWalk.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using detail::RecordView;

constexpr std::size_t UsualStrings = 32;

/// The used bytes of the value field as a number.
std::uint64_t bitsOf(const RecordView& record, const KeyedType& type) {
    return detail::bigEndian64(record.value()) >> (8 - type.valueBytes) * 8;
}

std::uint64_t bitsForKey(Bytes data, KeyedTag tag, std::uint32_t key) {
    const auto record = detail::findRecord(data, tag, key);
    return record ? bitsOf(*record, *detail::keyedTypeOf(tag)) : 0;
}

KeyedValue fixedValue(KeyedTag tag, std::uint64_t bits) {
    const auto low = static_cast<std::uint32_t>(bits);
    switch (tag) {
        case KeyedTag::Bool:
            return bits != 0;
        case KeyedTag::Signed:
            return static_cast<std::int32_t>(low);
        case KeyedTag::UnsignedLongLong:
            return bits;
        case KeyedTag::SignedLongLong:
            return static_cast<std::int64_t>(bits);
        case KeyedTag::Float:
            return std::bit_cast<float>(low);
        case KeyedTag::Double:
        case KeyedTag::Time:
            return std::bit_cast<double>(bits);
        default:
            return low;
    }
}

/// Absent if the bytes are not UTF-8. A byte-order mark is a character like any other, so that
/// every string comes back as it was.
String decoded(Bytes utf8) {
    String string = String::fromUTF8(charsOf(utf8));
    // Only what is broken, or has the character itself, shows one.
    const std::u16string_view units = string;
    const char16_t* end = units.data() + units.size();
    if (detail::scan::find(units.data(), end, u'\uFFFD') == end) return string;
    return string.utf8() == charsOf(utf8) ? string : String();
}

Bytes payloadForKey(Bytes data, KeyedTag tag, std::uint32_t key) {
    const auto record = detail::findRecord(data, tag, key);
    return record ? record->payload().value_or(Bytes()) : Bytes();
}

std::optional<Data> copied(Bytes bytes) {
    if (!bytes.data()) return std::nullopt;
    return Data(bytes.begin(), bytes.end());
}

/// Calls visit(payload) for each string record of the key that is all there, until it is false.
template <class Visit>
void eachString(Bytes data, std::uint32_t key, Visit visit) {
    detail::walkRecords(data, [&](const RecordView& record) {
        const auto payload = record.payload();
        return !record.is(KeyedTag::Text, key) || !payload || visit(*payload);
    });
}

URL urlOf(const String& string) {
    return string.view().starts_with(u'/') ? URL::fileURLWithPath(string)
                                           : URL::URLWithString(string);
}

/// What the handler is called with collected; none if it never is.
template <class Value, class Handle>
std::optional<std::vector<Value>> collected(Handle handle) {
    std::vector<Value> values;
    values.reserve(UsualStrings);
    handle([&](const Value& value) {
        values.push_back(value);
        return true;
    });
    if (values.empty()) return std::nullopt;
    return values;
}

/// Whether a record of the buffer equals the first one of its tag and key on the other side.
bool hasEqual(Bytes other, const RecordView& record) {
    const auto found = detail::findRecord(other, record.tag(), record.key());
    return found && record.isWhole() && found->isWhole() &&
           charsOf(found->bytes()) == charsOf(record.bytes());
}

}  // namespace

bool containsKeyedData(Bytes data, KeyedTag tag, std::uint32_t key) {
    return detail::findRecord(data, tag, key).has_value();
}

std::uint64_t offsetOfKeyedData(Bytes data, KeyedTag tag, std::uint32_t key) {
    const auto record = detail::findRecord(data, tag, key);
    return record ? record->offset() : NotFound;
}

bool boolForKey(Bytes data, std::uint32_t key) {
    return bitsForKey(data, KeyedTag::Bool, key) != 0;
}

std::uint32_t unsignedForKey(Bytes data, std::uint32_t key) {
    return static_cast<std::uint32_t>(bitsForKey(data, KeyedTag::Unsigned, key));
}

std::int32_t signedForKey(Bytes data, std::uint32_t key) {
    return static_cast<std::int32_t>(bitsForKey(data, KeyedTag::Signed, key));
}

std::uint64_t unsignedLongLongForKey(Bytes data, std::uint32_t key) {
    return bitsForKey(data, KeyedTag::UnsignedLongLong, key);
}

std::int64_t signedLongLongForKey(Bytes data, std::uint32_t key) {
    return static_cast<std::int64_t>(bitsForKey(data, KeyedTag::SignedLongLong, key));
}

float floatForKey(Bytes data, std::uint32_t key) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(bitsForKey(data, KeyedTag::Float, key)));
}

double doubleForKey(Bytes data, std::uint32_t key) {
    return std::bit_cast<double>(bitsForKey(data, KeyedTag::Double, key));
}

double timeIntervalSinceReferenceDateForKey(Bytes data, std::uint32_t key) {
    return std::bit_cast<double>(bitsForKey(data, KeyedTag::Time, key));
}

std::optional<Date> dateForKey(Bytes data, std::uint32_t key) {
    if (!containsDateForKey(data, key)) return std::nullopt;
    return ReferenceDate +
           std::chrono::duration<double>(timeIntervalSinceReferenceDateForKey(data, key));
}

String descriptionWithCalendarFormat(Bytes data, const char* format, std::uint32_t key) {
    constexpr double FarthestSeconds = 1e15;  // some 30 million years
    constexpr std::size_t LongestText = std::size_t{1} << 16;
    const std::optional<Date> date = dateForKey(data, key);
    if (!date || !format) return {};
    const double seconds = std::floor(date->time_since_epoch().count());
    if (!(std::abs(seconds) < FarthestSeconds)) return {};
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts = {};
    if (!::localtime_r(&time, &parts)) return {};
    // An empty result and one for which there is no room look alike but for a sign of our own.
    const std::string marked = std::string(format) + ' ';
    std::string text;
    for (std::size_t room = 256; room <= LongestText; room *= 2) {
        text.resize(room);
        const std::size_t length = std::strftime(text.data(), room, marked.c_str(), &parts);
        if (length > 0) return String::fromUTF8(std::string_view(text).substr(0, length - 1));
    }
    return {};
}

std::optional<Data> dataForKey(Bytes data, std::uint32_t key) {
    return copied(payloadForKey(data, KeyedTag::Blob, key));
}

Bytes dataNoCopyForKey(Bytes data, std::uint32_t key) {
    return payloadForKey(data, KeyedTag::Blob, key);
}

String stringForKey(Bytes data, std::uint32_t key) {
    const Bytes payload = payloadForKey(data, KeyedTag::Text, key);
    return payload.data() ? decoded(payload) : String();
}

std::string_view stringNoCopyForKey(Bytes data, std::uint32_t key) {
    const Bytes payload = payloadForKey(data, KeyedTag::Text, key);
    return payload.data() && !decoded(payload).isAbsent() ? charsOf(payload) : std::string_view();
}

std::optional<Data> stringDataForKey(Bytes data, std::uint32_t key) {
    return copied(payloadForKey(data, KeyedTag::Text, key));
}

bool containsString(Bytes data, std::u16string_view string, std::uint32_t key) {
    if (string.empty() || detail::hasLoneSurrogate(string)) return false;
    const std::string wanted = utf8(string);
    bool found = false;
    eachString(data, key, [&](Bytes payload) { return !(found = charsOf(payload) == wanted); });
    return found;
}

std::size_t numberOfStringsForKey(Bytes data, std::uint32_t key) {
    std::size_t count = 0;
    detail::walkRecords(data, [&](const RecordView& record) {
        count += record.is(KeyedTag::Text, key);
        return true;
    });
    return count;
}

std::size_t handleStringsNoCopyForKey(Bytes data, std::uint32_t key,
                                      FunctionRef<bool(std::string_view utf8)> handler) {
    std::size_t count = 0;
    eachString(data, key, [&](Bytes payload) {
        count += handler && !decoded(payload).isAbsent() && handler(charsOf(payload));
        return true;
    });
    return count;
}

std::size_t handleStringsForKey(Bytes data, std::uint32_t key,
                                FunctionRef<bool(const String& string)> handler) {
    std::size_t count = 0;
    eachString(data, key, [&](Bytes payload) {
        const String string = decoded(payload);
        count += handler && !string.isAbsent() && handler(string);
        return true;
    });
    return count;
}

std::optional<std::vector<String>> stringsForKey(Bytes data, std::uint32_t key) {
    return collected<String>([&](auto add) { handleStringsForKey(data, key, add); });
}

std::optional<std::vector<std::string_view>> stringsNoCopyForKey(Bytes data, std::uint32_t key) {
    return collected<std::string_view>(
        [&](auto add) { handleStringsNoCopyForKey(data, key, add); });
}

URL URLForKey(Bytes data, std::uint32_t key) { return urlOf(stringForKey(data, key)); }

bool containsURL(Bytes data, const URL& url, std::uint32_t key) {
    return containsString(data, url.absoluteString(), key);
}

std::size_t handleURLsForKey(Bytes data, std::uint32_t key,
                             FunctionRef<bool(const URL& url)> handler) {
    return handleStringsForKey(data, key, [&](const String& string) {
        const URL url = urlOf(string);
        return handler && !url.isAbsent() && handler(url);
    });
}

std::optional<std::vector<URL>> URLsForKey(Bytes data, std::uint32_t key) {
    return collected<URL>([&](auto add) { handleURLsForKey(data, key, add); });
}

bool isValidKeyedData(Bytes data) {
    std::size_t validBytes = 0;
    detail::walkRecords(data, [&](const RecordView& record) {
        if (record.isWhole()) validBytes = record.offset() + record.size();
        return record.isWhole();
    });
    return !data.empty() && validBytes == data.size();
}

std::size_t numberOfKeyedData(Bytes data, KeyedTag tag) {
    std::size_t count = 0;
    detail::walkRecords<detail::UnknownTags::AreSteppedOver>(data, [&](const RecordView& record) {
        count += tag == KeyedTag::Any || record.tag() == tag;
        return true;
    });
    return count;
}

std::optional<KeyedValue> valueOfKeyedRecord(const KeyedRecord& record, bool noCopy) {
    if (record.type.tag == KeyedTag::Blob) return std::nullopt;
    if (record.type.tag != KeyedTag::Text)
        return fixedValue(record.type.tag, bitsOf(RecordView(record.bytes, 0), record.type));
    if (!record.payload) return std::nullopt;
    String string = decoded(*record.payload);
    if (string.isAbsent()) return std::nullopt;
    if (noCopy) return charsOf(*record.payload);
    return string;
}

void forEachKeyedRecord(Bytes data, FunctionRef<bool(const KeyedRecord& record)> handler) {
    detail::walkRecords(data, [&](const RecordView& record) {
        const KeyedType& type = *detail::keyedTypeOf(record.tag());
        const auto payload = type.hasPayload ? record.payload() : std::nullopt;
        return handler({type, record.key(), record.offset(), payload, record.bytes()});
    });
}

std::size_t handleKeyedDataUsingHandler(Bytes data, KeyedDataHandler handler,
                                        KeyedHandling options) {
    const KeyedTag marker = options.marker;
    if (marker == KeyedTag::Blob || !handler) return 0;
    if (marker == KeyedTag::Text && !options.strings) return 0;
    std::size_t count = 0;
    forEachKeyedRecord(data, [&](const KeyedRecord& record) {
        const KeyedTag tag = record.type.tag;
        const bool isWanted =
            tag == KeyedTag::Text ? options.strings : marker == KeyedTag::Any || tag == marker;
        if (!isWanted) return true;
        const auto value = valueOfKeyedRecord(record, options.noCopy);
        count += value && handler(tag, record.key, *value);
        return true;
    });
    return count;
}

bool isEqualToKeyedData(Bytes data, std::optional<Bytes> other, KeyedTag marker) {
    if (!other || numberOfKeyedData(data, marker) != numberOfKeyedData(*other, marker))
        return false;
    if (data.empty() || other->empty()) return data.size() == other->size();
    bool isEqual = true;
    detail::walkRecords<detail::UnknownTags::AreSteppedOver>(data, [&](const RecordView& record) {
        const bool counts = marker == KeyedTag::Any || record.tag() == marker;
        return isEqual = !counts || hasEqual(*other, record);
    });
    return isEqual;
}

}  // namespace velmo
