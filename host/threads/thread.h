// The record of an application's thread, with everything that the host keeps for it, and the
// registry of these records.
//
// A record is never freed. When its thread has ended, another thread uses it. So the signal entry
// can walk the registry without a lock.
#pragma once

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <functional>
#include <sys/types.h>

#include "host/threads/stale_code.h"
#include "host/translation/branch_tables.h"
#include "host/translation/code_cache.h"
#include "host/translation/context.h"

namespace host {

struct thread_signals;

inline constexpr int tls_field_count = 16;

// One thread sends this signal to another to get its attention, because the process is ending or
// code has changed. Nothing else on Linux uses this signal.
inline constexpr int stop_signal = SIGSTKFLT;

// What the kernel would otherwise keep for a thread. The calls in host/processes use it.
struct thread_process {
  std::uint64_t clear_child_tid = 0;    // where the thread's number is cleared at its end
  std::uint64_t robust_list = 0;        // as registered with the kernel, or 0
  bool is_vfork_child = false;          // its memory and all records belong to its parent
  bool inherits_vector_length = false;  // PR_SVE_VL_INHERIT
};

// The record has one part for each floor that keeps something for a thread.
struct thread_state : followed_by_branch_tables {
  // Translation.
  thread_context context{};  // first: X28 points here, and a drcontext is this record's address
  code_cache cache{context};
  stale_code stale;
  std::atomic<bool> in_cache = false;  // or in a call from there; not in the dispatcher

  std::array<void*, tls_field_count> tls_fields{};  // the client's
  thread_signals* signals = nullptr;                // host/signals/thread_signals.h
  thread_process process;

  // The registry.
  pid_t tid = 0;
  std::atomic<bool> stop_requested = false;
  std::atomic<bool> active = false;  // between its thread-init and thread-exit events
  bool in_use = false;               // guarded by the registry's lock
  thread_state* next = nullptr;

  void reset();
};

// The record of the calling thread, or null on a thread that the host did not start.
thread_state* current_thread();

// A record for a new thread, registered as active, or null if the process is ending.
thread_state* acquire_thread();

// Makes this the record of the calling thread, and stores the thread's number and TPIDR_EL0 in it.
void bind_thread(thread_state& thread);

// Marks the thread as no longer active. Returns how many active threads are left.
int retire_thread(thread_state& thread);

// Makes the record available to other threads. Its thread must not touch it after this.
void release_thread(thread_state& thread);

// The thread whose code cache contains an address, or null. Safe in a signal handler.
thread_state* thread_of_cache_address(std::uint64_t address);

int active_thread_count();

// Call after fork in the child, where no other thread exists, with all locks held.
void keep_only(thread_state& survivor);

void for_each_active_thread(const std::function<void(thread_state&)>& visit);

// Makes every thread drop its translations of a range when it next leaves the cache or reaches an
// ISB.
void drop_translations(std::uint64_t start, std::uint64_t end);

// The same, but returns only when no other thread runs any of them.
void drop_translations_at_once(std::uint64_t start, std::uint64_t end);

// Stops all other threads: each leaves its code, runs its thread-exit events, and does not
// continue. Returns false if another thread has already begun this. The caller must then stop as
// well.
bool stop_other_threads();

bool process_is_ending();

}  // namespace host
