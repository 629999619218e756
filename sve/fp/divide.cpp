// Division. Half and single precision need one division of integers. In double precision that would
// take 128 bits, so the quotient is computed with a reciprocal instead.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

// Divides with one division of integers. Both mantissas have the implicit bit. The shift moves the
// dividend up far enough that the quotient has a bit below the last one, whatever the divisor.
template <class T>
T divide_numbers(const unpacked<T>& a, const unpacked<T>& b, int mode, FPSCR& fpscr) {
  using F = format<T>;
  using wide = typename F::wide;
  constexpr int shift = F::N == 16 ? 15 : 18;
  int exp = a.exp - b.exp + F::bias + F::N + F::M - shift;
  const wide dividend = wide{a.mnt} << (F::E + shift);
  wide quotient = dividend / b.mnt;
  quotient |= wide{quotient * b.mnt != dividend};
  const T word = fp_collapse<T>(fp_normalise(quotient, &exp));
  return fp_round<T>(a.sgn ^ b.sgn, exp, word, mode_rounding(mode), mode, fpscr);
}

// The reciprocal of b, normalised, with 63 bits and never too large. One Newton-Raphson step
// refines a first approximation of 32 bits.
inline unsigned long reciprocal(unsigned long b) {
  const unsigned long first = ~0UL / (b >> 31);
  const uint128 error = (uint128{1} << 96) - uint128{b} * first;
  return static_cast<unsigned long>((uint128{static_cast<unsigned long>(error >> 32)} * first) >>
                                    33);
}

// The quotient from the reciprocal is exact or too small by 1. Its product with the divisor tells
// which.
template <>
unsigned long divide_numbers(const unpacked<unsigned long>& a, const unpacked<unsigned long>& b,
                             int mode, FPSCR& fpscr) {
  const unsigned long dividend = a.mnt << 11;
  const unsigned long divisor = b.mnt << 11;
  auto quotient =
      static_cast<unsigned long>(fp_mul_62x62(reciprocal(divisor), dividend >> 2) >> 68);
  // The quotient's bit 55 has the value 1.
  int exp = a.exp - b.exp + format<unsigned long>::bias + (63 - 55);
  const uint128 target = uint128{dividend >> 11} << 64;
  const uint128 next = fp_mul_62x62(divisor >> 2, quotient + 1);
  if (next <= target) ++quotient;
  const unsigned long word = (fp_normalise(quotient, &exp) << 1) | (next != target);
  return fp_round(a.sgn ^ b.sgn, exp, word, mode_rounding(mode), mode, fpscr);
}

// At least one operand is not a normal number.
template <class T>
[[gnu::cold, gnu::noinline]] T divide_unusual(T op1, T op2, int mode, FPSCR& fpscr) {
  op1 = fp_flush(op1, mode, fpscr);
  op2 = fp_flush(op2, mode, fpscr);
  if (const auto nan = fp_process_nans({op1, op2}, mode, fpscr)) return *nan;
  const int sgn = fp_is_negative<T>(op1 ^ op2);
  const bool infinite1 = fp_is_infinity(op1);
  const bool infinite2 = fp_is_infinity(op2);
  if ((fp_is_zero(op1) && fp_is_zero(op2)) || (infinite1 && infinite2)) {
    return fp_invalid<T>(fpscr);
  }
  if (fp_is_zero(op1) || infinite2) return fp_zero<T>(sgn);
  if (infinite1) return fp_infinity<T>(sgn);
  if (fp_is_zero(op2)) {
    fpscr.raise(FPSCR::DZC);
    return fp_infinity<T>(sgn);
  }
  return divide_numbers(fp_unpack_normalised(op1), fp_unpack_normalised(op2), mode, fpscr);
}

}  // namespace

template <class T>
T FPDiv(T op1, T op2, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  if (!fp_is_normal(op1) || !fp_is_normal(op2)) [[unlikely]] {
    return divide_unusual(op1, op2, mode, fpscr);
  }
  return divide_numbers(fp_unpack_normal(op1), fp_unpack_normal(op2), mode, fpscr);
}

template unsigned short FPDiv(unsigned short, unsigned short, FPSCR&);
template unsigned int FPDiv(unsigned int, unsigned int, FPSCR&);
template unsigned long FPDiv(unsigned long, unsigned long, FPSCR&);
