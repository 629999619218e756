// The reciprocal estimate: 9 bits from a division of 19 bits by 10.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

// For a number whose reciprocal is in range. A denormal result loses no bits, and an estimate
// never counts as inexact.
template <class T>
T estimate(T op) {
  using F = format<T>;
  const auto a = fp_unpack_normalised(op);
  const unsigned divisor = static_cast<unsigned>(a.mnt >> (F::M - 9)) | 1;
  const unsigned r = ((0x80000 / divisor) + 1) >> 1;
  const int exp = 2 * F::bias - 1 - a.exp;
  const word_of<T> mantissa = word_of<T>{r} << (F::M - 8);
  if (exp < 1) return fp_sign_bit<T>(a.sgn) | (mantissa >> (1 - exp));
  return fp_sign_bit<T>(a.sgn) | (static_cast<word_of<T>>(exp) << F::M) |
         (mantissa & F::fraction_mask);
}

}  // namespace

template <class T>
T FPRecipEstimate(T op, FPSCR& fpscr) {
  using F = format<T>;
  const int mode = fp_mode_word(fpscr);
  const T x = fp_flush(op, mode, fpscr);
  const int sgn = fp_is_negative(x);
  if (fp_is_nan(x)) [[unlikely]]
    return fp_process_nan(x, mode, fpscr);
  if (fp_is_infinity(x)) [[unlikely]]
    return fp_zero<T>(sgn);
  if (fp_is_zero(x)) [[unlikely]] {
    fpscr.raise(FPSCR::DZC);
    return fp_infinity<T>(sgn);
  }
  if (fp_magnitude(x) < F::implicit_bit >> 2) [[unlikely]] {
    return fp_overflow<T>(sgn, mode_rounding(mode), fpscr);
  }
  if ((mode & F::flush) != 0 && fp_exponent_field(x) >= 2 * F::bias - 1) [[unlikely]] {
    fpscr.raise(FPSCR::UFC);
    return fp_zero<T>(sgn);
  }
  return estimate(x);
}

template unsigned short FPRecipEstimate(unsigned short, FPSCR&);
template unsigned int FPRecipEstimate(unsigned int, FPSCR&);
template unsigned long FPRecipEstimate(unsigned long, FPSCR&);
