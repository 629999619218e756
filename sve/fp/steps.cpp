// The Newton-Raphson steps of reciprocal and reciprocal square root. Infinity times zero counts as
// 0 in them: that is what the estimates of 0 and of infinity leave to multiply.
#include "sve/fp/fp.h"
#include "sve/fp/multiply_add.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

namespace sve {
namespace {

// The number (1 + half / 2) x 2^exponent.
template <class T>
constexpr T constant(int exponent, int half) {
  using F = format<T>;
  return (static_cast<word_of<T>>(F::bias + exponent) << F::M) | (half != 0 ? F::quiet_bit : 0);
}

// n or op2 is no normal number.
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

// (start - op1 x op2) x 2^scale, which is without_product if the product is 0.
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
  constexpr T two = constant<T>(1, 0);
  return step(op1, op2, two, 0, two, fpscr);
}

template <class T>
T FPRSqrtStepFused(T op1, T op2, FPSCR& fpscr) {
  constexpr T three = constant<T>(1, 1);
  constexpr T one_and_a_half = constant<T>(0, 1);
  return step(op1, op2, three, -1, one_and_a_half, fpscr);
}

template unsigned short FPRecipStepFused(unsigned short, unsigned short, FPSCR&);
template unsigned int FPRecipStepFused(unsigned int, unsigned int, FPSCR&);
template unsigned long FPRecipStepFused(unsigned long, unsigned long, FPSCR&);
template unsigned short FPRSqrtStepFused(unsigned short, unsigned short, FPSCR&);
template unsigned int FPRSqrtStepFused(unsigned int, unsigned int, FPSCR&);
template unsigned long FPRSqrtStepFused(unsigned long, unsigned long, FPSCR&);

}  // namespace sve
