// What cache code knows about its thread: the record that X28 points at while the code runs.
//
// Every register of the application has a home here. Cache code that borrows a register keeps the
// application's value in its home meanwhile. So nothing is ever stored on the application's stack,
// and the application's state is known at every instruction. X28 itself is at home, except where
// another register holds its value (host/translation/mangle.h).
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/translation/context_offsets.h"

namespace host {

struct exit_record;

inline constexpr unsigned raw_tls_slots = 8;

struct alignas(16) thread_context {
  std::uint64_t x[31];
  std::uint64_t sp;
  std::uint64_t pc;
  std::uint64_t nzcv;
  std::uint64_t fpcr;
  std::uint64_t fpsr;
  std::uint64_t tpidr;
  std::uint64_t host_sp;  // of the frame that entered the cache
  std::uint64_t host_tpidr;
  std::uint64_t branch_table;  // of the indirect branch lookup
  std::uint64_t branch_mask;
  std::uint64_t exit_entry;  // leave_cache_with_record
  std::uint64_t call_entry;  // call_client
  const exit_record* exit;   // how the cache was left
  std::uint64_t attention;   // set: a signal, stale code or the end is pending; leave soon
  std::uint64_t slots[9];    // the client's save slots
  std::uint64_t entry;       // the next block's entry, to load into X28 and jump there
  alignas(16) std::uint8_t q[32][16];
  std::uint64_t raw_tls[raw_tls_slots];  // the client's
};

// The assembly and the emitted code address these fields by number.
static_assert(offsetof(thread_context, x) == 0, "LDP and STP of X0..X3 use displacements 0 and 16");
static_assert(offsetof(thread_context, sp) == CONTEXT_SP);
static_assert(offsetof(thread_context, pc) == CONTEXT_PC);
static_assert(offsetof(thread_context, nzcv) == CONTEXT_NZCV);
static_assert(offsetof(thread_context, fpcr) == CONTEXT_FPCR);
static_assert(offsetof(thread_context, fpsr) == CONTEXT_FPSR);
static_assert(offsetof(thread_context, tpidr) == CONTEXT_TPIDR);
static_assert(offsetof(thread_context, host_sp) == CONTEXT_HOST_SP);
static_assert(offsetof(thread_context, host_tpidr) == CONTEXT_HOST_TPIDR);
static_assert(offsetof(thread_context, branch_table) == CONTEXT_BRANCH_TABLE);
static_assert(offsetof(thread_context, branch_mask) == CONTEXT_BRANCH_TABLE + 8,
              "table and mask are loaded by one LDP");
static_assert(CONTEXT_BRANCH_TABLE <= 504, "must be <= 504 for LDP to reach it");
static_assert(offsetof(thread_context, exit_entry) == CONTEXT_EXIT_ENTRY);
static_assert(offsetof(thread_context, call_entry) == CONTEXT_CALL_ENTRY);
static_assert(offsetof(thread_context, exit) == CONTEXT_EXIT);
static_assert(offsetof(thread_context, attention) == CONTEXT_ATTENTION);
static_assert(offsetof(thread_context, slots) == CONTEXT_SLOTS);
static_assert(offsetof(thread_context, entry) == CONTEXT_ENTRY);
static_assert(offsetof(thread_context, q) == CONTEXT_Q);
static_assert(offsetof(thread_context, raw_tls) == CONTEXT_RAW_TLS);
static_assert(CONTEXT_Q % 16 == 0, "LDR and STR of a Q register scale their displacement by 16");

// The displacement of a general register's home from X28.
constexpr unsigned home_of(unsigned reg) { return reg * 8; }

}  // namespace host
