// 201 SVE instructions executed, and 7 others in its three blocks: each block is entered by a jump
// or by falling through behind one, so that none is a part of another.
        .arch   armv8.2-a+sve
        .globl  _start
_start:
        mov     x0, #100
        b       loop
loop:
        add     z0.s, z0.s, z1.s
        incw    x1
        subs    x0, x0, #1
        b.ne    loop
        ptrue   p0.b
        mov     x8, #93
        mov     x0, #0
        svc     #0
