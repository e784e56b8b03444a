// Tables that belong to encodings.
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include "platform/EncodingTables.h"

namespace velmo::detail {

/// One table for each encoding, made from its row at first use and kept for the life of the
/// process, so that threads which outlive main() may still use it. If two threads make the
/// same one at once, the first stays.
template <class Table>
class RowCache {
public:
    Table& get(const EncodingRow& row) {
        std::atomic<Table*>& place = tables_.at(&row - encodingRows().data());
        Table* table = place.load(std::memory_order_acquire);
        if (!table) {
            auto made = std::make_unique<Table>(row);
            if (place.compare_exchange_strong(table, made.get(), std::memory_order_acq_rel))
                table = made.release();
        }
        return *table;
    }

private:
    static constexpr std::size_t MaxRows = 128;
    std::array<std::atomic<Table*>, MaxRows> tables_{};
};

}  // namespace velmo::detail
