// The Mandelbrot set in single precision, one point in each lane. A vector of points goes on until
// the last of them has left. The picture goes to a PNG file and, coarser, to standard output. There
// it is in colour if standard output is a terminal.
//
// mandelbrot [FILE]
#include <arm_sve.h>
#include <errno.h>
#include <math.h>
#include <stb_image_write.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "examples/check.h"

// A character of the terminal shows two cells, one above the other.
enum { width = 480, height = 312, cell = 6, limit = 64 };

static const float left = -2.45F, top = 1.17F, step = 0.0075F;

typedef uint32_t row_of_counts[width];

// For each point of a row, counts the steps for which it stays within 2 of the origin.
static void count_steps(row_of_counts counts, float imaginary) {
  for (int64_t x = 0; x < width; x += (int64_t)svcntw()) {
    const svbool_t pg = svwhilelt_b32(x, (int64_t)width);
    const svfloat32_t column = svcvt_f32_x(pg, svindex_s32((int32_t)x, 1));
    const svfloat32_t c_re = svmad_x(pg, column, svdup_f32(step), left);
    const svfloat32_t c_im = svdup_f32(imaginary);
    svfloat32_t re = svdup_f32(0), im = re;
    svuint32_t count = svdup_u32(0);
    svbool_t inside = pg;
    for (int n = 0; n < limit && svptest_any(pg, inside); ++n) {
      const svfloat32_t next_re = svmls_x(pg, svmla_x(pg, c_re, re, re), im, im);
      im = svmla_x(pg, c_im, svadd_x(pg, re, re), im);
      re = next_re;
      inside = svcmplt(inside, svmla_x(pg, svmul_x(pg, im, im), re, re), 4);
      count = svadd_m(inside, count, 1);
    }
    svst1(pg, counts + x, count);
  }
}

SCALAR static void count_steps_scalar(row_of_counts counts, float c_im) {
  for (int x = 0; x < width; ++x) {
    const float c_re = fmaf((float)x, step, left);
    float re = 0, im = 0;
    for (counts[x] = 0; counts[x] < limit; ++counts[x]) {
      const float next_re = fmaf(-im, im, fmaf(re, re, c_re));
      im = fmaf(re + re, im, c_im);
      re = next_re;
      if (!(fmaf(re, re, im * im) < 4)) break;
    }
  }
}

struct colour {
  uint8_t red, green, blue;
};

// Black in the set. Outside, from dark blue over green to yellow: the closer to the set, the
// brighter.
static struct colour colour_of(uint32_t count) {
  const float t = sqrtf((float)(count + 1) / (limit + 1)), s = 1 - t;
  return (struct colour){(uint8_t)(255 * 9 * s * t * t * t), (uint8_t)(255 * 15 * s * s * t * t),
                         (uint8_t)(255 * 8.5F * s * s * s * t)};
}

static struct colour mean_of_cell(struct colour picture[][width], int x, int y) {
  int red = 0, green = 0, blue = 0;
  for (int i = 0; i < cell * cell; ++i) {
    const struct colour* c = &picture[y + i / cell][x + i % cell];
    red += c->red;
    green += c->green;
    blue += c->blue;
  }
  return (struct colour){(uint8_t)(red / (cell * cell)), (uint8_t)(green / (cell * cell)),
                         (uint8_t)(blue / (cell * cell))};
}

static void draw_in_colour(struct colour picture[][width]) {
  for (int y = 0; y < height; y += 2 * cell) {
    for (int x = 0; x < width; x += cell) {
      const struct colour a = mean_of_cell(picture, x, y), b = mean_of_cell(picture, x, y + cell);
      printf("\x1b[38;2;%d;%d;%d;48;2;%d;%d;%dm\u2580", a.red, a.green, a.blue, b.red, b.green,
             b.blue);
    }
    puts("\x1b[0m");
  }
}

// A different character for each doubling of the count.
static void draw_plainly(row_of_counts* counts) {
  for (int y = cell; y < height; y += 2 * cell) {
    for (int x = cell / 2; x < width; x += cell) {
      const uint32_t count = counts[y][x];
      putchar(" .:-=+*@"[count == 0 ? 0 : 32 - __builtin_clz(count)]);
    }
    putchar('\n');
  }
}

static void append(void* file, void* data, int bytes) {
  fwrite(data, 1, (size_t)bytes, (FILE*)file);
}

static bool write_png(const char* name, struct colour picture[][width]) {
  FILE* file = fopen(name, "wb");
  if (file == NULL) return false;
  const bool written =
      stbi_write_png_to_func(append, file, width, height, 3, picture, sizeof(*picture)) != 0 &&
      ferror(file) == 0;
  return fclose(file) == 0 && written;
}

int main(int argc, char** argv) {
  static row_of_counts counts[height], expected[height];
  static struct colour picture[height][width];
  const char* name = argc > 1 ? argv[1] : "mandelbrot.png";
  for (int y = 0; y < height; ++y) {
    count_steps(counts[y], top - (float)y * step);
    count_steps_scalar(expected[y], top - (float)y * step);
    for (int x = 0; x < width; ++x) picture[y][x] = colour_of(counts[y][x]);
  }
  check_equal("steps", counts, expected, sizeof(counts));
  if (!write_png(name, picture)) {
    fprintf(stderr, "mandelbrot: cannot write %s: %s. Give another file as the argument.\n", name,
            strerror(errno));
    return 1;
  }
  if (isatty(STDOUT_FILENO) && getenv("NO_COLOR") == NULL) {
    draw_in_colour(picture);
  } else {
    draw_plainly(counts);
  }
  printf("%d x %d points, %016lx, picture in %s\n", width, height,
         fingerprint(counts, sizeof(counts)), name);
  return 0;
}
