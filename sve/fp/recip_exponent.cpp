// The reciprocal exponent, which scales operands before a division.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

using namespace sve;

template <class T>
T FPRecpX(T op, FPSCR& fpscr) {
  using F = format<T>;
  const int mode = fp_mode_word(fpscr);
  const T x = fp_flush(op, mode, fpscr);
  if (fp_is_nan(x)) [[unlikely]]
    return fp_process_nan(x, mode, fpscr);
  constexpr word_of<T> largest = F::infinity - F::implicit_bit;
  const word_of<T> sign = x & F::sign_bit;
  if (fp_exponent_field(x) == 0) [[unlikely]]
    return sign | largest;
  return sign | (~x & F::infinity);
}

template unsigned short FPRecpX(unsigned short, FPSCR&);
template unsigned int FPRecpX(unsigned int, FPSCR&);
template unsigned long FPRecpX(unsigned long, FPSCR&);
