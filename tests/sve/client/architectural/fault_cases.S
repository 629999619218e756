// SVE loads and stores at the edge of a page that cannot be accessed. Each case is a subroutine with
// a setup and the load or store. A table has the addresses of both, and their text.
//
// X0 is the edge: the address of the page. X3 holds 3. P1 is true, and so is P2 but for its first bit.
// All other vector registers and predicates hold arbitrary values. X8 to X30 hold their
// number plus 100, but X28 is SP.

  .arch armv8.2-a+sve

// SP becomes the edge, and its own value again.
  .macro set_sp
  adrp x5, sp_of_case
  mov x6, sp
  str x6, [x5, #:lo12:sp_of_case]
  mov sp, x0
  mov x6, #0
  .endm
  .macro reset_sp
  adrp x5, sp_of_case
  ldr x6, [x5, #:lo12:sp_of_case]
  mov sp, x6
  .endm
  .local sp_of_case
  .comm sp_of_case, 8, 8

  .macro case setup, instruction, after=nop
  .text
  .balign 8
1: str x30, [sp, #-16]!
  ptrue p1.b
  pfalse p2.b
  ptrue p3.d, vl1
  not p2.b, p1/z, p3.b
  \setup
  .irp n, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 29, 30
  mov x\n, #100 + \n
  .endr
  mov x28, sp
  cmp x3, #4
2: \instruction
  \after
  ldr x30, [sp], #16
  ret
  .section .rodata.texts, "a"
3: .asciz "\setup; \instruction"
  .section .data.rel.ro.cases, "aw"
  .quad 1b, 2b, 3b
  .endm

  .section .data.rel.ro.cases, "aw"
  .balign 8
  .globl fault_cases, fault_cases_end
fault_cases:

// Contiguous: on the page, up to it, across the edge, and with inactive elements at either side
  case "nop", "ld1b {z3.b}, p1/z, [x0]"
  case "nop", "ld1b {z3.b}, p2/z, [x0, x3]"
  case "sub x5, x0, #8", "ld1b {z3.b}, p2/z, [x5]"
  case "sub x5, x0, #2", "ld1sb {z3.s}, p1/z, [x5, #0, mul vl]"
  case "sub x5, x0, #6", "ld1sh {z3.d}, p1/z, [x5, x3, lsl #1]"
  case "rdvl x5, #1; sub x5, x0, x5", "ld1w {z3.s}, p1/z, [x5, #1, mul vl]"
  case "sub x5, x0, #8", "ld1d {z3.d}, p1/z, [x5]"
  case "sub x5, x0, #8; ptrue p1.d, vl1", "ld1d {z3.d}, p1/z, [x5]"
  case "pfalse p1.b", "ld1d {z3.d}, p1/z, [x0]"
  case "nop", "ldnt1w {z3.s}, p1/z, [x0, #0, mul vl]"
  case "set_sp", "ld1d {z3.d}, p1/z, [sp]", "reset_sp"

// Replicating
  case "nop", "ld1rb {z3.b}, p1/z, [x0]"
  case "sub x5, x0, #8", "ld1rd {z3.d}, p1/z, [x5, #8]"
  case "pfalse p1.b", "ld1rd {z3.d}, p1/z, [x0]"
  case "nop", "ld1rqb {z3.b}, p1/z, [x0]"
  case "sub x5, x0, #8", "ld1rqd {z3.d}, p1/z, [x5]"
  case "sub x5, x0, #8; ptrue p1.d, vl1", "ld1rqd {z3.d}, p1/z, [x5]"

// Structures
  case "nop", "ld2b {z3.b, z4.b}, p1/z, [x0]"
  case "sub x5, x0, #16", "ld2d {z31.d, z0.d}, p1/z, [x5]"
  case "sub x5, x0, #12", "ld3w {z30.s, z31.s, z0.s}, p1/z, [x5]"
  case "nop", "ld4b {z3.b, z4.b, z5.b, z6.b}, p2/z, [x0]"
  case "nop", "st2h {z3.h, z4.h}, p1, [x0]"
  case "sub x5, x0, #16", "st2d {z31.d, z0.d}, p1, [x5]"
  case "sub x5, x0, #4", "st4b {z3.b, z4.b, z5.b, z6.b}, p1, [x5]"

// Whole registers
  case "nop", "ldr z3, [x0]"
  case "rdvl x5, #1; sub x5, x0, x5", "ldr z3, [x5, #1, mul vl]"
  case "nop", "ldr p3, [x0]"
  case "nop", "ldr p1, [x0]"
  case "set_sp", "ldr z3, [sp]", "reset_sp"
// In QEMU, a load that faults in the middle of a register has changed the first part of it. Here it
// loads what is there already.
  case "sub x5, x0, #32; ptrue p1.b, vl32; ld1b {z3.b}, p1/z, [x5]", "ldr z3, [x5]"
  case "sub x5, x0, #4", "ldr p3, [x5]"
  case "sub x5, x0, #32", "str z3, [x5]"
  case "sub x5, x0, #4", "str p3, [x5]"
  case "nop", "str z3, [x0]"
  case "nop", "str p3, [x0]"

// First-fault loads whose first active element is on the page; first_fault.c has all forms
  case "setffr", "ldff1b {z3.b}, p1/z, [x0]"
  case "sub x5, x0, #6; setffr", "ldff1h {z3.h}, p1/z, [x5, x3, lsl #1]"
  case "index z4.d, #0, #1; setffr", "ldff1w {z4.d}, p1/z, [x0, z4.d, lsl #2]"
  case "index z4.s, w0, #4; setffr", "ldff1b {z4.s}, p1/z, [z4.s, #3]"

// Gathers: the elements alternate between both pages, or only some or the last are on the page
  case "index z4.d, #0, #8", "ld1d {z3.d}, p1/z, [x0, z4.d]"
  case "index z4.d, #-8, #8", "ld1d {z4.d}, p1/z, [x0, z4.d]"
  case "index z4.d, #-1, #1", "ld1sh {z4.d}, p1/z, [x0, z4.d, lsl #1]"
  case "index z4.d, #-1, #1", "ld1w {z3.d}, p1/z, [x0, z4.d, lsl #2]"
  case "index z4.d, #0, #1; sub x0, x0, #8", "ld1d {z3.d}, p1/z, [x0, z4.d, uxtw #3]"
  case "index z4.s, #-1, #1", "ld1w {z4.s}, p1/z, [x0, z4.s, sxtw #2]"
  case "index z4.s, #0, #1; sub x0, x0, #4", "ld1h {z4.s}, p1/z, [x0, z4.s, uxtw #1]"
  case "sub x5, x0, #8; index z4.d, x5, #8", "ld1d {z3.d}, p1/z, [z4.d]"
  case "sub x5, x0, #24; index z4.d, x5, #8", "ld1b {z4.d}, p1/z, [z4.d, #16]"
  case "sub x5, x0, #8; index z4.s, w5, #4", "ld1sh {z4.s}, p1/z, [z4.s, #4]"
  case "sub x5, x0, #8; index z4.d, x5, #8; ptrue p1.d, vl1", "ld1d {z4.d}, p1/z, [z4.d]"

// Stores and scatters
  case "nop", "st1b {z3.b}, p1, [x0]"
  case "sub x5, x0, #8", "st1b {z3.b}, p2, [x5]"
  case "sub x5, x0, #8", "st1w {z3.s}, p1, [x5]"
  case "sub x5, x0, #8; ptrue p1.d, vl1", "st1d {z3.d}, p1, [x5]"
  case "rdvl x5, #1; sub x5, x0, x5", "st1d {z3.d}, p1, [x5, #1, mul vl]"
  case "nop", "stnt1d {z3.d}, p1, [x0, #0, mul vl]"
  case "index z4.d, #-8, #8", "st1d {z4.d}, p1, [x0, z4.d]"
  case "index z4.d, #-1, #1", "st1h {z3.d}, p1, [x0, z4.d, lsl #1]"
  case "index z4.s, #0, #1; sub x0, x0, #8", "st1w {z3.s}, p1, [x0, z4.s, uxtw #2]"
  case "sub x5, x0, #8; index z4.d, x5, #8", "st1d {z3.d}, p1, [z4.d]"
  case "sub x5, x0, #8; index z4.s, w5, #4", "st1w {z4.s}, p1, [z4.s, #4]"

// Prefetches never fault
  case "nop", "prfb pldl1keep, p1, [x0]"
  case "index z4.d, x0, #8", "prfd pldl1keep, p1, [z4.d]"

fault_cases_end:

// The handler changes registers in the frame of these. Of a store, the first element faults: how many
// elements a processor has stored when a later one faults is its own choice.
  .globl changed_cases, changed_cases_end
changed_cases:
  case "index z4.d, #-1, #1", "ld1w {z3.s}, p1/z, [x0]"
  case "index z4.d, #-8, #8", "ld1d {z4.d}, p1/z, [x0, z4.d]"
  case "index z4.d, #0, #8", "ld3d {z3.d, z4.d, z5.d}, p1/z, [x0]"
  case "index z4.d, #-8, #8; setffr", "ldff1d {z3.d}, p1/z, [x0, xzr]"
  case "index z4.d, #0, #1", "ldr z3, [x0]"
  case "index z4.d, #-8, #8", "st1d {z4.d}, p1, [x0]"
  case "index z4.d, #0, #1", "st1d {z31.d}, p1, [x0, z4.d, lsl #3]"
  case "index z4.d, #0, #1", "ld1d {z4.d}, p1/z, [x0, x4, lsl #3]"
changed_cases_end:

  .section .note.GNU-stack, "", %progbits
