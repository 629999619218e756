// The product of two finite numbers, rounded once: for FPMul, FPMulX and FPTRISMUL.
#pragma once

#include "sve/fp/round.h"

namespace sve {

// The operands are flushed, and neither is infinite or a NaN; one may be zero. sgn is the sign that
// the rounding sees.
template <class T>
inline T fp_product(T op1, T op2, int sgn, int mode, int* flags) {
  using F = format<T>;
  using wide = typename F::wide;
  const auto a = fp_unpack(op1);
  const auto b = fp_unpack(op2);
  if (a.mnt == 0 || b.mnt == 0) [[unlikely]]
    return fp_zero<T>(sgn);
  // Of mantissas normalised to the carrier, E places above the implicit bit, the product has one of
  // its top two bits set. The lower half can therefore become a sticky bit before it is normalised.
  int exp = a.exp + b.exp + 2 * F::E - F::bias + 1;
  const T mnt1 = fp_normalise(static_cast<T>(a.mnt), &exp);
  const T mnt2 = fp_normalise(static_cast<T>(b.mnt), &exp);
  const wide product = wide{mnt1} * mnt2;
  const T upper = static_cast<T>(product >> F::N) | T{static_cast<T>(product) != 0};
  const T significand = fp_normalise(upper, &exp);
  return fp_round<T>(sgn, exp, significand << 1, mode_rounding(mode), mode, flags);
}

}  // namespace sve
