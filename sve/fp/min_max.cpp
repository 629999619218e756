// Minimum and maximum. Unlike in the comparisons, +0 is above -0.
#include <type_traits>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

using namespace sve;

namespace {

// An integer that orders all numbers, with -0 just below +0.
template <class T>
auto rank(T op) {
  using integer = std::make_signed_t<word_of<T>>;
  const auto magnitude = static_cast<integer>(fp_magnitude(op));
  return fp_is_negative(op) ? ~magnitude : magnitude;
}

template <class T>
T select(T op1, T op2, bool largest, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  const T a = fp_flush(op1, mode, fpscr);
  const T b = fp_flush(op2, mode, fpscr);
  if (fp_is_nan(a) || fp_is_nan(b)) [[unlikely]]
    return *fp_process_nans({a, b}, mode, fpscr);
  return (rank(a) > rank(b)) == largest ? a : b;
}

// The same, but a single quiet NaN is first replaced by the infinity that loses to every number.
template <class T>
T select_number(T op1, T op2, bool largest, FPSCR& fpscr) {
  const T weakest = fp_infinity<T>(largest);
  if (fp_is_quiet(op1) != fp_is_quiet(op2)) [[unlikely]] {
    if (fp_is_quiet(op1))
      op1 = weakest;
    else
      op2 = weakest;
  }
  return select(op1, op2, largest, fpscr);
}

}  // namespace

template <class T>
T FPMax(T op1, T op2, FPSCR& fpscr) {
  return select(op1, op2, true, fpscr);
}

template <class T>
T FPMin(T op1, T op2, FPSCR& fpscr) {
  return select(op1, op2, false, fpscr);
}

template <class T>
T FPMaxNum(T op1, T op2, FPSCR& fpscr) {
  return select_number(op1, op2, true, fpscr);
}

template <class T>
T FPMinNum(T op1, T op2, FPSCR& fpscr) {
  return select_number(op1, op2, false, fpscr);
}

template unsigned short FPMax(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMax(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMax(unsigned long, unsigned long, FPSCR&);
template unsigned short FPMin(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMin(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMin(unsigned long, unsigned long, FPSCR&);
template unsigned short FPMaxNum(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMaxNum(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMaxNum(unsigned long, unsigned long, FPSCR&);
template unsigned short FPMinNum(unsigned short, unsigned short, FPSCR&);
template unsigned int FPMinNum(unsigned int, unsigned int, FPSCR&);
template unsigned long FPMinNum(unsigned long, unsigned long, FPSCR&);
