// The Newton-Raphson steps of reciprocal and reciprocal square root. Infinity times zero counts as
// 0 in them: the estimates of 0 and of infinity lead to that product.
#include "sve/fp/fp.h"
#include "sve/fp/multiply_add.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

using namespace sve;

namespace {

// n or op2 is not a normal number.
template <class T>
[[gnu::cold, gnu::noinline]] T step_unusual(T n, T op2, T start, int scale, T without_product,
                                            int mode, FPSCR& fpscr) {
  n = fp_flush(n, mode, fpscr);
  op2 = fp_flush(op2, mode, fpscr);
  if (const auto nan = fp_process_nans({n, op2}, mode, fpscr)) return *nan;
  if (!fp_is_infinity(n) && !fp_is_infinity(op2)) {
    return fp_multiply_add(start, n, op2, scale, mode, fpscr);
  }
  if (fp_is_zero(n) || fp_is_zero(op2)) return without_product;
  return fp_infinity<T>(fp_is_negative<T>(n ^ op2));
}

// (start - op1 x op2) x 2^scale. For infinity times zero, the result is without_product.
template <class T>
T step(T op1, T op2, T start, int scale, T without_product, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  const T n = op1 ^ format<T>::sign_bit;
  if (!fp_is_normal(n) || !fp_is_normal(op2)) [[unlikely]] {
    return step_unusual(n, op2, start, scale, without_product, mode, fpscr);
  }
  return fp_multiply_add(start, n, op2, scale, mode, fpscr);
}

}  // namespace

template <class T>
T FPRecipStepFused(T op1, T op2, FPSCR& fpscr) {
  constexpr T two = format<T>::power_of_two(1);
  return step(op1, op2, two, 0, two, fpscr);
}

template <class T>
T FPRSqrtStepFused(T op1, T op2, FPSCR& fpscr) {
  using F = format<T>;
  constexpr T three =
      F::power_of_two(1) | F::quiet_bit;  // the fraction's top bit adds half of the value
  constexpr T one_and_a_half = F::power_of_two(0) | F::quiet_bit;
  return step(op1, op2, three, -1, one_and_a_half, fpscr);
}

template unsigned short FPRecipStepFused(unsigned short, unsigned short, FPSCR&);
template unsigned int FPRecipStepFused(unsigned int, unsigned int, FPSCR&);
template unsigned long FPRecipStepFused(unsigned long, unsigned long, FPSCR&);
template unsigned short FPRSqrtStepFused(unsigned short, unsigned short, FPSCR&);
template unsigned int FPRSqrtStepFused(unsigned int, unsigned int, FPSCR&);
template unsigned long FPRSqrtStepFused(unsigned long, unsigned long, FPSCR&);
