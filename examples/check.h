// What the examples share: reproducible data, and comparison with scalar code.
#pragma once

#include <stddef.h>  // NOLINT(modernize-deprecated-headers): C includes this file, too
#include <stdint.h>  // NOLINT(modernize-deprecated-headers): as above

// The reference beside an SVE function: compiled for a processor without SVE, not vectorised, and
// without what the compiler knows of its callers, whose vector length would need SVE here.
#define SCALAR __attribute__((noipa, target("arch=armv8-a"), optimize("no-tree-vectorize")))

#ifdef __cplusplus
extern "C" {
#endif

// Fills with a fixed sequence of pseudorandom bytes for each seed, which must not be 0.
void fill_random(void* data, size_t bytes, uint64_t seed);

// A short fingerprint of a result, for the output.
uint64_t fingerprint(const void* data, size_t bytes);

// Ends the program with status 1, and says where, if the two results differ.
void check_equal(const char* what, const void* result, const void* expected, size_t bytes);

// The same where an error is above the bound that is claimed for it, or is a NaN.
void check_at_most(const char* what, double error, double bound);

#ifdef __cplusplus
}
#endif
