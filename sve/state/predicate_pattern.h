// The predicate patterns of PTRUE, CNTB and similar instructions (the architecture's
// DecodePredCount).
#pragma once

#include <bit>

namespace sve {

// The number of elements that the 5-bit `pattern` selects out of `n`. It is 0 for a fixed count
// above n and for the unallocated codes 14 to 28.
constexpr unsigned pattern_count(unsigned pattern, unsigned n) {
  const auto fixed = [n](unsigned count) { return count <= n ? count : 0; };
  if (pattern == 0) return n < 2 ? 1 : std::bit_floor(n);  // POW2
  if (pattern <= 8) return fixed(pattern);                 // VL1 to VL8
  if (pattern <= 13) return fixed(1U << (pattern - 5));    // VL16 to VL256
  if (pattern == 29) return n - n % 4;                     // MUL4
  if (pattern == 30) return n - n % 3;                     // MUL3
  return pattern == 31 ? n : 0;                            // ALL
}

}  // namespace sve
