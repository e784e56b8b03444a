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

/// An object: what it holds of its own, and its references to others.
struct ListObject {
    std::uint64_t ownBytes = 1;
    std::uint64_t firstReference = 0;  ///< location in the bytes
    std::uint64_t references = 0;
};

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
            case 0x5:  // ASCII
            case 0x6:  // UTF-16
            case 0x7:  // UTF-8
                return ListObject{1 + std::min<std::uint64_t>(length, bytes_.size()) * 3};
            case 0xA:  // array
            case 0xB:
            case 0xC:  // sets
            case 0xD:  // dictionary
                break;
            default:
                return ListObject{};
        }
        const std::uint64_t each = referenceSize_ * ((marker >> 4) == 0xD ? 2u : 1u);
        if (length > (bytes_.size() - location) / each) return std::nullopt;
        return ListObject{1, location, length * each / referenceSize_};
    }

    /// The number of an object that another one refers to.
    std::uint64_t reference(const ListObject& object, std::uint64_t index) const {
        return readNumber(bytes_, object.firstReference + index * referenceSize_, referenceSize_);
    }

private:
    Bytes bytes_;  // without the trailer
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t root_ = 0;
    std::uint64_t table_ = 0;
};

/// Walks the objects from the root on, each of them once, and sums up bottom to top how deep
/// they nest and how much they unfold to.
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
            const std::uint64_t child = list_.reference(step.object, step.next++);
            if (child >= list_.count()) return false;
            if (objects_[child].isDone) {
                if (!add(objects_[child])) return false;
            } else if (!enter(child)) {
                return false;
            }
        }
        return true;
    }

private:
    /// What is known of an object: levels of containers in it, and its unfolded bytes.
    struct Sum {
        std::uint64_t bytes = 0;
        std::uint32_t levels = 0;
        bool isDone = false;
        bool isOpen = false;
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
        sum.bytes = object->ownBytes;
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
        return path_.empty() ? sum.levels <= MaxListLevels && sum.bytes <= maxBytes_ : add(sum);
    }

    /// Adds a finished object to the one that holds it.
    bool add(const Sum& child) {
        Sum& sum = objects_[path_.back().number];
        sum.bytes += child.bytes;
        sum.levels = std::max(sum.levels, child.levels);
        return sum.bytes <= maxBytes_ && sum.levels < MaxListLevels;
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
    explicit XMLWalk(std::string_view text) : text_(text) {}

    bool run() {
        if (text_.find('\0') != text_.npos) return false;
        for (std::size_t at; (at = text_.find('<')) != text_.npos;) {
            text_.remove_prefix(at);
            if (!readMarkup()) return false;
        }
        return true;
    }

private:
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
            if (open_.empty() || open_.back() != name) return false;
            open_.pop_back();
            levels_ -= isContainer(name);
        } else if (!isEmpty) {
            open_.push_back(name);
            levels_ += isContainer(name);
        }
        // Besides the containers there are "plist" around and one other element within.
        return levels_ <= MaxListLevels && open_.size() <= MaxListLevels + 2;
    }

    static bool isContainer(std::string_view name) { return name == "array" || name == "dict"; }

    std::string_view text_;
    std::vector<std::string_view> open_;
    std::size_t levels_ = 0;
};

}  // namespace

bool isHarmlessPropertyList(Bytes bytes) {
    const std::string_view text = charsOf(bytes);
    return text.starts_with("bplist00") ? isHarmlessBinary(bytes) : XMLWalk(text).run();
}

}  // namespace velmo::detail
