// Executes 201 SVE instructions, and has 7 others in its three blocks. Each block is entered by a
// jump or directly after one, so that no block is part of another.
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
