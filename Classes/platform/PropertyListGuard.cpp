// Two walks that foresee what the parser will do, without its recursion and without unfolding
// anything. The binary one visits each object once and sums up, from the leaves to the root, how
// deep it nests and how long it is as text. The other follows the tags of XML as the parser does,
// and refuses markup in which the two could see different tags.
#include "platform/PropertyListGuard.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace velmo::detail {
namespace {

// ---- Binary ----------------------------------------------------------------------------------

/// Numbers of other sizes no writer uses, and parsers read them differently.
constexpr bool isNumberSize(std::size_t size) {
    return size == 1 || size == 2 || size == 4 || size == 8;
}

std::uint64_t readNumber(Bytes bytes, std::size_t location, std::size_t size) {
    std::uint64_t value = 0;
    for (std::uint8_t byte : bytes.subspan(location, size)) value = value << 8 | byte;
    return value;
}

/// What an object is written as: bytes at most, and lines, each of which gets a tab more for
/// every container around it.
struct Extent {
    std::uint64_t bytes = 0, lines = 0;
};

/// Tags, digits and line ends of an object of the type that the marker tells, without the units
/// of a text or the bytes of data.
constexpr Extent frameOf(unsigned marker) {
    switch (marker >> 4) {
        case 0x0:  // a boolean
            return {10, 1};
        case 0x8:  // a reference, written as a dictionary
            return {90, 4};
        case 0xA:
        case 0xB:
        case 0xC:
        case 0xD:
            return {18, 2};
        default:  // the longest are numbers and dates
            return {50, 1};
    }
}

/// A unit of text takes as many bytes at most: "&" is written as "&amp;".
constexpr std::uint64_t BytesOfUnit = 5;
/// A byte of data takes as many: base64 in short lines that are set in by up to eight tabs.
constexpr std::uint64_t BytesOfDataByte = 3;

/// An object: what it takes of its own, and its references to others.
struct ListObject {
    Extent own;
    std::uint64_t firstReference = 0;  ///< location in the bytes
    std::uint64_t references = 0;
    std::uint64_t keys = 0;  ///< how many of the first references are keys of a dictionary
    bool holdsZero = false;  ///< a text that the parser would stop for, as a key
};

/// Whether a text of units of a size has one that is zero.
bool holdsZero(Bytes text, std::size_t unitSize) {
    for (std::size_t i = 0; i + unitSize <= text.size(); i += unitSize)
        if (text[i] == 0 && text[i + unitSize - 1] == 0) return true;
    return false;
}

class BinaryList {
public:
    /// Absent if the trailer is not sound.
    static std::optional<BinaryList> open(Bytes bytes) {
        constexpr std::size_t HeaderSize = 8, TrailerSize = 32;
        if (bytes.size() < HeaderSize + TrailerSize) return std::nullopt;
        const std::size_t end = bytes.size() - TrailerSize;
        BinaryList list;
        list.bytes_ = bytes.first(end);
        list.offsetSize_ = bytes[end + 6];
        list.referenceSize_ = bytes[end + 7];
        list.count_ = readNumber(bytes, end + 8, 8);
        list.root_ = readNumber(bytes, end + 16, 8);
        list.table_ = readNumber(bytes, end + 24, 8);
        const bool isSound = isNumberSize(list.offsetSize_) && isNumberSize(list.referenceSize_) &&
                             list.table_ <= end &&
                             list.count_ <= (end - list.table_) / list.offsetSize_ &&
                             list.root_ < list.count_;
        return isSound ? std::optional(list) : std::nullopt;
    }

    std::size_t count() const { return count_; }
    std::uint64_t root() const { return root_; }

    /// The object of a number below count(); absent if it does not lie within the bytes.
    std::optional<ListObject> object(std::uint64_t number) const {
        std::uint64_t location = readNumber(bytes_, table_ + number * offsetSize_, offsetSize_);
        if (location >= bytes_.size()) return std::nullopt;
        const unsigned marker = bytes_[location++];
        std::uint64_t length = marker & 0x0F;
        if (length == 0x0F && marker > 0x3F) {
            // The length is a number object of its own.
            if (location >= bytes_.size()) return std::nullopt;
            const unsigned lengthMarker = bytes_[location++];
            const std::size_t size = std::size_t{1} << (lengthMarker & 0x0F);
            if ((lengthMarker & 0xF0) != 0x10 || size > 8 || bytes_.size() - location < size)
                return std::nullopt;
            length = readNumber(bytes_, location, size);
            location += size;
        }
        switch (marker >> 4) {
            case 0x4:  // data
                return leaf(marker, length, BytesOfDataByte);
            case 0x5:  // ASCII
            case 0x6:  // UTF-16
            case 0x7:  // UTF-8
                return textLeaf(marker, location, length);
            case 0xA:  // array
            case 0xB:
            case 0xC:  // sets
            case 0xD:  // dictionary
                break;
            default:
                return leaf(marker, 0, 0);
        }
        const std::uint64_t each = referenceSize_ * ((marker >> 4) == 0xD ? 2u : 1u);
        if (length > (bytes_.size() - location) / each) return std::nullopt;
        if ((marker >> 4) == 0xD && length > MaxListKeys) return std::nullopt;
        return ListObject{frameOf(marker), location, length * each / referenceSize_,
                          (marker >> 4) == 0xD ? length : 0};
    }

