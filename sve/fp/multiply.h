// The product of two numbers, rounded once: for FPMul, FPMulX and FPTRISMUL.
#pragma once

#include "sve/fp/round.h"

namespace sve {

// Both mantissas have the implicit bit. The result is rounded as a number of sign sgn.
template <class T>
inline T fp_product(const unpacked<T>& a, const unpacked<T>& b, int sgn, int mode, FPSCR& fpscr) {
  using F = format<T>;
  using wide = typename F::wide;
  // Both factors are at the tops of their carriers, so one of the product's top two bits is set.
  // The lower half can therefore become a sticky bit before the product is normalised.
  const wide product = wide{a.mnt << F::E} * (b.mnt << F::E);
  const T upper = static_cast<T>(product >> F::N) | T{static_cast<T>(product) != 0};
  int exp = a.exp + b.exp - F::bias + 1;
  const T significand = fp_normalise(upper, &exp);
  return fp_round<T>(sgn, exp, significand << 1, mode_rounding(mode), mode, fpscr);
}

}  // namespace sve
