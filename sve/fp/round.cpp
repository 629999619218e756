#include "sve/fp/round.h"

#include <tuple>

#include "sve/fp/fp.h"

using namespace sve;

namespace {

template <class T>
T round(int sgn, int exp, T mnt, int rm, int mode, int* flags) {
  return fp_with_flags_in(flags,
                          [=](FPSCR& raised) { return fp_round(sgn, exp, mnt, rm, mode, raised); });
}

}  // namespace

// The headers define these two as constexpr functions. This list makes the compiler emit them, for
// callers that only declare them.
[[gnu::used]] static constexpr std::tuple emitted(&fp_mode_word, &fp_mul_62x62);

unsigned short fp16_round_(int sgn, int exp, unsigned short mnt, int rm, int mode, int* flags) {
  return round(sgn, exp, mnt, rm, mode, flags);
}

unsigned int fp32_round_(int sgn, int exp, unsigned int mnt, int rm, int mode, int* flags) {
  return round(sgn, exp, mnt, rm, mode, flags);
}

unsigned long fp64_round_(int sgn, int exp, unsigned long mnt, int rm, int mode, int* flags) {
  return round(sgn, exp, mnt, rm, mode, flags);
}
