// Runs one instruction on the processor itself, from a given machine state.
//
// While the instruction runs, every general register belongs to the state under test, and so do SP,
// the vector registers and the predicates. The way back needs no free register: the stub that holds
// the instruction branches here. TPIDR_EL0, which no SVE instruction touches, then holds X0 while
// X0 becomes the address of the image that takes the other registers.
//
// A stub, entered with X0 = the image before:
//     ldp  x0, x1, [x0]
//     the instruction
//     b    native_return

    .arch armv8.2-a+sve
    .text

    .set context_sp, 0
    .set context_tpidr, 8
    .set context_fpcr, 16
    .set context_after, 24

    .set image_sp, 248
    .set image_nzcv, 256
    .set image_fpsr, 264
    .set image_fpcr, 268
    .set image_z, 272

    .macro each_z instruction
    .irp n, 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31
    \instruction z\n, [x5, #\n, mul vl]
    .endr
    .endm

    .macro each_p instruction
    .irp n, 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15
    \instruction p\n, [x6, #\n, mul vl]
    .endr
    .endm

    // x6 = address of the predicates, computed from x5 = address of the vectors
    .macro predicates_behind_vectors
    addvl x6, x5, #31
    addvl x6, x6, #1
    .endm

    .macro pairs instruction
    .irp n, 2,4,6,8,10,12,14,16,18,20,22,24,26,28
    pair_at \instruction, \n, %(\n + 1)
    .endr
    .endm

    .altmacro
    .macro pair_at instruction, n, next
    \instruction x\n, x\next, [x0, #8 * \n]
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

    // reg = address of native_context
    .macro context_address reg
    adrp \reg, native_context
    add \reg, \reg, :lo12:native_context
    .endm

// void run_natively(const machine_image* before, machine_image* after, const void* stub)
    .global run_natively
    .type run_natively, %function
run_natively:
    stp x29, x30, [sp, #-160]!
    callee_saved stp
    context_address x3
    mov x4, sp
    str x4, [x3, #context_sp]
    mrs x4, tpidr_el0
    str x4, [x3, #context_tpidr]
    mrs x4, fpcr
    str x4, [x3, #context_fpcr]
    str x1, [x3, #context_after]

    add x5, x0, #image_z
    predicates_behind_vectors
    each_z ldr
    ldr p0, [x6, #16, mul vl]
    wrffr p0.b
    each_p ldr
    ldr x7, [x0, #image_nzcv]
    msr nzcv, x7
    ldr w7, [x0, #image_fpsr]
    ldr w8, [x0, #image_fpcr]
    msr fpsr, x7
    msr fpcr, x8
    ldr x7, [x0, #image_sp]
    mov sp, x7
    mov x1, x2
    pairs ldp
    ldr x30, [x0, #240]
    br x1

    .global native_return
native_return:
    msr tpidr_el0, x0
    context_address x0
    ldr x0, [x0, #context_after]
    str x1, [x0, #8]
    pairs stp
    str x30, [x0, #240]
    mrs x1, tpidr_el0
    str x1, [x0]
    mov x1, sp
    str x1, [x0, #image_sp]
    mrs x1, nzcv
    str x1, [x0, #image_nzcv]
    mrs x1, fpsr
    mrs x2, fpcr
    str w1, [x0, #image_fpsr]
    str w2, [x0, #image_fpcr]
    add x5, x0, #image_z
    predicates_behind_vectors
    each_z str
    each_p str
    rdffr p0.b
    str p0, [x6, #16, mul vl]

// The way out. The signal handler also continues here after an instruction that raised a signal.
    .global native_leave
native_leave:
    context_address x3
    ldr x4, [x3, #context_sp]
    mov sp, x4
    ldr x4, [x3, #context_tpidr]
    msr tpidr_el0, x4
    ldr x4, [x3, #context_fpcr]
    msr fpcr, x4
    callee_saved ldp
    ldp x29, x30, [sp], #160
    ret
    .size run_natively, . - run_natively

    .section .note.GNU-stack, "", %progbits
