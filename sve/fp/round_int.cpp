// Rounding to an integral value in the same format.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

// The number has from 1 fraction bit to nothing but fraction bits. The result is exact in the
// format.
template <class T>
T round_fraction(const unpacked<T>& a, int fraction_bits, FPRounding rounding, bool exact,
                 FPSCR& fpscr) {
  using F = format<T>;
  const word_of<T> split = fp_shift_right_sticky<word_of<T>>(a.mnt << 2, fraction_bits);
  const auto low = static_cast<unsigned>(split & 7);
  const word_of<T> x = (split >> 2) + fp_increment_integer(rounding, a.sgn, low);
  if ((low & 3) != 0 && exact) fpscr.raise(FPSCR::IXC);
  if (x == 0) return fp_zero<T>(a.sgn);
  int exp = F::bias + F::M + F::E;
  const T significand = fp_normalise(static_cast<T>(x), &exp);
  return fp_sign_bit<T>(a.sgn) | (static_cast<word_of<T>>(exp) << F::M) |
         ((significand >> F::E) & F::fraction_mask);
}

}  // namespace

template <class T>
T FPRoundInt(T op, FPRounding rounding, bool exact, FPSCR& fpscr) {
  using F = format<T>;
  const int mode = fp_mode_word(fpscr);
  const T flushed = fp_flush(op, mode, fpscr);
  if (fp_is_nan(flushed)) [[unlikely]]
    return fp_process_nan(flushed, mode, fpscr);
  const auto a = fp_unpack(flushed);
  const int fraction_bits = F::bias + F::M - a.exp;
  if (fraction_bits <= 0 || a.mnt == 0) return flushed;
  return round_fraction(a, fraction_bits, rounding, exact, fpscr);
}

template unsigned short FPRoundInt(unsigned short, FPRounding, bool, FPSCR&);
template unsigned int FPRoundInt(unsigned int, FPRounding, bool, FPSCR&);
template unsigned long FPRoundInt(unsigned long, FPRounding, bool, FPSCR&);
