#include "host/threads/thread.h"

#include <csignal>
#include <ctime>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/fork_lock.h"
#include "host/translation/context_switch.h"

namespace host {
namespace {

constinit thread_local thread_state* bound_thread = nullptr;

fork_safe_mutex registry_mutex;
std::atomic<thread_state*> registry = nullptr;
std::atomic<int> active_threads = 0;
std::atomic<bool> ending = false;
pid_t process_id = getpid();  // the process whose threads are registered, not a vforked child

std::uint64_t read_tpidr() {
  std::uint64_t value = 0;
  asm("mrs %0, tpidr_el0" : "=r"(value));
  return value;
}

thread_state* find_free_record() {
  for (thread_state* thread = registry; thread != nullptr; thread = thread->next) {
    if (!thread->in_use) return thread;
  }
  return nullptr;
}

thread_state* add_record() {
  auto* thread = new thread_state;
  thread->next = registry;
  registry = thread;
  return thread;
}

constexpr timespec a_moment = {.tv_sec = 0, .tv_nsec = 1'000'000};

// Makes the thread check its attention word, wherever it is.
void poke(thread_state& thread) {
  std::atomic_ref(thread.context.attention).store(1);
  syscall(SYS_tgkill, process_id, thread.tid, stop_signal);
}

// A thread may be in a system call that no signal interrupts, and not answer for a long time. It
// will find the request when the call returns.
void wait_for_stop(thread_state& thread) {
  constexpr int attempts = 3000;
  for (int i = 0; i < attempts && thread.active; i++) nanosleep(&a_moment, nullptr);
}

}  // namespace

void thread_state::reset() {
  context = {};
  cache.flush();
  tls_fields = {};
  process = {};
  stale.take();
  stop_requested = false;
}

thread_state* current_thread() { return bound_thread; }

thread_state* acquire_thread() {
  const std::lock_guard lock(registry_mutex);
  if (ending) return nullptr;
  thread_state* thread = find_free_record();
  if (thread == nullptr) thread = add_record();
  thread->reset();
  thread->in_use = true;
  thread->active = true;
  active_threads++;
  return thread;
}

void bind_thread(thread_state& thread) {
  bound_thread = &thread;
  thread.tid = static_cast<pid_t>(syscall(SYS_gettid));
  thread.context.host_tpidr = read_tpidr();
  thread.context.exit_entry = address_of(&leave_cache_with_record);
  thread.context.call_entry = address_of(&call_client);
}

int retire_thread(thread_state& thread) {
  thread.active = false;
  return --active_threads;
}

void release_thread(thread_state& thread) {
  const std::lock_guard lock(registry_mutex);
  bound_thread = nullptr;
  thread.in_use = false;
}

thread_state* thread_of_cache_address(std::uint64_t address) {
  for (thread_state* thread = registry; thread != nullptr; thread = thread->next) {
    if (thread->cache.contains(address)) return thread;
  }
  return nullptr;
}

int active_thread_count() { return active_threads; }

// The records of the other threads are abandoned: fork may have caught them half-changed.
void keep_only(thread_state& survivor) {
  survivor.next = nullptr;
  survivor.tid = static_cast<pid_t>(syscall(SYS_gettid));
  survivor.stop_requested = false;
  registry = &survivor;
  active_threads = 1;
  ending = false;
  process_id = survivor.tid;
}

void for_each_active_thread(const std::function<void(thread_state&)>& visit) {
  for (thread_state* thread = registry; thread != nullptr; thread = thread->next) {
    if (thread->active) visit(*thread);
  }
}

void drop_translations(std::uint64_t start, std::uint64_t end) {
  for_each_active_thread([=](thread_state& thread) { thread.stale.add(start, end); });
}

void drop_translations_at_once(std::uint64_t start, std::uint64_t end) {
  drop_translations(start, end);
  thread_state* const self = current_thread();
  for_each_active_thread([self](thread_state& thread) {
    if (&thread == self || !thread.in_cache) return;
    poke(thread);
    while (thread.active && thread.in_cache && thread.stale.any()) {
      nanosleep(&a_moment, nullptr);
    }
  });
}

bool stop_other_threads() {
  {
    const std::lock_guard lock(registry_mutex);  // no thread can start after this
    if (ending.exchange(true)) return false;
  }
  thread_state* const self = current_thread();
  for_each_active_thread([self](thread_state& thread) {
    if (&thread == self) return;
    thread.stop_requested = true;
    poke(thread);
  });
  for_each_active_thread([self](thread_state& thread) {
    if (&thread != self) wait_for_stop(thread);
  });
  return true;
}

bool process_is_ending() { return ending; }

}  // namespace host
