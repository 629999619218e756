// The rounding core, and the rounding rule that it shares with the conversions to integers.
//
// A magnitude to be rounded has two more bits at the bottom. They hold the error code of the part
// that is cut off: 0 exact, 1 below half, 2 exactly half, 3 above half.
#pragma once

#include <cstdint>

#include "sve/fp/unpack.h"

namespace sve {

// What rounding adds to the kept bits: 0 or 1. low consists of the lowest kept bit and the error
// code below it. FPRounding_TIEAWAY and FPRounding_ODD add nothing.
constexpr unsigned fp_increment(int rm, int sgn, unsigned low) {
  // A byte for each mode and sign. Bit number low is what rounding adds.
  constexpr std::uint64_t ties_to_even = 0b1100'1000;
  constexpr std::uint64_t if_inexact = 0b1110'1110;
  constexpr std::uint64_t rules = (ties_to_even << 8 | ties_to_even) << (16 * FPRounding_TIEEVEN) |
                                  if_inexact << (16 * FPRounding_POSINF) |
                                  (if_inexact << 8) << (16 * FPRounding_NEGINF);
  if (rm > FPRounding_ZERO) return 0;
  return static_cast<unsigned>(rules >> (16 * rm + 8 * sgn + static_cast<int>(low))) & 1;
}

// The same, but FPRounding_TIEAWAY is supported.
constexpr unsigned fp_increment_integer(FPRounding rounding, int sgn, unsigned low) {
  return rounding == FPRounding_TIEAWAY ? (low >> 1) & 1 : fp_increment(rounding, sgn, low);
}

// The result of sign sgn for a magnitude that is too large: infinity if the mode rounds it away
// from zero, otherwise the largest finite number.
template <class T>
inline T fp_overflow(int sgn, int rm, FPSCR& fpscr) {
  using F = format<T>;
  fpscr.raise(FPSCR::OFC | FPSCR::IXC);
  const bool away = fp_increment(rm, sgn, 3) != 0;
  return fp_sign_bit<T>(sgn) | (away ? F::infinity : F::largest);
}

// Rounds the kept bits. A carry out of the fraction goes into the exponent by itself.
template <class T>
inline word_of<T> fp_round_kept(int sgn, word_of<T> kept, unsigned low, int rm) {
  kept += fp_increment(rm, sgn, low);
  if (format<T>::E < 11 && rm == FPRounding_ODD) kept |= word_of<T>{(low & 3) != 0};
  return kept;
}

// A result that is below the normal numbers before rounding.
template <class T>
[[gnu::cold, gnu::noinline]] T fp_round_small(int sgn, int exp, T mnt, int rm, int mode,
                                              FPSCR& fpscr) {
  using F = format<T>;
  using word = word_of<T>;
  if ((mode & F::flush) != 0) {
    fpscr.raise(FPSCR::UFC);
    return fp_zero<T>(sgn);
  }
  // The significand with the two bits for the error code.
  const word significand = (F::implicit_bit << 2) | fp_shift_right_sticky<word>(mnt, F::E - 1);
  const word denormal = fp_shift_right_sticky(significand, 1 - exp);
  const auto low = static_cast<unsigned>(denormal & 7);
  if ((low & 3) != 0) fpscr.raise(FPSCR::UFC | FPSCR::IXC);
  return fp_sign_bit<T>(sgn) | fp_round_kept<T>(sgn, denormal >> 2, low, rm);
}

// A result whose exponent is that of infinity or above. In the alternative half-precision format,
// infinity's exponent is an ordinary one, so `rounded` is used if exp is no larger.
template <class T>
[[gnu::cold, gnu::noinline]] T fp_round_large(int sgn, int exp, word_of<T> rounded, bool inexact,
                                              int rm, int mode, FPSCR& fpscr) {
  using F = format<T>;
  if (F::E > 5 || (mode & fp_mode::AHP) == 0) return fp_overflow<T>(sgn, rm, fpscr);
  if (exp > F::infinity_exponent || rounded >= F::sign_bit) {
    fpscr.raise(FPSCR::IOC);
    return fp_sign_bit<T>(sgn) | (F::sign_bit - 1);
  }
  if (inexact) fpscr.raise(FPSCR::IXC);
  return fp_sign_bit<T>(sgn) | rounded;
}

// fp16_round_, fp32_round_ and fp64_round_. Their declarations explain the arguments.
template <class T>
inline T fp_round(int sgn, int exp, T mnt, int rm, int mode, FPSCR& fpscr) {
  using F = format<T>;
  using word = word_of<T>;
  if (exp < 1) [[unlikely]]
    return fp_round_small(sgn, exp, mnt, rm, mode, fpscr);
  const bool sticky = (mnt & ((word{1} << F::E) - 1)) != 0;
  const unsigned low = (static_cast<unsigned>(mnt >> F::E) & 3) * 2 + sticky;
  const word kept = (static_cast<word>(exp) << F::M) + (mnt >> (F::E + 1));
  const word rounded = fp_round_kept<T>(sgn, kept, low, rm);
  const bool inexact = (low & 3) != 0;
  if (exp >= F::infinity_exponent || rounded >= F::infinity) [[unlikely]] {
    return fp_round_large<T>(sgn, exp, rounded, inexact, rm, mode, fpscr);
  }
  if (inexact) fpscr.raise(FPSCR::IXC);
  return fp_sign_bit<T>(sgn) | rounded;
}

// The exact zero that results when operands of different sign cancel.
template <class T>
inline T fp_cancelled(int mode) {
  return fp_zero<T>(mode_rounding(mode) == FPRounding_NEGINF);
}

}  // namespace sve
