// The one fused operation, for FPMulAdd, the step functions and FPTRIMADD.
#pragma once

namespace sve {

// fp16_muladd, fp32_muladd and fp64_muladd: see there. unsigned short, unsigned int, unsigned long.
template <class T>
T fp_multiply_add(T a, T b, T c, int scale, int mode, int* flags);

}  // namespace sve