    /// The number of an object that another one refers to.
    std::uint64_t reference(const ListObject& object, std::uint64_t index) const {
        return readNumber(bytes_, object.firstReference + index * referenceSize_, referenceSize_);
    }

private:
    /// A length that does not lie within the bytes is for the parser to refuse.
    ListObject leaf(unsigned marker, std::uint64_t length, std::uint64_t each) const {
        Extent extent = frameOf(marker);
        extent.bytes += std::min<std::uint64_t>(length, bytes_.size()) * each;
        if ((marker >> 4) == 0x4) extent.lines = 2;  // its own lines are set in no further
        return {extent};
    }

    ListObject textLeaf(unsigned marker, std::uint64_t location, std::uint64_t length) const {
        const std::size_t unitSize = (marker >> 4) == 0x6 ? 2 : 1;
        ListObject object = leaf(marker, length, BytesOfUnit);
        const std::uint64_t most = (bytes_.size() - location) / unitSize;
        object.holdsZero =
            holdsZero(bytes_.subspan(location, std::min(length, most) * unitSize), unitSize);
        return object;
    }

    Bytes bytes_;  // without the trailer
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t root_ = 0;
    std::uint64_t table_ = 0;
};

/// Walks the objects from the root on, each of them once, and sums up bottom to top how deep
/// they nest and how much they are written as.
class BinaryWalk {
public:
    BinaryWalk(const BinaryList& list, std::uint64_t maxBytes)
        : list_(list), maxBytes_(maxBytes), objects_(list.count()) {}

    bool run() {
        if (!enter(list_.root())) return false;
        while (!path_.empty()) {
            Step& step = path_.back();
            if (step.next == step.object.references) {
                if (!leave()) return false;
                continue;
            }
            const bool isKey = step.next < step.object.keys;
            const std::uint64_t child = list_.reference(step.object, step.next++);
            if (child >= list_.count()) return false;
            if (!(objects_[child].isDone ? add(objects_[child]) : enter(child))) return false;
            if (isKey && objects_[child].holdsZero) return false;
        }
        return true;
    }

private:
    /// What is known of an object: levels of containers in it, and what it is written as.
    struct Sum {
        Extent extent;
        std::uint32_t levels = 0;
        bool isDone = false;
        bool isOpen = false;
        bool holdsZero = false;
    };
    struct Step {
        std::uint64_t number;
        ListObject object;
        std::uint64_t next = 0;
    };

    bool enter(std::uint64_t number) {
        Sum& sum = objects_[number];
        const auto object = list_.object(number);
        // An object within itself has no end.
        if (!object || sum.isOpen) return false;
        sum.isOpen = true;
        sum.extent = object->own;
        sum.holdsZero = object->holdsZero;
        path_.push_back({number, *object});
        // The last of a path may be a leaf.
        return path_.size() <= MaxListLevels + 1;
    }

    bool leave() {
        Sum& sum = objects_[path_.back().number];
        sum.levels += path_.back().object.firstReference != 0;
        sum.isDone = true;
        sum.isOpen = false;
        path_.pop_back();
        return path_.empty() ? sum.levels <= MaxListLevels && sum.extent.bytes <= maxBytes_
                             : add(sum);
    }

    /// Adds a finished object to the one that holds it.
    bool add(const Sum& child) {
        Sum& sum = objects_[path_.back().number];
        sum.extent.bytes += child.extent.bytes + child.extent.lines;
        sum.extent.lines += child.extent.lines;
        sum.levels = std::max(sum.levels, child.levels);
        return sum.extent.bytes <= maxBytes_ && sum.levels < MaxListLevels;
    }

    const BinaryList& list_;
    std::uint64_t maxBytes_;
    std::vector<Sum> objects_;
    std::vector<Step> path_;
};

bool isHarmlessBinary(Bytes bytes) {
    const auto list = BinaryList::open(bytes);
    return list && BinaryWalk(*list, bytes.size() * 64 + 0x100000).run();
}

// ---- XML -------------------------------------------------------------------------------------

/// Follows the nesting of elements, whatever their names. It must never see a closing tag
/// where the parser sees none, as behind a > in a quoted attribute: markup in which the two
/// could read differently is refused.
class XMLWalk {
public:
    explicit XMLWalk(std::string_view text) : whole_(text), text_(text) {}

