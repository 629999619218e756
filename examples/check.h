// The code that the examples share: reproducible data, and comparison with scalar code.
#pragma once

#include <stddef.h>  // NOLINT(modernize-deprecated-headers): C includes this file, too
#include <stdint.h>  // NOLINT(modernize-deprecated-headers): as above

// For the reference code beside an SVE function. It is compiled for a processor without SVE, not
// vectorised, and not specialised to its callers: a vector length taken over from them would need
// SVE here.
#define SCALAR __attribute__((noipa, target("arch=armv8-a"), optimize("no-tree-vectorize")))

#ifdef __cplusplus
extern "C" {
#endif

// Fills memory with pseudorandom bytes. Each seed has its fixed sequence, and must not be 0.
void fill_random(void* data, size_t bytes, uint64_t seed);

// A short fingerprint of a result, for the output.
uint64_t fingerprint(const void* data, size_t bytes);

// If the two results differ, prints where and ends the program with status 1.
void check_equal(const char* what, const void* result, const void* expected, size_t bytes);

// Does the same if an error is above its claimed bound, or is a NaN.
void check_at_most(const char* what, double error, double bound);

#ifdef __cplusplus
}
#endif
