// Locks that fork leaves in order. The child has a copy of every lock and only one thread, so one
// that another thread held at that moment would stay locked in it for ever, with half-changed data
// behind it. So fork takes all of the host's locks before, and lets them go in both processes
// after.
#pragma once

#include <mutex>

namespace host {

// No other kind of lock will do: the C library lets the child's thread unlock a mutex, but its
// readers-writer lock looks at the owner's number.
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
