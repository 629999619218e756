// The steps that take a number apart: flushing, unpacking, shifting.
#pragma once

#include <bit>
#include <limits>

#include "sve/fp/format.h"

namespace sve {

// Runs operation(mode, &flags) under the controls of the word, and merges the flags into it.
template <class Operation>
inline auto fp_run(FPSCR& fpscr, Operation operation) {
  int flags = 0;
  const auto result = operation(fp_mode_word(fpscr), &flags);
  fpscr.merge(flags);
  return result;
}

// A denormal under the format's flush control becomes the zero of its sign.
template <class T>
inline T fp_flush(T op, int mode, int* flags) {
  using F = format<T>;
  const T magnitude = fp_magnitude(op);
  if (magnitude < F::implicit_bit && (mode & F::flush) != 0) [[unlikely]] {
    if (magnitude != 0) *flags |= F::flushed_input;
    return op & F::sign_bit;
  }
  return op;
}

// The value of a finite number is mnt x 2^(exp - bias - M). Zeros and denormals have exp 1 and no
// implicit bit, so that no operation has to adjust for them.
template <class T>
struct unpacked {
  int sgn;  // 0 or 1
  int exp;
  word_of<T> mnt;
};

// Of an operand that is flushed already.
template <class T>
inline unpacked<T> fp_unpack(T op) {
  using F = format<T>;
  const int exp = fp_exponent_field(op);
  const bool denormal = exp == 0;
  return {fp_is_negative(op), exp + denormal,
          (op & F::fraction_mask) | (word_of<T>{!denormal} << F::M)};
}

// x, not 0, shifted left until its top bit is set; *exp falls by the number of places.
template <class U>
inline U fp_normalise(U x, int* exp) {
  const int places = std::countl_zero(x);
  *exp -= places;
  return static_cast<U>(x << places);
}

// x shifted right by any number of places from 0; what falls out is ORed into bit 0. Beyond the
// width that leaves 1, as the shift by one less than the width does.
template <class U>
inline U fp_shift_right_sticky(U x, int places) {
  constexpr int most = std::numeric_limits<U>::digits - 1;
  if (places > most) places = most;
  const U shifted = x >> places;
  return shifted | U{(shifted << places) != x};
}

// The word for the rounding core, from a normalised value of twice the carrier: the leading 1 falls
// off at the top, bit 0 is sticky.
template <class T>
inline T fp_collapse(typename format<T>::wide x) {
  return static_cast<T>((x >> format<T>::N) << 1) | T{static_cast<T>(x) != 0};
}

}  // namespace sve
