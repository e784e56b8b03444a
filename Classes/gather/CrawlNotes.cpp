#include "gather/CrawlNotes.h"

#include <velmocore/storage/KeyedDataEditing.h>

#include "gather/RecordKeys.h"
#include "gather/StoredURL.h"

namespace velmo::detail {
namespace {

/// So many pages are done before the store is made to synchronize them.
constexpr std::size_t MostUnsynchronized = 64;
constexpr std::size_t EntriesPerNote = 1000;
/// Notes are not written anew for less.
constexpr std::size_t LeastTold = 10'000;

/// Level, start and redirects of an entry as one number.
std::uint64_t packed(const FrontierEntry& entry) {
    return std::uint64_t{entry.level} << 32 | std::uint64_t{entry.start & 0xFFFFFF} << 8 |
           (entry.redirects & 0xFF);
}

FrontierEntry unpacked(std::uint64_t place) {
    return {.level = static_cast<std::uint32_t>(place >> 32),
            .start = static_cast<std::uint32_t>(place >> 8) & 0xFFFFFF,
            .redirects = static_cast<std::uint32_t>(place & 0xFF)};
}

void addEntry(Data& note, const FrontierEntry& entry) {
    addUnsignedLongLong(note, packed(entry), CrawlPlaceKey);
    addUTF8String(note, entry.url.absoluteString().utf8(), CrawlAddressKey);
}

Data dataOfIDs(const std::vector<PageID>& ids) {
    Data data;
    for (const PageID id : ids)
        for (int shift = 0; shift < 64; shift += 8)
            data.push_back(static_cast<std::uint8_t>(id >> shift));
    return data;
}

void takeIDs(std::unordered_set<PageID>& ids, Bytes bytes) {
    for (; bytes.size() >= sizeof(PageID); bytes = bytes.subspan(sizeof(PageID))) {
        PageID id = 0;
        for (std::size_t i = sizeof id; i-- > 0;) id = id << 8 | bytes[i];
        ids.insert(id);
    }
}

/// Reads the records of a note, one by one: an address belongs to the place in front of it.
class NoteReader {
public:
    explicit NoteReader(CrawlState& state) : state_(state) {}

    void read(Bytes note) {
        if (const auto begun = dateForKey(note, CrawlBegunKey)) state_.begun = begun;
        forEachKeyedRecord(note, [&](const KeyedRecord& record) {
            take(record);
            return true;
        });
    }

private:
    void take(const KeyedRecord& record) {
        if (record.key == CrawlPlaceKey)
            place_ = valueOf(record);
        else if (!record.payload)
            return;
        else if (record.key == CrawlAddressKey)
            takeFound(urlOf(record));
        else if (record.key == CrawlBaseKey)
            state_.bases.emplace_back(static_cast<std::uint32_t>(place_), urlOf(record));
        else if (record.key == CrawlReadKey)
            takeIDs(state_.read, *record.payload);
        else if (record.key == CrawlDoneKey)
            takeIDs(state_.done, *record.payload);
    }

    void takeFound(const URL& url) {
        FrontierEntry entry = unpacked(place_);
        entry.url = Frontier::cleaned(url);
        if (!entry.url.isAbsent()) state_.found.push_back(std::move(entry));
    }

    static std::uint64_t valueOf(const KeyedRecord& record) {
        const std::optional<KeyedValue> value = valueOfKeyedRecord(record);
        const auto* number = value ? std::get_if<std::uint64_t>(&*value) : nullptr;
        return number ? *number : 0;
    }
    static URL urlOf(const KeyedRecord& record) {
        return urlOfStored(String::fromUTF8(charsOf(*record.payload)));
    }

    CrawlState& state_;
    std::uint64_t place_ = 0;
};

}  // namespace

CrawlState CrawlNotes::load() {
    CrawlState state;
    if (!store_) return state;
    NoteReader reader(state);
    store_->forEachNote([&](std::uint64_t number, Bytes note) {
        if (unsignedLongLongForKey(note, CrawlKey) != crawl_) return true;
        numbers_.push_back(number);
        reader.read(note);
        return true;
    });
    begun_ = state.begun;
    told_ = state.found.size();
    return state;
}

void CrawlNotes::startNote() {
    if (note_.empty()) addUnsignedLongLong(note_, crawl_, CrawlKey);
}

void CrawlNotes::begin(Date now) {
    if (!store_) return;
    begun_ = now;
    startNote();
    addDate(note_, now, CrawlBegunKey);
}

void CrawlNotes::addBase(std::uint32_t start, const URL& base) {
    if (!store_) return;
    startNote();
    addUnsignedLongLong(note_, start, CrawlPlaceKey);
    addUTF8String(note_, base.absoluteString().utf8(), CrawlBaseKey);
}

void CrawlNotes::addFound(const FrontierEntry& entry) {
    if (!store_) return;
    startNote();
    addEntry(note_, entry);
    ++told_;
}

void CrawlNotes::addRead(PageID id) {
    if (!store_) return;
    startNote();
    addData(note_, dataOfIDs({id}), CrawlReadKey);
    write();
    addDone(id);
}

void CrawlNotes::addDone(PageID id) {
    if (!store_) return;
    done_.push_back(id);
    if (done_.size() >= MostUnsynchronized) synchronize();
}

void CrawlNotes::synchronize() {
    if (!store_->synchronize()) return;
    startNote();
    addData(note_, dataOfIDs(done_), CrawlDoneKey);
    done_.clear();
}

void CrawlNotes::write() {
    if (!note_.empty())
        if (const auto number = store_->addNote(note_)) numbers_.push_back(*number);
    note_.clear();
}

void CrawlNotes::flush() {
    if (!store_) return;
    if (!done_.empty()) synchronize();
    write();
}

void CrawlNotes::tidy(const Frontier& frontier) {
    if (!store_ || told_ < LeastTold || told_ < 3 * frontier.waiting().size()) return;
    flush();
    const std::vector<std::uint64_t> former = std::exchange(numbers_, {});
    told_ = 0;
    begin(begun_.value_or(Date()));
    for (std::uint32_t i = 0; i < frontier.numberOfStarts(); ++i) addBase(i, frontier.base(i));
    std::vector<PageID> done;
    for (const PageID id : frontier.seen())
        if (!frontier.isWaiting(id)) done.push_back(id);
    addData(note_, dataOfIDs(done), CrawlDoneKey);
    for (const auto& [id, entry] : frontier.waiting()) {
        addFound(entry);
        if (told_ % EntriesPerNote == 0) write();
    }
    write();
    for (const std::uint64_t number : former) store_->removeNote(number);
}

void CrawlNotes::end() {
    note_.clear();
    done_.clear();
    if (!store_ || numbers_.empty()) return;
    store_->synchronize();
    for (const std::uint64_t number : numbers_) store_->removeNote(number);
    numbers_.clear();
    store_->synchronize();
}

}  // namespace velmo::detail
