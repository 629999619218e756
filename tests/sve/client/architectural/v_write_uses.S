// What a program may do with Z0 after it has written V0. X0 is the address of 256 bytes of memory.

  .arch armv8.2-a+sve
#include "cases.inc"

  .macro use name, text
  begin_case
  ptrue p0.b
  ptrue p1.d, vl2
  ptrue p2.d, vl4
  dup z0.b, #1
  dup z1.b, #2
  \text
  end_case \name
  .endm

  .globl v_write_uses, v_write_uses_end
v_write_uses:

// All of Z0 matters.
  use copied, "movi v0.2d, #0; mov z1.d, z0.d"
  use added_to, "fmov d0, x0; add z0.d, z0.d, z1.d"
  use merged_into, "movi v0.2d, #0; mov z0.b, p0/m, w0"
  use merged_into_first_elements_and_copied, "movi v0.2d, #0; ptrue p1.d, vl2; mov z0.d, p1/m, x0; mov z1.d, z0.d"
  use stored, "ldr q0, [x0]; st1d {z0.d}, p0, [x0]"
  use stored_as_register, "ldr q0, [x0]; str z0, [x0]"
  use of_four_elements, "ldr q0, [x0]; st1d {z0.d}, p2, [x0]"
  use of_another_ptrue, "movi v0.2d, #0; ptrue p1.b; st1d {z0.d}, p1, [x0]"
  use written_in_part, "mov v0.s[1], w0; faddv s1, p0, z0.s"
  use of_list, "ldp q0, q1, [x0]; st2d {z31.d, z0.d}, p0, [x0]"
  use in_another_block, "movi v0.2d, #0; cbz x0, 3f; b 3f; 3: mov z1.d, z0.d"
  use after_another_write, "movi v0.2d, #0; mov z1.b, #5; add z1.b, z1.b, z0.b"
  use of_another_block_s_predicate, "b 3f; 3: movi v0.2d, #0; st1d {z0.d}, p1, [x0]"

// The rest of Z0 does not matter.
  use not_read, "movi v0.2d, #0; add z1.d, z1.d, z1.d"
  use written, "movi v0.2d, #0; mov z0.d, z1.d; mov z1.d, z0.d"
  use loaded, "movi v0.2d, #0; ld1b {z0.b}, p0/z, [x0]; mov z1.d, z0.d"
  use as_scalar, "fmov d0, #1.0; fadda d0, p0, d0, z1.d"
  use inserted, "fmov d0, #1.0; insr z1.d, d0"
  use first_element_copied, "fmov d0, #1.0; mov z1.d, d0"
  use last_element_of_16_bytes_copied, "movi v0.4s, #1; dup z1.s, z0.s[3]"
  use of_two_elements, "movi v0.2d, #0; ptrue p1.d, vl2; st1d {z0.d}, p1, [x0]"
  use zeroed_but_for_first_elements, "movi v0.2d, #0; ptrue p1.d, vl2; ld1d {z0.d}, p1/z, [x0]; mov z1.d, z0.d"
  use read_as_v, "movi v0.2d, #0; mov v1.16b, v0.16b; str q0, [x0]"

v_write_uses_end:

  .section .note.GNU-stack, "", %progbits
