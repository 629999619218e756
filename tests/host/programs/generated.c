// Generates far more code than any cache holds, and prints whether the process grows meanwhile.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

enum { blocks = 64, words = 2 * blocks + 1, rounds = 6000 };

typedef long (*function)(long);

// Adds `step` to its argument in each of its blocks.
static void generate(uint32_t* code, uint32_t step) {
  for (int i = 0; i < blocks; i++) {
    *code++ = 0x91000000 | step << 10;  // add x0, x0, #step
    *code++ = 0x14000001;               // b .+4
  }
  *code++ = 0xd65f03c0;  // ret
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

static long run_rounds(uint32_t* code, int count) {
  long sum = 0;
  for (int i = 0; i < count; i++) {
    generate(code, (uint32_t)i % 4096);
    __builtin___clear_cache((char*)code, (char*)(code + words));
    function f;
    memcpy(&f, &code, sizeof f);
    sum += f(i);
  }
  return sum;
}

int main(void) {
  uint32_t* code =
      mmap(NULL, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  printf("%ld\n", run_rounds(code, rounds));
  const long before = resident_bytes();
  printf("%ld\n", run_rounds(code, rounds));
  const long grown = resident_bytes() - before;
  printf("grown by less than 4 MB: %d\n", before > 0 && grown < 4 << 20);
  fprintf(stderr, "%ld bytes before, %ld more now\n", before, grown);
  return 0;
}
