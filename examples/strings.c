// strlen, memchr and strcmp with first-fault loads. These read beyond the end of a string without
// knowing whether there is memory: elements that could not be read are not set in the first-fault
// register. All strings here end where the memory ends, at an unreadable page. They begin at every
// distance from there that a vector can have.
#include <arm_sve.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "examples/check.h"

// Every distance up to two of the longest vectors, then some up to two pages.
enum { every_up_to = 512, then_by = 509 };

static size_t sve_strlen(const uint8_t* s) {
  const svbool_t all = svptrue_b8();
  for (size_t i = 0;;) {
    svsetffr();
    const svuint8_t bytes = svldff1(all, s + i);
    const svbool_t loaded = svrdffr();
    const svbool_t ends = svcmpeq(loaded, bytes, 0);
    const svbool_t before = svbrkb_z(loaded, ends);
    i += svcntp_b8(before, before);
    if (svptest_any(loaded, ends)) return i;
  }
}

static const uint8_t* sve_memchr(const uint8_t* s, uint8_t byte, size_t n) {
  for (size_t i = 0; i < n;) {
    const svbool_t pg = svwhilelt_b8(i, n);
    svsetffr();
    const svuint8_t bytes = svldff1(pg, s + i);
    const svbool_t loaded = svrdffr_z(pg);
    const svbool_t found = svcmpeq(loaded, bytes, byte);
    const svbool_t before = svbrkb_z(loaded, found);
    i += svcntp_b8(before, before);
    if (svptest_any(loaded, found)) return s + i;
  }
  return NULL;
}

// The first-fault register keeps the elements that both loads could read.
static int sve_strcmp(const uint8_t* a, const uint8_t* b) {
  const svbool_t all = svptrue_b8();
  for (size_t i = 0;;) {
    svsetffr();
    const svuint8_t x = svldff1(all, a + i), y = svldff1(all, b + i);
    const svbool_t loaded = svrdffr();
    const svbool_t ends = svorr_z(loaded, svcmpeq(loaded, x, 0), svcmpne(loaded, x, y));
    const svbool_t before = svbrkb_z(loaded, ends);
    i += svcntp_b8(before, before);
    if (svptest_any(loaded, ends)) return a[i] - b[i];
  }
}

SCALAR static size_t strlen_scalar(const uint8_t* s) {
  size_t i = 0;
  while (s[i] != 0) ++i;
  return i;
}

SCALAR static const uint8_t* memchr_scalar(const uint8_t* s, uint8_t byte, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if (s[i] == byte) return s + i;
  }
  return NULL;
}

SCALAR static int strcmp_scalar(const uint8_t* a, const uint8_t* b) {
  size_t i = 0;
  while (a[i] != 0 && a[i] == b[i]) ++i;
  return a[i] - b[i];
}

// The end of two readable pages, which an unreadable one follows.
static uint8_t* map_up_to_end(size_t page) {
  uint8_t* const pages =
      mmap(NULL, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED || mprotect(pages + 2 * page, page, PROT_NONE) != 0) {
    perror("strings");
    exit(1);
  }
  return pages + 2 * page;
}

// A string of `size` bytes, including the terminator, that ends at `end`.
SCALAR static uint8_t* write_string(uint8_t* end, size_t size) {
  for (size_t i = 0; i < size - 1; ++i) end[i - size] = (uint8_t)('a' + i % 26);
  end[-1] = 0;
  return end - size;
}

static void check_strlen(const uint8_t* s, uint64_t* characters) {
  const size_t length = sve_strlen(s), expected = strlen_scalar(s);
  check_equal("strlen", &length, &expected, sizeof(length));
  *characters += length;
}

static void check_memchr(const uint8_t* s, uint8_t byte, size_t n, uint64_t* found) {
  const uint8_t* const result = sve_memchr(s, byte, n);
  const uint8_t* const expected = memchr_scalar(s, byte, n);
  check_equal("memchr", &result, &expected, sizeof(result));
  *found += result != NULL;
}

static void check_strcmp(const uint8_t* a, const uint8_t* b, uint64_t outcomes[3]) {
  const int result = sve_strcmp(a, b), expected = strcmp_scalar(a, b);
  check_equal("strcmp", &result, &expected, sizeof(result));
  ++outcomes[result < 0 ? 0 : result == 0 ? 1 : 2];
}

int main(void) {
  const size_t page = (size_t)sysconf(_SC_PAGESIZE);
  uint8_t* const end = map_up_to_end(page);
  uint8_t* const other_end = map_up_to_end(page);
  uint64_t strings = 0, characters = 0, found = 0, outcomes[3] = {0, 0, 0};
  for (size_t size = 1; size <= 2 * page; size += size < every_up_to ? 1 : then_by, ++strings) {
    uint8_t* const s = write_string(end, size);
    check_strlen(s, &characters);
    check_memchr(s, 0, SIZE_MAX, &found);  // only its last byte
    check_memchr(s, '!', size, &found);    // none
    check_strcmp(s, write_string(other_end, size), outcomes);
    check_strcmp(s, write_string(other_end, size / 2 + 1), outcomes);
    other_end[-1 - (ptrdiff_t)(size / 4)] = '~';
    check_strcmp(s, other_end - (size / 2 + 1), outcomes);
  }
  printf("%lu strings, each up to an unreadable page\n", strings);
  printf("strlen: %lu characters\n", characters);
  printf("memchr: found %lu of %lu\n", found, 2 * strings);
  printf("strcmp: %lu less, %lu equal, %lu greater\n", outcomes[0], outcomes[1], outcomes[2]);
  return 0;
}
