// Copies of hot loops for the vector instructions that a processor may have; the loader takes the best.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    defined(__OPTIMIZE__)
#define AEM_VECTOR_COPIES __attribute__((target_clones("default", "arch=haswell", "arch=skylake-avx512")))
#else
#define AEM_VECTOR_COPIES
#endif
