// Instructions that name X28 in every way that the table of register fields allows. Each is a
// subroutine, and a table has their addresses, kinds and texts. Most name X28 only once: where an
// instruction reads or writes it twice, one of the two can hide a fault in the other.
//
// value: X28 holds 24 before the instruction. address: X28 holds the address of memory. In both,
// X27 holds another address, X1 holds 8, X2 holds 3, and all other registers hold arbitrary values.
//
// For SVE, the emulating client also uses X26 and X27 itself, and passes SP on in its own way.

  .arch armv8.5-a+memtag+crypto+sha3+crc+lse+sve
  .arch_extension fp16

  .macro case kind, before, after, instruction:vararg
  .text
  .balign 8
  .long 0xe7f000f0 // not executed
  .long 0xe7f000f0
1: \before
  \instruction
  \after
  ret
  .section .rodata.texts, "a"
2: .asciz "\instruction"
  .section .data.rel.ro.cases, "aw"
  .quad 1b, \kind, 2b
  .endm

  .macro value instruction:vararg
  case 0, nop, nop, \instruction
  .endm
  .macro address instruction:vararg
  case 1, nop, nop, \instruction
  .endm
  .macro exclusive instruction:vararg
  case 0, "ldxr x7, [x27]", nop, \instruction
  .endm
  .macro exclusive_pair instruction:vararg
  case 0, "ldxp x7, x8, [x27]", nop, \instruction
  .endm

  .macro all_active
  ptrue p0.b
  dup z2.b, #5
  .endm
  .macro sve kind, instruction:vararg
  case \kind, all_active, nop, \instruction
  .endm
// The instruction finds X27's value in SP, and X27 receives SP afterwards.
  .macro sve_of_sp instruction:vararg
  case 0, "all_active; mov x0, sp; mov sp, x27", "mov x27, sp; mov sp, x0; mov x0, #0", \instruction
  .endm

  .section .data.rel.ro.cases, "aw"
  .balign 8
  .globl x28_cases, x28_cases_end
x28_cases:

// Data processing, immediate
  value add x0, x28, #5
  value add x28, x1, #1, lsl #12
  value addg x28, x1, #16, #2
  value ands w0, w28, #8
  value orr x28, xzr, #0x7f
  value movk x28, #0x1234, lsl #16
  value movz x28, #7, lsl #48
  value bfi x28, x1, #4, #8
  value bfxil w1, w28, #3, #2
  value sbfx x28, x28, #1, #5
  value extr x28, x28, x2, #9

// System
  value mrs x28, nzcv
  value msr tpidr_el0, x28
  address dc zva, x28

// Loads and stores of vector structures
  address ld1 {v28.16b}, [x28]
  address ld3 {v26.4s, v27.4s, v28.4s}, [x28], #48
  value ld1 {v28.2d}, [x27], x28
  address ld1 {v28.s}[2], [x28]
  address st2 {v28.h, v29.h}[3], [x28], #4
  value ld4r {v25.4s, v26.4s, v27.4s, v28.4s}, [x27], x28

// Memory tags
  address stg x28, [x28]
  address ldg x28, [x27]
  address st2g x1, [x28], #32