    bool run() {
        if (text_.find('\0') != text_.npos) return false;
        for (std::size_t at; (at = text_.find('<')) != text_.npos;) {
            readText(text_.substr(0, at));
            text_.remove_prefix(at);
            if (!readMarkup()) return false;
        }
        return true;
    }

    /// The text with a comment wherever one is to be set in; absent if none is.
    std::optional<Data> parted() const {
        if (breaks_.empty()) return std::nullopt;
        constexpr std::string_view Comment = "<!---->";
        Data result;
        result.reserve(whole_.size() + breaks_.size() * Comment.size());
        std::size_t done = 0;
        const auto append = [&](std::string_view part) {
            result.insert(result.end(), part.begin(), part.end());
        };
        for (const std::size_t next : breaks_) {
            append(whole_.substr(done, next - done));
            append(Comment);
            done = next;
        }
        append(whole_.substr(done));
        return result;
    }

private:
    /// The parser moves the rest of a text for each entity in it. A comment ends the text for
    /// it, but not the string, so that long texts with entities are broken by some.
    void readText(std::string_view text) {
        if (text.size() <= LongestText || text.find('&') == text.npos) return;
        for (;;) {
            std::size_t cut = LongestText;
            if (text.size() <= cut) return;
            const std::size_t entity = text.rfind('&', cut - 1);
            if (entity != text.npos) {
                const std::size_t end = text.find(';', entity);
                if (end == text.npos) return;
                cut = std::max(cut, end + 1);
            }
            breaks_.push_back(static_cast<std::size_t>(text.data() - whole_.data()) + cut);
            text.remove_prefix(cut);
        }
    }

    bool readMarkup() {
        if (text_.starts_with("<!--")) return skipTo("-->", 4);
        if (text_.starts_with("<![CDATA[")) return skipTo("]]>", 9);
        const bool isInstruction = text_.starts_with("<?");
        const std::string_view end = isInstruction ? "?>" : ">";
        const std::size_t length = text_.find(end, 1);
        if (length == text_.npos || length == 1) return false;
        const std::string_view markup = text_.substr(1, length - 1);
        text_.remove_prefix(length + end.size());
        if (!isPlain(markup)) return false;
        if (isInstruction) return true;
        if (markup.starts_with('!')) return markup.find('[') == markup.npos;
        return readTag(markup);
    }

    /// Skips a section; one without an end reaches to the end of the text.
    bool skipTo(std::string_view end, std::size_t from) {
        const std::size_t at = text_.find(end, from);
        text_.remove_prefix(at == text_.npos ? text_.size() : at + end.size());
        return true;
    }

    /// Whether quotes of one kind at most stand in it, in pairs, and no further markup.
    static bool isPlain(std::string_view markup) {
        const auto doubles = std::ranges::count(markup, '"');
        const auto singles = std::ranges::count(markup, '\'');
        return doubles % 2 == 0 && singles % 2 == 0 && (doubles == 0 || singles == 0) &&
               markup.find('<') == markup.npos;
    }

    bool readTag(std::string_view tag) {
        const bool isEmpty = tag.ends_with('/');
        if (isEmpty) tag.remove_suffix(1);
        const bool isClosing = tag.starts_with('/');
        if (isClosing) tag.remove_prefix(1);
        const std::string_view name = tag.substr(0, tag.find_first_of(" \r\n\t"));
        if (isClosing) {
            if (open_.empty() || open_.back().name != name) return false;
            open_.pop_back();
            levels_ -= isContainer(name);
            return true;
        }
        if (name == "key" && !open_.empty() && ++open_.back().keys > MaxListKeys) return false;
        if (!isEmpty) {
            open_.push_back({name});
            levels_ += isContainer(name);
        }
        // Besides the containers there are "plist" around and one other element within.
        return levels_ <= MaxListLevels && open_.size() <= MaxListLevels + 2;
    }

    static bool isContainer(std::string_view name) { return name == "array" || name == "dict"; }

    static constexpr std::size_t LongestText = 1024;

    struct Element {
        std::string_view name;
        std::size_t keys = 0;
    };

    std::string_view whole_, text_;
    std::vector<Element> open_;
    std::vector<std::size_t> breaks_;  // places in the whole
    std::size_t levels_ = 0;
};

}  // namespace

HarmlessList harmlessPropertyList(Bytes bytes) {
    const std::string_view text = charsOf(bytes);
    if (text.starts_with("bplist00")) return {isHarmlessBinary(bytes), std::nullopt};
    XMLWalk walk(text);
    if (!walk.run()) return {false, std::nullopt};
    return {true, walk.parted()};
}

}  // namespace velmo::detail
