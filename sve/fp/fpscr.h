// The control and status word of the floating-point library.
//
// The architecture keeps the rounding mode and the flush controls in FPCR, and the cumulative flags
// in FPSR. No bit that the library uses is in both, so one word holds the two together: an
// operation reads its controls from it and ORs its flags into it.
#pragma once

#include <cstdint>

// Rounding modes. The first four have the values of FPCR.RMode.
enum FPRounding : int {
  FPRounding_TIEEVEN,  // to nearest, ties to even
  FPRounding_POSINF,   // towards plus infinity
  FPRounding_NEGINF,   // towards minus infinity
  FPRounding_ZERO,     // towards zero
  FPRounding_TIEAWAY,  // to nearest, ties away from zero: only FPRoundInt and FPToFixed_64
  FPRounding_ODD,      // to odd: only fp16_round_ and fp32_round_
};

struct FPSCR {
  std::uint32_t word;

  // Cumulative flags, at the positions of FPSR. Functions that collect flags in an int use the same
  // values.
  static constexpr int IOC = 1 << 0;  // invalid operation
  static constexpr int DZC = 1 << 1;  // division by zero
  static constexpr int OFC = 1 << 2;  // overflow
  static constexpr int UFC = 1 << 3;  // underflow
  static constexpr int IXC = 1 << 4;  // inexact
  static constexpr int IDC = 1 << 7;  // input denormal

  // Controls, at the positions of FPCR.
  static constexpr std::uint32_t FZ16 = 1U << 19;  // flush half-precision denormals to zero
  static constexpr int RMode_shift = 22;
  static constexpr std::uint32_t RMode = 3U << RMode_shift;  // FPRounding 0 to 3
  static constexpr std::uint32_t FZ = 1U << 24;   // flush single and double denormals to zero
  static constexpr std::uint32_t DN = 1U << 25;   // every NaN result is the default NaN
  static constexpr std::uint32_t AHP = 1U << 26;  // alternative half precision: only FPConvert

  constexpr FPRounding rounding() const {
    return static_cast<FPRounding>((word & RMode) >> RMode_shift);
  }
  // The flags in the low byte, from the values above.
  constexpr int flags() const { return static_cast<int>(word & 0x9f); }
  // Flags are only ever added.
  constexpr void raise(int flags) { word |= static_cast<std::uint32_t>(flags); }
};
static_assert(sizeof(FPSCR) == 4, "the word is copied to and from FPSR and FPCR unchanged");

namespace sve {

// Runs operation(FPSCR) and ORs the flags that it raises into *flags.
template <class Operation>
auto fp_with_flags_in(int* flags, Operation operation) {
  FPSCR raised{0};
  const auto result = operation(raised);
  *flags |= raised.flags();
  return result;
}

// The bits of the mode word. The rounding cores and the arithmetic take it instead of an FPSCR.
struct fp_mode {
  static constexpr int RMode = 3;
  static constexpr int FZ = 1 << 2;
  static constexpr int DN = 1 << 3;
  static constexpr int AHP = 1 << 4;  // FPConvert adds it; fp_mode_word leaves it out
  static constexpr int FZ16 = 1 << 5;
};

static_assert(FPSCR::RMode >> 22 == fp_mode::RMode && FPSCR::FZ >> 22 == fp_mode::FZ &&
                  FPSCR::DN >> 22 == fp_mode::DN && FPSCR::FZ16 >> 14 == fp_mode::FZ16,
              "two shifts take the mode word out of the control word");

constexpr FPRounding mode_rounding(int mode) {
  return static_cast<FPRounding>(mode & fp_mode::RMode);
}

}  // namespace sve

// The mode word of a control word. It does not change the control word.
constexpr int fp_mode_word(FPSCR& fpscr) {
  return static_cast<int>(((fpscr.word >> 22) & 15) | ((fpscr.word >> 14) & 32));
}
