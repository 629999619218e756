// What the comparison with a processor's instructions cannot test: functions, rounding modes and
// arguments that no instruction reaches.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "sve/fp/fp.h"

namespace {

using half = unsigned short;
using single = unsigned int;
using dword = unsigned long;

constexpr int inexact = FPSCR::IXC;
constexpr int underflow = FPSCR::UFC | FPSCR::IXC;
constexpr int overflow = FPSCR::OFC | FPSCR::IXC;

// A result and the flags that came with it.
struct Outcome {
  dword bits;
  int flags;
  bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* os) {
  *os << std::hex << outcome.bits << " with flags " << outcome.flags;
}

// Runs the operation under the controls. Everything else in the word must stay as it is.
template <class Operation>
Outcome under(std::uint32_t controls, Operation operation) {
  FPSCR fpscr{controls};
  const dword bits = operation(fpscr);
  EXPECT_EQ(fpscr.word & controls, controls);
  return {bits, static_cast<int>(fpscr.word & ~controls)};
}

struct Case {
  std::string name;
  Outcome got;
  Outcome expected;
};

void check(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(c.got, c.expected) << c.name;
}

template <auto core, class T>
Outcome rounded(int sgn, int exp, T mnt, int rm, int mode) {
  int flags = 0;
  const dword bits = core(sgn, exp, mnt, rm, mode, &flags);
  return {bits, flags};
}

TEST(RoundingCores, ModesBeyondRMode) {
  constexpr auto& round16 = rounded<fp16_round_, half>;
  constexpr auto& round32 = rounded<fp32_round_, single>;
  constexpr auto& round64 = rounded<fp64_round_, dword>;
  constexpr int odd = FPRounding_ODD;
  constexpr int ahp = sve::fp_mode::AHP;
  check({
      {"odd, exact and even", round16(0, 15, 0x0040 << 1, odd, 0), {0x3c02, 0}},
      {"odd, inexact and even", round16(0, 15, 0x0081, odd, 0), {0x3c03, inexact}},
      {"odd, inexact and odd", round16(1, 15, 0x0041, odd, 0), {0xbc01, inexact}},
      {"odd, denormal", round32(0, 0, 1, odd, 0), {0x400001, underflow}},
      {"odd, far below", round32(1, -400, 0, odd, 0), {0x80000001, underflow}},
      {"odd, too large", round16(0, 31, 0, odd, 0), {0x7bff, overflow}},
      {"a double knows no odd", round64(0, 1023, 1, odd, 0), {0x3ff0000000000000, inexact}},
      {"nor any ties away", round16(0, 15, 0x20, FPRounding_TIEAWAY, 0), {0x3c00, inexact}},
      {"ordinary exponent 31", round16(1, 31, 0xffc0, 0, ahp), {0xffff, 0}},
      {"inexact there", round16(0, 31, 0x0001, 0, ahp), {0x7c00, inexact}},
      {"carry beyond it", round16(0, 31, 0xffe0, 0, ahp), {0x7fff, FPSCR::IOC}},
      {"exponent beyond it", round16(1, 999, 0, FPRounding_ZERO, ahp), {0xffff, FPSCR::IOC}},
      {"exponents far out", round64(0, 99999, 0, 0, 0), {0x7ff0000000000000, overflow}},
  });
  int flags = FPSCR::DZC | FPSCR::IXC;
  fp16_round_(0, 32, 0, 0, ahp, &flags);
  EXPECT_EQ(flags, FPSCR::DZC | FPSCR::IXC | FPSCR::IOC) << "flags that were there stay";
}

template <class F, class T>
Outcome converted(F op, std::uint32_t controls) {
  return under(controls, [=](FPSCR& s) { return FPConvert<F, T>(op, FPRounding_TIEEVEN, s); });
}

TEST(FPConvert, FZ16FlushesOperandsOnly) {
  check({
      {"operand", converted<half, single>(0x8001, FPSCR::FZ16), {0x80000000, 0}},
      {"result", converted<single, half>(0x33800000, FPSCR::FZ16), {1, 0}},
      {"integers",
       under(FPSCR::FZ16,
             [](FPSCR& s) { return fplibFixedToFP<half>(1, 24, true, FPRounding_TIEEVEN, s); }),
       {1, 0}},
  });
}

Outcome fixed_64(int sgn, int exp, dword mnt, bool u, FPRounding rounding, int flags = 0) {
  const dword bits = FPToFixed_64(sgn, exp, mnt, u, rounding, &flags);
  return {bits, flags};
}

TEST(FPToFixed, ScaledAndDirect) {
  constexpr dword one = 1UL << 52;
  constexpr auto away = FPRounding_TIEAWAY;
  const auto half_to_16 = [](half op, int fbits, bool u) {
    return under(
        0, [=](FPSCR& s) { return fplibFPToFixed<half, half>(op, fbits, u, FPRounding_ZERO, s); });
  };
  check({
      {"2^-24 with 64 bits", half_to_16(0x0001, 64, true), {0xffff, FPSCR::IOC}},
      {"-0.5 rounded away", fixed_64(1, 1022, one, false, away), {~0UL, inexact}},
      {"2^63", fixed_64(0, 1086, one, false, away), {~0UL >> 1, FPSCR::IOC}},
      {"-2^63", fixed_64(1, 1086, one, false, away), {1UL << 63, 0}},
      {"flags are set, not added",
       fixed_64(0, 0, 1, true, FPRounding_POSINF, FPSCR::IDC),
       {1, inexact}},
      {"none is set for an exact 0", fixed_64(0, 1, 0, true, away, FPSCR::IDC), {0, FPSCR::IDC}},
  });
}

}  // namespace
