#include "Machine.h"

#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "platform/Machine.h"

namespace velmo::bench {

bool isAvx2Only() {
    static const bool is = [] {
        const char* name = std::getenv("VELMO_BENCH_MACHINE");
        if (name && std::string_view(name) != "avx2")
            throw std::runtime_error("VELMO_BENCH_MACHINE can only be avx2");
        return name != nullptr;
    }();
    return is;
}

void chooseMachine() {
#if defined(__SSE2__)
    detail::machine::mayUseAvx512 = !isAvx2Only();
#endif
}

}  // namespace velmo::bench
