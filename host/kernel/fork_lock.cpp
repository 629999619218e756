#include "host/kernel/fork_lock.h"

#include <sched.h>

namespace host {

class all_locks {
 public:
  void add(fork_safe_mutex& lock) {
    const std::lock_guard guard(mutex_);
    lock.next_ = first_;
    first_ = &lock;
  }

  void remove(fork_safe_mutex& lock) {
    const std::lock_guard guard(mutex_);
    fork_safe_mutex** link = &first_;
    while (*link != &lock) link = &(*link)->next_;
    *link = lock.next_;
  }

  // Threads take these locks in no particular order, so none is waited for while others are held.
  void hold() {
    mutex_.lock();
    while (fork_safe_mutex* const refused = try_to_hold()) {
      let_go(refused);
      sched_yield();
    }
  }

  void release() {
    let_go(nullptr);
    mutex_.unlock();
  }

 private:
  // Returns the first lock that another thread has, and holds all before it. Returns null if it
  // holds all of them.
  fork_safe_mutex* try_to_hold() {
    fork_safe_mutex* lock = first_;
    while (lock != nullptr && lock->try_lock()) lock = lock->next_;
    return lock;
  }

  void let_go(const fork_safe_mutex* end) {
    for (fork_safe_mutex* lock = first_; lock != end; lock = lock->next_) lock->unlock();
  }

  std::mutex mutex_;
  fork_safe_mutex* first_ = nullptr;
};

namespace {

constinit all_locks locks;

}  // namespace

fork_safe_mutex::fork_safe_mutex() { locks.add(*this); }
fork_safe_mutex::~fork_safe_mutex() { locks.remove(*this); }

void hold_for_fork() { locks.hold(); }
void release_after_fork() { locks.release(); }

}  // namespace host
