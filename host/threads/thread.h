// A thread of the application and all that the host keeps for it, and the registry of threads.
//
// Records of ended threads are used again and never freed: the signal entry walks the registry
// without a lock.
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

// Sent by one thread to another to have its attention: the process ends, or code has changed.
// Nothing else on Linux uses it.
inline constexpr int stop_signal = SIGSTKFLT;

// What the kernel would keep for a thread; the calls in host/processes see to it.
struct thread_process {
  std::uint64_t clear_child_tid = 0;    // where the thread's number is cleared at its end
  std::uint64_t robust_list = 0;        // that the kernel knows; 0: none
  bool is_vfork_child = false;          // its memory and all records are its parent's
  bool inherits_vector_length = false;  // PR_SVE_VL_INHERIT
};

// The record has a part for each floor that keeps something for a thread.
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

// The record of the calling thread; null on a thread that the host did not start.
thread_state* current_thread();

// A record for a new thread, registered as active; null if the process is ending.
thread_state* acquire_thread();

// Makes the record the calling thread's: its number, its TPIDR_EL0.
void bind_thread(thread_state& thread);

// Takes the thread out of the active ones. Returns how many are left.
int retire_thread(thread_state& thread);

// Makes the record available again; the thread must not touch it any more.
void release_thread(thread_state& thread);

// The thread in whose code cache an address lies, or null. Safe in a signal handler.
thread_state* thread_of_cache_address(std::uint64_t address);

int active_thread_count();

// After fork, in the child: no other thread is left. To be called with all locks held.
void keep_only(thread_state& survivor);

void for_each_active_thread(const std::function<void(thread_state&)>& visit);

// Makes every thread drop its translations of a range when it next leaves the cache or comes to an
// ISB.
void drop_translations(std::uint64_t start, std::uint64_t end);

// The same, and returns when no other thread runs any of them.
void drop_translations_at_once(std::uint64_t start, std::uint64_t end);

// Takes all other threads out of their code, runs their thread-exit events, and keeps them from
// running on. False: another thread has begun this already, and the caller is to stop as well.
bool stop_other_threads();

bool process_is_ending();

}  // namespace host
