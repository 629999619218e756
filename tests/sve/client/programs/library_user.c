// Runs an SVE instruction of its own, and then one in a shared library.
#include <stdio.h>

__asm__(".arch_extension sve");

unsigned long vector_bytes(void);

int main(void) {
  unsigned long bytes;
  __asm__("cntb %0" : "=r"(bytes));
  fprintf(stderr, "own: %s\n", bytes >= 16 ? "done" : "wrong");
  fprintf(stderr, "library: %lu\n", vector_bytes());
  return 0;
}
