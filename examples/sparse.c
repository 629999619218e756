// A sparse matrix, compressed by rows, times a vector of 64-bit integers, in the two ways that
// gathers allow. One goes along each row, with a sum over the vector at its end. The other goes
// down the rows, with one row in each lane, and a lane becomes inactive when its row ends.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { rows = 403, columns = 1009, most_in_row = 80, most_entries = rows * most_in_row };

struct matrix {
  int64_t starts[rows + 1];  // where each row starts in the two that follow
  int32_t columns_of[most_entries];
  int64_t values[most_entries];
};

static void multiply_along_rows(int64_t* product, const struct matrix* m, const int64_t* vector) {
  for (int row = 0; row < rows; ++row) {
    svint64_t sum = svdup_s64(0);
    for (int64_t i = m->starts[row]; i < m->starts[row + 1]; i += (int64_t)svcntd()) {
      const svbool_t pg = svwhilelt_b64(i, m->starts[row + 1]);
      const svint64_t column = svld1sw_s64(pg, m->columns_of + i);
      const svint64_t factor = svld1_gather_index(pg, vector, column);
      sum = svmla_m(pg, sum, svld1(pg, m->values + i), factor);
    }
    product[row] = svaddv(svptrue_b64(), sum);
  }
}

static void multiply_down_rows(int64_t* product, const struct matrix* m, const int64_t* vector) {
  for (int64_t row = 0; row < rows; row += (int64_t)svcntd()) {
    const svbool_t pg = svwhilelt_b64(row, (int64_t)rows);
    const svint64_t end = svld1(pg, m->starts + row + 1);
    svint64_t i = svld1(pg, m->starts + row);
    svint64_t sum = svdup_s64(0);
    for (svbool_t on = svcmplt(pg, i, end); svptest_any(pg, on); on = svcmplt(on, i, end)) {
      const svint64_t column = svld1sw_gather_index_s64(on, m->columns_of, i);
      const svint64_t factor = svld1_gather_index(on, vector, column);
      sum = svmla_m(on, sum, svld1_gather_index(on, m->values, i), factor);
      i = svadd_x(on, i, 1);
    }
    svst1(pg, product + row, sum);
  }
}

SCALAR static void multiply_scalar(int64_t* product, const struct matrix* m,
                                   const int64_t* vector) {
  for (int row = 0; row < rows; ++row) {
    for (int64_t i = m->starts[row]; i < m->starts[row + 1]; ++i) {
      product[row] += m->values[i] * vector[m->columns_of[i]];
    }
  }
}

// Most rows are short, some are empty, and a few are long. The columns of a row are in ascending
// order.
SCALAR static void fill(struct matrix* m) {
  static uint8_t sizes[rows], gaps[most_entries];
  fill_random(sizes, sizeof(sizes), 5);
  fill_random(gaps, sizeof(gaps), 6);
  fill_random(m->values, sizeof(m->values), 7);
  for (int row = 0; row < rows; ++row) {
    const int size = sizes[row] < 240 ? sizes[row] % 13 : most_in_row;
    const int64_t start = m->starts[row];
    m->starts[row + 1] = start + size;
    for (int64_t i = start, column = 0; i < start + size; ++i, ++column) {
      column += gaps[i] % (columns / most_in_row);
      m->columns_of[i] = (int32_t)column;
      m->values[i] %= 1000000;
    }
  }
}

int main(void) {
  static struct matrix matrix;
  static int64_t vector[columns], along[rows], down[rows], expected[rows];
  fill(&matrix);
  fill_random(vector, sizeof(vector), 8);
  multiply_along_rows(along, &matrix, vector);
  multiply_down_rows(down, &matrix, vector);
  multiply_scalar(expected, &matrix, vector);
  check_equal("along the rows", along, expected, sizeof(along));
  check_equal("down the rows", down, expected, sizeof(down));
  printf("%d x %d, %ld entries, product %016lx\n", rows, columns, matrix.starts[rows],
         fingerprint(along, sizeof(along)));
  return 0;
}
