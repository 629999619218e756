// Executes 20 SVE instructions, of which 10 fault once. Each of these counts once: when it has run.
// A handler makes its page accessible.
        .arch   armv8.2-a+sve
        .globl  _start
_start:
        mov     x0, #11                 // SIGSEGV
        adr     x1, action
        mov     x2, #0
        mov     x3, #8
        mov     x8, #134                // rt_sigaction
        svc     #0
        mov     x0, #0
        mov     x1, #4096
        mov     x2, #0                  // PROT_NONE
        mov     x3, #0x22               // MAP_PRIVATE and MAP_ANONYMOUS
        mov     x4, #-1
        mov     x5, #0
        mov     x8, #222                // mmap
        svc     #0
        mov     x19, x0
        mov     x20, #10
next:
        mov     x0, x19
        mov     x1, #4096
        mov     x2, #0
        mov     x8, #226                // mprotect
        svc     #0
        ptrue   p0.b
        ld1b    {z0.b}, p0/z, [x19]
        subs    x20, x20, #1
        b.ne    next
        mov     x0, #0
        mov     x8, #93                 // exit
        svc     #0
handler:
        mov     x0, x19
        mov     x1, #4096
        mov     x2, #3                  // PROT_READ and PROT_WRITE
        mov     x8, #226
        svc     #0
        ret

        .balign 8
action: .quad   handler, 4, 0, 0        // SA_SIGINFO

        .section .note.GNU-stack, "", %progbits
