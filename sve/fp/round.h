// The rounding core, and the rounding rules that it shares with the conversions to integers.
//
// What was cut off below a kept integer is an error code: 0 exact, 1 below half, 2 exactly half, 3
// above half. A rule is a byte with a bit for each pair of the integer's lowest bit and that code,
// set where the integer is incremented; so rounding is a lookup and a shift in every mode.
#pragma once

#include <cstdint>

#include "sve/fp/unpack.h"

namespace sve {

struct rounding_rules {
  std::uint8_t rule[6][2];  // by FPRounding and sign

  constexpr unsigned increment(int rm, int sgn, unsigned kept, unsigned error) const {
    return (rule[rm][sgn] >> ((kept & 1) * 4 + error)) & 1;
  }
};

namespace rounding {
inline constexpr std::uint8_t never = 0;
inline constexpr std::uint8_t if_inexact = 0b1110'1110;
inline constexpr std::uint8_t ties_to_even = 0b1100'1000;
inline constexpr std::uint8_t ties_away = 0b1100'1100;

inline constexpr rounding_rules to_integer = {{{ties_to_even, ties_to_even},
                                               {if_inexact, never},
                                               {never, if_inexact},
                                               {never, never},
                                               {ties_away, ties_away},
                                               {never, never}}};
// The core has no ties away from zero.
inline constexpr rounding_rules to_format = {{{ties_to_even, ties_to_even},
                                              {if_inexact, never},
                                              {never, if_inexact},
                                              {never, never},
                                              {never, never},
                                              {never, never}}};
}  // namespace rounding

// The result of sign sgn for a magnitude that is too large: infinity if the mode rounds away from
// zero there, otherwise the largest finite number. Flags as *flags gets them.
template <class T>
inline T fp_overflow(int sgn, int rm, int* flags) {
  using F = format<T>;
  *flags |= FPSCR::OFC | FPSCR::IXC;
  const bool away = rounding::to_format.increment(rm, sgn, 0, 3) != 0;
  return fp_sign_bit<T>(sgn) | (away ? F::infinity : F::largest);
}

// The magnitude above the error, incremented by the mode's rule. A carry out of the fraction moves
// on into the exponent by itself.
template <class T>
inline word_of<T> fp_increment(int sgn, word_of<T> kept, unsigned error, int rm) {
  kept += rounding::to_format.increment(rm, sgn, static_cast<unsigned>(kept), error);
  if (format<T>::E < 11 && rm == FPRounding_ODD) kept |= word_of<T>{error != 0};
  return kept;
}

// A result below the normal numbers before rounding.
template <class T>
[[gnu::cold, gnu::noinline]] T fp_round_small(int sgn, int exp, T mnt, int rm, int mode,
                                              int* flags) {
  using F = format<T>;
  using word = word_of<T>;
  if ((mode & F::flush) != 0) {
    *flags |= FPSCR::UFC;
    return fp_zero<T>(sgn);
  }
  // The significand with two bits below its last one, in which the error code builds up.
  const word significand = (F::implicit_bit << 2) | fp_shift_right_sticky<word>(mnt, F::E - 1);
  const word denormal = fp_shift_right_sticky(significand, 1 - exp);
  const auto error = static_cast<unsigned>(denormal & 3);
  if (error != 0) *flags |= FPSCR::UFC | FPSCR::IXC;
  return fp_sign_bit<T>(sgn) | fp_increment<T>(sgn, denormal >> 2, error, rm);
}

// A result whose exponent is that of infinity or above. In the alternative half-precision format
// that exponent is an ordinary one, and rounded counts if exp is no larger.
template <class T>
[[gnu::cold, gnu::noinline]] T fp_round_large(int sgn, int exp, word_of<T> rounded, unsigned error,
                                              int rm, int mode, int* flags) {
  using F = format<T>;
  if (F::E > 5 || (mode & fp_mode::AHP) == 0) return fp_overflow<T>(sgn, rm, flags);
  if (exp > F::infinity_exponent || rounded >= F::sign_bit) {
    *flags |= FPSCR::IOC;
    return fp_sign_bit<T>(sgn) | (F::sign_bit - 1);
  }
  if (error != 0) *flags |= FPSCR::IXC;
  return fp_sign_bit<T>(sgn) | rounded;
}

// fp16_round_, fp32_round_ and fp64_round_: see there for the arguments.
template <class T>
inline T fp_round(int sgn, int exp, T mnt, int rm, int mode, int* flags) {
  using F = format<T>;
  using word = word_of<T>;
  if (exp < 1) [[unlikely]]
    return fp_round_small(sgn, exp, mnt, rm, mode, flags);
  const word below = mnt & ((word{1} << F::E) - 1);
  const auto error = (static_cast<unsigned>(mnt >> F::E) & 1) * 2 + (below != 0);
  const word exact = (static_cast<word>(exp) << F::M) + (mnt >> (F::E + 1));
  const word rounded = fp_increment<T>(sgn, exact, error, rm);
  if (exp >= F::infinity_exponent || rounded >= F::infinity) [[unlikely]] {
    return fp_round_large<T>(sgn, exp, rounded, error, rm, mode, flags);
  }
  if (error != 0) *flags |= FPSCR::IXC;
  return fp_sign_bit<T>(sgn) | rounded;
}

// The exact zero that operands of different sign leave.
template <class T>
inline T fp_cancelled(int mode) {
  return fp_zero<T>(mode_rounding(mode) == FPRounding_NEGINF);
}

}  // namespace sve
