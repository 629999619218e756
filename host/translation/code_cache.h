// One thread's code cache: the translated blocks, the means to find them, and the routines that
// they share. Only this thread runs code from here, and only this thread changes it.
//
// The arena is filled chunk by chunk. The first chunk begins with the shared routines. Blocks grow
// upward from the start of a chunk. What they only read or seldom run grows downward from its end:
// exit stubs, constants and entries. If the last branch of one block leads to the block right
// behind it, that block takes the branch's place, and the code falls through. Within a chunk, every
// branch and every LDR (literal) reaches its target.
//
// X28 is the only register that is ours in the cache. It holds the context's address. Code may use
// it for something else if it loads the context's address again afterwards; each chunk holds that
// address as a constant. When the cache is entered, and after an indirect branch, X28 is not the
// context's address, and an entry loads it:
//
//   ldr  x28, pc                    checked entry, from the branch table of XN
//   sub  x28, x28, xN
//   cbnz x28, conflict
//   ldr  x28, context               plain entry
//
// When the arena or its directory is full, the caller flushes, and every translation is dropped at
// once. It must not be about to run any of them.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <deque>
#include <ucontext.h>
#include <unordered_map>
#include <vector>

#include "host/translation/block_code.h"
#include "host/translation/context.h"

namespace host {

struct fragment {
  std::uint64_t pc = 0;
  std::uint64_t end = 0;  // address after its last instruction
  std::uint32_t* code = nullptr;
  std::uint32_t size = 0;            // in words
  std::uint32_t* entry = nullptr;    // plain
  std::uint32_t* checked = nullptr;  // entry for `checked_register` right before the code, if any
  unsigned checked_register = no_table;
  unsigned jump_register = no_table;
  std::uint32_t* jump = nullptr;        // the indirect branch at the end, if there is one
  const fragment* runs_into = nullptr;  // the fragment whose code took the last branch's place
  std::size_t first_exit = 0;           // in code_cache::exits_
  std::size_t exit_count = 0;
  exit_record* successor = nullptr;  // of a dropped fragment: the exit to the new translation
  std::vector<translated_pc> map;    // only entries that do not follow from the one before
};

class code_cache {
 public:
  explicit code_cache(thread_context& context);
  ~code_cache();
  code_cache(const code_cache&) = delete;
  code_cache& operator=(const code_cache&) = delete;

  [[nodiscard]] bool contains(std::uint64_t address) const {
    return address >= begin_ && address < end_;
  }
  const fragment* find(std::uint64_t pc) const;

  // Copies a block into the arena, placed to suit the exit that led here, if any. Returns null if
  // there is no room: flush and try again.
  const fragment* install(std::uint64_t pc, const block_code& block,
                          const exit_record* came_from = nullptr);

  // Makes the exit's branch go straight to the fragment.
  static void link(const exit_record& exit, const fragment& target);

  // Lets indirect branches through register `reg` find the fragment within the cache. With
  // no_table, only branches that use the shared lookup find it.
  void admit(const fragment& target, unsigned reg);

  // Drops all translations.
  void flush();

  // Drops the translations of application code in a range. Their first words become exits, so code
  // still linked to them reaches the new translation. Returns false if there is no room for the
  // exits.
  bool drop(std::uint64_t start, std::uint64_t end);

  // For a signal handler that has interrupted the cache's own thread in the arena. The block that
  // runs, or is about to run, will leave to the dispatcher at its end, whatever it was linked to.
  void leave_soon(mcontext_t& interrupted);

  // The same for the block that contains `address`, where a call to the client returns.
  void leave_soon_at(std::uint64_t address);

  // Call it when the thread has left the cache. Undoes leave_soon, except for direct exits: they
  // are linked again when they are next taken.
  void settle();

  // Fills the context with the application's state before the instruction whose translation was
  // interrupted. The interruption must be a fault of that instruction itself. TPIDR_EL0 is left
  // alone.
  void recover(const mcontext_t& interrupted, thread_context& context) const;

  // The application address of the block that contains an address in the arena, or 0 outside
  // blocks.
  std::uint64_t block_of(std::uint64_t address) const {
    const fragment* const found = fragment_at(address);
    return found == nullptr ? 0 : found->pc;
  }

 private:
  struct branch_entry {
    std::uint64_t pc;
    std::uint64_t code;  // 0: the entry is free
  };

  bool open_chunk(std::size_t words_needed);
  [[nodiscard]] bool has_room(std::size_t words_needed) const;
  void emit(std::uint32_t word) { *cursor_++ = word; }
  void emit_reload(std::uint32_t*& at) const;
  std::uint32_t* take_far(std::size_t count);
  std::uint32_t* far_literal(std::uint64_t value);
  std::uint32_t* far_stub(const exit_record& record);
  std::uint32_t* emit_stub(std::uint32_t* at, const exit_record& record);
  void emit_shared_routines();
  void emit_routines_of(unsigned reg);

  void begin_fragment(fragment& made, const exit_record* came_from);
  void take_place_of_last_branch(fragment& made);
  void emit_checked_entry(std::uint32_t*& at, std::uint64_t pc, unsigned reg);
  std::uint32_t* checked_entry_of(const fragment& target, unsigned reg);
  bool drop(fragment& stale);
  void close_open_words(const block_code& block, fragment& made);

  void prepare_branch_table(unsigned reg);
  void admit_to_table(const fragment& target, unsigned reg);
  void admit_to_lookup(const fragment& target);
  void point_context_at_lookup();
  void grow_lookup();
  void insert(std::uint64_t pc, std::uint64_t code);

  const fragment* fragment_at(std::uint64_t address) const;
  const fragment* fragment_behind_entry(const std::uint32_t* entry) const;
  translated_pc at(std::uint64_t address) const;
  void leave_lookup(mcontext_t& interrupted, std::size_t index);
  void leave_outside_of_blocks(mcontext_t& interrupted);
  void leave_from(const fragment* running);
  [[nodiscard]] std::uint32_t* way_out(unsigned reg) const;
  void set_jumps(const fragment* first, bool leaving);

  thread_context& context_;
  std::uintptr_t begin_;
  std::uintptr_t end_;
  std::uint32_t* cursor_ = nullptr;
  std::uint32_t* far_ = nullptr;     // the lowest word taken from the chunk's end
  std::uint32_t* reload_ = nullptr;  // where this chunk holds the context's address
  std::uint32_t* next_chunk_ = nullptr;
  std::uint32_t* exit_routine_ = nullptr;
  std::uint32_t* lookup_routine_ = nullptr;
  std::uint32_t* end_of_routines_ = nullptr;
  std::array<std::uint32_t*, 31> leave_routines_{};     // by register: to the dispatcher
  std::array<std::uint32_t*, 31> conflict_routines_{};  // by register: to the shared lookup
  std::array<bool, 31> has_branch_table_{};
  std::deque<fragment> fragments_;  // in ascending order of code
  std::deque<exit_record> exits_;
  std::unordered_map<std::uint64_t, fragment*> by_pc_;
  std::vector<branch_entry> lookup_;
  std::size_t lookup_used_ = 0;
  const fragment* leaving_ = nullptr;  // the fragment that leave_soon changed
};

}  // namespace host
