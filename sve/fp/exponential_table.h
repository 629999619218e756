// Powers of two between 1 and 2 as fractions of the formats: what FEXPA looks up.
//
// 2^(i/n) rounds to the largest number whose lower neighbouring midpoint is no larger, and that is
// so if the n-th power of the midpoint is at most 2^i. n is a power of two, so the power takes a
// few squares of 64 bits; what they cut off is bounded, and a midpoint that this leaves in doubt
// doesn't compile.
#pragma once

#include <array>

#include "sve/fp/format.h"

namespace sve {

// Whether x^n is at most 2^i, for an x from 1 to below 2 in fixed point with 63 fraction bits.
constexpr bool power_is_at_most(unsigned long x, int n, int i) {
  int exponent = 0;
  for (int power = 1; power < n; power *= 2) {
    const uint128 square = uint128{x} * x;
    const bool carry = square >> 127 != 0;
    exponent = 2 * exponent + carry;
    x = static_cast<unsigned long>(square >> (carry ? 64 : 63));
  }
  // Each square is too small by a part of 2^63 at most, which the later ones double: below n / 2^63
  // of the power, and so below 2n of its last place.
  if (exponent == i - 1 && x >= 0 - 2 * static_cast<unsigned long>(n)) throw "more bits needed";
  return exponent < i || (exponent == i && x == 1UL << 63);
}

// The fraction field, of M bits, of 2^(i/n), to nearest.
constexpr unsigned long power_fraction(int i, int n, int M) {
  unsigned long fraction = 0;
  for (unsigned long bit = 1UL << (M - 1); bit != 0; bit >>= 1) {
    const unsigned long midpoint = 2 * (fraction | bit) - 1;
    if (power_is_at_most((1UL << 63) | (midpoint << (62 - M)), n, i)) fraction |= bit;
  }
  return fraction;
}

// By format: 32 entries for half, 64 for single and double.
template <class T>
inline constexpr auto exponential_table = [] {
  std::array<T, format<T>::N == 16 ? 32 : 64> table{};
  for (int i = 0; i < static_cast<int>(table.size()); ++i) {
    table[i] = static_cast<T>(power_fraction(i, table.size(), format<T>::M));
  }
  return table;
}();

}  // namespace sve
