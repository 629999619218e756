// Runs every instruction of x28_cases.S from a known state, and prints what it changed.
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>

#include "tests/host/programs/run_case.h"

struct test_case {
  const void* code;
  uint64_t kind;  // 1: X28 holds an address
  const char* text;
};

extern const struct test_case x28_cases[];
extern const struct test_case x28_cases_end[];

// At a fixed address, so that addresses in the output are the same in every run.
static void* const memory_at = (void*)0x20000000;
enum { memory_bytes = 65536, words_in_memory = memory_bytes / 8 };

static uint64_t seed = 1;

static uint64_t next_random(void) {
  seed = seed * 6364136223846793005u + 1442695040888963407u;
  return seed ^ seed >> 29;
}

static void fill(uint64_t* words, int count) {
  for (int i = 0; i < count; i++) words[i] = next_random();
}

static void prepare(const struct test_case* c, struct machine* state, uint64_t* memory) {
  seed = 1;
  fill((uint64_t*)state, sizeof *state / 8);
  fill(memory, words_in_memory);
  state->x[1] = 8;
  state->x[2] = 3;
  state->x[27] = (uintptr_t)memory_at + 0x2000;
  state->x[28] = c->kind == 1 ? (uintptr_t)memory_at + 0x4000 : 24;
  state->nzcv = 0x60000000;
  state->fpsr = 0x08000000;
  state->fpcr = 0x01c00000;
}

static void print_changes(const struct machine* before, const struct machine* after) {
  const uint64_t* old = (const uint64_t*)before;
  const uint64_t* new = (const uint64_t*)after;
  for (unsigned i = 0; i < offsetof(struct machine, tpidr) / 8; i++) {
    if (old[i] != new[i]) printf("  %u: %016lx -> %016lx\n", i, old[i], new[i]);
  }
}

int main(void) {
  uint64_t* memory = mmap(memory_at, memory_bytes, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
  static uint64_t saved[words_in_memory];
  int count = 0;
  for (const struct test_case* c = x28_cases; c != x28_cases_end; c++, count++) {
    struct machine before, after;
    prepare(c, &before, memory);
    memcpy(saved, memory, sizeof saved);
    after = before;
    run_case(c->code, &after);
    printf("%s\n", c->text);
    print_changes(&before, &after);
    if (strstr(c->text, "tpidr") != NULL) printf("  tpidr %lx\n", after.tpidr);
    for (int i = 0; i < words_in_memory; i++) {
      if (memory[i] != saved[i]) printf("  [%x]: %016lx\n", i * 8, memory[i]);
    }
  }
  printf("%d instructions\n", count);
  return 0;
}
