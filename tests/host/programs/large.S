// Four thousand functions in a chain of calls through a table, run three times: more blocks than
// any table of the translator holds at first.
  .text
  .globl main
main:
  stp x29, x30, [sp, #-32]!
  stp x19, x28, [sp, #16]
  mov x0, #0
  mov w19, #3
1:
  adrp x28, functions
  add x28, x28, :lo12:functions
2:
  ldr x1, [x28], #8
  cbz x1, 3f
  blr x1
  b 2b
3:
  subs w19, w19, #1
  b.ne 1b
  mov x1, x0
  adrp x0, format
  add x0, x0, :lo12:format
  bl printf
  mov w0, #0
  ldp x19, x28, [sp, #16]
  ldp x29, x30, [sp], #32
  ret

  .macro function index
  .pushsection .data.rel.ro.functions, "aw"
  .quad 4f
  .popsection
4:
  eor x0, x0, x0, lsl #1
  tbz x0, #(\index & 31), 5f
  add x0, x0, #(\index & 4095)
5:
  add x0, x0, #1
  ret
  .endm

  .section .data.rel.ro.functions, "aw"
  .balign 8
functions:
  .text
  .set index, 0
  .rept 4000
  function index
  .set index, index + 1
  .endr
  .section .data.rel.ro.functions, "aw"
  .quad 0
  .section .rodata
format:
  .asciz "%lx\n"
  .section .note.GNU-stack, "", %progbits
