// The vector length of the emulated processor.
//
// It is a build constant, because all loops of the fast paths have a trip count that is known at
// compile time. CMake compiles the sources that include this for each length of the build: that of
// SVE_VECTOR_BITS, and those of TESSALY_VECTOR_LENGTHS. No other file names a length: counts,
// pattern results and the size of a predicate in memory all follow from the values here.
#pragma once

#include "sve/state/configured_length.h"

namespace sve {

inline constexpr unsigned vector_bytes = vector_bits / 8;
inline constexpr unsigned vector_words64 = vector_bits / 64;   // unit of CpuContext::vl
inline constexpr unsigned predicate_bytes = vector_bytes / 8;  // a predicate's image in memory

// The size of one unit of the branch-free loops: the processor's own 128-bit vector.
inline constexpr unsigned group_bytes = 16;

static_assert(vector_bits % 128 == 0 && vector_bits >= 128 && vector_bits <= 2048,
              "the architecture allows multiples of 128 bits from 128 to 2048");

// Number of elements of type T in a vector.
template <class T>
inline constexpr unsigned elements = vector_bytes / sizeof(T);

}  // namespace sve
