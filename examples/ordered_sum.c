// Sums of floats in an order that is part of the result. FADDA sums the harmonic series forward and
// backward. It adds one element after the other, as a scalar loop does, and gives the same bits.
// FADDV adds in a tree. Its result is different, here better, and depends on the vector length.
// With a predicate, FADDA skips elements: here those with even divisors.
#include <arm_sve.h>
#include <math.h>
#include <stdio.h>

#include "examples/check.h"

enum { terms = 20000, most_lanes = 2048 / 32 };

static float sum_forward(const float* a) {
  float sum = 0;
  for (int64_t i = 0; i < terms; i += (int64_t)svcntw()) {
    const svbool_t pg = svwhilelt_b32(i, (int64_t)terms);
    sum = svadda(pg, sum, svld1(pg, a + i));
  }
  return sum;
}

static float sum_backward(const float* a) {
  float sum = 0;
  for (int64_t left = terms, taken; left > 0; left -= taken) {
    taken = left < (int64_t)svcntw() ? left : (int64_t)svcntw();
    const svbool_t pg = svwhilelt_b32((int64_t)0, taken);
    sum = svadda(svrev_b32(pg), sum, svrev(svld1(pg, a + left - taken)));
  }
  return sum;
}

// Sums the terms 1 / 1, 1 / 3, 1 / 5 and so on.
static float sum_odd(const float* a) {
  float sum = 0;
  for (int64_t i = 0; i < terms; i += (int64_t)svcntw()) {
    const svbool_t pg = svwhilelt_b32(i, (int64_t)terms);
    const svuint32_t divisor = svindex_u32((uint32_t)i + 1, 1);
    const svbool_t odd = svcmpne(pg, svand_x(pg, divisor, 1), 0);
    sum = svadda(odd, sum, svld1(pg, a + i));
  }
  return sum;
}

// Adds each vector in a tree, and these sums in order.
static float sum_in_trees(const float* a) {
  float sum = 0;
  for (int64_t i = 0; i < terms; i += (int64_t)svcntw()) {
    const svbool_t pg = svwhilelt_b32(i, (int64_t)terms);
    sum += svaddv(pg, svld1(pg, a + i));
  }
  return sum;
}

SCALAR static float sum_scalar(const float* a, int first, int end, int step) {
  float sum = 0;
  for (int i = first; i != end; i += step) sum += a[i];
  return sum;
}

// Adds neighbours, then the sums of neighbours, and so on. Zeros pad the vector to a power of two.
SCALAR static float sum_in_trees_scalar(const float* a, int lanes) {
  float sum = 0;
  for (int i = 0; i < terms; i += lanes) {
    float tree[most_lanes] = {0};
    for (int k = 0; k < lanes && i + k < terms; ++k) tree[k] = a[i + k];
    for (int64_t rest = most_lanes / 2; rest > 0; rest /= 2) {
      for (int64_t k = 0; k < rest; ++k) tree[k] = tree[2 * k] + tree[2 * k + 1];
    }
    sum += tree[0];
  }
  return sum;
}

static void show(const char* name, float sum, float expected, double exact) {
  check_equal(name, &sum, &expected, sizeof(sum));
  printf("%-12s %.7f, error %+.1e\n", name, sum, sum - exact);
}

int main(void) {
  static float a[terms];
  double exact = 0, exact_odd = 0;
  for (int i = 0; i < terms; ++i) {
    a[i] = 1 / (float)(i + 1);
    exact += a[i];
    if (i % 2 == 0) exact_odd += a[i];
  }
  const float forward = sum_forward(a), trees = sum_in_trees(a);
  show("forward", forward, sum_scalar(a, 0, terms, 1), exact);
  show("backward", sum_backward(a), sum_scalar(a, terms - 1, -1, -1), exact);
  show("odd divisors", sum_odd(a), sum_scalar(a, 0, terms, 2), exact_odd);
  show("in trees", trees, sum_in_trees_scalar(a, (int)svcntw()), exact);
  check_at_most("in trees", fabs(trees - exact), fabs(forward - exact) / 2);
  return 0;
}
