#include "sve/fp/multiply.h"

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"

using namespace sve;

namespace {

// At least one operand is not a normal number. If extended is true, infinity times zero is 2.0.
template <class T>
[[gnu::cold, gnu::noinline]] T multiply_unusual(T op1, T op2, bool extended, int mode,
                                                FPSCR& fpscr) {
  using F = format<T>;
  op1 = fp_flush(op1, mode, fpscr);
  op2 = fp_flush(op2, mode, fpscr);
  if (const auto nan = fp_process_nans({op1, op2}, mode, fpscr)) return *nan;
  const int sgn = fp_is_negative<T>(op1 ^ op2);
  const bool infinite = fp_is_infinity(op1) || fp_is_infinity(op2);
  const bool zero = fp_is_zero(op1) || fp_is_zero(op2);
  if (infinite && zero) {
    return extended ? fp_sign_bit<T>(sgn) | F::power_of_two(1) : fp_invalid<T>(fpscr);
  }
  if (infinite) return fp_infinity<T>(sgn);
  if (zero) return fp_zero<T>(sgn);
  return fp_product(fp_unpack_normalised(op1), fp_unpack_normalised(op2), sgn, mode, fpscr);
}

template <class T>
T multiply(T op1, T op2, bool extended, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  if (!fp_is_normal(op1) || !fp_is_normal(op2)) [[unlikely]] {
    return multiply_unusual(op1, op2, extended, mode, fpscr);
  }
  const int sgn = fp_is_negative<T>(op1 ^ op2);
  return fp_product(fp_unpack_normal(op1), fp_unpack_normal(op2), sgn, mode, fpscr);
}

}  // namespace

template <class T>
T FPMul(T op1, T op2, FPSCR& fpscr) {
  return multiply(op1, op2, false, fpscr);
}

template <class T>
T FPMulX(T op1, T op2, FPSCR& fpscr) {
  return multiply(op1, op2, true, fpscr);
}

template unsigned short FPMul(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMul(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMul(unsigned long, unsigned long, FPSCR&);
template unsigned short FPMulX(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMulX(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMulX(unsigned long, unsigned long, FPSCR&);
