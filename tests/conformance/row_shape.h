// What a row's pattern and name say about its words: operand fields, element size, memory access.
//
// A name consists of Vec, an element tag, an operation stem and shape letters. For example, the
// memory form VecS64Load2SVZ has containers of 64 bits, sign-extends 2 bytes of memory, takes a
// scalar base plus scaled vector offsets, and zeroes inactive elements.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "sve/decode/sve_utils.h"

namespace conformance {

struct operand_field {
  char letter;
  std::uint32_t mask;
  unsigned width;
};

// Which memory a form accesses, beginning at its address.
enum class access_shape {
  contiguous,    // a run of elements that takes the registers of a list in turn
  replicated,    // one element
  quadword,      // the first 16 bytes' worth of elements
  whole_vector,  // LDR and STR
  whole_predicate,
  gathered,  // one address for each element
};

// How the address is formed from the fields n, m and i.
enum class address_shape {
  scalar_immediate,  // Rn and a multiple of some number of bytes
  scalar_scalar,     // Rn + Rm times the memory size
  vector_immediate,  // Zn + i times the memory size
  scalar_vector,     // Rn + Zm
};

struct memory_form {
  access_shape access;
  address_shape address;
  unsigned container;  // bytes of a register element
  unsigned memory;     // bytes of a memory element
  unsigned registers = 1;
  unsigned immediate_unit;     // bytes for one unit of the immediate in a scalar_immediate form
  unsigned offset_scale = 1;   // the factor of a vector offset
  bool signed_offset = false;  // X: the offset is the sign-extended low word of an element
  bool word_offset = false;    // X, Y and 32-bit containers
  bool speculative = false;    // first-fault and non-fault: the whole run must be mapped
};

struct row_shape {
  const sve::instruction_row* row;
  std::vector<operand_field> fields;
  unsigned element_bytes;  // of the element tag; 1 if the name has none
  unsigned operand_bytes;  // of the operand; fewer than the element has in some conversions
  bool floating;           // the operands are floating-point numbers
  std::optional<memory_form> memory;

  bool has(char letter) const { return find(letter) != nullptr; }
  const operand_field* find(char letter) const;

  // The value of the field; 0 if the row has no such field.
  unsigned value(char letter, std::uint32_t word) const;
  int signed_value(char letter, std::uint32_t word) const;
};

row_shape describe(const sve::instruction_row& row);

}  // namespace conformance
