#include "feeds/FeedTags.h"

#include <algorithm>

#include "markup/TagName.h"
#include "text/Keyword.h"

namespace velmo::detail {
namespace {

struct ShortName {
    PackedName name;
    FeedTag tag;
};

/// Names of up to eight units.
constexpr ShortName ShortNames[] = {
    {packed("rss"), FeedTag::RSS},         {packed("rdf:rdf"), FeedTag::RDF},
    {packed("feed"), FeedTag::Feed},       {packed("html"), FeedTag::HTML},
    {packed("head"), FeedTag::Head},       {packed("body"), FeedTag::Body},
    {packed("item"), FeedTag::Item},       {packed("entry"), FeedTag::Item},
    {packed("title"), FeedTag::Title},     {packed("link"), FeedTag::Link},
    {packed("guid"), FeedTag::GUID},       {packed("author"), FeedTag::Author},
    {packed("name"), FeedTag::Name},       {packed("issued"), FeedTag::Date},
    {packed("dc:date"), FeedTag::Date},    {packed("pubdate"), FeedTag::Date},
    {packed("updated"), FeedTag::Date},    {packed("summary"), FeedTag::Summary},
    {packed("content"), FeedTag::Content}, {packed("category"), FeedTag::Category},
};

struct LongName {
    std::string_view capitals;
    FeedTag tag;
};

constexpr LongName LongNames[] = {
    {"DESCRIPTION", FeedTag::Description}, {"CONTENT:ENCODED", FeedTag::EncodedContent},
    {"ENCLOSURE", FeedTag::Enclosure},     {"DC:CREATOR", FeedTag::Creator},
    {"PUBLISHED", FeedTag::Date},
};

consteval auto packedNames() {
    std::array<PackedName, std::size(ShortNames)> names{};
    std::ranges::transform(ShortNames, names.begin(), &ShortName::name);
    return names;
}

constexpr NameTable<std::size(ShortNames)> Table(packedNames());

FeedTag tagOfShort(PackedName name) {
    const int index = Table.find(name);
    return index < 0 ? FeedTag::Other : ShortNames[index].tag;
}

FeedTag tagOfLong(std::u16string_view name) {
    for (const LongName& row : LongNames)
        if (keyword::equals(name, row.capitals)) return row.tag;
    return FeedTag::Other;
}

bool isRoot(FeedTag tag) { return tag >= FeedTag::RSS && tag <= FeedTag::Body; }

}  // namespace

FeedTag feedTagOf(const Tag& tag) {
    constexpr std::string_view Prefix = "RSS:";
    if (tag.nameLength == 0) return FeedTag::Other;
    std::u16string_view name = tag.name();
    if (name.size() > Prefix.size() && name[3] == u':' && keyword::beginsWith(name, Prefix)) {
        name.remove_prefix(Prefix.size());
        const FeedTag meant =
            name.size() <= MaxPackedUnits ? tagOfShort(packedUnits(name)) : tagOfLong(name);
        return isRoot(meant) ? FeedTag::Other : meant;
    }
    return name.size() <= MaxPackedUnits ? tagOfShort(packedName(tag)) : tagOfLong(name);
}

}  // namespace velmo::detail
