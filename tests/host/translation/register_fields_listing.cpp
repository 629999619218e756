// Writes random instruction words to a file, all with 28 in some field. Prints for each whether it
// names X28: n for no, y for yes, r if it is refused. Arguments: seed, count, file.
#include <cstdio>
#include <cstdlib>
#include <random>

#include "host/translation/control_flow.h"
#include "host/translation/mangle.h"
#include "host/translation/register_fields.h"

namespace {

using namespace host;

std::uint32_t random_word(std::mt19937& random) {
  std::uint32_t word = random();
  if (random() % 4 == 0) word = (word & ~(15u << 25)) | 2u << 25;  // more SVE than by chance
  for (const unsigned position : field_positions) {
    if (field(word, position + 4, position) == context_register) word ^= 8u << position;
  }
  return replace_field(word, field_positions[random() % field_positions.size()], context_register);
}

// Control flow and PC-relative instructions are decoded before the table is asked.
bool is_for_the_table(std::uint32_t word) {
  const bool pc_relative = (word & 0x1f000000) == 0x10000000 || (word & 0x3b000000) == 0x18000000;
  return !pc_relative && decode_control_flow(word, 0).kind == flow::none;
}

char answer(std::uint32_t word) {
  words mangled;
  if (!mangle(word, 0, mangled)) return 'r';
  return mangled.size() > 2 ? 'y' : 'n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  std::mt19937 random(static_cast<unsigned>(std::strtoul(argv[1], nullptr, 0)));
  std::FILE* const file = std::fopen(argv[3], "wb");
  if (file == nullptr) return 1;
  for (unsigned long count = std::strtoul(argv[2], nullptr, 0); count > 0;) {
    const std::uint32_t word = random_word(random);
    if (!is_for_the_table(word)) continue;
    std::fwrite(&word, sizeof word, 1, file);
    std::putchar(answer(word));
    count--;
  }
  return std::fclose(file) == 0 ? 0 : 1;
}
