// The reciprocal square root estimate: 8 bits from a table. Its index is the exponent's parity and
// the 7 bits below the leading one.
#include "sve/fp/estimate_table.h"
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

using namespace sve;

namespace {

// The operand is zero, infinite, a NaN or negative.
template <class T>
[[gnu::cold, gnu::noinline]] T estimate_special(T op, int mode, FPSCR& fpscr) {
  if (fp_is_nan(op)) return fp_process_nan(op, mode, fpscr);
  const int sgn = fp_is_negative(op);
  if (fp_is_zero(op)) {
    fpscr.raise(FPSCR::DZC);
    return fp_infinity<T>(sgn);
  }
  return sgn != 0 ? fp_invalid<T>(fpscr) : fp_zero<T>(0);
}

}  // namespace

template <class T>
T FPRSqrtEstimate(T op, FPSCR& fpscr) {
  using F = format<T>;
  const int mode = fp_mode_word(fpscr);
  const T x = fp_flush(op, mode, fpscr);
  if (fp_is_special(x) || fp_is_negative(x) || x == 0) [[unlikely]] {
    return estimate_special(x, mode, fpscr);
  }
  const auto a = fp_unpack_normalised(x);
  const unsigned half = (a.exp & 1) != 0 ? 0 : 128;
  const unsigned index = half | ((a.mnt >> (F::M - 7)) & 127);
  const int exp = (3 * F::bias - 1 - a.exp) >> 1;
  return (static_cast<word_of<T>>(exp) << F::M) |
         (word_of<T>{recip_sqrt_estimate[index]} << (F::M - 8));
}

template unsigned short FPRSqrtEstimate(unsigned short, FPSCR&);
template unsigned int FPRSqrtEstimate(unsigned int, FPSCR&);
template unsigned long FPRSqrtEstimate(unsigned long, FPSCR&);
