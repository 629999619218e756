// One thread's code cache: translated blocks, the way to find them, and the routines that they
// share. No other thread runs code from here, and only this thread changes it, with one exception:
// `forget_branches` may be called from anywhere.
//
// The arena starts with the exit routine and the indirect branch lookup. Each block is its words,
// followed by one stub for each of its exits. When the arena is full, or code was unmapped,
// everything is dropped at once; the caller must not be about to run any of it.
#pragma once

#include <csignal>
#include <cstdint>
#include <deque>
#include <map>
#include <ucontext.h>
#include <unordered_map>
#include <vector>

#include "host/block_code.h"
#include "host/context.h"

namespace host {

struct fragment {
  std::uint64_t pc = 0;
  std::uint32_t* code = nullptr;  // starts with entry_word
  std::uint32_t size = 0;         // in words, with the stubs
  std::vector<translated_pc> map;
  std::size_t first_exit = 0;  // in code_cache::exits_
  std::size_t exit_count = 0;
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

  // Copies a block into the arena. Null: no room; flush and try again.
  const fragment* install(std::uint64_t pc, const block_code& block);

  // Makes the exit's branch go straight to the fragment.
  static void link(const exit_record& exit, const fragment& target);

  // Makes the lookup in the cache find the fragment.
  void admit(const fragment& target);

  // Drops all translations.
  void flush();

  // Empties the lookup, so that the next indirect branch leaves the cache. Safe from any thread.
  void forget_branches();

  // For a signal handler on the cache's own thread, interrupted in the arena: makes the block that
  // runs, or that the shared lookup is about to run, leave to the dispatcher at its end, whatever
  // it was linked to. Its exits are linked again when they are next taken.
  void leave_soon(mcontext_t& interrupted);

  // The same for the block that holds an address: where a call of the client's returns to.
  void leave_soon_at(std::uint64_t address);

  // Makes the context the application's state before the instruction whose translation was
  // interrupted, which must be by a fault of the instruction itself. TPIDR_EL0 is left alone.
  void recover(const mcontext_t& interrupted, thread_context& context) const;

  // The application address of an instruction in the arena, or 0 for the shared routines.
  std::uint64_t application_pc(std::uint64_t address) const { return at(address).pc; }

 private:
  struct branch_entry {
    std::uint64_t pc;
    std::uint64_t code;  // 0: the entry is free
  };

  const fragment* fragment_at(std::uint64_t address) const;
  translated_pc at(std::uint64_t address) const;
  void emit_shared_routines();
  void point_context_at_table();
  void grow_table();
  void insert(std::uint64_t pc, std::uint64_t code);
  std::uint32_t* emit_stub(std::uint32_t* at, const exit_record* record);

  thread_context& context_;
  std::uintptr_t begin_;
  std::uintptr_t end_;
  std::uint32_t* cursor_ = nullptr;
  std::uint32_t* exit_routine_ = nullptr;
  std::uint32_t* lookup_routine_ = nullptr;
  std::deque<fragment> fragments_;
  std::deque<exit_record> exits_;
  std::unordered_map<std::uint64_t, const fragment*> by_pc_;
  std::map<std::uint64_t, const fragment*> by_code_;
  std::vector<branch_entry> table_;
  std::size_t table_used_ = 0;
};

}  // namespace host
