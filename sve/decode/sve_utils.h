// The decode maps: which handler, if any, serves an instruction word.
//
// They are the single definition of what this system regards as an SVE instruction: a word that no
// map knows stays in the application's code untouched. Maps, listing and tests all come from the
// one table in sve/decode/instructions.inc.
//
// As everywhere, exported names stand at global scope, the library's own in namespace sve.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "sve/decode/operand_text.h"
#include "sve/state/cpu_state.h"

using decode_handler = aarch64_decode_rc (*)(cpu_state*, unsigned int);

// The handler for `word` as a pointer-sized value, or null if no map has it. Reads only the maps;
// any number of threads may call it at a time.
decode_handler is_sve(unsigned int word);

// Decodes and runs the instruction at `pc` of the state. On success counts it, advances `pc` by 4
// and returns aarch64_decode_ok. Returns aarch64_decode_unimplemented, with the state as it was,
// if no map has the word; passes on any other failure of the handler with `pc` unchanged.
aarch64_decode_rc execute_sve_instruction(cpu_state* state);

namespace sve {

// What carries an instruction form out.
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
// row serves is .inst and the word.
std::string disassemble(std::uint32_t word);

}  // namespace sve

// What the launcher looks up by name in the client that it has loaded. Like the client's entry
// point, and unlike all else, these have the linkage of C: their symbols are the plain names.
extern "C" {

// Prints the table, one line a row: pattern, kind, name, syntax.
void list_sve_instructions(std::FILE* out);

// Prints one line: the word, its text, the name of its row and what serves it; or that no row has
// it.
void print_sve_disassembly(std::FILE* out, unsigned word);

// The vector length of this build, in bytes, for a host that tells programs of it.
unsigned sve_vector_bytes();

}  // extern "C"
