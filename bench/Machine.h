// Which machine the benchmarks stand for: VELMO_BENCH_MACHINE=avx2 in the environment takes AVX-512
// from the library's own kernels and from Hyperscan, so that figures of smaller machines can be had
// on larger ones. Other peers, and the C library, stay as they are.
#pragma once

namespace velmo::bench {

/// To be called before anything is measured.
void chooseMachine();

bool isAvx2Only();

}  // namespace velmo::bench
