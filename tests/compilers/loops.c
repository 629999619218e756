// Loops that a compiler vectorises for SVE: sums, products with a condition, a stencil, a search,
// and conversions between widths.
#include <stdint.h>
#include <stdio.h>

enum { count = 3001 };
static float x[count], y[count];
static int32_t a[count], b[count];
static uint8_t bytes[count];
static uint16_t wide[count];

__attribute__((noinline)) static int64_t weighted_sum(int n) {
  int64_t total = 0;
  for (int i = 0; i < n; i++) total += (int64_t)a[i] * b[i];
  return total;
}
__attribute__((noinline)) static void choose(int n) {
  for (int i = 0; i < n; i++) {
    if (a[i] > b[i]) y[i] = x[i] * 2 + 1;
  }
}
__attribute__((noinline)) static void smooth(int n) {
  for (int i = 1; i < n - 1; i++) y[i] = (x[i - 1] + x[i] + x[i + 1]) * 0.25f;
}
__attribute__((noinline)) static int largest(int n) {
  int best = -1;
  for (int i = 0; i < n; i++) best = b[i] > best ? b[i] : best;
  return best;
}
__attribute__((noinline)) static void widen(int n) {
  for (int i = 0; i < n; i++) wide[i] = (uint16_t)(bytes[i] * 3 + wide[i] / 2);
}
__attribute__((noinline)) static void gather(int n) {
  for (int i = 0; i < n; i++) a[i] = b[bytes[i]] ^ i;
}

static uint64_t checksum(const void* from, unsigned size) {
  uint64_t sum = 0xcbf29ce484222325;
  for (unsigned i = 0; i < size; i++) sum = (sum ^ ((const uint8_t*)from)[i]) * 0x100000001b3;
  return sum;
}

int main(void) {
  for (int i = 0; i < count; i++) {
    x[i] = (float)(i % 17) * 0.5f;
    a[i] = i * 31 % 101;
    b[i] = i * 17 % 89;
    bytes[i] = (uint8_t)(i * 7);
    wide[i] = (uint16_t)(i * 11);
  }
  for (int n = 1; n <= count; n += 250) {
    printf("%d %lld %d\n", n, (long long)weighted_sum(n), largest(n));
    choose(n);
    smooth(n);
    widen(n);
    gather(n);
    printf("%016llx %016llx %016llx\n", (unsigned long long)checksum(y, sizeof y),
           (unsigned long long)checksum(wide, sizeof wide),
           (unsigned long long)checksum(a, sizeof a));
  }
}
