// X26, X27, X28 and SP as sources, destinations and bases of SVE instructions; all other registers
// left alone; flags passed on. Ends with status 0, or with the number of the check that failed.
        .arch   armv8.2-a+sve

        .macro  adr_l to, label
        adrp    \to, \label
        add     \to, \to, :lo12:\label
        .endm

        .macro  check number, left, right
        cmp     \left, \right
        mov     x0, #\number
        b.ne    exit
        .endm

        .macro  element number, to, from, expected
        umov    \to, \from
        check   \number, \to, \expected
        .endm

// X0 to X30 but X1, Q0 to Q31, NZCV, FPCR and FPSR to values of their own. SP to `image`.
        .macro  fill
        adr_l   x0, vectors
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
        ldr     q\n, [x0, #16 * \n]
        .endr
        mov     x0, #0xa0000000
        msr     nzcv, x0
        mov     x0, #0x03c00000
        msr     fpcr, x0
        mov     w0, #0x0000001f
        msr     fpsr, x0
        adr_l   x0, image
        mov     sp, x0
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30
        movz    x\n, #\n + 0x100, lsl #48
        movk    x\n, #\n + 0x200
        .endr
        .endm

// All that `fill` set, to memory at SP.
        .macro  dump
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30
        str     x\n, [sp, #8 * \n]
        .endr
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31
        str     q\n, [sp, #512 + 16 * \n]
        .endr
        .set    place, 1024
        .irp    register, nzcv, fpcr, fpsr
        mrs     x0, \register
        str     x0, [sp, #place]
        .set    place, place + 8
        .endr
        .endm

        .bss
        .balign 16
image:  .skip   1056
before: .skip   1056

        .data
bytes:  .fill   256, 1, 7
        .balign 16
vectors:
        .set    value, 1
        .rept   128
        .word   value
        .set    value, (value * 5 + 0x3039) & 0xffffffff
        .endr

        .text
        .globl  _start
_start:
        cntb    x20                             // bytes of a vector
        mov     x19, sp

// Destinations.
        cntb    x26
        check   1, x26, x20
        rdvl    x27, #1
        check   2, x27, x20
        addvl   x28, sp, #0
        check   3, x28, x19
        addvl   sp, sp, #-2
        mov     x21, sp
        sub     x22, x19, x20, lsl #1
        check   4, x21, x22
        addvl   sp, sp, #1
        mov     x21, sp
        add     x22, x22, x20
        check   5, x21, x22

// Both source and destination.
        .irp    n, 26, 27, 28
        mov     x\n, #1000 + \n
        incb    x\n
        sub     x\n, x\n, x20
        check   \n, x\n, #1000 + \n
        .endr

// Sources: 1026, 1029 in the first elements, then 9 in all.
        mov     x27, #3
        index   z0.d, x26, x27
        element 9, x21, v0.d[0], #1026
        element 10, x21, v0.d[1], #1029
        mov     x28, #9
        dup     z1.d, x28
        element 11, x21, v1.d[1], #9
        mov     x26, #5
        whilelt p0.b, x26, x28                  // 4 elements
        cntp    x27, p0, p0.b
        check   12, x27, #4

// Bases and indexes; what is stored by one is loaded by the next.
        ptrue   p0.b
        adr_l   x26, bytes
        ld1b    z2.b, p0/z, [x26]
        element 13, w21, v2.b[15], #7
        dup     z2.b, #1
        st1b    z2.b, p0, [sp]
        mov     x27, sp
        ld1b    z3.b, p0/z, [x27]
        element 14, w21, v3.b[15], #1
        mov     x28, #1
        add     x27, x26, x28
        dup     z2.b, #2
        st1b    z2.b, p0, [x26, x28]
        ldrb    w21, [x26]
        check   15, x21, #7
        ldr     z4, [x27]
        element 16, w21, v4.b[15], #2
        mov     x28, sp
        str     z4, [x28]
        mov     x27, #0
        ld1b    z5.b, p0/z, [sp, x27]
        element 17, w21, v5.b[0], #2
        movi    v5.16b, #3
        str     z5, [sp]
        ldrb    w21, [sp, #15]
        check   20, x21, #3

// Flags: the first element is active.
        whilelt p1.b, x27, x20
        cset    x21, mi
        check   18, x21, #1

// An instruction that names none of them changes no other register, and no flag.
        fill
        dump
        adr_l   x1, before
        mov     x2, #1056
1:      subs    x2, x2, #8
        ldr     x3, [sp, x2]
        str     x3, [x1, x2]
        b.ne    1b
        fill
        ptrue   p5.h
        dump
        adr_l   x1, before
        mov     x2, #1056
2:      sub     x2, x2, #8
        ldr     x3, [sp, x2]
        ldr     x4, [x1, x2]
        check   19, x3, x4
        cbnz    x2, 2b

        mov     x0, #0
exit:   mov     x8, #93
        svc     #0
