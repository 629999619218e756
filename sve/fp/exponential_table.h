// The table of FEXPA: powers of two between 1 and 2, as fractions of the formats.
//
// 2^(i/n) rounds to the largest number of the format for which the midpoint to the next lower
// number is not above 2^(i/n). That is so if the n-th power of the midpoint is at most 2^i. n is a
// power of two, so the power takes a few squarings in 64 bits. The error of their truncation is
// bounded. If it leaves a midpoint in doubt, the table does not compile.
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
  // Each squaring loses at most 1 part in 2^63, and each later one doubles that loss. So the power
  // loses less than n / 2^63 of its value, which is less than 2n units in its last place.
  if (exponent == i - 1 && x >= 0 - 2 * static_cast<unsigned long>(n)) throw "more bits needed";
  return exponent < i || (exponent == i && x == 1UL << 63);
}

// The fraction field of 2^(i/n), M bits, rounded to nearest.
constexpr unsigned long power_fraction(int i, int n, int M) {
  unsigned long fraction = 0;
  for (unsigned long bit = 1UL << (M - 1); bit != 0; bit >>= 1) {
    const unsigned long midpoint = 2 * (fraction | bit) - 1;
    if (power_is_at_most((1UL << 63) | (midpoint << (62 - M)), n, i)) fraction |= bit;
  }
  return fraction;
}

// For each format: 32 entries for half, 64 for single and double.
template <class T>
inline constexpr auto exponential_table = [] {
  std::array<T, format<T>::N == 16 ? 32 : 64> table{};
  for (int i = 0; i < static_cast<int>(table.size()); ++i) {
    table[i] = static_cast<T>(power_fraction(i, table.size(), format<T>::M));
  }
  return table;
}();

}  // namespace sve
