// Switches between C++ and the code cache. X28 points at the thread's context throughout.
//
// To its caller, enter_cache is an ordinary function. It returns when the cache is left. In the
// cache all registers but X28 are the application's, including TPIDR_EL0 and SP. The registers that
// a C++ caller expects to be preserved wait on the host stack, at CONTEXT_HOST_SP.

#include "host/translation/context_offsets.h"

  .text

// void enter_cache(thread_context* context, const void* code)
//
// Once all other registers are the application's, only X28 is left to jump with. So the code at
// every entry begins by loading X28 again.
  .globl enter_cache
  .hidden enter_cache
  .type enter_cache, %function
  .balign 16
enter_cache:
  stp x29, x30, [sp, #-176]!
  stp x19, x20, [sp, #16]
  stp x21, x22, [sp, #32]
  stp x23, x24, [sp, #48]
  stp x25, x26, [sp, #64]
  stp x27, x28, [sp, #80]
  stp d8, d9, [sp, #96]
  stp d10, d11, [sp, #112]
  stp d12, d13, [sp, #128]
  stp d14, d15, [sp, #144]
  mrs x9, fpcr
  str x9, [sp, #160]
  mov x28, x0
  str x1, [x28, #CONTEXT_ENTRY]
  mov x9, sp
  str x9, [x28, #CONTEXT_HOST_SP]
  .globl enter_cache_prepared
  .hidden enter_cache_prepared
enter_cache_prepared:
  ldr x9, [x28, #CONTEXT_ATTENTION]
  cbnz x9, leave_cache_at_once
  add x9, x28, #CONTEXT_Q
  ldp q0, q1, [x9], #32
  ldp q2, q3, [x9], #32
  ldp q4, q5, [x9], #32
  ldp q6, q7, [x9], #32
  ldp q8, q9, [x9], #32
  ldp q10, q11, [x9], #32
  ldp q12, q13, [x9], #32
  ldp q14, q15, [x9], #32
  ldp q16, q17, [x9], #32
  ldp q18, q19, [x9], #32
  ldp q20, q21, [x9], #32
  ldp q22, q23, [x9], #32
  ldp q24, q25, [x9], #32
  ldp q26, q27, [x9], #32
  ldp q28, q29, [x9], #32
  ldp q30, q31, [x9]
  ldr x9, [x28, #CONTEXT_FPCR]
  msr fpcr, x9
  ldr x9, [x28, #CONTEXT_FPSR]
  msr fpsr, x9
  ldr x9, [x28, #CONTEXT_NZCV]
  msr nzcv, x9
  ldr x9, [x28, #CONTEXT_SP]
  ldr x10, [x28, #CONTEXT_TPIDR]
  msr tpidr_el0, x10
  mov sp, x9
  ldp x0, x1, [x28]
  ldp x2, x3, [x28, #16]
  ldp x4, x5, [x28, #32]
  ldp x6, x7, [x28, #48]
  ldp x8, x9, [x28, #64]
  ldp x10, x11, [x28, #80]
  ldp x12, x13, [x28, #96]
  ldp x14, x15, [x28, #112]
  ldp x16, x17, [x28, #128]
  ldp x18, x19, [x28, #144]
  ldp x20, x21, [x28, #160]
  ldp x22, x23, [x28, #176]
  ldp x24, x25, [x28, #192]
  ldp x26, x27, [x28, #208]
  ldp x29, x30, [x28, #232]
  ldr x28, [x28, #CONTEXT_ENTRY]
  br x28
  .globl enter_cache_end
  .hidden enter_cache_end
enter_cache_end:
  .size enter_cache, . - enter_cache

// Reached from the cache. The application's X0 and X30 are at home, and X30 points at the address
// of an exit record.
  .globl leave_cache_with_record
  .hidden leave_cache_with_record
  .type leave_cache_with_record, %function
  .balign 16
leave_cache_with_record:
  ldr x0, [x30]
  str x0, [x28, #CONTEXT_EXIT]
  stp x1, x2, [x28, #8]
  stp x3, x4, [x28, #24]
  stp x5, x6, [x28, #40]
  stp x7, x8, [x28, #56]
  stp x9, x10, [x28, #72]
  stp x11, x12, [x28, #88]
  stp x13, x14, [x28, #104]
  stp x15, x16, [x28, #120]
  stp x17, x18, [x28, #136]
  stp x19, x20, [x28, #152]
  stp x21, x22, [x28, #168]
  stp x23, x24, [x28, #184]
  stp x25, x26, [x28, #200]
  str x27, [x28, #216]
  str x29, [x28, #232]
  mov x9, sp
  str x9, [x28, #CONTEXT_SP]
  mrs x9, nzcv
  str x9, [x28, #CONTEXT_NZCV]
  mrs x9, fpcr
  str x9, [x28, #CONTEXT_FPCR]
  mrs x9, fpsr
  str x9, [x28, #CONTEXT_FPSR]
  mrs x9, tpidr_el0
  str x9, [x28, #CONTEXT_TPIDR]
  ldr x9, [x28, #CONTEXT_HOST_TPIDR]
  msr tpidr_el0, x9
  add x9, x28, #CONTEXT_Q
  stp q0, q1, [x9], #32
  stp q2, q3, [x9], #32
  stp q4, q5, [x9], #32
  stp q6, q7, [x9], #32
  stp q8, q9, [x9], #32
  stp q10, q11, [x9], #32
  stp q12, q13, [x9], #32
  stp q14, q15, [x9], #32
  stp q16, q17, [x9], #32
  stp q18, q19, [x9], #32
  stp q20, q21, [x9], #32
  stp q22, q23, [x9], #32
  stp q24, q25, [x9], #32
  stp q26, q27, [x9], #32
  stp q28, q29, [x9], #32
  stp q30, q31, [x9]
  b leave_cache
  .size leave_cache_with_record, . - leave_cache_with_record

// Returns to the caller of enter_cache. Needs only X28 and the host's TPIDR_EL0: the signal entry
// sends a thread here once it has taken care of the thread's state.
  .globl leave_cache
  .hidden leave_cache
  .type leave_cache, %function
leave_cache_at_once:
  adrp x9, interrupted_record
  add x9, x9, :lo12:interrupted_record
  str x9, [x28, #CONTEXT_EXIT]
leave_cache:
  ldr x9, [x28, #CONTEXT_HOST_SP]
  mov sp, x9
  ldr x9, [sp, #160]
  msr fpcr, x9
  ldp d14, d15, [sp, #144]
  ldp d12, d13, [sp, #128]
  ldp d10, d11, [sp, #112]
  ldp d8, d9, [sp, #96]
  ldp x27, x28, [sp, #80]
  ldp x25, x26, [sp, #64]
  ldp x23, x24, [sp, #48]
  ldp x21, x22, [sp, #32]
  ldp x19, x20, [sp, #16]
  ldp x29, x30, [sp], #176
  ret
  .size leave_cache, . - leave_cache

// Reached from the cache by BLR. Calls the function in X9 with the arguments in X0 to X7, on the
// host stack and with the host's TPIDR_EL0. FPCR and FPSR are not touched. X19 holds the return
// address. The callee preserves X19 and X28, as the procedure call standard demands.
  .globl call_client
  .hidden call_client
  .type call_client, %function
  .balign 16
call_client:
  mov x19, x30
  mov x10, sp
  str x10, [x28, #CONTEXT_SP]
  mrs x10, tpidr_el0
  str x10, [x28, #CONTEXT_TPIDR]
  ldr x10, [x28, #CONTEXT_HOST_TPIDR]
  msr tpidr_el0, x10
  ldr x10, [x28, #CONTEXT_HOST_SP]
  mov sp, x10
  blr x9
  ldr x10, [x28, #CONTEXT_ATTENTION]
  .globl call_client_checked
  .hidden call_client_checked
call_client_checked:
  cbnz x10, 2f
1:
  ldr x10, [x28, #CONTEXT_SP]
  mov sp, x10
  ldr x10, [x28, #CONTEXT_TPIDR]
  msr tpidr_el0, x10
  br x19
  .globl call_client_end
  .hidden call_client_end
call_client_end:
2:
  mov x0, x28
  mov x1, x19
  bl leave_after_call
  b 1b
  .size call_client, . - call_client

// void leave_call(thread_context* context)
//
// Called on the host stack, below an inserted call. Leaves that call and the cache. The context is
// complete.
  .globl leave_call
  .hidden leave_call
  .type leave_call, %function
leave_call:
  mov x28, x0
  b leave_cache_at_once
  .size leave_call, . - leave_call

  .section .note.GNU-stack, "", %progbits
