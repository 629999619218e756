// void run_load(const void* code, struct load_state* state): runs one load from the state, which
// first_fault.c declares, and stores what it leaves.

  .arch armv8.2-a+sve
  .text
  .globl run_load
  .type run_load, %function
run_load:
  stp x29, x30, [sp, #-32]!
  str x1, [sp, #16]
  mov x3, x0
  add x4, x1, #16
  ldr p0, [x4]
  wrffr p0.b
  add x5, x1, #48
  ldr p1, [x5]
  add x6, x1, #80
  ldr z3, [x6]
  add x7, x1, #336
  ldr z4, [x7]
  ldp x1, x2, [x1]
  blr x3
  ldr x1, [sp, #16]
  add x6, x1, #80
  str z3, [x6]
  add x7, x1, #336
  str z4, [x7]
  add x4, x1, #16
  rdffr p0.b
  str p0, [x4]
  ldp x29, x30, [sp], #32
  ret

  .section .note.GNU-stack, "", %progbits
