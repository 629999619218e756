// The break, mappings, and code that comes and goes at run time.
#define _GNU_SOURCE
#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

typedef int (*function)(void);

// Prints nothing until the end: the C library would allocate memory at the break for it.
static void move_break(void) {
  char* start = sbrk(0);
  const int grown = sbrk(3 << 20) == start;
  memset(start, 0xaa, 3 << 20);
  const int shrunk = brk(start + 100) == 0;
  const int grown_again = brk(start + (1 << 20)) == 0;
  const int zero = start[1 << 19] == 0;
  errno = 0;
  const int refused = brk(start + (1ull << 60)) == -1 && errno == ENOMEM;
  const int far = (intptr_t)sbrk(400 << 20) != -1 || errno == ENOMEM;
  brk(start);
  printf("break %d%d%d%d%d%d\n", grown, shrunk, grown_again, zero, refused, far);
}

// Writes "return value".
static void write_function(uint32_t* code, int value) {
  code[0] = 0x52800000 | (uint32_t)value << 5;  // mov w0, #value
  code[1] = 0xd65f03c0;                         // ret
}

static int call(void* code) {
  function f;
  memcpy(&f, &code, sizeof f);
  return f();
}

static int mapped_anew(void) {
  int sum = 0;
  for (int i = 0; i < 50; i++) {
    uint32_t* code = mmap((void*)0x30000000, 4096, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    write_function(code, i);
    mprotect(code, 4096, PROT_READ | PROT_EXEC);
    sum += call(code);
    munmap(code, 4096);
  }
  return sum;
}

static int moved(void) {
  uint32_t* code =
      mmap(NULL, 8192, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  write_function(code, 11);
  write_function(code + 1024, 22);
  int sum = call(code) + call(code + 1024);
  mremap(code + 1024, 4096, 4096, MREMAP_MAYMOVE | MREMAP_FIXED, code);
  return sum + call(code);
}

int main(void) {
  move_break();
  printf("mapped again %d\n", mapped_anew());
  printf("moved %d\n", moved());
  return 0;
}
