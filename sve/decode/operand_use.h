// What an instruction does with the vector or predicate register of an operand.
#pragma once

#include <cstdint>

namespace sve {

enum class register_file : std::uint8_t { none, vector, predicate };

enum class access : std::uint8_t {
  read,
  written,
  updated,      // read and written
  transferred,  // written by a load, read by a store
};

// The use of a descriptor's operand. It is empty for an immediate, for a general register, and for
// a vector register of which only the low element is read.
struct operand_use {
  register_file file = register_file::none;
  char letter = 0;  // the field with the register's number
  access how = access::read;
  unsigned registers = 1;      // of a list, which goes on at Z0 after Z31
  unsigned element_bytes = 0;  // if only the element is read whose number is in field i: its size
  bool merges = false;         // a governing predicate: inactive elements of the destination stay
};

// How an operand that the assembler writes once is used. It follows from the letter of the field.
constexpr access usual_access(char letter) {
  if (letter == 'd') return access::written;
  return letter == 't' ? access::transferred : access::read;
}

}  // namespace sve
