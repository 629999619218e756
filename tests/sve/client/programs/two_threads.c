// Two threads at the same code, each with vectors, predicates and an FFR of its own; a new thread
// inherits none of them. Ends with status 0 if that is so.
#include <pthread.h>
#include <stdio.h>

__asm__(".arch_extension sve");

struct registers {
  unsigned long bytes;
  _Alignas(16) unsigned char z[256], p[32], ffr[32];
};

static pthread_barrier_t both_wrote;

static void store_registers(struct registers* out) {
  __asm__ volatile(
      "cntb %0\n"
      "str z31, [%1]\n"
      "str p15, [%2]\n"
      "rdffr p14.b\n"
      "str p14, [%3]\n"
      : "=&r"(out->bytes)
      : "r"(out->z), "r"(out->p), "r"(out->ffr)
      : "memory");
}

// All elements to `value`, but for those that NEON code writes behind it; of every `value` bits of
// the predicates the first.
static void write_registers(unsigned value) {
  if (value == 1) {
    __asm__ volatile("dup z31.b, #1\n ptrue p15.b\n setffr\n");
  } else {
    __asm__ volatile("dup z31.b, #2\n ptrue p15.h\n wrffr p15.b\n");
  }
  __asm__ volatile("movi v31.16b, #0xaa\n");
}

// Compares what C code between leaves alone: bytes of Z above the lowest 16.
static int differs(const char* when, unsigned z, unsigned p) {
  struct registers now = {0};
  store_registers(&now);
  for (unsigned k = 16; k < now.bytes; ++k) {
    if (now.z[k] != z) return printf("%s: byte %u of z31 is %u\n", when, k, now.z[k]);
  }
  for (unsigned k = 0; k < now.bytes / 8; ++k) {
    if (now.p[k] != p) return printf("%s: byte %u of p15 is 0x%x\n", when, k, now.p[k]);
    if (now.ffr[k] != p) return printf("%s: byte %u of the ffr is 0x%x\n", when, k, now.ffr[k]);
  }
  return 0;
}

static int write_and_compare(unsigned value) {
  write_registers(value);
  pthread_barrier_wait(&both_wrote);
  return differs("after both wrote", value, value == 1 ? 0xff : 0x55);
}

static void* second_thread(void* failed) {
  const int inherited = differs("at the start", 0, 0) != 0;
  *(int*)failed = write_and_compare(2) != 0 || inherited;
  return NULL;
}

int main(void) {
  pthread_t thread;
  int second_failed = 0;
  pthread_barrier_init(&both_wrote, NULL, 2);
  write_registers(1);
  pthread_create(&thread, NULL, second_thread, &second_failed);
  const int first_failed = write_and_compare(1) != 0;
  pthread_join(thread, NULL);
  return first_failed || second_failed;
}
