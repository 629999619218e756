// A translated block that has no address yet: its words, and which of them are still open.
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
  indirect,         // to thread_context::pc, which the lookup did not find in the cache
  supervisor_call,  // the application's SVC; goes on at `target`
  synchronize,      // ISB: other threads may have changed code; goes on at `target`
  invalidate,       // IC IVAU of the address in register `reg`; goes on at `target`
  refused,          // the instruction `word` at `target` cannot be translated
  interrupted,      // the signal entry took the thread out; the context is complete
};

// How a block was left. The dispatcher finds this in thread_context::exit.
struct exit_record {
  exit_kind kind = exit_kind::direct;
  std::uint64_t target = 0;
  unsigned reg = 0;
  std::uint32_t word = 0;
  std::uint32_t* branch = nullptr;  // to be linked, once the block has an address; null: the
                                    // target's code took its place
  std::uint32_t* stub = nullptr;    // where the branch goes while it is not linked
};

struct open_exit {
  std::uint32_t index;  // of the word that will branch to the exit, with or without a condition
  exit_record record;
};

struct open_literal {
  std::uint32_t index;  // of the LDR (literal)
  std::uint64_t value;
};

// An indirect branch. It is BR X28 after a look into the register's branch table. If `reg` is
// no_table, it is a B to the shared lookup, with the target in X0, and X0 and X1 at home.
struct open_jump {
  std::uint32_t index;
  unsigned reg;
};
inline constexpr unsigned no_table = 31;

struct translated_pc {
  std::uint32_t index;  // of the first word of the instruction's translation
  std::uint64_t pc;
  std::uint32_t borrowed = 0;       // registers, by bit, that are at home while it runs
  unsigned x28 = context_register;  // holds the value of X28 then; X28: it is at home
};

struct block_code {
  words code;
  std::vector<open_exit> exits;
  std::vector<open_literal> literals;
  std::vector<std::uint32_t> reloads;  // indices of LDRs that will load the context's address
  std::optional<open_jump> jump;
  std::vector<translated_pc> map;  // ascending by index and by pc
};

// The words that look up the target in the register's branch table and branch to it. Not for X28.
// See host/translation/branch_tables.h.
words jump_by_table(unsigned reg);

// Appends an exit that leaves the cache.
void emit_exit(const exit_record& record, block_code& out);

// Marks what is appended next as the translation of the instruction at `pc`.
void begin_instruction(std::uint64_t pc, block_code& out);

// Appends an application instruction that does not branch, or the exit that refuses it.
void emit_straight(std::uint32_t word, std::uint64_t pc, bool processor_has_sve, block_code& out);

// Appends the instructions at `pc` from a load-exclusive to its store-exclusive, with no memory
// access added between them. If it returns false, nothing was appended, and each instruction must
// go through emit_straight.
bool emit_exclusive(std::span<const std::uint32_t> code, std::uint64_t pc, block_code& out);

bool is_load_exclusive(std::uint32_t word);
bool is_store_exclusive(std::uint32_t word);

// Appends an application instruction that ends a block: one whose control flow is not `none`.
void emit_control_flow(std::uint32_t word, std::uint64_t pc, block_code& out);

}  // namespace host
