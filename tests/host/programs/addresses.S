// Everything that computes from its own address, and the branches that take register targets or
// name X28. Runs without a C library: prints one letter for each check, '!' if it fails.

  .arch armv8.2-a
  .text
  .globl _start
_start:
  mov x19, #0 // failures
  adrp x20, output
  add x20, x20, :lo12:output

  .macro expect letter, cond
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
  cmp x0, x28
  expect 'a', eq
  adrp x1, table
  adrp x28, table
  cmp x1, x28
  expect 'b', eq
  adr x2, table
  add x1, x1, :lo12:table
  cmp x1, x2
  expect 'c', eq

// Literals of every kind
  ldr x0, =0x123456789abcdef0
  ldr x28, =0x123456789abcdef0
  cmp x0, x28
  expect 'd', eq
  ldrsw x28, negative
  cmn x28, #2
  expect 'e', eq
  ldr w28, negative
  add x28, x28, #2
  lsr x28, x28, #32
  cmp x28, #1
  expect 'f', eq
  ldr q28, vector
  mov x0, v28.d[1]
  cmp x0, #77
  expect 'g', eq
  ldr d28, vector
  fmov x0, d28
  cmp x0, #66
  expect 'h', eq
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
  cmp x28, #0
  expect 'j', ne

// Calls and returns through registers; the link register holds application addresses
  adr x28, callee
  blr x28
5:
  adr x1, 5b
  cmp x0, x1
  expect 'k', eq
  adr x30, callee
  blr x30
6:
  adr x1, 6b
  cmp x0, x1
  expect 'l', eq
  bl callee
7:
  adr x1, 7b
  cmp x0, x1
  expect 'm', eq
  adr x28, 8f
  ret x28
  b fail
8:
  adr x28, 9f
  br x28
  b fail
9:
  cmp xzr, xzr
  expect 'n', eq

// X0 to X3 and X30 survive a lookup in the cache
  mov x21, #3
10:
  mov x0, #100
  mov x1, #101
  mov x2, #102
  mov x3, #103
  adr x4, 11f
  br x4
11:
  sub x0, x0, #100
  sub x1, x1, #101
  sub x2, x2, #102
  sub x3, x3, #103
  orr x0, x0, x1
  orr x0, x0, x2
  orr x0, x0, x3
  cbnz x0, fail
  subs x21, x21, #1
  b.ne 10b
  expect 'o', eq

// Exclusives: a lock-free increment and a pair, with X28 among the registers
  adr x0, counter_address
  ldr x0, [x0]
  mov x21, #1000
12:
  ldaxr x28, [x0]
  add x28, x28, #1
  stlxr w1, x28, [x0]
  cbnz w1, 12b
  subs x21, x21, #1
  b.ne 12b
  ldr x1, [x0]
  cmp x1, #1000
  expect 'p', eq
13:
  ldxp x1, x28, [x0]
  stxp w2, x28, x1, [x0]
  cbnz w2, 13b
  ldr x1, [x0, #8]
  cmp x1, #1000
  expect 'q', eq

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
  .balign 8
counter_address:
  .quad counter
  .ltorg

  .bss
  .balign 16
counter:
  .skip 16
output:
  .skip 64

  .section .note.GNU-stack, "", %progbits
