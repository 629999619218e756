// The probe for x86-64, where the core is tested natively. The length of an instruction varies, so
// the instruction after the load has a name too.
#include <cstdint>

#include "sve/semantics/probe.h"

asm(R"(
    .text
    .balign 16
    .globl  sve_probe, sve_probe_load, sve_probe_done
    .hidden sve_probe, sve_probe_load, sve_probe_done
    .type   sve_probe, @function
sve_probe:
    .cfi_startproc
    movl    $1, %eax
sve_probe_load:
    movb    (%rdi), %dl
sve_probe_done:
    ret
    .cfi_endproc
    .size   sve_probe, . - sve_probe
)");

extern "C" [[gnu::visibility("hidden")]] const unsigned char sve_probe_load, sve_probe_done;

bool sve::step_over_probe(ucontext_t& context) {
  greg_t* const registers = context.uc_mcontext.gregs;
  if (registers[REG_RIP] != reinterpret_cast<greg_t>(&sve_probe_load)) return false;
  registers[REG_RIP] = reinterpret_cast<greg_t>(&sve_probe_done);
  registers[REG_RAX] = 0;
  return true;
}
