// vfork. No C++ function can call it: the child goes on in the frame that made the call, on the
// same stack, while the parent waits in the kernel. So the child must not return into frames that
// the parent still has to return through.

  .text

// int64_t start_suspended(uint64_t flags, uint64_t parent_tid, uint64_t child_tid,
//                         void (*run)(void*), void* argument)
//
// Creates a child that calls run(argument), which must not return. Returns only in the parent: the
// child's number or a negative error number. The child works below this frame, and everything that
// the parent needs lies above.
  .globl start_suspended
  .hidden start_suspended
  .type start_suspended, %function
  .balign 16
start_suspended:
  stp x29, x30, [sp, #-16]!
  mov x9, x3
  mov x10, x4
  mov x4, x2
  mov x2, x1
  mov x1, #0  // the same stack
  mov x3, #0
  mov x8, #220  // clone
  svc #0
  cbz x0, 1f
  ldp x29, x30, [sp], #16
  ret
1:
  mov x0, x10
  blr x9
  brk #1
  .size start_suspended, . - start_suspended

  .section .note.GNU-stack, "", %progbits
