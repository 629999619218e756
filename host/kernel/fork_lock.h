// Locks that stay usable after fork. The child has a copy of every lock but only one thread. If
// another thread held a lock at that moment, the child's copy would stay locked for ever, held by a
// thread that does not exist in the child, and the data behind it might be half-changed. So all of
// the host's locks are taken before fork, and released in both processes after it.
#pragma once

#include <mutex>

namespace host {

// No other kind of lock will do: the C library lets the child's thread unlock a mutex, but its
// readers-writer lock checks the owner's thread number.
class fork_safe_mutex final : public std::mutex {
 public:
  fork_safe_mutex();
  ~fork_safe_mutex();
  fork_safe_mutex(const fork_safe_mutex&) = delete;
  fork_safe_mutex& operator=(const fork_safe_mutex&) = delete;

 private:
  friend class all_locks;
  fork_safe_mutex* next_ = nullptr;
};

void hold_for_fork();
void release_after_fork();  // in the parent and in the child

}  // namespace host
