// The one fused operation, for FPMulAdd, the step functions and FPTRIMADD.
#pragma once

#include "sve/fp/fpscr.h"

namespace sve {

// (a + b x c) x 2^scale: as fp16_muladd, fp32_muladd and fp64_muladd, but with an FPSCR for the
// flags. The mode is taken from mode alone.
template <class T>
T fp_multiply_add(T a, T b, T c, int scale, int mode, FPSCR& fpscr);

}  // namespace sve
