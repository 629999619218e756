// The decode maps: which handler, if any, serves an instruction word.
//
// They alone define what this system regards as an SVE instruction: a word that no map has stays in
// the application's code untouched. The maps, the listing and the tests all come from one table,
// sve/decode/instructions.inc.
//
// As everywhere, exported names are at global scope, and the library's own are in namespace sve.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "sve/decode/operand_text.h"
#include "sve/decode/operand_use.h"
#include "sve/state/decode_result.h"

struct cpu_state;

using decode_handler = aarch64_decode_rc (*)(cpu_state*, unsigned int);

// The handler for `word` as a pointer-sized value, or null if no map has it. Reads only the maps;
// any number of threads may call it at once.
decode_handler is_sve(unsigned int word);

// Decodes and runs the instruction at `pc` of the state. On success, it counts the instruction,
// advances `pc` by 4 and returns aarch64_decode_ok. If no map has the word, it leaves the state as
// it was and returns aarch64_decode_unimplemented. It passes on any other failure of the handler
// and leaves `pc` unchanged.
aarch64_decode_rc execute_sve_instruction(cpu_state* state);

namespace sve {

// What carries out an instruction form.
enum class row_kind : char {
  fast = 'F',    // a fast path on the machine state
  bridge = 'B',  // the reference semantics, through a bridge
  no_op = 'N',   // nothing: prefetches
};

// One row of the decode maps: one instruction form at one element type.
struct instruction_row {
  std::string_view pattern;   // 32 characters, bit 31 first: 0, 1 or the letter of an operand field
  std::string_view mnemonic;  // SMIN
  std::string_view name;      // VecS32MinVVM
  std::span<const operand_text> operands;  // how they are written, in the order of the line
  std::span<const operand_use> uses;       // what happens to their registers, in the same order
  decode_handler handler;
  std::size_t map;  // index into decode_map_names()
  int key;          // the row's key in that map
  row_kind kind;

  // The bits that the pattern fixes, and their values.
  std::uint32_t fixed_mask() const;
  std::uint32_t fixed_bits() const;

  // As on the architecture's encoding pages: SMIN <Zdn>.S, <Pg>/M, <Zdn>.S, <Zm>.S
  std::string syntax() const;
};

// All rows, in the order of the table, which is that of the architecture's encoding index.
std::span<const instruction_row> instruction_rows();

// Names of the maps, in the order in which is_sve probes them.
std::span<const std::string_view> decode_map_names();

// The row that serves `word`, or null.
const instruction_row* find_row(std::uint32_t word);

// The word as the assembler writes it, without aliases: smin z3.s, p5/m, z3.s, z9.s. A word that no
// row serves is written as .inst and the word.
std::string disassemble(std::uint32_t word);

}  // namespace sve

// The launcher looks these up by name in the client that it has loaded. They have C linkage, like
// the client's entry point and unlike all other code, so their symbols are the plain names.
extern "C" {

// Prints the table, one line for each row: pattern, kind, name, syntax.
void list_sve_instructions(std::FILE* out);

// Prints one line: the word, its text, the name of its row and what serves it. If no row has the
// word, the line says so.
void print_sve_disassembly(std::FILE* out, unsigned word);

// The vector length of this build, in bytes, for a host that reports it to programs.
unsigned sve_vector_bytes();

}  // extern "C"
