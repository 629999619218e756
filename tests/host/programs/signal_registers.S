// Code with known values in all registers, for handlers to look at and to spoil.

  .text

// Those that a function gives back as it found them.
.macro save_registers
  stp x29, x30, [sp, #-96]!
  stp x19, x20, [sp, #16]
  stp x21, x22, [sp, #32]
  stp x23, x24, [sp, #48]
  stp x25, x26, [sp, #64]
  stp x27, x28, [sp, #80]
.endm
.macro restore_registers
  ldp x27, x28, [sp, #80]
  ldp x25, x26, [sp, #64]
  ldp x23, x24, [sp, #48]
  ldp x21, x22, [sp, #32]
  ldp x19, x20, [sp, #16]
  ldp x29, x30, [sp], #96
.endm

// Fills X2 to X29 with their number plus 100, all registers waiting on the stack meanwhile, runs
// the given instruction with X0 or X1 as an address that cannot be accessed, and stores what the
// registers are then.
.macro faulting name, label, instruction:vararg
  .globl \name
  .globl \label
  .type \name, %function
\name:
  save_registers
  .irp n, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29
  mov x\n, #100 + \n
  .endr
  mov x0, #16
  mov x1, #16
\label:
  \instruction
  adrp x0, registers_after
  add x0, x0, :lo12:registers_after
  .irp n, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29
  str x\n, [x0, #8 * \n]
  .endr
  restore_registers
  ret
.endm

  faulting fault_load, at_load, ldr x28, [x0]
  faulting fault_store_pair, at_store_pair, stp x28, x3, [x1]
  faulting fault_undefined, at_undefined, udf #1
  faulting fault_break, at_break, brk #1
  faulting fault_literal, at_literal, ldrb w28, [x0]

// uint64_t watch_registers(uint64_t rounds): known values in most general registers, X28 and X18
// among them, in the vectors and the flags, until X0 is 0.
  .globl watch_registers
  .type watch_registers, %function
watch_registers:
  save_registers
  stp d8, d9, [sp, #-64]!
  stp d10, d11, [sp, #16]
  stp d12, d13, [sp, #32]
  stp d14, d15, [sp, #48]
  .irp n, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30
  mov x\n, #1000 + \n
  .endr
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  movi v\n\().16b, #64 + \n
  .endr
  mov x2, #0                     // differences found
1:
  cmp x4, #2000                  // N, not Z, not C, not V
  nop
  nop
  b.eq 2f
  b.cs 2f
  b.pl 2f
  b 3f
2:
  add x2, x2, #1
3:
  .irp n, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30
  sub x3, x\n, #1000 + \n
  orr x2, x2, x3
  .endr
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  umov x3, v\n\().d[1]
  and x3, x3, #0xff
  sub x3, x3, #64 + \n
  orr x2, x2, x3
  .endr
  sub x0, x0, #1
  cbnz x0, 1b
  mov x0, x2
  ldp d14, d15, [sp, #48]
  ldp d12, d13, [sp, #32]
  ldp d10, d11, [sp, #16]
  ldp d8, d9, [sp], #64
  restore_registers
  ret

// void spoil_registers(): all that a function may change, and X18.
  .globl spoil_registers
  .type spoil_registers, %function
spoil_registers:
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18
  mov x\n, #-1
  .endr
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  movi v\n\().16b, #255
  .endr
  cmp x0, x0
  ret

  .bss
  .balign 8
  .globl registers_after
registers_after:
  .space 8 * 31

  .section .note.GNU-stack, "", %progbits
