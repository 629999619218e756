// CRC-32 of many messages at once, one in each lane. A gather from a vector of addresses takes the
// next byte of each message, and another looks up the remainders in the table. A lane becomes
// inactive as soon as its message has ended.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { messages = 77, digits = 9 };

static const char text[] =
    "123456789 is what every checksum is tried on, and a pangram like the quick brown fox on the "
    "lazy dog has all letters.";

static void crc32_of_each(uint32_t* crcs, const uint64_t* addresses, const uint64_t* sizes,
                          const uint32_t* table) {
  for (int64_t i = 0; i < messages; i += (int64_t)svcntd()) {
    const svbool_t pg = svwhilelt_b64(i, (int64_t)messages);
    svuint64_t address = svld1(pg, addresses + i);
    const svuint64_t end = svadd_x(pg, address, svld1(pg, sizes + i));
    svuint64_t crc = svdup_u64(0xffffffff);
    for (svbool_t on = svcmplt(pg, address, end); svptest_any(pg, on);
         on = svcmplt(on, address, end)) {
      const svuint64_t byte = svld1ub_gather_u64(on, address);
      const svuint64_t index = svand_x(on, sveor_x(on, crc, byte), 0xff);
      const svuint64_t entry = svld1uw_gather_index_u64(on, table, index);
      crc = sveor_m(on, svlsr_m(on, crc, 8), entry);
      address = svadd_m(on, address, 1);
    }
    svst1w(pg, crcs + i, svnot_x(pg, crc));
  }
}

SCALAR static uint32_t shift_bits(uint32_t crc, int bits) {
  for (; bits > 0; --bits) crc = crc >> 1 ^ (crc % 2 != 0 ? 0xedb88320 : 0);
  return crc;
}

SCALAR static uint32_t crc32_scalar(const char* message, uint64_t size) {
  uint32_t crc = 0xffffffff;
  for (uint64_t i = 0; i < size; ++i) crc = shift_bits(crc ^ (uint8_t)message[i], 8);
  return ~crc;
}

int main(void) {
  static uint32_t table[256], crcs[messages], expected[messages];
  static uint64_t addresses[messages], sizes[messages];
  for (uint32_t i = 0; i < 256; ++i) table[i] = shift_bits(i, 8);
  for (uint64_t i = 0; i < messages; ++i) {  // 0 to 43 bytes long; the second has the nine digits
    const char* const message = text + (i == 1 ? 0 : i);
    addresses[i] = (uintptr_t)message;
    sizes[i] = i * digits % 44;
    expected[i] = crc32_scalar(message, sizes[i]);
  }
  crc32_of_each(crcs, addresses, sizes, table);
  check_equal("checksums", crcs, expected, sizeof(crcs));
  printf("\"%.*s\" %08x, %d messages %016lx\n", digits, text, crcs[1], messages,
         fingerprint(crcs, sizeof(crcs)));
  return 0;
}
