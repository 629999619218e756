// A translated block before it has an address: its words, and what is still open in them.
#pragma once

#include <cstdint>
#include <vector>

#include "host/assembler.h"
#include "host/control_flow.h"

namespace host {

enum class exit_kind : std::uint8_t {
  direct,           // to `target`; the branch can be linked to the target's translation
  indirect,         // to thread_context::pc, not found by the lookup in the cache
  supervisor_call,  // the application's SVC; goes on at `target`
  invalidate,       // IC IVAU of the address in register `reg`; goes on at `target`
  refused,          // at the instruction `word` at `target`, which cannot be translated
  interrupted,      // taken out by the signal entry; the context is complete
};

// How a block is left: what the translator finds in thread_context::exit.
struct exit_record {
  exit_kind kind = exit_kind::direct;
  std::uint64_t target = 0;
  unsigned reg = 0;
  std::uint32_t word = 0;
  std::uint32_t* branch = nullptr;  // the branch to be linked, once the block has an address
  std::uint32_t* stub = nullptr;    // where it goes while it is not linked
};

struct open_exit {
  std::uint32_t index;  // of the word that shall branch to the exit
  exit_record record;
};

struct translated_pc {
  std::uint32_t index;  // of the first word that stands for the instruction
  std::uint64_t pc;
  std::uint32_t borrowed = 0;  // registers, by bit, that are at home while the instruction runs
};

struct block_code {
  words code;
  std::vector<open_exit> exits;
  std::vector<std::uint32_t> lookups;  // indices of words that shall branch to the indirect lookup
  std::vector<translated_pc> map;      // in ascending order of both
};

// The first word of each block: LDR X2, [X28, #16]. Who jumps here through X2 left it at home; a
// linked branch goes to the second word.
inline constexpr std::uint32_t entry_word = a64::load_home(2);

// Appends an exit that leaves the cache.
void emit_exit(const exit_record& record, block_code& out);

// Makes what is appended next stand for the instruction at `pc`.
void begin_instruction(std::uint64_t pc, block_code& out);

// Appends an application instruction that does not branch, or the exit that refuses it.
void emit_straight(std::uint32_t word, std::uint64_t pc, bool processor_has_sve, block_code& out);

// Appends an application instruction that ends a block, whose control flow is not `none`.
void emit_control_flow(std::uint32_t word, std::uint64_t pc, block_code& out);

}  // namespace host
