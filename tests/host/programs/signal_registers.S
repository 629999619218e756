// Code with known values in all registers, for handlers to look at.

  .text

// Saves X19 to X30 on the stack and fills X2 to X29 with their number plus 100. Runs the given
// instruction with X0 and X1 as addresses that cannot be accessed, and stores the registers and
// the flags that it leaves.
.macro faulting name, label, instruction:vararg
  .globl \name
  .globl \label
  .type \name, %function
\name:
  stp x29, x30, [sp, #-96]!
  stp x19, x20, [sp, #16]
  stp x21, x22, [sp, #32]
  stp x23, x24, [sp, #48]
  stp x25, x26, [sp, #64]
  stp x27, x28, [sp, #80]
  .irp n, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29
  mov x\n, #100 + \n
  .endr
  mov x0, #16
  mov x1, #16
  cmp x0, #17
\label:
  \instruction
  mrs x1, nzcv
  adrp x0, registers_after
  add x0, x0, :lo12:registers_after
  str x1, [x0]
  .irp n, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29
  str x\n, [x0, #8 * \n]
  .endr
  ldp x27, x28, [sp, #80]
  ldp x25, x26, [sp, #64]
  ldp x23, x24, [sp, #48]
  ldp x21, x22, [sp, #32]
  ldp x19, x20, [sp, #16]
  ldp x29, x30, [sp], #96
  ret
.endm

  faulting fault_load, at_load, ldr x28, [x0]
  faulting fault_store_pair, at_store_pair, stp x28, x3, [x1]
  faulting fault_undefined, at_undefined, udf #1
  faulting fault_break, at_break, brk #1
  faulting fault_literal, at_literal, ldrb w28, [x0]

  .bss
  .balign 8
  .globl registers_after
registers_after:
  .space 8 * 31

  .section .note.GNU-stack, "", %progbits
