// What one thread has been told of code that has changed, and has not yet dropped.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/kernel/fork_lock.h"

namespace host {

class stale_code {
 public:
  using range = std::pair<std::uint64_t, std::uint64_t>;  // start and end

  // From any thread. A range next to the last one makes one with it.
  void add(std::uint64_t start, std::uint64_t end);

  [[nodiscard]] bool any() const { return any_; }

  // On the thread itself.
  std::vector<range> take();

 private:
  fork_safe_mutex mutex_;
  std::vector<range> ranges_;
  std::atomic<bool> any_ = false;
};

}  // namespace host
