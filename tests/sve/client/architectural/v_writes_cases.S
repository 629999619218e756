// Instructions that write a V register, and so clear the rest of the Z register, beside SVE
// instructions that read it. X1 is the address of 256 bytes of memory, and X2 holds 3. All vector
// registers and predicates hold arbitrary values.
//
// The loads of single structures and USHLL are left out, because QEMU 7.2 keeps the rest of the Z
// register there.

  .arch armv8.2-a+sve+crypto+fp16
#include "cases.inc"

// One instruction between two for SVE.
  .macro between instruction:vararg
  begin_case
  eor z29.d, z29.d, z28.d
  \instruction
  eor z28.d, z29.d, z28.d
  end_case "\instruction"
  .endm

  .globl v_write_cases, v_write_cases_end
v_write_cases:

// The vector_writes test has each kind of instruction. Here are some with each kind of operand: an
// immediate, general registers, memory, lists that wrap, parts of a register.
  between movi v0.2d, #0
  between fmov v3.d[1], x2
  between ldr s4, [x1, x2, lsl #2]
  between ldr q5, [x1], #16
  between ldp d6, d7, [x1, #16]!
  between mov v9.s[0], v10.s[3]
  between ld4 {v30.16b, v31.16b, v0.16b, v1.16b}, [x1]
  between ld4r {v31.2d, v0.2d, v1.2d, v2.2d}, [x1], x2
  between fmadd d18, d19, d20, d21
  between sqxtn2 v23.8h, v24.4s
  between sha1h s25, s26
  between aese v26.16b, v27.16b

// Instructions that write no V register
  between st2 {v0.16b, v1.16b}, [x1]
  between fmov x0, v1.d[1]
  between fcmp d0, d1

// In order: an SVE instruction before the write, one after it
  case "add z1.d, z0.d, z31.d; movi v0.2d, #0; add z2.d, z0.d, z31.d"
  case "movi v0.2d, #0; mov z1.d, z0.d; mov z0.d, z31.d; mov z2.d, z0.d"
  case "movi v0.2d, #0; movi v1.2d, #255; fmov d2, x2; mov z3.d, z0.d; mov z4.d, z1.d; mov z5.d, z2.d"
  case "dup z0.b, #7; movi v0.2d, #0; dup z0.b, #9; mov z1.d, z0.d"
  case "dup z0.b, #7; dup z1.b, #8; fadd s0, s1, s2; add z1.b, z0.b, z1.b; fmov s1, s0; add z0.b, z0.b, z1.b"
  case "ptrue p0.b; movi v0.2d, #0; mov z0.b, p0/m, w2"
  case "pfalse p0.b; movi v0.2d, #0; mov z0.b, p0/m, w2"
  case "movi v0.2d, #0; ptrue p0.b; st1b {z0.b}, p0, [x1]; ld1b {z1.b}, p0/z, [x1]"
  case "ptrue p0.s; ld1w {z0.s}, p0/z, [x1]; mov v0.s[1], w2; st1w {z0.s}, p0, [x1]; ld1w {z1.s}, p0/z, [x1]"
  case "insr z0.d, x2; fmov d0, d0; insr z0.d, x2"
  case "faddv s0, p0, z1.s; mov z1.d, z0.d; fmov s1, s0"
  case "rdvl x0, #1; movi v5.2d, #0; rdvl x0, #2"

// The flags and the general registers around a write stay
  case "cmp x2, #3; movi v0.2d, #0; mov z1.d, z0.d; cset x0, eq"
  case "adds x0, x2, x2; fmov d0, x0; ccmp x0, #6, #0, ne; mov z1.d, z0.d; cset x0, eq"
  case "mov x28, x2; fmov d0, x28; add x28, x28, #1; fmov d1, x28; mov z2.d, z0.d; mov z3.d, z1.d; mov x0, x28"
  case "mov x28, x1; ldr q0, [x28]; ldr q1, [x28], #16; mov z2.d, z0.d; sub x0, x28, x1"
  case "mov x26, x1; mov x27, x2; ldr q0, [x26, x27, lsl #4]; mov z2.d, z0.d; add x0, x27, x27"
  case "ldr q0, 3f; mov z1.d, z0.d; b 4f; 3: .quad 1, 2; 4:"
  case "mrs x0, fpsr; msr fpsr, xzr; movi v0.2d, #0; fdiv s1, s0, s0; mrs x0, fpsr; mov z2.d, z1.d; msr fpsr, xzr"

// Across blocks and branches
  case "movi v0.2d, #0; b 3f; 3: mov z1.d, z0.d"
  case "mov z1.d, z0.d; movi v0.2d, #0; cbz x2, 3f; mov z2.d, z0.d; 3: mov z3.d, z0.d"
  case "mov z1.d, z0.d; movi v0.2d, #0; cbnz x2, 3f; mov z2.d, z0.d; 3: mov z3.d, z0.d"
  case "cbz x2, 3f; movi v0.2d, #0; b 4f; 3: movi v1.2d, #0; 4: mov z2.d, z0.d; mov z3.d, z1.d"
  case "cbnz x2, 3f; movi v0.2d, #0; b 4f; 3: movi v1.2d, #0; 4: mov z2.d, z0.d; mov z3.d, z1.d"
  case "tbz x2, #1, 3f; fmov d4, d5; 3: tbnz x2, #0, 4f; fmov d5, d6; 4: mov z6.d, z4.d"
  case "cmp x2, #3; fmov d0, #1.0; b.ne 3f; mov z1.d, z0.d; fmov d0, #2.0; 3: mov z2.d, z0.d"
  case "mov x0, #5; 3: movi v0.2d, #0; subs x0, x0, #1; b.ne 3b; mov z1.d, z0.d"
  case "mov x0, #5; 3: add z0.d, z0.d, z1.d; fmov d1, x0; subs x0, x0, #1; b.ne 3b"
  case "mov x0, #300; 3: mov z1.d, z0.d; movi v0.2d, #0; mov z2.d, z0.d; dup z0.s, w0; sub x0, x0, #1; cbnz x0, 3b"
  case "mov x9, x30; bl 3f; mov z1.d, z0.d; b 4f; 3: movi v0.2d, #0; ret; 4: mov x30, x9"
  case "mov x9, x30; movi v0.2d, #0; bl 3f; movi v2.2d, #0; b 4f; 3: mov z1.d, z0.d; ret; 4: mov x30, x9; mov z3.d, z2.d"
  case "mov x9, x30; adr x0, 3f; movi v0.2d, #0; blr x0; mov x30, x9; b 4f; 3: mov z1.d, z0.d; fmov d1, d2; ret; 4: mov z3.d, z1.d; mov x0, #0"
  case "adr x0, 3f; movi v0.2d, #0; br x0; udf #1; 3: mov z1.d, z0.d; mov x0, #0"
  case "movi v0.2d, #0; .rept 200; add x0, x0, #1; .endr; mov z1.d, z0.d; mov x0, #0"
  case ".rept 70; fmov d0, d0; .endr; mov z1.d, z0.d"
  case ".rept 70; fmov d0, d1; mov z1.d, z0.d; .endr"

// A loop that stores if nothing came between. An exclusive store after it finds out.
  case "3: ldxr x0, [x1]; fmov d0, x0; stxr w3, x2, [x1]; cbnz w3, 3b; mov z1.d, z0.d; mov x0, x2"
  case "3: ldxr x0, [x1]; movi v0.2d, #0; add x0, x0, #1; stxr w3, x0, [x1]; cbnz w3, 3b; mov z1.d, z0.d; ldr x0, [x1]"

v_write_cases_end:

// --- Subroutines that the program calls by name ------------------------------------------------

  .macro subroutine name, instructions:vararg
  .text
  .globl \name
  .type \name, %function
\name:
  .irp instruction, \instructions
  \instruction
  .endr
  ret
  .endm

// X0 is an address that cannot be accessed.
  subroutine before_fault, "mov z2.d, z0.d", "movi v0.2d, #0", "ldr x3, [x0]", "mov z1.d, z0.d"
  subroutine fault_between, "movi v0.2d, #0", "ldr x3, [x0]", "movi v1.2d, #0", "mov z2.d, z1.d"
  subroutine faulting_v_load, "fmov d1, x0", "ldr q0, [x0]", "fmov d2, x0", "mov z3.d, z0.d"
  subroutine breakpoint_between, "movi v0.2d, #0", "brk #1", "movi v1.2d, #0", "mov z2.d, z1.d"

  subroutine writes_of_handler, "mov z21.d, z0.d", "movi v20.2d, #0", "mov z22.d, z20.d", "fmov d21, x0"

// X0 is a number of rounds. It comes back as the number of those that found Z0, Z1 or Z4 not 0 after
// a write of 0 to its V register, or Z2 changed.
  .globl count_wrong_rounds
  .type count_wrong_rounds, %function
count_wrong_rounds:
  mov x3, #0
  ptrue p0.b
  mov z3.d, z2.d
1:
  dup z0.b, #7
  dup z1.b, #8
  dup z4.b, #9
  movi v0.2d, #0
  mov z5.d, z0.d
  fmov d1, xzr
  mov x4, x0
  movi v4.2d, #0
  orr z5.d, z5.d, z1.d
  eor z6.d, z2.d, z3.d
  orr z5.d, z5.d, z6.d
  orr z5.d, z5.d, z4.d
  cmpne p1.b, p0/z, z5.b, #0
  cinc x3, x3, ne
  subs x0, x0, #1
  b.ne 1b
  mov x0, x3
  ret

  .section .note.GNU-stack, "", %progbits
