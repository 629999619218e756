// Division. Half and single precision need one division of integers; of double precision the
// quotient would take 128 bits, and comes from a reciprocal instead.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

// At least one operand is zero, infinite or a NaN.
template <class T>
[[gnu::cold, gnu::noinline]] T divide_special(T op1, T op2, int mode, int* flags) {
  if (const auto nan = fp_process_nans({op1, op2}, mode, flags)) return *nan;
  const int sgn = fp_is_negative<T>(op1 ^ op2);
  const bool zero1 = fp_magnitude(op1) == 0;
  const bool zero2 = fp_magnitude(op2) == 0;
  const bool infinite1 = fp_is_infinity(op1);
  const bool infinite2 = fp_is_infinity(op2);
  if ((zero1 && zero2) || (infinite1 && infinite2)) return fp_invalid<T>(flags);
  if (zero1 || infinite2) return fp_zero<T>(sgn);
  if (!infinite1) *flags |= FPSCR::DZC;
  return fp_infinity<T>(sgn);
}

// One division of integers. The shift puts the dividend as high as the quotient needs for a bit
// below the last one, whatever the divisor.
template <class T>
T divide_numbers(const unpacked<T>& a, const unpacked<T>& b, int mode, int* flags) {
  using F = format<T>;
  using wide = typename F::wide;
  constexpr int shift = F::N == 16 ? 15 : 18;
  int exp = a.exp - b.exp + F::bias + 2 * F::N - 1 - shift;
  const wide dividend = wide{fp_normalise(static_cast<T>(a.mnt), &exp)} << shift;
  wide quotient = dividend / b.mnt;
  quotient |= wide{quotient * b.mnt != dividend};
  const T word = fp_collapse<T>(fp_normalise(quotient, &exp));
  return fp_round<T>(a.sgn ^ b.sgn, exp, word, mode_rounding(mode), mode, flags);
}

// The reciprocal of b, normalised: 63 bits, never too large. A first one of 32 bits is refined by
// one Newton-Raphson step.
inline unsigned long reciprocal(unsigned long b) {
  const unsigned long first = ~0UL / (b >> 31);
  const uint128 error = (uint128{1} << 96) - uint128{b} * first;
  return static_cast<unsigned long>((uint128{static_cast<unsigned long>(error >> 32)} * first) >>
                                    33);
}

// The quotient by the reciprocal is exact or too small by 1; the product with the divisor tells.
template <>
unsigned long divide_numbers(const unpacked<unsigned long>& a, const unpacked<unsigned long>& b,
                             int mode, int* flags) {
  int exp = 0;
  const unsigned long dividend = fp_normalise(a.mnt, &exp);
  exp = -exp;
  const unsigned long divisor = fp_normalise(b.mnt, &exp);
  exp = a.exp - b.exp + 1031 - exp;
  auto quotient =
      static_cast<unsigned long>(fp_mul_62x62(reciprocal(divisor), dividend >> 2) >> 68);
  const uint128 target = uint128{dividend >> 11} << 64;
  const uint128 next = fp_mul_62x62(divisor >> 2, quotient + 1);
  if (next <= target) ++quotient;
  const unsigned long word = (fp_normalise(quotient, &exp) << 1) | (next != target);
  return fp_round(a.sgn ^ b.sgn, exp, word, mode_rounding(mode), mode, flags);
}

template <class T>
T divide(T op1, T op2, int mode, int* flags) {
  op1 = fp_flush(op1, mode, flags);
  op2 = fp_flush(op2, mode, flags);
  if (fp_is_special(op1) || fp_is_special(op2) || fp_magnitude(op1) == 0 || fp_magnitude(op2) == 0)
      [[unlikely]] {
    return divide_special(op1, op2, mode, flags);
  }
  return divide_numbers(fp_unpack(op1), fp_unpack(op2), mode, flags);
}

}  // namespace

template <class T>
T FPDiv(T op1, T op2, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) { return divide(op1, op2, mode, flags); });
}

template unsigned short FPDiv(unsigned short, unsigned short, FPSCR&);
template unsigned int FPDiv(unsigned int, unsigned int, FPSCR&);
template unsigned long FPDiv(unsigned long, unsigned long, FPSCR&);

}  // namespace sve
