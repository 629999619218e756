// Loads and stores the whole vector state around a piece of code.

  .arch armv8.2-a+sve
  .text

  .globl read_vector_length
  .type read_vector_length, %function
read_vector_length:
  rdvl x0, #1
  ret

  .macro all_z instruction
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
  \instruction z\n, [x9, #\n, mul vl]
  .endr
  .endm
  .macro all_p instruction
  .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
  \instruction p\n, [x10, #\n, mul vl]
  .endr
  .endm

  .macro callee_saved instruction
  \instruction x19, x20, [sp, #16]
  \instruction x21, x22, [sp, #32]
  \instruction x23, x24, [sp, #48]
  \instruction x25, x26, [sp, #64]
  \instruction x27, x28, [sp, #80]
  \instruction d8, d9, [sp, #96]
  \instruction d10, d11, [sp, #112]
  \instruction d12, d13, [sp, #128]
  \instruction d14, d15, [sp, #144]
  .endm

// void store_vectors(struct vectors* out)
  .globl store_vectors
  .type store_vectors, %function
store_vectors:
  mov x9, x0
  addvl x10, x9, #16
  addvl x10, x10, #16
  all_z str
  all_p str
  rdffr p0.b
  str p0, [x10, #16, mul vl]
  ldr p0, [x10]
  ret

// void run_code(const void* code, const struct vectors* in, struct vectors* out,
//               struct general_registers* registers)
  .globl run_code
  .type run_code, %function
run_code:
  stp x29, x30, [sp, #-176]!
  callee_saved stp
  stp x2, x3, [sp, #160]
  mov x8, x0
  mov x9, x1
  addvl x10, x1, #16
  addvl x10, x10, #16
  ldr p0, [x10, #16, mul vl]
  wrffr p0.b
  all_z ldr
  all_p ldr
  ldr x9, [x3, #64]
  msr nzcv, x9
  ldp x0, x1, [x3]
  ldp x4, x5, [x3, #32]
  ldp x6, x7, [x3, #48]
  ldp x2, x3, [x3, #16]
  blr x8
  ldp x9, x8, [sp, #160]
  stp x0, x1, [x8]
  stp x2, x3, [x8, #16]
  stp x4, x5, [x8, #32]
  stp x6, x7, [x8, #48]
  mrs x0, nzcv
  str x0, [x8, #64]
  mov x0, x9
  bl store_vectors
  callee_saved ldp
  ldp x29, x30, [sp], #176
  ret

  .section .note.GNU-stack, "", %progbits
