// What the kernels for wider machines ask first.
#pragma once

namespace velmo::detail::machine {

#if defined(__SSE2__)

/// Taken away, while no other thread is at work, where tests and benchmarks want to know what smaller
/// machines do.
inline bool mayUseAvx512 = true;

/// Whether functions compiled for AVX2 may be called.
inline bool hasAvx2() noexcept {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

/// Whether functions compiled for AVX-512 with its operations on bytes (BW, VBMI, VBMI2) may be
/// called.
inline bool hasAvx512() noexcept {
    static const bool has = __builtin_cpu_supports("avx512bw") &&
                            __builtin_cpu_supports("avx512vbmi") &&
                            __builtin_cpu_supports("avx512vbmi2");
    return has && mayUseAvx512;
}

#endif

}  // namespace velmo::detail::machine
