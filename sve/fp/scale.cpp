// Scaling by a power of two, and by 2^0 to bring a value into the form that an operation would
// give.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

template <class T>
T scale_by(T op, int scale, int mode, int* flags) {
  op = fp_flush(op, mode, flags);
  if (fp_is_nan(op)) [[unlikely]]
    return fp_process_nan(op, mode, flags);
  if (fp_is_infinity(op) || fp_magnitude(op) == 0) [[unlikely]]
    return op;
  auto a = fp_unpack(op);
  a.exp += scale + format<T>::E;
  const T significand = fp_normalise(static_cast<T>(a.mnt), &a.exp);
  return fp_round<T>(a.sgn, a.exp, significand << 1, mode_rounding(mode), mode, flags);
}

// limit is beyond what any number of the format needs to over- or underflow.
template <class T, class Scale>
T clamp_and_scale(T op, Scale scale, int limit, FPSCR& fpscr) {
  if (scale > limit) scale = static_cast<Scale>(limit);
  if (scale < -limit) scale = static_cast<Scale>(-limit);
  return fp_run(fpscr, [=](int mode, int* flags) {
    return scale_by(op, static_cast<int>(scale), mode, flags);
  });
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

}  // namespace sve
