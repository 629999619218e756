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

// Whether the low bits of x, an integer of 64 bits, are all of it.
bool fits(unsigned long x, bool u, int width) {
  const int above = 64 - width;
  if (u) return (x << above) >> above == x;
  return static_cast<unsigned long>(static_cast<long>(x << above) >> above) == x;
}

unsigned long out_of_range(int sgn, bool u, int width, int* flags) {
  *flags = FPSCR::IOC;
  return saturated(sgn, u, width);
}

template <class F>
unsigned long to_fixed(F op, int fbits, bool u, FPRounding rounding, int width, int mode,
                       int* flags) {
  op = fp_flush(op, mode, flags);
  const auto a = fp_unpack(op);
  if (fp_is_special(op)) [[unlikely]] {
    const unsigned long result = out_of_range(a.sgn, u, width, flags);
    return fp_is_nan(op) ? 0 : result;
  }
  const int exp = fbits + a.exp + (double_format::bias - format<F>::bias);
  if (exp > top_exponent) [[unlikely]]
    return out_of_range(a.sgn, u, width, flags);
  const unsigned long mnt = static_cast<unsigned long>(a.mnt) << (double_format::M - format<F>::M);
  const unsigned long x = FPToFixed_64(a.sgn, exp, mnt, u, rounding, flags);
  return fits(x, u, width) ? x : out_of_range(a.sgn, u, width, flags);
}

}  // namespace

unsigned long FPToFixed_64(int sgn, int exp, unsigned long mnt, bool u, FPRounding rounding,
                           int* flags) {
  const unsigned long significand = mnt << double_format::E;
  const int integral = top_exponent - exp;  // places that its top bit is above the integer's
  unsigned long x = significand >> (integral & 63);
  unsigned error = 0;
  if (integral > 1) {
    const unsigned long split = fp_shift_right_sticky(significand, integral - 2);
    x = split >> 2;
    error = static_cast<unsigned>(split & 3);
  }
  x += rounding::to_integer.increment(rounding, sgn, static_cast<unsigned>(x), error);
  const unsigned long limit = saturated(sgn, u, 64);
  if (x > limit) [[unlikely]]
    return out_of_range(sgn, u, 64, flags);
  if (error != 0) *flags = FPSCR::IXC;
  return sgn != 0 ? -x : x;
}

template <class F, class T>
T fplibFPToFixed(F op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) {
    return static_cast<T>(to_fixed(op, fbits, u, rounding, format<T>::N, mode, flags));
  });
}

template unsigned short fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned int fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned short, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned int, int, bool, FPRounding, FPSCR&);
template unsigned long fplibFPToFixed(unsigned long, int, bool, FPRounding, FPSCR&);

}  // namespace sve
