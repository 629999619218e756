// Code that raises a signal while the thread has live SVE state, and while it has none, because a
// system call came before.
//
// X0 is the process's number, and X1 SIGUSR1. X2 is an address that cannot be accessed. X4 points to
// a byte that becomes 1 when a timer's signal has come. X5 is X4 if the case waits for that.

  .arch armv8.2-a+sve
#include "cases.inc"

  .globl frame_cases, frame_cases_end
frame_cases:
  case "brk #1"
  case "brk #1; brk #1"
  case "mov x8, #172; svc #0"
  case "mov x8, #172; svc #0; brk #1"
  case "mov x8, #172; svc #0; rdvl x3, #1; brk #1"
  case "mov x8, #172; svc #0; ptrue p1.b; brk #1; brk #1"
  case "mov x8, #129; svc #0"
  case "mov x8, #129; svc #0; brk #1"
  case "ldr x3, [x2]"
  case "ldr z3, [x2]"
  case "mov x8, #172; svc #0; ldr x3, [x2]"
  case "mov x8, #172; svc #0; ldr z3, [x2]"
  case "3: ldrb w3, [x4]; cbz w3, 3b"
  case "mov x8, #172; svc #0; 3: ldrb w3, [x4]; cbz w3, 3b"
frame_cases_end:

// The handler stores the vectors that it has at its start, if it is told to.
  .text
  .globl frame_handler
  .type frame_handler, %function
frame_handler:
  adrp x9, vectors_of_handler
  ldr x9, [x9, #:lo12:vectors_of_handler]
  cbz x9, handle
  stp x29, x30, [sp, #-32]!
  stp x0, x2, [sp, #16]
  mov x0, x9
  bl store_vectors
  ldp x0, x2, [sp, #16]
  ldp x29, x30, [sp], #32
  b handle

  .section .note.GNU-stack, "", %progbits
