// Counts lines, words and letters of a text, and makes it upper case, on bytes under predicates. A
// word begins at each letter that does not follow another letter.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

struct counts {
  uint64_t lines, words, letters;
};

static const char verse[] =
    "Tyger Tyger, burning bright,\nIn the forests of the night;\n"
    "What immortal hand or eye,\nCould frame thy fearful symmetry?\n\n";

enum { verse_length = sizeof(verse) - 1, length = 70 * verse_length };

static svbool_t is_small(svbool_t pg, svuint8_t byte) {
  return svcmplt(pg, svsub_x(pg, byte, 'a'), 26);
}

// There must be a readable byte before `text`.
static struct counts count(char* text) {
  struct counts counts = {0, 0, 0};
  for (int i = 0; i < length; i += (int)svcntb()) {
    const svbool_t pg = svwhilelt_b8(i, length);
    uint8_t* const at = (uint8_t*)text + i;
    const svuint8_t byte = svld1(pg, at);
    const svbool_t small = is_small(pg, byte);
    const svbool_t letter = is_small(pg, svorr_x(pg, byte, 0x20));  // lower or upper case
    const svbool_t after_letter = is_small(pg, svorr_x(pg, svld1(pg, at - 1), 0x20));
    counts.lines += svcntp_b8(pg, svcmpeq(pg, byte, '\n'));
    counts.words += svcntp_b8(pg, svbic_z(pg, letter, after_letter));
    counts.letters += svcntp_b8(pg, letter);
    svst1(small, at, svsub_x(small, byte, 'a' - 'A'));
  }
  return counts;
}

SCALAR static int is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

SCALAR static struct counts count_scalar(char* text) {
  struct counts counts = {0, 0, 0};
  for (int i = 0; i < length; ++i) {
    counts.lines += text[i] == '\n';
    counts.words += is_letter(text[i]) && !is_letter(text[i - 1]);
    counts.letters += is_letter(text[i]);
    if (text[i] >= 'a' && text[i] <= 'z') text[i] -= 'a' - 'A';
  }
  return counts;
}

SCALAR static void write_verses(char* text) {
  for (int i = 0; i < length; ++i) text[i] = verse[i % verse_length];
}

int main(void) {
  static char text[1 + length], expected[1 + length];
  write_verses(text + 1);
  write_verses(expected + 1);
  const struct counts counts = count(text + 1);
  const struct counts expected_counts = count_scalar(expected + 1);
  check_equal("capitals", text, expected, sizeof(text));
  check_equal("counts", &counts, &expected_counts, sizeof(counts));
  printf("%.*s%lu lines, %lu words, %lu letters\n", verse_length, text + 1, counts.lines,
         counts.words, counts.letters);
  return 0;
}
