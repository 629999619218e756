// Assembles the cases into subroutines, with a table of their addresses, kinds and texts.

  .arch armv8.5-a+memtag+crypto+sha3+crc+lse
  .arch_extension fp16

  .macro case kind, before, instruction:vararg
  .text
  .balign 8
  .long 0xe7f000f0 // not executed
  .long 0xe7f000f0
1: \before
2: \instruction
  ret
  .section .rodata.texts, "a"
3: .asciz "\instruction"
  .section .data.rel.ro.cases, "aw"
  .quad 1b, 2b, \kind, 3b
  .endm

  .macro value instruction:vararg
  case 0, nop, \instruction
  .endm
  .macro address instruction:vararg
  case 1, nop, \instruction
  .endm
  .macro exclusive instruction:vararg
  case 0, "ldxr x7, [x27]", \instruction
  .endm
  .macro exclusive_pair instruction:vararg
  case 0, "ldxp x7, x8, [x27]", \instruction
  .endm

  .section .data.rel.ro.cases, "aw"
  .balign 8
  .globl x28_cases
x28_cases:

#include "x28_cases.inc"

  .section .data.rel.ro.cases, "aw"
  .globl x28_cases_end
x28_cases_end:
  .quad 0

// void run_case(const void* code, machine* state): loads X0 to X29, NZCV and V0 to V31 from the
// state, calls the code, and stores them back. X30 is the way in and out. TPIDR_EL0 goes the same
// way through its own field, and the caller's is put back.
  .macro transfer_vectors op
  \op q0, q1, [x9], #32
  \op q2, q3, [x9], #32
  \op q4, q5, [x9], #32
  \op q6, q7, [x9], #32
  \op q8, q9, [x9], #32
  \op q10, q11, [x9], #32
  \op q12, q13, [x9], #32
  \op q14, q15, [x9], #32
  \op q16, q17, [x9], #32
  \op q18, q19, [x9], #32
  \op q20, q21, [x9], #32
  \op q22, q23, [x9], #32
  \op q24, q25, [x9], #32
  \op q26, q27, [x9], #32
  \op q28, q29, [x9], #32
  \op q30, q31, [x9], #32
  .endm

  .macro transfer_registers op, base
  \op x0, x1, [\base, #0]
  \op x2, x3, [\base, #16]
  \op x4, x5, [\base, #32]
  \op x6, x7, [\base, #48]
  \op x8, x9, [\base, #64]
  \op x10, x11, [\base, #80]
  \op x12, x13, [\base, #96]
  \op x14, x15, [\base, #112]
  \op x16, x17, [\base, #128]
  \op x18, x19, [\base, #144]
  \op x20, x21, [\base, #160]
  \op x22, x23, [\base, #176]
  \op x24, x25, [\base, #192]
  \op x26, x27, [\base, #208]
  .endm

  .text
  .globl run_case
run_case:
  stp x29, x30, [sp, #-176]!
  stp x19, x20, [sp, #16]
  stp x21, x22, [sp, #32]
  stp x23, x24, [sp, #48]
  stp x25, x26, [sp, #64]
  stp x27, x28, [sp, #80]
  stp d8, d9, [sp, #96]
  stp d10, d11, [sp, #112]
  stp d12, d13, [sp, #128]
  stp d14, d15, [sp, #144]
  mrs x9, tpidr_el0
  stp x1, x9, [sp, #160]
  mov x30, x0
  mov x29, x1
  add x9, x29, #256
  transfer_vectors ldp
  ldr x9, [x29, #240]
  msr nzcv, x9
  msr fpsr, xzr
  transfer_registers ldp, x29
  ldp x28, x29, [x29, #224]
  blr x30
  ldr x30, [sp, #160]
  transfer_registers stp, x30
  stp x28, x29, [x30, #224]
  mrs x9, nzcv
  mrs x10, fpsr
  stp x9, x10, [x30, #240]
  add x9, x30, #256
  transfer_vectors stp
  mrs x10, tpidr_el0
  mrs x11, fpcr
  stp x10, x11, [x9]
  ldr x9, [sp, #168]
  msr tpidr_el0, x9
  msr fpcr, xzr
  ldp d14, d15, [sp, #144]
  ldp d12, d13, [sp, #128]
  ldp d10, d11, [sp, #112]
  ldp d8, d9, [sp, #96]
  ldp x27, x28, [sp, #80]
  ldp x25, x26, [sp, #64]
  ldp x23, x24, [sp, #48]
  ldp x21, x22, [sp, #32]
  ldp x19, x20, [sp, #16]
  ldp x29, x30, [sp], #176
  ret

  .section .note.GNU-stack, "", %progbits
