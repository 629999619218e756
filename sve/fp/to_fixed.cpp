// From floating point to integers and fixed point. Every operand is converted to the scale of a
// double, so that one function rounds all of them.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

using double_format = format<unsigned long>;

// The exponent of 2^63. No value with a larger exponent fits 64 bits.
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

// Rounds mnt x 2^(exp - bias - M) of a double, with exp at most top_exponent, to an integer of
// width bits.
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
    x >>= fraction_bits;  // a double that large has no fraction bits
  }
  if (x > saturated(sgn, u, width)) [[unlikely]]
    return out_of_range(sgn, u, width, fpscr);
  if ((low & 3) != 0) fpscr.raise(FPSCR::IXC);
  return sgn != 0 ? -x : x;
}

template <class F>
unsigned long number_to_fixed(const unpacked<F>& a, int fbits, bool u, int width,
                              FPRounding rounding, FPSCR& fpscr) {
  const int exp = fbits + a.exp + (double_format::bias - format<F>::bias);
  if (exp > top_exponent) [[unlikely]]
    return out_of_range(a.sgn, u, width, fpscr);
  const unsigned long mnt = static_cast<unsigned long>(a.mnt) << (double_format::M - format<F>::M);
  return round_to_integer(a.sgn, exp, mnt, u, width, rounding, fpscr);
}

// The operand is not a normal number.
template <class F>
[[gnu::cold, gnu::noinline]] unsigned long unusual_to_fixed(F op, int fbits, bool u, int width,
                                                            FPRounding rounding, FPSCR& fpscr) {
  op = fp_flush(op, fp_mode_word(fpscr), fpscr);
  if (fp_is_special(op)) {
    const unsigned long result = out_of_range(fp_is_negative(op), u, width, fpscr);
    return fp_is_nan(op) ? 0 : result;
  }
  return number_to_fixed(fp_unpack(op), fbits, u, width, rounding, fpscr);
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
  constexpr int width = format<T>::N;
  if (!fp_is_normal(op)) [[unlikely]] {
    return static_cast<T>(unusual_to_fixed(op, fbits, u, width, rounding, fpscr));
  }
  return static_cast<T>(number_to_fixed(fp_unpack_normal(op), fbits, u, width, rounding, fpscr));
}

template unsigned short fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);
