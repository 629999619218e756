// The sum of an addend and a product, with one rounding.
#include "sve/fp/multiply_add.h"

#include <utility>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

// At least one operand is infinite or a NaN; all are flushed.
template <class T>
[[gnu::cold, gnu::noinline]] T multiply_add_special(T a, T b, T c, int mode, int* flags) {
  const auto nan = fp_process_nans({a, b, c}, mode, flags);
  const bool invalid_product =
      (fp_is_infinity(b) && fp_magnitude(c) == 0) || (fp_magnitude(b) == 0 && fp_is_infinity(c));
  if (invalid_product && (fp_is_quiet(a) || !nan)) return fp_invalid<T>(flags);
  if (nan) return *nan;
  const int product_sgn = fp_is_negative<T>(b ^ c);
  const bool infinite_product = fp_is_infinity(b) || fp_is_infinity(c);
  if (!fp_is_infinity(a)) return fp_infinity<T>(product_sgn);
  if (infinite_product && fp_is_negative(a) != product_sgn) return fp_invalid<T>(flags);
  return a;
}

template <class T>
struct term {
  int sgn;
  int exp;
  typename format<T>::wide mnt;
};

}  // namespace

template <class T>
T fp_multiply_add(T a, T b, T c, int scale, int mode, int* flags) {
  using F = format<T>;
  using wide = typename F::wide;
  a = fp_flush(a, mode, flags);
  b = fp_flush(b, mode, flags);
  c = fp_flush(c, mode, flags);
  if (fp_is_special(a) || fp_is_special(b) || fp_is_special(c)) [[unlikely]] {
    return multiply_add_special(a, b, c, mode, flags);
  }
  const auto addend = fp_unpack(a);
  const auto factor1 = fp_unpack(b);
  const auto factor2 = fp_unpack(c);
  // The implicit bit of either term goes to bit top of the wide type, so that the exponents
  // compare. Above it there is room for the product's and the sum's carry, below it the product is
  // exact, with guard bits for the subtraction.
  constexpr int top = 2 * F::M + 3;
  static_assert(top + 2 < 2 * F::N);
  term<T> x = {addend.sgn, addend.exp, wide{addend.mnt} << (top - F::M)};
  term<T> y = {factor1.sgn ^ factor2.sgn, factor1.exp + factor2.exp - F::bias,
               (wide{factor1.mnt} * factor2.mnt) << (top - 2 * F::M)};
  if (y.mnt == 0) y.exp = x.exp;
  if (x.mnt == 0) x.exp = y.exp;
  if (x.exp < y.exp) std::swap(x, y);
  const wide smaller = fp_shift_right_sticky(y.mnt, x.exp - y.exp);
  wide sum = 0;
  int sgn = x.sgn;
  if (x.sgn == y.sgn) {
    sum = x.mnt + smaller;
  } else if (x.mnt >= smaller) {
    sum = x.mnt - smaller;
  } else {
    sum = smaller - x.mnt;
    sgn = y.sgn;
  }
  if (sum == 0) [[unlikely]]
    return x.sgn == y.sgn ? fp_zero<T>(sgn) : fp_cancelled<T>(mode);
  int exp = x.exp + 2 * F::N - 1 - top + scale;
  const T word = fp_collapse<T>(fp_normalise(sum, &exp));
  return fp_round<T>(sgn, exp, word, mode_rounding(mode), mode, flags);
}

template <class T>
T FPMulAdd(T addend, T op1, T op2, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) {
    return fp_multiply_add(addend, op1, op2, 0, mode, flags);
  });
}

unsigned short fp16_muladd(unsigned short a, unsigned short b, unsigned short c, int scale,
                           int mode, int* flags) {
  return fp_multiply_add(a, b, c, scale, mode, flags);
}

unsigned int fp32_muladd(unsigned int a, unsigned int b, unsigned int c, int scale, int mode,
                         int* flags) {
  return fp_multiply_add(a, b, c, scale, mode, flags);
}

unsigned long fp64_muladd(unsigned long a, unsigned long b, unsigned long c, int scale, int mode,
                          int* flags) {
  return fp_multiply_add(a, b, c, scale, mode, flags);
}

template unsigned short fp_multiply_add(unsigned short, unsigned short, unsigned short, int, int,
                                        int*);
template unsigned int fp_multiply_add(unsigned int, unsigned int, unsigned int, int, int, int*);
template unsigned long fp_multiply_add(unsigned long, unsigned long, unsigned long, int, int, int*);
template unsigned short FPMulAdd(unsigned short, unsigned short, unsigned short, FPSCR&);
template unsigned int FPMulAdd(unsigned int, unsigned int, unsigned int, FPSCR&);
template unsigned long FPMulAdd(unsigned long, unsigned long, unsigned long, FPSCR&);

}  // namespace sve
