#include "HyperscanDatabase.h"

#include <dlfcn.h>

#include <stdexcept>

#include "Machine.h"

namespace velmo::bench {
namespace {

/// The form of hs_scan() for AVX2, which the library has beside others and would not take by itself
/// on larger machines.
decltype(&hs_scan) scanOfMachine() {
    if (!isAvx2Only()) return hs_scan;
    void* const found = dlsym(RTLD_DEFAULT, "avx2_hs_scan");
    if (!found) throw std::runtime_error("this Hyperscan has no form for AVX2");
    return reinterpret_cast<decltype(&hs_scan)>(found);
}

}  // namespace

HyperscanDatabase::HyperscanDatabase(const std::vector<Expression>& expressions) {
    std::vector<const char*> patterns;
    std::vector<unsigned> flags, ids;
    for (const Expression& expression : expressions) {
        patterns.push_back(expression.pattern.c_str());
        flags.push_back(expression.flags);
        ids.push_back(expression.id);
    }
    hs_platform_info_t avx2{};
    avx2.tune = HS_TUNE_FAMILY_HSW;
    avx2.cpu_features = HS_CPU_FEATURES_AVX2;
    hs_compile_error_t* error = nullptr;
    if (hs_compile_multi(patterns.data(), flags.data(), ids.data(),
                         static_cast<unsigned>(patterns.size()), HS_MODE_BLOCK,
                         isAvx2Only() ? &avx2 : nullptr, &database_, &error) != HS_SUCCESS)
        throw std::runtime_error(error->message);
    hs_alloc_scratch(database_, &scratch_);
}

HyperscanDatabase::~HyperscanDatabase() {
    hs_free_scratch(scratch_);
    hs_free_database(database_);
}

HyperscanDatabase HyperscanDatabase::ofWords(const std::vector<std::string>& words) {
    std::vector<Expression> expressions;
    for (const std::string& word : words) expressions.push_back({"\\b" + word + "\\b"});
    return HyperscanDatabase(expressions);
}

hs_error_t HyperscanDatabase::run(const std::string& text, match_event_handler handler,
                                  void* context) const {
    static const auto scan = scanOfMachine();
    const hs_error_t result = scan(database_, text.data(), static_cast<unsigned>(text.size()), 0,
                                   scratch_, handler, context);
    if (result != HS_SUCCESS && result != HS_SCAN_TERMINATED)
        throw std::runtime_error("Hyperscan refuses to scan");
    return result;
}

}  // namespace velmo::bench
