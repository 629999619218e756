// A system call of the application. A signal must be able to keep it from starting: if one arrives
// between the check of the attention word and the SVC, nothing else would notice it. The signal
// entry sends a thread that it finds there to application_call_not_started. If the kernel restarts
// a call after a handler, it goes back to the SVC, and so the thread is sent there, too.

  .text

// int64_t application_call(const uint64_t* x, const uint64_t* attention): takes X0 to X5 and X8
// from x. Returns the kernel's result, or call_not_started.
  .globl application_call
  .hidden application_call
  .type application_call, %function
  .balign 16
application_call:
  mov x9, x0
  mov x10, x1
  ldp x0, x1, [x9]
  ldp x2, x3, [x9, #16]
  ldp x4, x5, [x9, #32]
  ldr x8, [x9, #64]
  ldr x10, [x10]
  .globl application_call_checked
  .hidden application_call_checked
application_call_checked:
  cbnz x10, application_call_not_started
  svc #0
  .globl application_call_made
  .hidden application_call_made
application_call_made:
  ret
  .globl application_call_not_started
  .hidden application_call_not_started
application_call_not_started:
  mov x0, #-4096
  ret
  .size application_call, . - application_call

  .section .note.GNU-stack, "", %progbits
