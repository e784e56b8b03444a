// A smaller machine for a while, so that its kernels are tested on larger ones too.
#pragma once

#include "platform/Machine.h"

namespace velmo::test {

class WithoutAvx512 {
public:
#if defined(__SSE2__)
    WithoutAvx512() { detail::machine::mayUseAvx512 = false; }
    ~WithoutAvx512() { detail::machine::mayUseAvx512 = true; }
#else
    WithoutAvx512() {}
    ~WithoutAvx512() {}
#endif
    WithoutAvx512(const WithoutAvx512&) = delete;
    WithoutAvx512& operator=(const WithoutAvx512&) = delete;
};

}  // namespace velmo::test
