#pragma once

/// MIRELO_TARGET_CLONES in front of a non-template function compiles it for plain x86-64 and for AVX2; the loader
/// picks the one that fits the machine. Empty where the toolchain cannot do this: other compilers, sanitizers.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) &&               \
    !defined(__SANITIZE_THREAD__)
#define MIRELO_TARGET_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define MIRELO_TARGET_CLONES
#endif
