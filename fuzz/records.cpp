// Bytes as keyed data: read, edited, cleared of records and compared.
#include <velmocore/storage/KeyedData.h>
#include <velmocore/storage/KeyedDataEditing.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

/// What is asked for by its key is what the walk sees first.
void read(Bytes bytes) {
    std::size_t count = 0;
    forEachKeyedRecord(bytes, [&](const KeyedRecord& record) {
        require(record.offset + record.bytes.size() <= bytes.size());
        require(containsKeyedData(bytes, record.type.tag, record.key));
        require(offsetOfKeyedData(bytes, record.type.tag, record.key) <= record.offset);
        ++count;
        return count < 100;
    });
    const std::uint32_t key = bytes.size() > 7 ? bytes[7] : 0;
    const auto strings = stringsForKey(bytes, key);
    require(!strings || strings->size() <= numberOfStringsForKey(bytes, key));
    require(!dataForKey(bytes, key) || containsDataForKey(bytes, key));
    URLsForKey(bytes, key);
    descriptionWithCalendarFormat(bytes, "%c", key);
    handleKeyedDataUsingHandler(
        bytes, [](KeyedTag, std::uint32_t, const KeyedValue&) { return true; }, {.strings = true});
}

void edit(Bytes bytes) {
    const std::uint32_t key = bytes.size() > 7 ? bytes[7] : 0;
    Data data(bytes.begin(), bytes.end());
    setDouble(data, 0.5, key);
    setData(data, dataNoCopyForKey(data, key).empty() ? Bytes(data) : dataNoCopyForKey(data, key),
            key);
    removeStringForKey(data, key);
    require(data.empty() || isValidKeyedData(data));
    removeStringsForKey(data, key);
    require(data.empty() || isValidKeyedData(data));
    require(setString(data, u"text", key) && stringForKey(data, key) == u"text");
    require(setSigned(data, -5, key) && signedForKey(data, key) == -5);
    removeKeyedDataUsingHandler(data, [](KeyedTag, std::uint32_t any) { return any % 2 == 0; });
    require(data.empty() || isValidKeyedData(data));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, size), half = bytes.subspan(size / 2);
    read(bytes);
    edit(bytes);
    isEqualToKeyedData(bytes, half);
    isEqualToKeyedData(bytes, bytes, KeyedTag::Unsigned);
    return 0;
}
