// Entities and JSON escapes: in place as out of place, never longer where that is promised,
// and back again.
#include <velmocore/markup/Entities.h>
#include <velmocore/markup/JSONEscapes.h>

#include <string>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

void decode(const std::u16string& text, std::size_t location, EntityOptions options) {
    const std::size_t length = text.size() - location;
    std::u16string place = text, other(length, u'#');
    const std::size_t inPlace =
        convertEntities2Characters(place.data(), place.data(), location, length, options);
    const std::size_t outOfPlace =
        convertEntities2Characters(text.data(), other.data(), location, length, options);
    require(inPlace == outOfPlace && inPlace <= length);
    require(place.compare(0, inPlace, other, 0, inPlace) == 0);
    stringByConvertingEntitiesToCharacters(text, options);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const unsigned flags = data[0] >> 1;
    const String string = fuzz::unitsOf(data, size);
    const std::u16string text(string.view());
    const std::size_t location = text.empty() ? 0 : (flags >> 3) % text.size();
    const EntityOptions told{(flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0};
    EntityOptions today = told;
    today.inAttribute = (flags & 8) != 0;
    today.web = WebRules::today();
    for (const EntityOptions& options : {told, today}) decode(text, location, options);

    std::u16string place = text;
    const std::size_t length = convertStdEntities2Characters(place.data(), place.size());
    require(length <= text.size());
    require(stringByConvertingStandardEntitiesToCharacters(string).view() ==
            (text.size() < 4 ? std::u16string_view(text)
                             : std::u16string_view(place).substr(0, length)));

    stringByConvertingCharactersToStandardEntities(string);
    require(stringByConvertingJSONToCharacters(string, flags & 1).length() <= text.size());
    require(stringByConvertingJSONToCharacters(stringByConvertingCharactersToJSON(string)) ==
            string);
    for (char16_t unit : stringByConvertingCharactersToEntities(string)) require(unit < 128);
    return 0;
}
