// The break, mappings, and code that comes and goes at run time. With the argument `generate`, the
// program generates far more code than any cache holds, and prints whether it grows
// meanwhile.
#define _GNU_SOURCE
#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

typedef long (*function)(long);

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

static long call(void* code, long argument) {
  function f;
  memcpy(&f, &code, sizeof f);
  return f(argument);
}

static long mapped_anew(void) {
  long sum = 0;
  for (int i = 0; i < 50; i++) {
    uint32_t* code = mmap((void*)0x30000000, 4096, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    write_function(code, i);
    mprotect(code, 4096, PROT_READ | PROT_EXEC);
    sum += call(code, 0);
    munmap(code, 4096);
  }
  return sum;
}

static long moved(void) {
  uint32_t* code =
      mmap(NULL, 8192, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  write_function(code, 11);
  write_function(code + 1024, 22);
  long sum = call(code, 0) + call(code + 1024, 0);
  mremap(code + 1024, 4096, 4096, MREMAP_MAYMOVE | MREMAP_FIXED, code);
  return sum + call(code, 0);
}

// Adds `step` to its argument in each of 64 blocks.
static void write_blocks(uint32_t* code, uint32_t step) {
  for (int i = 0; i < 64; i++) {
    *code++ = 0x91000000 | step << 10;  // add x0, x0, #step
    *code++ = 0x14000001;               // b .+4
  }
  *code++ = 0xd65f03c0;  // ret
}

static long generate(uint32_t* code) {
  long sum = 0;
  for (int i = 0; i < 6000; i++) {
    write_blocks(code, (uint32_t)i % 4096);
    __builtin___clear_cache((char*)code, (char*)code + 4096);
    sum += call(code, i);
  }
  return sum;
}

static long resident_bytes(void) {
  char line[128] = "";
  FILE* file = fopen("/proc/self/statm", "r");
  char* const all_pages = fgets(line, sizeof line, file);
  fclose(file);
  if (all_pages == NULL) return -1;
  char* resident = NULL;
  strtol(all_pages, &resident, 10);
  return strtol(resident, NULL, 10) * sysconf(_SC_PAGESIZE);
}

static int generate_without_growing(void) {
  uint32_t* code =
      mmap(NULL, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  printf("%ld\n", generate(code));
  const long before = resident_bytes();
  printf("%ld\n", generate(code));
  const long grown = resident_bytes() - before;
  printf("grown by less than 4 MB: %d\n", before > 0 && grown < 4 << 20);
  fprintf(stderr, "%ld bytes before, %ld more now\n", before, grown);
  return 0;
}

int main(int argc, char** argv) {
  (void)argv;
  if (argc > 1 && strcmp(argv[1], "generate") == 0) return generate_without_growing();
  move_break();
  printf("mapped again %ld\n", mapped_anew());
  printf("moved %ld\n", moved());
  return 0;
}
