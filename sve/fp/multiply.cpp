#include "sve/fp/multiply.h"

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"

namespace sve {
namespace {

// extended: whether infinity times zero is 2.0.
template <class T>
[[gnu::cold, gnu::noinline]] T multiply_special(T op1, T op2, bool extended, int mode, int* flags) {
  using F = format<T>;
  if (const auto nan = fp_process_nans({op1, op2}, mode, flags)) return *nan;
  const int sgn = fp_is_negative<T>(op1 ^ op2);
  if (fp_magnitude(op1) != 0 && fp_magnitude(op2) != 0) return fp_infinity<T>(sgn);
  constexpr word_of<T> two = word_of<T>{F::bias + 1} << F::M;
  return extended ? fp_sign_bit<T>(sgn) | two : fp_invalid<T>(flags);
}

template <class T>
T multiply(T op1, T op2, bool extended, int mode, int* flags) {
  op1 = fp_flush(op1, mode, flags);
  op2 = fp_flush(op2, mode, flags);
  if (fp_is_special(op1) || fp_is_special(op2)) [[unlikely]] {
    return multiply_special(op1, op2, extended, mode, flags);
  }
  return fp_product<T>(op1, op2, fp_is_negative<T>(op1 ^ op2), mode, flags);
}

}  // namespace

template <class T>
T FPMul(T op1, T op2, FPSCR& fpscr) {
  return fp_run(fpscr,
                [=](int mode, int* flags) { return multiply(op1, op2, false, mode, flags); });
}

template <class T>
T FPMulX(T op1, T op2, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) { return multiply(op1, op2, true, mode, flags); });
}

template unsigned short FPMul(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMul(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMul(unsigned long, unsigned long, FPSCR&);
template unsigned short FPMulX(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMulX(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMulX(unsigned long, unsigned long, FPSCR&);

}  // namespace sve
