// Loads and stores the whole vector state: 32 Z registers, 16 predicates and the FFR.

  .arch armv8.2-a+sve
  .text

// void hold_vectors(const void* in, void* out, const volatile int* go_on): loads the state, waits
// while *go_on is not 0, and stores the state.
  .globl hold_vectors
  .type hold_vectors, %function
hold_vectors:
  stp d8, d9, [sp, #-64]!
  stp d10, d11, [sp, #16]
  stp d12, d13, [sp, #32]
  stp d14, d15, [sp, #48]
  addvl x3, x0, #16
  addvl x3, x3, #16
  ldr p0, [x3, #16, mul vl]
  wrffr p0.b
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  ldr z\n, [x0, #\n, mul vl]
  .endr
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
  ldr p\n, [x3, #\n, mul vl]
  .endr
1:
  ldr w4, [x2]
  cbnz w4, 1b
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  str z\n, [x1, #\n, mul vl]
  .endr
  addvl x3, x1, #16
  addvl x3, x3, #16
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
  str p\n, [x3, #\n, mul vl]
  .endr
  rdffr p0.b
  str p0, [x3, #16, mul vl]
  ldp d14, d15, [sp, #48]
  ldp d12, d13, [sp, #32]
  ldp d10, d11, [sp, #16]
  ldp d8, d9, [sp], #64
  ret

  .section .note.GNU-stack, "", %progbits
