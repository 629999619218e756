// Compiled for vectors of 512 bits alone (-msve-vector-bits=512), so the compiler takes their size
// for a constant: of the type, of steps and of offsets.
#include <arm_sve.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef svint32_t vector __attribute__((arm_sve_vector_bits(512)));

enum { lanes = 512 / 32, rows = 7 };

struct matrix {
  vector row[rows];
};

static int32_t guarded[rows * lanes + 64];

int main(void) {
  struct matrix matrix;
  for (int r = 0; r < rows; ++r) matrix.row[r] = svindex_s32(r, rows);
  vector sums = svdup_s32(0);
  for (int r = 0; r < rows; ++r) sums += matrix.row[r] * (r + 1);
  memcpy(guarded, &matrix, sizeof matrix);
  for (int i = 0; i < rows * lanes; i += (int)svcntw()) {
    const svbool_t pg = svwhilelt_b32(i, rows * lanes);
    svst1(pg, guarded + i, svadd_x(pg, svld1(pg, guarded + i), 1000));
  }
  uint32_t hash = 0;
  for (unsigned i = 0; i < sizeof guarded / sizeof *guarded; ++i) {
    hash = hash * 31 + (uint32_t)guarded[i];
  }
  printf("%d %d %08x\n", sums[0], sums[lanes - 1], hash);
  return 0;
}
