// A product of matrices in double precision. A tile of the result, four rows by a vector of
// columns, stays in registers while the products of a block of the inner dimension are added to it.
// Each loaded row of b serves four rows of a. The elements of a are loaded as a repeated pair, and
// each is selected from it by index.
//
// Each element is summed in the order of the inner dimension, whatever the blocks, with one
// rounding for a product and its addition. So scalar code with fma() gives the same bits.
#include <arm_sve.h>
#include <math.h>
#include <stdio.h>

#include "examples/check.h"

enum { rows = 52, inner = 62, columns = 83, tile_rows = 4, block = 16 };

_Static_assert(rows % tile_rows == 0, "a tile must have all its rows");
_Static_assert(inner % 2 == 0 && block % 2 == 0, "elements of a are loaded in pairs");

static svfloat64_t add_pair(svfloat64_t sum, const double* pair_of_a, svfloat64_t b0,
                            svfloat64_t b1) {
  const svfloat64_t pair = svld1rq(svptrue_b64(), pair_of_a);
  return svmla_lane(svmla_lane(sum, b0, pair, 0), b1, pair, 1);
}

// Adds the products of the inner dimension from `begin` to `end` to the tile at (row, column).
static void multiply_tile(double c[][columns], double a[][inner], double b[][columns], int row,
                          int column, int begin, int end) {
  const svbool_t pg = svwhilelt_b64(column, (int)columns);
  svfloat64_t sum0 = svld1(pg, &c[row][column]);
  svfloat64_t sum1 = svld1(pg, &c[row + 1][column]);
  svfloat64_t sum2 = svld1(pg, &c[row + 2][column]);
  svfloat64_t sum3 = svld1(pg, &c[row + 3][column]);
  for (int k = begin; k < end; k += 2) {
    const svfloat64_t b0 = svld1(pg, &b[k][column]);
    const svfloat64_t b1 = svld1(pg, &b[k + 1][column]);
    sum0 = add_pair(sum0, &a[row][k], b0, b1);
    sum1 = add_pair(sum1, &a[row + 1][k], b0, b1);
    sum2 = add_pair(sum2, &a[row + 2][k], b0, b1);
    sum3 = add_pair(sum3, &a[row + 3][k], b0, b1);
  }
  svst1(pg, &c[row][column], sum0);
  svst1(pg, &c[row + 1][column], sum1);
  svst1(pg, &c[row + 2][column], sum2);
  svst1(pg, &c[row + 3][column], sum3);
}

// c += a b
static void multiply(double c[][columns], double a[][inner], double b[][columns]) {
  for (int begin = 0; begin < inner; begin += block) {
    const int end = begin + block < inner ? begin + block : inner;
    for (int column = 0; column < columns; column += (int)svcntd()) {
      for (int row = 0; row < rows; row += tile_rows) {
        multiply_tile(c, a, b, row, column, begin, end);
      }
    }
  }
}

SCALAR static void multiply_scalar(double c[][columns], double a[][inner], double b[][columns]) {
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      for (int k = 0; k < inner; ++k) {
        c[row][column] = fma(a[row][k], b[k][column], c[row][column]);
      }
    }
  }
}

// Numbers between -1 and 1.
SCALAR static void fill(double* numbers, int count, uint64_t seed) {
  for (int i = 0; i < count; ++i) {
    int64_t bits;
    fill_random(&bits, sizeof(bits), seed + (uint64_t)i);
    numbers[i] = (double)bits * 0x1p-63;
  }
}

int main(void) {
  static double a[rows][inner], b[inner][columns], c[rows][columns], expected[rows][columns];
  fill((double*)a, rows * inner, 11);
  fill((double*)b, inner * columns, 100003);
  multiply(c, a, b);
  multiply_scalar(expected, a, b);
  check_equal("product", c, expected, sizeof(c));
  printf("%d x %d times %d x %d: %.15g in the first corner, %016lx\n", rows, inner, inner, columns,
         c[0][0], fingerprint(c, sizeof(c)));
  return 0;
}
