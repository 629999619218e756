// Square root: Newton-Raphson steps on integers, x = (a / x + x) / 2, from a start value that is
// linear in a, then an exact test on the square. Each format has its own steps, so that every
// intermediate value fits the machine's integers.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

template <class T>
struct root {
  T mantissa;  // rounded down
  bool exact;
};

// The root is above y and at most y + 1. `square`, the square of y + 1, decides how it rounds down.
template <class T, class Square>
root<T> decide(T y, Square square, Square radicand) {
  return {square > radicand ? y : static_cast<T>(y + 1), square == radicand};
}

root<unsigned short> root_of(unsigned short mantissa) {
  const unsigned int a = mantissa;
  unsigned int x = (a >> 3) + (a >> 2) + 0x5000;
  x = ((a << 16) / x + x) >> 1;
  x = ((a << 16) / x + x) >> 1;
  const unsigned long w = static_cast<unsigned long>(x) << 16;
  const auto s = static_cast<unsigned int>(((static_cast<unsigned long>(a) << 48) / w + w) >> 17);
  const unsigned int y = (s - 4) >> 3;
  return decide(static_cast<unsigned short>(y), (y + 1) * (y + 1), a << 10);
}

root<unsigned int> root_of(unsigned int a) {
  unsigned int x = (a >> 3) + (a >> 2) + 0x50000000;
  x = (a / (x >> 15) + (x >> 16)) << 15;
  x = (a / (x >> 15) + (x >> 16)) << 15;
  const unsigned long dividend = static_cast<unsigned long>(a) << 32;
  x = static_cast<unsigned int>((dividend / x) >> 2) + (x >> 1);
  const unsigned int y = (x - 32) >> 6;
  const unsigned long candidate = y + 1;
  return decide(y, candidate * candidate, static_cast<unsigned long>(a) << 19);
}

root<unsigned long> root_of(unsigned long a) {
  const auto upper = static_cast<unsigned int>(a >> 32);
  unsigned int x = (upper >> 2) + (upper >> 3) + 0x50000000;
  x = (upper / (x >> 15) + (x >> 16)) << 15;
  x = (upper / (x >> 15) + (x >> 16)) << 15;
  x = static_cast<unsigned int>((a / x) >> 2) + (x >> 1);
  // 1 / x to 64 bits.
  const unsigned long first = (1UL << 62) / x;
  const unsigned long error = -(x * first) << 1;
  const auto reciprocal = static_cast<unsigned long>((uint128{error} * first) >> 31);
  const auto ratio = static_cast<unsigned long>(fp_mul_62x62(a >> 10, reciprocal >> 2) >> 51);
  const unsigned long w = (static_cast<unsigned long>(x) << 31) + (ratio >> 1);
  const unsigned long y = (w - 256) >> 9;
  return decide(y, fp_mul_62x62(y + 1, y + 1) << 19, uint128{a} << 64);
}

// Added to the exponent of the radicand, this gives twice the exponent of the root's top bit. If
// the sum is odd, the mantissa is shifted by one place less and the sum is made even.
template <class T>
constexpr int exponent_sum = 0;
template <>
constexpr int exponent_sum<unsigned short> = 20;
template <>
constexpr int exponent_sum<unsigned int> = 139;
template <>
constexpr int exponent_sum<unsigned long> = 1041;

// The root of a positive number whose mantissa has the implicit bit.
template <class T>
T square_root(const unpacked<T>& a, int mode, FPSCR& fpscr) {
  const int sum = a.exp + exponent_sum<T>;
  const int odd = sum & 1;
  const auto [mantissa, exact] = root_of(static_cast<T>(a.mnt << (format<T>::E - odd)));
  int exp = (sum + odd) / 2;
  const T word = (fp_normalise(mantissa, &exp) << 1) | T{!exact};
  return fp_round(0, exp, word, mode_rounding(mode), mode, fpscr);
}

// The operand is negative or not a normal number.
template <class T>
[[gnu::cold, gnu::noinline]] T square_root_unusual(T op, int mode, FPSCR& fpscr) {
  op = fp_flush(op, mode, fpscr);
  if (fp_is_nan(op)) return fp_process_nan(op, mode, fpscr);
  if (fp_is_zero(op)) return op;
  if (fp_is_negative(op)) return fp_invalid<T>(fpscr);
  if (fp_is_infinity(op)) return op;
  return square_root(fp_unpack_normalised(op), mode, fpscr);
}

}  // namespace

template <class T>
T FPSqrt(T op, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  if (!fp_is_normal(op) || fp_is_negative(op)) [[unlikely]] {
    return square_root_unusual(op, mode, fpscr);
  }
  return square_root(fp_unpack_normal(op), mode, fpscr);
}

template unsigned short FPSqrt(unsigned short, FPSCR&);
template unsigned int FPSqrt(unsigned int, FPSCR&);
template unsigned long FPSqrt(unsigned long, FPSCR&);
