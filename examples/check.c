#include "examples/check.h"

#include <stdio.h>
#include <stdlib.h>

void fill_random(void* data, size_t bytes, uint64_t seed) {
  unsigned char* out = data;
  for (size_t i = 0; i < bytes; ++i) {  // xorshift64*
    seed ^= seed >> 12;
    seed ^= seed << 25;
    seed ^= seed >> 27;
    out[i] = (unsigned char)((seed * 0x2545f4914f6cdd1dU) >> 56);
  }
}

uint64_t fingerprint(const void* data, size_t bytes) {
  const unsigned char* in = data;
  uint64_t hash = 0xcbf29ce484222325U;  // FNV-1a
  for (size_t i = 0; i < bytes; ++i) hash = (hash ^ in[i]) * 0x100000001b3U;
  return hash;
}

void check_equal(const char* what, const void* result, const void* expected, size_t bytes) {
  const unsigned char* a = result;
  const unsigned char* b = expected;
  for (size_t i = 0; i < bytes; ++i) {
    if (a[i] == b[i]) continue;
    printf("%s: byte %zu of %zu is 0x%02x, scalar code gives 0x%02x\n", what, i, bytes, a[i], b[i]);
    exit(1);
  }
}

void check_at_most(const char* what, double error, double bound) {
  if (error <= bound) return;
  printf("%s: an error of %g, above the bound of %g\n", what, error, bound);
  exit(1);
}
