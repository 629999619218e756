// Prints what a program finds when it starts, with every address replaced by what it means, so that
// the output is the same under the launcher and without it.
#include <elf.h>
#include <link.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>

extern char _start[];
extern char** environ;

static const char* first_argument;
static char zeros[1 << 20];
static char filled[5000] = {1, [4999] = 2};
static const char* const pointers[] = {"relocated", "pointers"};

static void show(const char* what, int holds) { printf("%s: %s\n", what, holds ? "yes" : "NO"); }

static const void* pointer(unsigned long value) {
  const void* result;
  memcpy(&result, &value, sizeof result);
  return result;
}

static const ElfW(auxv_t) * auxiliary_vector(void) {
  char** end = environ;
  while (*end != NULL) ++end;
  return (const ElfW(auxv_t)*)(end + 1);
}

// Programs that write their own title over the strings expect this.
static int stand_side_by_side(char** strings) {
  for (; strings[0] != NULL && strings[1] != NULL; ++strings) {
    if (strings[1] != strings[0] + strlen(strings[0]) + 1) return 0;
  }
  return 1;
}

// The sixteen bytes are not all zero, and do not overlap the strings behind them.
static int are_random_bytes(unsigned long address) {
  const unsigned long strings = (unsigned long)first_argument;
  return *(const unsigned long*)pointer(address) != 0 &&
         (address + 16 <= strings || address > strings);
}

static void show_auxiliary_entry(const ElfW(auxv_t) * entry) {
  const unsigned long value = entry->a_un.a_val;
  printf("auxiliary %lu ", entry->a_type);
  switch (entry->a_type) {
    case AT_PHDR: show("program headers", *(const unsigned*)pointer(value) <= PT_PHDR); break;
    case AT_ENTRY: show("is _start", value == (unsigned long)_start); break;
    case AT_BASE:
      show("is an ELF file or 0", value == 0 || memcmp(pointer(value), ELFMAG, 4) == 0);
      break;
    case AT_RANDOM: show("random bytes", are_random_bytes(value)); break;
    case AT_SYSINFO_EHDR: show("is an ELF file", memcmp(pointer(value), ELFMAG, 4) == 0); break;
    case AT_EXECFN:
    case AT_PLATFORM: printf("%s\n", (const char*)pointer(value)); break;
    default: printf("%lu\n", value); break;
  }
}

// Uses 64 KB for each level.
static int descend(int levels) {
  volatile char block[65536];
  block[0] = (char)levels;
  return levels == 0 ? 0 : descend(levels - 1) + (block[0] == (char)levels);
}

int main(int argc, char** argv, char** envp) {
  first_argument = argv[0];
  if (argc > 1 && strcmp(argv[1], "--overflow-stack") == 0) return descend(1 << 20);
  if (argc > 1 && strcmp(argv[1], "--random") == 0) {
    printf("%lx\n", *(const unsigned long*)pointer(getauxval(AT_RANDOM)));
    return 0;
  }
  printf("argc %d\n", argc);
  for (int i = 0; i < argc; ++i) printf("argument %s\n", argv[i]);
  show("argv ends in null", argv[argc] == NULL);
  for (char** variable = envp; *variable != NULL; ++variable) printf("environment %s\n", *variable);
  show("strings side by side", stand_side_by_side(argv) && stand_side_by_side(envp));
  show("environment behind them", envp[0] == argv[argc - 1] + strlen(argv[argc - 1]) + 1);
  const ElfW(auxv_t)* entry = auxiliary_vector();
  for (; entry->a_type != AT_NULL; ++entry) show_auxiliary_entry(entry);
  show("AT_NULL without a value", entry->a_un.a_val == 0);
  show("argc at 16 byte boundary", ((unsigned long)argv - 8) % 16 == 0);
  show("zeros are zero", zeros[0] == 0 && memcmp(zeros, zeros + 1, sizeof zeros - 1) == 0);
  show("data is there", filled[0] == 1 && filled[4998] == 0 && filled[4999] == 2);
  printf("%s %s\n", pointers[0], pointers[1]);
  void* const block = malloc(16 << 20);
  show("memory can be allocated", block != NULL && memset(block, 1, 16 << 20) == block);
  free(block);
  printf("stack of %d levels\n", descend(100));
  return 42;
}
