// From integers and fixed point to floating point.
#include "sve/fp/fp.h"
#include "sve/fp/round.h"

using namespace sve;

template <class T>
T fplibFixedToFP(unsigned long op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr) {
  using F = format<T>;
  if (op == 0) return 0;
  const int sgn = !u && op >> 63 != 0;
  int exp = F::bias + 63 - fbits;
  const unsigned long x = fp_normalise(sgn != 0 ? -op : op, &exp);
  const T word = static_cast<T>(fp_shift_right_sticky(x << 1, 64 - F::N));
  const int mode = fp_mode_word(fpscr) & ~fp_mode::FZ16;
  return fp_round<T>(sgn, exp, word, mode_rounding(rounding), mode, fpscr);
}

template unsigned short fplibFixedToFP(unsigned long, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFixedToFP(unsigned long, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFixedToFP(unsigned long, int, bool, FPRounding, FPSCR&);
