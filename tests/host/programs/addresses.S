// Everything that computes from its own address, and the branches that take register targets or
// name X28. Runs without a C library: prints one letter for each check, '!' if it fails.

  .arch armv8.2-a
  .text
  .globl _start
_start:
  mov x19, #0 // failures
  adrp x20, output
  add x20, x20, :lo12:output

  .macro expect letter, cond, left=, right=
  .ifnb \left
  cmp \left, \right
  .endif
  mov w9, #\letter
  mov w10, #33 // '!'
  csel w9, w9, w10, \cond
  csinc x19, x19, x19, \cond
  strb w9, [x20], #1
  .endm

// ADR and ADRP, of X28 too
1:
  adr x0, 1b
  adr x28, 1b
  expect 'a', eq, x0, x28
  adrp x1, table
  adrp x28, table
  expect 'b', eq, x1, x28
  adr x2, table
  add x1, x1, :lo12:table
  expect 'c', eq, x1, x2

// Literals of every kind
  ldr x0, =0x123456789abcdef0
  ldr x28, =0x123456789abcdef0
  expect 'd', eq, x0, x28
  ldrsw x28, negative
  cmn x28, #2
  expect 'e', eq
  ldr w28, negative
  add x28, x28, #2
  lsr x28, x28, #32
  expect 'f', eq, x28, #1
  ldr q28, vector
  mov x0, v28.d[1]
  expect 'g', eq, x0, #77
  ldr d28, vector
  fmov x0, d28
  expect 'h', eq, x0, #66
  prfm pldl1keep, vector
  ldr xzr, vector

// Flags live across rewritten instructions
  cmp xzr, xzr
  adr x28, table
  ldr x0, vector
  mov x28, #1
  b.eq 2f
  b fail
2:
  expect 'i', eq

// Conditional branches on X28, both ways
  mov x28, #0
  cbz x28, 3f
  b fail
3:
  cbnz w28, fail
  mov x28, #1 << 45
  tbz x28, #45, fail
  tbnz x28, #45, 4f
  b fail
4:
  expect 'j', ne, x28, #0

// Calls and returns through registers; the link register holds application addresses
  adr x28, callee
  blr x28
5:
  adr x1, 5b
  expect 'k', eq, x0, x1
  adr x30, callee
  blr x30
6:
  adr x1, 6b
  expect 'l', eq, x0, x1
  bl callee
7:
  adr x1, 7b
  expect 'm', eq, x0, x1
  adr x28, 8f
  ret x28
  b fail
8:
  adr x28, 9f
  br x28
  b fail
9:
  expect 'n', eq, xzr, xzr

// X0 to X3 and X30 survive a lookup in the cache
  mov x21, #3
10:
  .irp n, 0, 1, 2, 3
  mov x\n, #100 + \n
  .endr
  adr x4, 11f
  br x4
11:
  .irp n, 0, 1, 2, 3
  sub x\n, x\n, #100 + \n
  cbnz x\n, fail
  .endr
  subs x21, x21, #1
  b.ne 10b
  expect 'o', eq

// Exclusives: a lock-free increment and a pair, with X28 among the registers
  ldr x0, =counter
  mov x21, #1000
12:
  ldaxr x28, [x0]
  add x28, x28, #1
  stlxr w1, x28, [x0]
  cbnz w1, 12b
  subs x21, x21, #1
  b.ne 12b
  ldr x1, [x0]
  expect 'p', eq, x1, #1000
13:
  ldxp x1, x28, [x0]
  stxp w2, x28, x1, [x0]
  cbnz w2, 13b
  ldr x1, [x0, #8]
  expect 'q', eq, x1, #1000

// The stack below SP stays untouched
  mov x0, #0x5a5a
  str x0, [sp, #-8]
  str x0, [sp, #-128]
  adr x28, 14f
  br x28
14:
  add x28, x28, x28
  ldr x1, [sp, #-8]
  ldr x2, [sp, #-128]
  cmp x1, x0
  ccmp x2, x0, #0, eq
  expect 'r', eq

  mov w9, #'\n'
  strb w9, [x20], #1
  mov x0, #1
  adrp x1, output
  add x1, x1, :lo12:output
  sub x2, x20, x1
  mov x8, #64 // write
  svc #0
  mov x0, x19
  mov x8, #93 // exit
  svc #0

fail:
  mov x0, #99
  mov x8, #94 // exit_group
  svc #0

callee:
  mov x0, x30
  ret

  .balign 16
vector:
  .quad 66, 77
table:
  .quad 1
negative:
  .word -2
  .ltorg

  .bss
  .balign 16
counter:
  .skip 16
output:
  .skip 64

  .section .note.GNU-stack, "", %progbits
