// Scaling by a power of two. Scaling by 2^0 brings a value into the form of an operation's result.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

template <class T>
T scale_by(T op, int scale, int mode, FPSCR& fpscr) {
  op = fp_flush(op, mode, fpscr);
  if (fp_is_nan(op)) [[unlikely]]
    return fp_process_nan(op, mode, fpscr);
  if (fp_is_infinity(op) || fp_is_zero(op)) [[unlikely]]
    return op;
  const auto a = fp_unpack_normalised(op);
  const T word = static_cast<T>(a.mnt << (format<T>::E + 1));
  return fp_round(a.sgn, a.exp + scale, word, mode_rounding(mode), mode, fpscr);
}

// limit is more than enough to make any number of the format overflow or underflow.
template <class T, class Scale>
T clamp_and_scale(T op, Scale scale, int limit, FPSCR& fpscr) {
  if (scale > limit) scale = static_cast<Scale>(limit);
  if (scale < -limit) scale = static_cast<Scale>(-limit);
  return scale_by(op, static_cast<int>(scale), fp_mode_word(fpscr), fpscr);
}

}  // namespace

unsigned short FPScale16(unsigned short op, short scale, FPSCR& fpscr) {
  return clamp_and_scale(op, scale, 60, fpscr);
}

unsigned int FPScale32(unsigned int op, int scale, FPSCR& fpscr) {
  return clamp_and_scale(op, scale, 300, fpscr);
}

unsigned long FPScale64(unsigned long op, long scale, FPSCR& fpscr) {
  return clamp_and_scale(op, scale, 3000, fpscr);
}

unsigned short FPProcess16(unsigned short op, FPSCR& fpscr) { return FPScale16(op, 0, fpscr); }

unsigned int FPProcess32(unsigned int op, FPSCR& fpscr) { return FPScale32(op, 0, fpscr); }

unsigned long FPProcess64(unsigned long op, FPSCR& fpscr) { return FPScale64(op, 0, fpscr); }
