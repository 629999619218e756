// Prefix sums of 64-bit integers. Within a vector, each step adds the sums 1, 2, 4, ... elements
// earlier. TBL gives 0 for the elements before the first. The last sum of a vector is carried into
// the next.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { count = 5003 };

static svuint64_t sums_within(svuint64_t values) {
  const svbool_t all = svptrue_b64();
  for (uint64_t distance = 1; distance < svcntd(); distance *= 2) {
    const svuint64_t before = svindex_u64(-distance, 1);  // the first elements wrap to huge
    values = svadd_x(all, values, svtbl(values, before));
  }
  return values;
}

static uint64_t prefix_sums(uint64_t* sums, const uint64_t* values) {
  uint64_t carry = 0;
  for (uint64_t i = 0; i < count; i += svcntd()) {
    const svbool_t pg = svwhilelt_b64(i, (uint64_t)count);
    const svuint64_t within = sums_within(svld1(pg, values + i));
    const svuint64_t all = svadd_x(svptrue_b64(), within, carry);
    svst1(pg, sums + i, all);
    carry = svlastb(pg, all);
  }
  return carry;
}

SCALAR static uint64_t prefix_sums_scalar(uint64_t* sums, const uint64_t* values) {
  uint64_t sum = 0;
  for (int i = 0; i < count; ++i) sums[i] = sum += values[i];
  return sum;
}

int main(void) {
  static uint64_t values[count], sums[count], expected[count];
  fill_random(values, sizeof(values), 2);
  const uint64_t total = prefix_sums(sums, values);
  const uint64_t expected_total = prefix_sums_scalar(expected, values);
  check_equal("prefix sums", sums, expected, sizeof(sums));
  check_equal("total", &total, &expected_total, sizeof(total));
  printf("%d prefix sums, the last %lu, all %016lx\n", count, total,
         fingerprint(sums, sizeof(sums)));
  return 0;
}
