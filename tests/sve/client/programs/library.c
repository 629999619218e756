// A shared library with an SVE instruction. The client does not emulate it there.
__asm__(".arch_extension sve");

unsigned long vector_bytes(void);

unsigned long vector_bytes(void) {
  unsigned long bytes;
  __asm__("cntb %0" : "=r"(bytes));
  return bytes;
}
