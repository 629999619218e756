// One call runs a thousand blocks once each: blocks of 2 instructions, or blocks of 16.
    .text

    .globl  run_short_blocks
    .type   run_short_blocks, %function
run_short_blocks:
    .rept 1000
    add     x0, x0, #1
    b       .+4
    .endr
    ret

    .globl  run_long_blocks
    .type   run_long_blocks, %function
run_long_blocks:
    .rept 1000
    .rept 15
    add     x0, x0, #1
    .endr
    b       .+4
    .endr
    ret

    .section .note.GNU-stack, "", %progbits
