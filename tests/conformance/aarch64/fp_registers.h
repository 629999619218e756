// Runs code under the FPCR and FPSR of a state, as an application's code runs. Floating-point fast
// paths take the controls from the processor's registers and leave their flags there.
#pragma once

#include <cstdint>

#include "sve/state/cpu_state.h"

namespace conformance {

class fp_registers_of {
 public:
  explicit fp_registers_of(const cpu_state& state) {
    asm volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(own_fpcr_), "=r"(own_fpsr_));
    write(state.fpcr, state.fpsr);
  }
  ~fp_registers_of() { write(own_fpcr_, own_fpsr_); }
  fp_registers_of(const fp_registers_of&) = delete;
  fp_registers_of& operator=(const fp_registers_of&) = delete;

 private:
  static void write(std::uint64_t fpcr, std::uint64_t fpsr) {
    asm volatile("msr fpcr, %0\n\tmsr fpsr, %1" : : "r"(fpcr), "r"(fpsr) : "memory");
  }

  std::uint64_t own_fpcr_, own_fpsr_;
};

}  // namespace conformance
