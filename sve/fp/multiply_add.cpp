// The sum of an addend and a product, with one rounding.
#include "sve/fp/multiply_add.h"

#include <utility>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

template <class T>
struct term {
  int sgn;
  int exp;
  typename format<T>::wide mnt;
};

template <class T>
T multiply_add_numbers(const unpacked<T>& addend, const unpacked<T>& factor1,
                       const unpacked<T>& factor2, int scale, int mode, FPSCR& fpscr) {
  using F = format<T>;
  using wide = typename F::wide;
  // The implicit bit of both terms is moved to bit top of the wide type, so that their exponents
  // are comparable. Above it there is room for the carries of the product and of the sum. Below it
  // the product is exact, with guard bits for the subtraction.
  constexpr int top = 2 * F::M + 3;
  static_assert(top + 2 < 2 * F::N);
  term<T> x = {addend.sgn, addend.exp, wide{addend.mnt} << (top - F::M)};
  term<T> y = {factor1.sgn ^ factor2.sgn, factor1.exp + factor2.exp - F::bias,
               (wide{factor1.mnt} * factor2.mnt) << (top - 2 * F::M)};
  if (x.mnt == 0) x.exp = y.exp;
  if (y.mnt == 0) y.exp = x.exp;
  if (x.exp < y.exp) std::swap(x, y);
  const wide smaller = fp_shift_right_sticky(y.mnt, x.exp - y.exp);
  wide sum = x.mnt + smaller;
  int sgn = x.sgn;
  if (x.sgn != y.sgn) {
    const bool reversed = x.mnt < smaller;
    sum = reversed ? smaller - x.mnt : x.mnt - smaller;
    sgn ^= static_cast<int>(reversed);
  }
  if (sum == 0) [[unlikely]]
    return x.sgn == y.sgn ? fp_zero<T>(sgn) : fp_cancelled<T>(mode);
  int exp = x.exp + 2 * F::N - 1 - top + scale;
  const T word = fp_collapse<T>(fp_normalise(sum, &exp));
  return fp_round<T>(sgn, exp, word, mode_rounding(mode), mode, fpscr);
}

// At least one operand is not a normal number.
template <class T>
[[gnu::cold, gnu::noinline]] T multiply_add_unusual(T a, T b, T c, int scale, int mode,
                                                    FPSCR& fpscr) {
  a = fp_flush(a, mode, fpscr);
  b = fp_flush(b, mode, fpscr);
  c = fp_flush(c, mode, fpscr);
  const auto nan = fp_process_nans({a, b, c}, mode, fpscr);
  const bool infinite_product = fp_is_infinity(b) || fp_is_infinity(c);
  const bool invalid_product = infinite_product && (fp_is_zero(b) || fp_is_zero(c));
  if (invalid_product && (fp_is_quiet(a) || !nan)) return fp_invalid<T>(fpscr);
  if (nan) return *nan;
  const int product_sgn = fp_is_negative<T>(b ^ c);
  if (fp_is_infinity(a)) {
    const bool cancelled = infinite_product && fp_is_negative(a) != product_sgn;
    return cancelled ? fp_invalid<T>(fpscr) : a;
  }
  if (infinite_product) return fp_infinity<T>(product_sgn);
  return multiply_add_numbers(fp_unpack(a), fp_unpack(b), fp_unpack(c), scale, mode, fpscr);
}

template <class T>
T multiply_add_flags(T a, T b, T c, int scale, int mode, int* flags) {
  return fp_with_flags_in(
      flags, [=](FPSCR& raised) { return fp_multiply_add(a, b, c, scale, mode, raised); });
}

}  // namespace

template <class T>
T sve::fp_multiply_add(T a, T b, T c, int scale, int mode, FPSCR& fpscr) {
  if (!fp_is_normal(a) || !fp_is_normal(b) || !fp_is_normal(c)) [[unlikely]] {
    return multiply_add_unusual(a, b, c, scale, mode, fpscr);
  }
  return multiply_add_numbers(fp_unpack_normal(a), fp_unpack_normal(b), fp_unpack_normal(c), scale,
                              mode, fpscr);
}

template <class T>
T FPMulAdd(T addend, T op1, T op2, FPSCR& fpscr) {
  return fp_multiply_add(addend, op1, op2, 0, fp_mode_word(fpscr), fpscr);
}

unsigned short fp16_muladd(unsigned short a, unsigned short b, unsigned short c, int scale,
                           int mode, int* flags) {
  return multiply_add_flags(a, b, c, scale, mode, flags);
}

unsigned int fp32_muladd(unsigned int a, unsigned int b, unsigned int c, int scale, int mode,
                         int* flags) {
  return multiply_add_flags(a, b, c, scale, mode, flags);
}

unsigned long fp64_muladd(unsigned long a, unsigned long b, unsigned long c, int scale, int mode,
                          int* flags) {
  return multiply_add_flags(a, b, c, scale, mode, flags);
}

template unsigned short sve::fp_multiply_add(unsigned short, unsigned short, unsigned short, int,
                                             int, FPSCR&);
template unsigned int sve::fp_multiply_add(unsigned int, unsigned int, unsigned int, int, int,
                                           FPSCR&);
template unsigned long sve::fp_multiply_add(unsigned long, unsigned long, unsigned long, int, int,
                                            FPSCR&);
template unsigned short FPMulAdd(unsigned short, unsigned short, unsigned short, FPSCR&);
template unsigned int FPMulAdd(unsigned int, unsigned int, unsigned int, FPSCR&);
template unsigned long FPMulAdd(unsigned long, unsigned long, unsigned long, FPSCR&);
