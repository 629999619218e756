// Addition and subtraction: the latter flips the sign of its second operand once NaNs are dealt
// with, so that a NaN comes back as it was given.
#include <utility>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

template <class T>
[[gnu::cold, gnu::noinline]] T add_special(T op1, T op2, T flip, int mode, int* flags) {
  if (const auto nan = fp_process_nans({op1, op2}, mode, flags)) return *nan;
  const T addend = op2 ^ flip;
  if (!fp_is_infinity(op1)) return addend;
  if (fp_is_infinity(addend) && op1 != addend) return fp_invalid<T>(flags);
  return op1;
}

// flip is the sign bit for a subtraction, else 0.
template <class T>
T add(T op1, T op2, T flip, int mode, int* flags) {
  using F = format<T>;
  op1 = fp_flush(op1, mode, flags);
  op2 = fp_flush(op2, mode, flags);
  if (fp_is_special(op1) || fp_is_special(op2)) [[unlikely]] {
    return add_special(op1, op2, flip, mode, flags);
  }
  auto a = fp_unpack(op1);
  auto b = fp_unpack<T>(op2 ^ flip);
  // With the larger magnitude first, the difference isn't negative and has its sign.
  if (fp_magnitude(op1) < fp_magnitude(op2)) std::swap(a, b);
  const word_of<T> addend = fp_shift_right_sticky(b.mnt << 3, a.exp - b.exp);
  const word_of<T> sum = (a.mnt << 3) + (a.sgn == b.sgn ? addend : -addend);
  if (sum == 0) [[unlikely]]
    return a.sgn == b.sgn ? fp_zero<T>(a.sgn) : fp_cancelled<T>(mode);
  int exp = a.exp + F::E - 3;
  const auto significand = fp_normalise(static_cast<T>(sum), &exp);
  return fp_round<T>(a.sgn, exp, significand << 1, mode_rounding(mode), mode, flags);
}

}  // namespace

template <class T>
T FPAdd(T op1, T op2, FPSCR& fpscr) {
  return fp_run(fpscr, [=](int mode, int* flags) { return add<T>(op1, op2, 0, mode, flags); });
}

template <class T>
T FPSub(T op1, T op2, FPSCR& fpscr) {
  constexpr T flip = format<T>::sign_bit;
  return fp_run(fpscr, [=](int mode, int* flags) { return add<T>(op1, op2, flip, mode, flags); });
}

template unsigned short FPAdd(unsigned short, unsigned short, FPSCR&);
template unsigned int FPAdd(unsigned int, unsigned int, FPSCR&);
template unsigned long FPAdd(unsigned long, unsigned long, FPSCR&);
template unsigned short FPSub(unsigned short, unsigned short, FPSCR&);
template unsigned int FPSub(unsigned int, unsigned int, FPSCR&);
template unsigned long FPSub(unsigned long, unsigned long, FPSCR&);

}  // namespace sve
