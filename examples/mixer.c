// A mixer for 16-bit audio. It mixes three tracks at different levels to two channels, and
// saturates where the sum is too loud.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { frames = 9001 };

// Left is the first track plus half of the second. Right is the third track minus a quarter of the
// second.
static void mix(int16_t* restrict stereo, const int16_t* a, const int16_t* b, const int16_t* c) {
  for (int64_t i = 0; i < frames; i += (int64_t)svcnth()) {
    const svbool_t pg = svwhilelt_b16(i, (int64_t)frames);
    const svint16_t second = svld1(pg, b + i);
    const svint16_t left = svqadd(svld1(pg, a + i), svasr_x(pg, second, 1));
    const svint16_t right = svqsub(svld1(pg, c + i), svasr_x(pg, second, 2));
    svst2(pg, stereo + 2 * i, svcreate2(left, right));
  }
}

SCALAR static int16_t saturate(int value) {
  return (int16_t)(value > INT16_MAX ? INT16_MAX : value < INT16_MIN ? INT16_MIN : value);
}

SCALAR static int mix_scalar(int16_t* stereo, const int16_t* a, const int16_t* b,
                             const int16_t* c) {
  int clipped = 0;
  for (int64_t i = 0; i < frames; ++i) {
    const int left = a[i] + (b[i] >> 1);
    const int right = c[i] - (b[i] >> 2);
    stereo[2 * i] = saturate(left);
    stereo[2 * i + 1] = saturate(right);
    clipped += (stereo[2 * i] != left) + (stereo[2 * i + 1] != right);
  }
  return clipped;
}

int main(void) {
  static int16_t tracks[3][frames], stereo[2 * frames], expected[2 * frames];
  fill_random(tracks, sizeof(tracks), 3);
  mix(stereo, tracks[0], tracks[1], tracks[2]);
  const int clipped = mix_scalar(expected, tracks[0], tracks[1], tracks[2]);
  check_equal("mix", stereo, expected, sizeof(stereo));
  printf("%d frames, %d samples clipped, %016lx\n", frames, clipped,
         fingerprint(stereo, sizeof(stereo)));
  return 0;
}
