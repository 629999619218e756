// From floating point to integers and fixed point. Every operand is brought to the scale of a
// double, so that one function rounds all.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

using double_format = format<unsigned long>;

// The exponent of 2^63: beyond it, no value fits 64 bits.
constexpr int top_exponent = double_format::bias + 63;

// The smallest or largest value of width bits.
unsigned long saturated(int sgn, bool u, int width) {
  const unsigned long ones = ~0UL >> (64 - width);
  if (u) return sgn != 0 ? 0 : ones;
  return (ones >> 1) + static_cast<unsigned long>(sgn);
}

unsigned long out_of_range(int sgn, bool u, int width, FPSCR& fpscr) {
  fpscr.raise(FPSCR::IOC);
  return saturated(sgn, u, width);
}

// mnt x 2^(exp - bias - M) of a double, with exp at most top_exponent, to an integer of width bits.
inline unsigned long round_to_integer(int sgn, int exp, unsigned long mnt, bool u, int width,
                                      FPRounding rounding, FPSCR& fpscr) {
  const unsigned long significand = mnt << double_format::E;
  const int fraction_bits = top_exponent - exp;
  unsigned long x = significand;
  unsigned low = 0;
  if (fraction_bits > 1) [[likely]] {
    const unsigned long split = fp_shift_right_sticky(significand, fraction_bits - 2);
    low = static_cast<unsigned>(split & 7);
    x = (split >> 2) + fp_increment_integer(rounding, sgn, low);
  } else {
    x >>= fraction_bits;  // of which a double has none there
  }
  if (x > saturated(sgn, u, width)) [[unlikely]]
    return out_of_range(sgn, u, width, fpscr);
  if ((low & 3) != 0) fpscr.raise(FPSCR::IXC);
  return sgn != 0 ? -x : x;
}

template <class F>
unsigned long to_fixed(F op, int fbits, bool u, FPRounding rounding, int width, FPSCR& fpscr) {
  op = fp_flush(op, fp_mode_word(fpscr), fpscr);
  const auto a = fp_unpack(op);
  const int exp = fbits + a.exp + (double_format::bias - format<F>::bias);
  if (fp_is_special(op) || exp > top_exponent) [[unlikely]] {
    const unsigned long result = out_of_range(a.sgn, u, width, fpscr);
    return fp_is_nan(op) ? 0 : result;
  }
  const unsigned long mnt = static_cast<unsigned long>(a.mnt) << (double_format::M - format<F>::M);
  return round_to_integer(a.sgn, exp, mnt, u, width, rounding, fpscr);
}

}  // namespace

unsigned long FPToFixed_64(int sgn, int exp, unsigned long mnt, bool u, FPRounding rounding,
                           int* flags) {
  FPSCR raised{0};
  const unsigned long result = round_to_integer(sgn, exp, mnt, u, 64, rounding, raised);
  if (raised.flags() != 0) *flags = raised.flags();
  return result;
}

template <class F, class T>
T fplibFPToFixed(F op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr) {
  return static_cast<T>(to_fixed(op, fbits, u, rounding, format<T>::N, fpscr));
}

template unsigned short fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);

}  // namespace sve
