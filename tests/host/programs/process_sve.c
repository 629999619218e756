// Checks what a program learns about SVE in all the places where it may ask.
//
// process_sve LENGTH [again|inherited]: LENGTH is the length of a vector in bytes, or 0 for a
// processor without SVE. The status is the number of wrong answers. With `again` the program
// executes itself for a second round. With `inherited` it has been executed by a program that had
// set PR_SVE_VL_INHERIT.
#include <errno.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <sys/prctl.h>
#include <unistd.h>

static int wrong;

static void expect(const char* what, long seen, long wanted) {
  if (seen == wanted) return;
  printf("%s: %ld instead of %ld\n", what, seen, wanted);
  wrong++;
}

// Whether all processors have the feature. The emulator's own file lists no features; the answer
// is then `otherwise`.
static int has_feature(int otherwise) {
  char line[1024];
  int lines = 0, found = 0;
  FILE* file = fopen("/proc/cpuinfo", "r");
  while (fgets(line, sizeof line, file) != NULL) {
    line[strcspn(line, "\n")] = ' ';
    if (strncmp(line, "Features", 8) != 0) continue;
    lines++;
    found += strstr(line, " sve ") != NULL;
  }
  fclose(file);
  return lines == 0 ? otherwise : found == lines;
}

// The kernel emulates the instruction, and shows the features that all processors have.
static unsigned long identification(void) {
  unsigned long features;
  __asm__("mrs %0, id_aa64pfr0_el1" : "=r"(features));
  return features;
}

static long set_length(unsigned long argument) {
  const int result = prctl(PR_SVE_SET_VL, argument);
  return result < 0 ? -errno : result;
}

static void* get_length(void* length) {
  *(int*)length = prctl(PR_SVE_GET_VL);
  return NULL;
}

// The processor has a single vector length. It never changes, whatever the program asks for.
static void check_lengths(long length, int is_inherited) {
  const struct {
    unsigned long argument;
    long result;
  } table[] = {
      {16, length},
      {8192, length},
      {8208, -EINVAL},
      {24, -EINVAL},
      {0, -EINVAL},
      {32 | PR_SVE_SET_VL_ONEXEC, length},
      {16 | 1u << 19, -EINVAL},
      {16 | PR_SVE_VL_INHERIT, length | PR_SVE_VL_INHERIT},
  };
  const long flag = is_inherited ? PR_SVE_VL_INHERIT : 0;
  expect("length", prctl(PR_SVE_GET_VL), length | flag);
  expect("length for the next exec", set_length(32 | PR_SVE_SET_VL_ONEXEC | PR_SVE_VL_INHERIT),
         length | PR_SVE_VL_INHERIT);
  for (unsigned i = 0; i < sizeof table / sizeof table[0]; i++) {
    expect("PR_SVE_SET_VL", set_length(table[i].argument), table[i].result);
  }
  pthread_t thread;
  int in_thread = 0;
  pthread_create(&thread, NULL, get_length, &in_thread);
  pthread_join(thread, NULL);
  expect("length in a thread", in_thread, length | PR_SVE_VL_INHERIT);
}

int main(int argc, char** argv) {
  if (argc < 2) return 100;
  const long length = strtol(argv[1], NULL, 10);
  const int there = length != 0;
  expect("AT_HWCAP", (getauxval(AT_HWCAP) & HWCAP_SVE) != 0, there);
  expect("AT_HWCAP2", (getauxval(AT_HWCAP2) & HWCAP2_SVE2) != 0, 0);
  expect("ID_AA64PFR0_EL1", (long)(identification() >> 32 & 15), there);
  expect("/proc/cpuinfo", has_feature(there), there);
  if (there) {
    check_lengths(length, argc > 2 && strcmp(argv[2], "inherited") == 0);
  } else {
    expect("PR_SVE_GET_VL", prctl(PR_SVE_GET_VL), -1);
  }
  if (argc > 2 && wrong == 0 && strcmp(argv[2], "again") == 0) {
    return execl("/proc/self/exe", argv[0], argv[1], there ? "inherited" : NULL, NULL);
  }
  return wrong;
}
