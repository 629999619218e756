// A translated block before it has an address: its words, and what is still open in them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/translation/assembler.h"
#include "host/translation/control_flow.h"

namespace host {

// Long enough that few straight runs of code are cut, short enough that a block of calls to the
// client still fits the arena many times over.
inline constexpr int max_instructions = 64;
inline constexpr std::uint64_t max_block_bytes = std::uint64_t{max_instructions} * 4;

enum class exit_kind : std::uint8_t {
  direct,           // to `target`; the branch can be linked to the target's translation
  indirect,         // to thread_context::pc, not found by the lookup in the cache
  supervisor_call,  // the application's SVC; goes on at `target`
  synchronize,      // ISB: other threads may have changed code; goes on at `target`
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
  std::uint32_t* branch = nullptr;  // to be linked, once the block has an address; null: the target
                                    // stands in its place
  std::uint32_t* stub = nullptr;    // where it goes while it is not linked
};

struct open_exit {
  std::uint32_t index;  // of the word that shall branch to the exit, always or by its condition
  exit_record record;
};

struct open_literal {
  std::uint32_t index;  // of the LDR (literal)
  std::uint64_t value;
};

// An indirect branch: BR X28 behind a look into the table of a register, or, if that is no_table,
// a B that shall go to the shared lookup, with the target in X0, and X0 and X1 at home.
struct open_jump {
  std::uint32_t index;
  unsigned reg;
};
inline constexpr unsigned no_table = 31;

struct translated_pc {
  std::uint32_t index;  // of the first word that stands for the instruction
  std::uint64_t pc;
  std::uint32_t borrowed = 0;  // registers, by bit, that are at home while the instruction runs
  unsigned x28 = context_register;  // the register that holds X28 then; itself: it is at home
};

struct block_code {
  words code;
  std::vector<open_exit> exits;
  std::vector<open_literal> literals;
  std::vector<std::uint32_t> reloads;  // indices of LDRs that shall load X28 with the context
  std::optional<open_jump> jump;
  std::vector<translated_pc> map;  // in ascending order of both
};

// The look into the table of a register, but X28, and the branch
// (host/translation/branch_tables.h).
words jump_by_table(unsigned reg);

// Appends an exit that leaves the cache.
void emit_exit(const exit_record& record, block_code& out);

// Makes what is appended next stand for the instruction at `pc`.
void begin_instruction(std::uint64_t pc, block_code& out);

// Appends an application instruction that does not branch, or the exit that refuses it.
void emit_straight(std::uint32_t word, std::uint64_t pc, bool processor_has_sve, block_code& out);

// Appends the instructions at `pc` from a load-exclusive to its store-exclusive without accesses to
// memory between. False, with nothing appended: each is to be appended as a straight one.
bool emit_exclusive(std::span<const std::uint32_t> code, std::uint64_t pc, block_code& out);

bool is_load_exclusive(std::uint32_t word);
bool is_store_exclusive(std::uint32_t word);

// Appends an application instruction that ends a block, whose control flow is not `none`.
void emit_control_flow(std::uint32_t word, std::uint64_t pc, block_code& out);

}  // namespace host
