// Addition and subtraction. Subtraction is addition with the sign of the second operand flipped.
#include <utility>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

template <class T>
T add_numbers(unpacked<T> a, unpacked<T> b, bool swap, int mode, FPSCR& fpscr) {
  using F = format<T>;
  // The larger magnitude comes first, so the difference is not negative and has its sign.
  if (swap) std::swap(a, b);
  const word_of<T> addend = fp_shift_right_sticky(b.mnt << 3, a.exp - b.exp);
  const word_of<T> sum = (a.mnt << 3) + (a.sgn == b.sgn ? addend : -addend);
  if (sum == 0) [[unlikely]]
    return a.sgn == b.sgn ? fp_zero<T>(a.sgn) : fp_cancelled<T>(mode);
  int exp = a.exp + F::E - 3;
  const auto significand = fp_normalise(static_cast<T>(sum), &exp);
  return fp_round<T>(a.sgn, exp, significand << 1, mode_rounding(mode), mode, fpscr);
}

// At least one operand is not a normal number. A NaN is handled before the second operand's sign is
// flipped, so it comes back with its own sign.
template <class T>
[[gnu::cold, gnu::noinline]] T add_unusual(T op1, T op2, T flip, int mode, FPSCR& fpscr) {
  op1 = fp_flush(op1, mode, fpscr);
  op2 = fp_flush(op2, mode, fpscr);
  if (const auto nan = fp_process_nans({op1, op2}, mode, fpscr)) return *nan;
  op2 ^= flip;
  if (fp_is_infinity(op1) && fp_is_infinity(op2) && op1 != op2) return fp_invalid<T>(fpscr);
  if (fp_is_infinity(op1)) return op1;
  if (fp_is_infinity(op2)) return op2;
  const bool swap = fp_magnitude(op1) < fp_magnitude(op2);
  return add_numbers(fp_unpack(op1), fp_unpack(op2), swap, mode, fpscr);
}

// flip is the sign bit for a subtraction, else 0.
template <class T>
T add(T op1, T op2, T flip, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  if (!fp_is_normal(op1) || !fp_is_normal(op2)) [[unlikely]] {
    return add_unusual(op1, op2, flip, mode, fpscr);
  }
  const bool swap = fp_magnitude(op1) < fp_magnitude(op2);
  return add_numbers(fp_unpack_normal(op1), fp_unpack_normal<T>(op2 ^ flip), swap, mode, fpscr);
}

}  // namespace

template <class T>
T FPAdd(T op1, T op2, FPSCR& fpscr) {
  return add<T>(op1, op2, 0, fpscr);
}

template <class T>
T FPSub(T op1, T op2, FPSCR& fpscr) {
  return add<T>(op1, op2, format<T>::sign_bit, fpscr);
}

template unsigned short FPAdd(unsigned short, unsigned short, FPSCR&);
template unsigned int FPAdd(unsigned int, unsigned int, FPSCR&);
template unsigned long FPAdd(unsigned long, unsigned long, FPSCR&);
template unsigned short FPSub(unsigned short, unsigned short, FPSCR&);
template unsigned int FPSub(unsigned int, unsigned int, FPSCR&);
template unsigned long FPSub(unsigned long, unsigned long, FPSCR&);
