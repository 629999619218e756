// Calls the C library's routines that may have a version for SVE, on all small lengths, distances
// and overlaps, and prints a checksum for each routine. The program itself has no SVE.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

enum { room = 8192 };
static unsigned char bytes[room], other[room];
static uint64_t checksum;

static void add(uint64_t value) { checksum = (checksum ^ value) * 0x100000001b3; }

static void add_bytes(void) {
  for (int i = 0; i < room; i++) add(bytes[i]);
}

static void fill(void) {
  for (int i = 0; i < room; i++) bytes[i] = (unsigned char)(i * 37 % 251), other[i] = bytes[i] ^ 1;
}

static void report(const char* name) {
  printf("%-8s %016llx\n", name, (unsigned long long)checksum);
  checksum = 0xcbf29ce484222325;
}

// The volatile pointers keep the compiler from doing the work itself.
static void* (*volatile copy)(void*, const void*, size_t) = memcpy;
static void* (*volatile move)(void*, const void*, size_t) = memmove;
static void* (*volatile set)(void*, int, size_t) = memset;
static int (*volatile compare)(const void*, const void*, size_t) = memcmp;
static size_t (*volatile length)(const char*) = strlen;
static char* (*volatile find)(const char*, int) = strchr;

int main(void) {
  report("begin");
  for (size_t n = 0; n < 600; n += n < 300 ? 7 : 41) {
    for (size_t at = 0; at < 40; at += 13) {
      fill();
      copy(bytes + at, other + 100 + n % 9, n);
      add_bytes();
    }
  }
  report("memcpy");
  for (size_t n = 0; n < 900; n += 53) {
    for (int distance = -300; distance <= 300; distance += 97) {
      fill();
      move(bytes + 1000 + distance, bytes + 1000, n);
      add_bytes();
    }
  }
  report("memmove");
  for (size_t n = 0; n < 600; n += 29) {
    fill();
    set(bytes + n % 17, (int)n, n);
    add_bytes();
  }
  report("memset");
  fill();
  for (size_t n = 0; n < 600; n += 11) {
    memcpy(other, bytes, room);
    other[n] ^= 0x80;
    add(compare(bytes, other, n) == 0);
    add(compare(bytes, other, n + 1) < 0);
  }
  report("memcmp");
  for (size_t n = 0; n < 600; n += 11) {
    memset(bytes, 'a', room);
    bytes[n] = 'b';
    bytes[n + 5] = 0;
    add(length((char*)bytes));
    add((uint64_t)(find((char*)bytes, 'b') - (char*)bytes));
  }
  report("strings");
}
