// A histogram of a grey picture with gather and scatter. Each lane of the vector counts in its own
// column, so that no two lanes ever store to the same place. The columns are added up at the end.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { width = 120, height = 90, pixels = width * height, bins = 64, most_lanes = 32 };

static void histogram(uint64_t* totals, const uint8_t* grey) {
  static uint64_t counts[bins * most_lanes];
  const svbool_t all = svptrue_b64();
  const svuint64_t lane = svindex_u64(0, 1);
  for (int64_t i = 0; i < pixels; i += (int64_t)svcntd()) {
    const svbool_t pg = svwhilelt_b64(i, (int64_t)pixels);
    const svuint64_t bin = svlsr_x(pg, svld1ub_u64(pg, grey + i), 2);
    const svuint64_t place = svmla_x(pg, lane, bin, svcntd());
    const svuint64_t count = svld1_gather_index(pg, counts, place);
    svst1_scatter_index(pg, counts, place, svadd_x(pg, count, 1));
  }
  for (uint64_t bin = 0; bin < bins; ++bin) {
    totals[bin] = svaddv(all, svld1(all, counts + bin * svcntd()));
  }
}

SCALAR static void histogram_scalar(uint64_t* totals, const uint8_t* grey) {
  for (int i = 0; i < pixels; ++i) ++totals[grey[i] >> 2];
}

// A ball, lit from the upper left, in front of a dark wall that gets lighter downwards, with noise.
SCALAR static void draw(uint8_t* grey) {
  fill_random(grey, pixels, 7);
  for (int i = 0; i < pixels; ++i) {
    const int x = i % width - 60, y = i / width - 45;
    const int from_light = (x + 12) * (x + 12) + (y + 12) * (y + 12);
    const int light = x * x + y * y < 36 * 36 ? 230 - from_light / 18 : 60 + y / 2;
    grey[i] = (uint8_t)(light + (grey[i] & 15) + (grey[i] >> 4 & 7));
  }
}

// One column for each bin. A line of text shows eight steps of height.
SCALAR static void print_histogram(const uint64_t* totals) {
  static const char* const blocks[] = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  enum { lines = 6, pixels_of_step = 12 };
  for (int line = lines - 1; line >= 0; --line) {
    for (int bin = 0; bin < bins; ++bin) {
      const int above = (int)(totals[bin] / pixels_of_step) - 8 * line;
      printf("%s", blocks[above < 0 ? 0 : above > 8 ? 8 : above]);
    }
    printf("\n");
  }
  printf("dark %*s\n", bins - 5, "light");
}

int main(void) {
  static uint8_t grey[pixels];
  static uint64_t totals[bins], expected[bins];
  draw(grey);
  histogram(totals, grey);
  histogram_scalar(expected, grey);
  check_equal("histogram", totals, expected, sizeof(totals));
  printf("%d pixels in %d bins\n", pixels, bins);
  print_histogram(totals);
  return 0;
}
