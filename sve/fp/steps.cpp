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

// At least one operand is infinite or a NaN; both are flushed.
template <class T>
[[gnu::cold, gnu::noinline]] T step_special(T n, T op2, T without_product, int mode, int* flags) {
  if (const auto nan = fp_process_nans({n, op2}, mode, flags)) return *nan;
  if (fp_magnitude(n) == 0 || fp_magnitude(op2) == 0) return without_product;
  return fp_infinity<T>(fp_is_negative<T>(n ^ op2));
}

// (start - op1 x op2) x 2^scale, which is without_product if the product is 0.
template <class T>
T step(T op1, T op2, T start, int scale, T without_product, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) {
    const T n = fp_flush<T>(op1 ^ format<T>::sign_bit, mode, flags);
    const T factor = fp_flush(op2, mode, flags);
    if (fp_is_special(n) || fp_is_special(factor)) [[unlikely]] {
      return step_special(n, factor, without_product, mode, flags);
    }
    return fp_multiply_add(start, n, factor, scale, mode, flags);
  });
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
