// Runs one instruction word, given in hexadecimal, and continues. The word is in generated code,
// which is outside of any module.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>

enum { page = 65536, ret = (int)0xd65f03c0 };

int main(int argc, char* argv[]) {
  if (argc != 2) return 2;
  uint32_t* code = mmap(NULL, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (code == MAP_FAILED) return 2;
  code[0] = (uint32_t)strtoul(argv[1], NULL, 16);
  code[1] = (uint32_t)ret;
  if (mprotect(code, page, PROT_READ | PROT_EXEC) != 0) return 2;
  __builtin___clear_cache((char*)code, (char*)(code + 2));

  register void* x0 __asm__("x0") = NULL;
  __asm__ volatile("blr %1" : "+r"(x0) : "r"(code) : "x30", "memory", "cc");
  printf("x0 is %lu\n", (unsigned long)x0);
  return 0;
}
