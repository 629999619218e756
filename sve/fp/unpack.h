// The steps that take a number apart: flushing, unpacking and shifting.
#pragma once

#include <bit>
#include <limits>

#include "sve/fp/format.h"

namespace sve {

// A denormal under the format's flush control becomes the zero of its sign.
template <class T>
inline T fp_flush(T op, int mode, FPSCR& fpscr) {
  using F = format<T>;
  if ((mode & F::flush) == 0) [[likely]]
    return op;
  const T magnitude = fp_magnitude(op);
  if (magnitude >= F::implicit_bit) return op;
  if (magnitude != 0) fpscr.raise(F::flushed_input);
  return op & F::sign_bit;
}

// The value of a finite number is mnt x 2^(exp - bias - M).
template <class T>
struct unpacked {
  int sgn;  // 0 or 1
  int exp;
  word_of<T> mnt;
};

// Unpacks a normal number.
template <class T>
inline unpacked<T> fp_unpack_normal(T op) {
  using F = format<T>;
  return {fp_is_negative(op), fp_exponent_field(op), (op & F::fraction_mask) | F::implicit_bit};
}

// Unpacks an operand that is already flushed. Zeros and denormals get exp 1 and no implicit bit, so
// that no operation has to adjust for them.
template <class T>
inline unpacked<T> fp_unpack(T op) {
  using F = format<T>;
  const int exp = fp_exponent_field(op);
  const bool denormal = exp == 0;
  return {fp_is_negative(op), exp + denormal,
          (op & F::fraction_mask) | (word_of<T>{!denormal} << F::M)};
}

// Shifts x, which is not 0, left until its top bit is set. *exp decreases by the number of places.
template <class U>
inline U fp_normalise(U x, int* exp) {
  const int places = std::countl_zero(x);
  *exp -= places;
  return static_cast<U>(x << places);
}

// Unpacks a flushed operand other than zero. A denormal gets its implicit bit, and an exp below 1.
template <class T>
inline unpacked<T> fp_unpack_normalised(T op) {
  using F = format<T>;
  auto a = fp_unpack(op);
  a.exp += F::E;
  a.mnt = fp_normalise(static_cast<T>(a.mnt), &a.exp) >> F::E;
  return a;
}

// Shifts x right by 0 or more places. The bits shifted out are ORed into bit 0. A shift beyond the
// width counts as one by the width less 1: both leave 1, or 0 if x is 0.
template <class U>
inline U fp_shift_right_sticky(U x, int places) {
  constexpr int max_places = std::numeric_limits<U>::digits - 1;
  if (places > max_places) places = max_places;
  const U shifted = x >> places;
  return shifted | U{(shifted << places) != x};
}

// The word for the rounding core, from a normalised value of twice the carrier's width. The leading
// 1 is dropped at the top, and bit 0 is sticky.
template <class T>
inline T fp_collapse(typename format<T>::wide x) {
  return static_cast<T>((x >> format<T>::N) << 1) | T{static_cast<T>(x) != 0};
}

}  // namespace sve
