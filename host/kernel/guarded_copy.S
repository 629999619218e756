// Copies between the application's memory and the host's when the application's address may be
// wrong. If a load or store here faults, the signal entry ends the copy.

  .text

// int guarded_copy(void* to, const void* from, size_t bytes): returns 0, or 1 after a fault.
  .globl guarded_copy
  .hidden guarded_copy
  .type guarded_copy, %function
  .balign 16
guarded_copy:
1:
  cmp x2, #16
  b.lo 2f
  ldp x3, x4, [x1], #16
  stp x3, x4, [x0], #16
  sub x2, x2, #16
  b 1b
2:
  cbz x2, 3f
  ldrb w3, [x1], #1
  strb w3, [x0], #1
  sub x2, x2, #1
  b 2b
3:
  mov x0, #0
  ret
  .globl guarded_copy_failed
  .hidden guarded_copy_failed
guarded_copy_failed:
  mov x0, #1
  ret
  .size guarded_copy, . - guarded_copy

  .section .note.GNU-stack, "", %progbits
