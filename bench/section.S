// HINT #120 begins a section and HINT #121 ends it.
    .text

    .globl  run_as_section
    .type   run_as_section, %function
run_as_section:
    stp     x29, x30, [sp, #-16]!
    mov     x29, sp
    mov     x9, x0
    mov     x0, x1
    mov     w1, w2
    hint    #120
    blr     x9
    hint    #121
    ldp     x29, x30, [sp], #16
    ret

    .globl  run_seven_instructions
    .type   run_seven_instructions, %function
run_seven_instructions:
    hint    #120
    mov     x9, #2              // 1 for this one, and 3 for each of two rounds of the loop
1:  nop
    subs    x9, x9, #1
    b.ne    1b
    hint    #121
    ret

    .section .note.GNU-stack, "", %progbits
