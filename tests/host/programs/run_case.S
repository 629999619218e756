// Runs a piece of code from a known state of the general and vector registers: see run_case.h.
//
// X30 holds the address of the code, then that of the state.

  .macro transfer_vectors op
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  \op q\n, [x9], #16
  .endr
  .endm

  .macro transfer_registers op, base
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27
  \op x\n, [\base, #8 * \n]
  .endr
  .endm

// The registers that a function preserves. They are kept from `base` on.
  .macro transfer_preserved op, base
  .irp n, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28
  \op x\n, [\base, #16 + 8 * (\n - 19)]
  .endr
  .irp n, 8, 9, 10, 11, 12, 13, 14, 15
  \op d\n, [\base, #96 + 8 * (\n - 8)]
  .endr
  .endm

  .text
  .globl run_case
run_case:
  stp x29, x30, [sp, #-176]!
  transfer_preserved str, sp
  mrs x9, tpidr_el0
  stp x1, x9, [sp, #160]
  mov x30, x0
  mov x29, x1
  add x9, x29, #256
  transfer_vectors ldr
  ldp x9, x10, [x29, #240]
  msr nzcv, x9
  msr fpsr, x10
  ldr x9, [x29, #768]
  msr fpcr, x9
  transfer_registers ldr, x29
  ldp x28, x29, [x29, #224]
  blr x30
  ldr x30, [sp, #160]
  transfer_registers str, x30
  stp x28, x29, [x30, #224]
  mrs x9, nzcv
  mrs x10, fpsr
  stp x9, x10, [x30, #240]
  add x9, x30, #256
  transfer_vectors str
  mrs x10, fpcr
  mrs x11, tpidr_el0
  stp x10, x11, [x9]
  ldr x9, [sp, #168]
  msr tpidr_el0, x9
  msr fpcr, xzr
  transfer_preserved ldr, sp
  ldp x29, x30, [sp], #176
  ret

  .section .note.GNU-stack, "", %progbits
