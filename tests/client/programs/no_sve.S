// No SVE instruction, and 5 others.
        .globl  _start
_start:
        b       last
        nop
last:   movi    v0.16b, #1
        mov     x8, #93
        mov     x0, #0
        svc     #0
