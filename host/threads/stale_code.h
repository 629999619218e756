// The ranges of changed code whose translations one thread still has to drop.
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

  // Any thread may call this. A range that begins where the last one ends is joined to it.
  void add(std::uint64_t start, std::uint64_t end);

  [[nodiscard]] bool any() const { return any_; }

  // Only the thread itself may call this.
  std::vector<range> take();

 private:
  fork_safe_mutex mutex_;
  std::vector<range> ranges_;
  std::atomic<bool> any_ = false;
};

}  // namespace host
