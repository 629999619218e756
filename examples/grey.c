// Converts pixels of four bytes to luminance and back: LD4 separates the channels, the weights are
// applied in 16 bits, UZP2 takes the upper bytes, and ST4 writes grey pixels with the old alpha.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { pixels = 4099, red_weight = 77, green_weight = 150, blue_weight = 29 };

static svuint16_t weigh(svuint16_t red, svuint16_t green, svuint16_t blue) {
  const svbool_t all = svptrue_b16();
  const svuint16_t sum = svmla_x(all, svmul_x(all, red, red_weight), green, green_weight);
  return svmla_x(all, sum, blue, blue_weight);
}

static void to_grey(uint8_t* rgba) {
  for (int64_t i = 0; i < pixels; i += (int64_t)svcntb()) {
    const svbool_t pg = svwhilelt_b8(i, (int64_t)pixels);
    const svuint8x4_t colours = svld4(pg, rgba + 4 * i);
    const svuint8_t red = svget4(colours, 0), green = svget4(colours, 1), blue = svget4(colours, 2);
    const svuint16_t lower = weigh(svunpklo(red), svunpklo(green), svunpklo(blue));
    const svuint16_t upper = weigh(svunpkhi(red), svunpkhi(green), svunpkhi(blue));
    const svuint8_t grey = svuzp2(svreinterpret_u8(lower), svreinterpret_u8(upper));
    svst4(pg, rgba + 4 * i, svcreate4(grey, grey, grey, svget4(colours, 3)));
  }
}

SCALAR static void to_grey_scalar(uint8_t* rgba) {
  for (int64_t i = 0; i < pixels; ++i) {
    uint8_t* pixel = rgba + 4 * i;
    const int sum = red_weight * pixel[0] + green_weight * pixel[1] + blue_weight * pixel[2];
    pixel[0] = pixel[1] = pixel[2] = (uint8_t)(sum >> 8);
  }
}

int main(void) {
  static uint8_t picture[4 * pixels], expected[4 * pixels];
  fill_random(picture, sizeof(picture), 4);
  fill_random(expected, sizeof(picture), 4);
  to_grey(picture);
  to_grey_scalar(expected);
  check_equal("grey", picture, expected, sizeof(picture));
  printf("%d pixels, grey %016lx\n", pixels, fingerprint(picture, sizeof(picture)));
  return 0;
}
