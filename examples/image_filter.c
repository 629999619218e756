// A filter on 32-bit pixels: a 3 x 3 blur (1 2 1, 2 4 2, 1 2 1, divided by 16) of a picture with
// four 8-bit channels. It processes two channels at a time, in the halves of a word. The compiler
// vectorises the loops. The scalar code processes each channel separately.
#include <stdio.h>

#include "examples/check.h"

enum { width = 157, height = 61, pixels = width * height };

// Two channels with room above each: those in bits 7 to 0 and 23 to 16, or the other two.
static void split(int32_t* even, int32_t* odd, const int32_t* picture) {
  for (int i = 0; i < pixels; ++i) {
    even[i] = picture[i] & 0x00ff00ff;
    odd[i] = (picture[i] >> 8) & 0x00ff00ff;
  }
}

static void add_neighbours(int32_t* restrict sums, const int32_t* restrict in, int distance) {
  for (int i = 0; i < pixels - distance; ++i) sums[i] = in[i] + in[i + distance];
}

static void divide(int32_t* channels) {
  for (int i = 0; i < pixels; ++i) channels[i] = (channels[i] >> 4) & 0x00ff00ff;
}

// The weights 1 2 1 are those of 1 1 applied twice. The result for a pixel ends up one row above it
// and one column to the left.
static void blur_channels(int32_t* channels) {
  static int32_t sums[pixels];
  add_neighbours(sums, channels, 1);
  add_neighbours(channels, sums, 1);
  add_neighbours(sums, channels, width);
  add_neighbours(channels, sums, width);
  divide(channels);
}

static void join(int32_t* restrict picture, const int32_t* restrict even,
                 const int32_t* restrict odd) {
  for (int i = 0; i < pixels; ++i) picture[i] = even[i] | (odd[i] << 8);
}

static void blur(int32_t* out, const int32_t* picture) {
  static int32_t even[pixels], odd[pixels];
  split(even, odd, picture);
  blur_channels(even);
  blur_channels(odd);
  join(out, even, odd);
}

SCALAR static void blur_scalar(uint8_t (*out)[4], const uint8_t (*picture)[4]) {
  static const int weights[] = {1, 2, 1};
  for (int i = width + 1; i < pixels - width - 1; ++i) {
    for (int channel = 0; channel < 4; ++channel) {
      int sum = 0;
      for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
          sum += weights[dy + 1] * weights[dx + 1] * picture[i + dy * width + dx][channel];
        }
      }
      out[i][channel] = (uint8_t)(sum / 16);
    }
  }
}

int main(void) {
  static int32_t picture[pixels], out[pixels], expected[pixels];
  const size_t inner = pixels - 2 * (width + 1);  // the pixels that have all their neighbours
  fill_random(picture, sizeof(picture), 1);
  blur(out, picture);
  blur_scalar((uint8_t(*)[4])expected, (const uint8_t(*)[4])picture);
  check_equal("blur", out, expected + width + 1, inner * sizeof(int32_t));
  printf("%d x %d pixels, before %016lx, blurred %016lx\n", width, height,
         fingerprint(picture, sizeof(picture)), fingerprint(out, inner * sizeof(int32_t)));
  return 0;
}
