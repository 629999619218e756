// The formats, as records of how they differ. An operation is written once over format<T> for a
// carrier T, the integer type that holds the bits. All constants follow from the widths of carrier
// and exponent.
#pragma once

#include <limits>

#include "sve/fp/fpscr.h"

namespace sve {

using uint128 = unsigned __int128;

template <class Carrier, class Word, class Wide, int ExponentBits>
struct binary_format {
  using word = Word;  // for arithmetic on a mantissa: no narrower than int, which half would become
  using wide = Wide;  // twice the carrier: for products of two mantissas
  static_assert(sizeof(Wide) == 2 * sizeof(Carrier));

  static constexpr int N = std::numeric_limits<Carrier>::digits;
  static constexpr int E = ExponentBits;
  static constexpr int M = N - 1 - E;
  static constexpr int bias = (1 << (E - 1)) - 1;
  static constexpr int infinity_exponent = (1 << E) - 1;

  static constexpr Word implicit_bit = Word{1} << M;
  static constexpr Word fraction_mask = implicit_bit - 1;
  static constexpr Word quiet_bit = implicit_bit >> 1;
  static constexpr Word sign_bit = Word{1} << (N - 1);
  static constexpr Word infinity = Word{infinity_exponent} << M;
  static constexpr Word largest = infinity - 1;
  static constexpr Word default_nan = infinity | quiet_bit;

  static constexpr Word power_of_two(int exponent) {
    return static_cast<Word>(bias + exponent) << M;
  }
};

template <class T>
struct format;

template <>
struct format<unsigned short> : binary_format<unsigned short, unsigned int, unsigned int, 5> {
  static constexpr int flush = fp_mode::FZ16;
  static constexpr int flushed_input = 0;  // the flags that a flushed denormal operand raises
};

template <>
struct format<unsigned int> : binary_format<unsigned int, unsigned int, unsigned long, 8> {
  static constexpr int flush = fp_mode::FZ;
  static constexpr int flushed_input = FPSCR::IDC;
};

template <>
struct format<unsigned long> : binary_format<unsigned long, unsigned long, uint128, 11> {
  static constexpr int flush = fp_mode::FZ;
  static constexpr int flushed_input = FPSCR::IDC;
};

template <class T>
using word_of = typename format<T>::word;

template <class T>
constexpr T fp_sign_bit(int sgn) {
  return static_cast<T>(static_cast<T>(sgn) << (format<T>::N - 1));
}

template <class T>
constexpr T fp_zero(int sgn) {
  return fp_sign_bit<T>(sgn);
}

template <class T>
constexpr T fp_infinity(int sgn) {
  return fp_sign_bit<T>(sgn) | format<T>::infinity;
}

template <class T>
constexpr bool fp_is_negative(T op) {
  return op >> (format<T>::N - 1);
}

// The operand without its sign.
template <class T>
constexpr T fp_magnitude(T op) {
  return op & (format<T>::sign_bit - 1);
}

template <class T>
constexpr bool fp_is_infinity(T op) {
  return fp_magnitude(op) == format<T>::infinity;
}

template <class T>
constexpr int fp_exponent_field(T op) {
  return static_cast<int>(fp_magnitude(op) >> format<T>::M);
}

template <class T>
constexpr bool fp_is_zero(T op) {
  return fp_magnitude(op) == 0;
}

// Not zero, denormal, infinite or a NaN. This one test keeps those off the common path.
template <class T>
constexpr bool fp_is_normal(T op) {
  using F = format<T>;
  return fp_magnitude(op) - F::implicit_bit < F::infinity - F::implicit_bit;
}

// Infinite or a NaN.
template <class T>
constexpr bool fp_is_special(T op) {
  return fp_magnitude(op) >= format<T>::infinity;
}

}  // namespace sve
