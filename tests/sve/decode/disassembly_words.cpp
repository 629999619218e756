// Prints words of every row with random operand fields, one on each line: the name of the row, the
// word, its text.
//
// disassembly_words SEED COUNT: COUNT words for each row.
#include <cstdio>
#include <cstdlib>
#include <random>

#include "sve/decode/sve_utils.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::mt19937 random(static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)));
  const unsigned long count = std::strtoul(argv[2], nullptr, 10);
  for (const sve::instruction_row& row : sve::instruction_rows()) {
    for (unsigned long i = 0; i < count; ++i) {
      const std::uint32_t word =
          row.fixed_bits() | (static_cast<std::uint32_t>(random()) & ~row.fixed_mask());
      std::printf("%s %08x %s\n", std::string(row.name).c_str(), word,
                  sve::disassemble(word).c_str());
    }
  }
}
