// A sum that begins with svdup_s32(0). Clang 22 clears that register by movi v0.2d, #0, which on a
// processor with SVE clears all of Z0. Before that, the register has other values.
#include <arm_sve.h>
#include <stdint.h>
#include <stdio.h>

enum { count = 1000 };
static int32_t numbers[count];

// Leaves something in every vector register.
static void fill_registers(void) {
  __asm__ volatile(
      ".irp n, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, "
      "31\n"
      "index z\\n\\().s, #1, #3\n"
      ".endr" ::
          : "v0", "v1", "v2", "v3", "v4", "v5", "v6", "v7", "v16", "v17", "v18", "v19", "v20",
            "v21", "v22", "v23", "v24", "v25", "v26", "v27", "v28", "v29", "v30", "v31");
}

__attribute__((noinline)) static int64_t sum(const int32_t* from, int n) {
  svint32_t total = svdup_s32(0);
  for (int i = 0; i < n; i += (int)svcntw()) {
    const svbool_t p = svwhilelt_b32(i, n);
    total = svadd_m(p, total, svld1(p, from + i));
  }
  return svaddv(svptrue_b32(), total);
}

int main(void) {
  for (int i = 0; i < count; i++) numbers[i] = i * 7 - 900;
  for (int n = 1; n <= count; n += 333) {
    fill_registers();
    printf("%d: %lld\n", n, (long long)sum(numbers, n));
  }
}
