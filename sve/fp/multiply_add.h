// The one fused operation. FPMulAdd, the step functions and FPTRIMADD use it.
#pragma once

#include "sve/fp/fpscr.h"

namespace sve {

// (a + b x c) x 2^scale: like fp16_muladd, fp32_muladd and fp64_muladd, but with an FPSCR for the
// flags. The controls come only from mode.
template <class T>
T fp_multiply_add(T a, T b, T c, int scale, int mode, FPSCR& fpscr);

}  // namespace sve
