// Expressions that Hyperscan looks for all at once, compiled once, for the benchmarks beside it.
#pragma once

#include <hs.h>

#include <string>
#include <vector>

namespace velmo::bench {

class HyperscanDatabase {
public:
    struct Expression {
        std::string pattern;
        unsigned flags = HS_FLAG_CASELESS;
        unsigned id = 0;
    };

    explicit HyperscanDatabase(const std::vector<Expression>& expressions);
    /// Words, each to be found as a whole.
    static HyperscanDatabase ofWords(const std::vector<std::string>& words);
    ~HyperscanDatabase();
    HyperscanDatabase(const HyperscanDatabase&) = delete;
    HyperscanDatabase& operator=(const HyperscanDatabase&) = delete;

    /// Calls found(id) for each match until it gives true; whether it did.
    template <class Found>
    bool scan(const std::string& text, Found found) const {
        const auto call = [](unsigned id, unsigned long long, unsigned long long, unsigned,
                             void* context) {
            return static_cast<int>((*static_cast<Found*>(context))(id));
        };
        return run(text, call, &found) == HS_SCAN_TERMINATED;
    }
    bool anyIn(const std::string& text) const {
        return scan(text, [](unsigned) { return true; });
    }

private:
    hs_error_t run(const std::string& text, match_event_handler handler, void* context) const;

    hs_database_t* database_ = nullptr;
    hs_scratch_t* scratch_ = nullptr;
};

}  // namespace velmo::bench