// Exclusive, ordered, compare and swap
  address ldxr x0, [x28]
  value ldaxrb w28, [x27]
  exclusive stxr w28, x1, [x27]
  exclusive stlxr w0, x28, [x27]
  address ldxp x0, x2, [x28]
  value ldaxp x28, x0, [x27]
  value ldxp w0, w28, [x27]
  exclusive_pair stxp w28, x0, x1, [x27]
  exclusive_pair stlxp w0, x28, x1, [x27]
  exclusive_pair stxp w0, x2, x28, [x27]
  value stlrb w28, [x27]
  value ldar x28, [x27]
  value cas x28, x0, [x27]
  value casal w0, w28, [x27]
  address casb w0, w1, [x28]
  value casp x28, x29, x0, x1, [x27]
  value casp x0, x1, x28, x29, [x27]
  address caspal w2, w3, w4, w5, [x28]
  value casp w28, w29, w28, w29, [x27]
  address ldapur x28, [x28, #8]
  address stlur w1, [x28, #-4]
  value stlurh w28, [x27, #2]

// Pairs
  value stp x1, x28, [x27, #-16]
  address stp x0, x1, [x28, #16]!
  value stp w28, w28, [x27], #8
  value ldp x0, x28, [x27], #16
  address ldp w0, w1, [x28], #-8
  value ldpsw x28, x2, [x27, #4]
  address ldnp x0, x1, [x28, #32]
  value stgp x28, x1, [x27]
  address ldp q27, q28, [x28]
  address stp d28, d29, [x28, #-16]!

// Single registers
  address prfm pldl1keep, [x28]
  address prfm pldl1keep, [x28, x1]
  value prfm pstl1strm, [x27, x28]
  address prfum pldl2keep, [x28, #-3]
  value strb w28, [x27, #3]
  address strh w1, [x28, #6]
  value ldrsb w28, [x27, #1]
  address ldrh w0, [x28, #8]
  address stur x1, [x28, #-7]
  value sttr w28, [x27, #4]
  address ldur x28, [x28, #-7]
  address str x1, [x28, #8]!
  value str x28, [x27], #-8
  address ldr x1, [x28, #-8]!
  value ldrsb x28, [x27], #5
  address str x1, [x28, x1]
  value strb w1, [x27, w28, uxtw]
  address ldr x1, [x28, x1, lsl #3]
  value str x28, [x27, x2]
  value ldr x28, [x27, x28, lsl #3]
  value ldset x28, x28, [x27]
  address ldapr x28, [x28]
  address ldr q28, [x28, #16]
  address ldur d28, [x28, #-3]
  address str s28, [x28], #4
  value ldr q28, [x27, x28]
  address str d28, [x28, w1, uxtw #3]

// Data processing, register
  value xpaci x28
  value rev16 w28, w1
  value clz x0, x28
  value lslv w28, w28, w2
  value rorv x0, x1, x28
  value bics w0, w28, w1
  value mvn x28, x28
  value add x28, x1, x28, asr #2
  value rmif x28, #3, #15
  value setf8 w28
  value adc x28, x28, x1
  value ccmp x28, x1, #4, ne
  value ccmn w1, w28, #2, eq
  value ccmp x28, #24, #8, al
  value csel x28, x1, x28, cs
  value csneg w0, w28, w1, gt
  value smaddl x28, w28, w1, x2

// Floating point and general registers
  value fcvtzs x28, d28
  value scvtf d28, x28
  value fcvtas x28, s28
  value fmov x28, d28
  value fmov d28, x28
  value fjcvtzs w28, d28
  value fcvtzu x28, d28, #7
  value scvtf s28, w28, #5
  value fadd d28, d28, d1
  value fmadd d28, d28, d28, d28

// Vectors and general registers
  value dup v28.4s, w28
  value mov v28.h[5], w28
  value smov x28, v28.b[3]
  value umov w28, v28.h[2]
  value add v28.4s, v28.4s, v28.4s
  value add d28, d28, d28
  value sha512su0 v28.2d, v28.2d

// SVE
  value cntb x26
  value rdvl x27, #1
  sve_of_sp addvl x28, sp, #1
  sve_of_sp addvl sp, sp, #-2
  .irp n, 26, 27, 28
  value incb x\n
  .endr
  value index z0.d, x26, x27
  value dup z1.d, x28
  value whilelt p0.b, x26, x28
  value whilelt p0.b, x28, x27
  case 0, "whilelt p0.b, x2, x28", nop, cntp x26, p0, p0.b
  sve 0, ld1b {z3.b}, p0/z, [x27]
  sve 1, st1b {z2.b}, p0, [x28]
  sve 0, st1b {z2.b}, p0, [x27, x28]
  case 1, "add x26, x28, #16", nop, ldr z4, [x26]
  sve 1, str z2, [x28]
  sve_of_sp ld1b {z5.b}, p0/z, [sp, x28]
  sve_of_sp st1b {z2.b}, p0, [sp]
  value add z3.b, z4.b, z5.b
  value ptrue p5.h

  .section .data.rel.ro.cases, "aw"
x28_cases_end:
  .quad 0

  .section .note.GNU-stack, "", %progbits
