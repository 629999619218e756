// The probe for AArch64. It is written in assembly, so that its load is exactly one instruction
// with a named address, and so that the answer is in a register that the signal handler can reach.
#include <cstdint>

#include "sve/semantics/probe.h"

asm(R"(
    .text
    .balign 16
    .globl  sve_probe, sve_probe_load
    .hidden sve_probe, sve_probe_load
    .type   sve_probe, %function
sve_probe:
    .cfi_startproc
    mov     x1, x0
    mov     w0, #1
sve_probe_load:
    ldrb    w1, [x1]
    ret
    .cfi_endproc
    .size   sve_probe, . - sve_probe
)");

extern "C" [[gnu::visibility("hidden")]] const std::uint32_t sve_probe_load;

bool sve::step_over_probe(ucontext_t& context) {
  mcontext_t& registers = context.uc_mcontext;
  if (registers.pc != reinterpret_cast<std::uintptr_t>(&sve_probe_load)) return false;
  registers.pc += sizeof sve_probe_load;
  registers.regs[0] = 0;
  return true;
}
