// The bytes of a Z register above the lowest 16 outlive NEON code that writes the register, and the
// lowest 16 are shared with it in both directions. Ends with status 0 if that is so.
#include <stdio.h>

__asm__(".arch_extension sve");

int main(void) {
  static unsigned char after[256], copy[16];
  unsigned long bytes;
  __asm__ volatile(
      "cntb %0\n"
      "index z1.b, #0, #1\n"
      "str q1, [%2]\n"  // 0, 1, 2 ...: NEON sees what SVE wrote
      "movi v1.16b, #0xaa\n"
      "movi v2.16b, #1\n"
      "add v1.16b, v1.16b, v2.16b\n"
      "str z1, [%1]\n"
      : "=&r"(bytes)
      : "r"(after), "r"(copy)
      : "v1", "v2", "memory");
  for (unsigned k = 0; k < bytes; ++k) {
    const unsigned char expected = k < 16 ? 0xab : (unsigned char)k;
    if (after[k] == expected && (k >= 16 || copy[k] == k)) continue;
    printf("byte %u is 0x%02x instead of 0x%02x\n", k, after[k], expected);
    return 1;
  }
  return 0;
}
