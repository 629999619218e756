#include "host/threads/stale_code.h"

#include <mutex>

namespace host {

void stale_code::add(std::uint64_t start, std::uint64_t end) {
  const std::lock_guard lock(mutex_);
  if (!ranges_.empty() && ranges_.back().second == start) {
    ranges_.back().second = end;
  } else {
    ranges_.emplace_back(start, end);
  }
  any_ = true;
}

std::vector<stale_code::range> stale_code::take() {
  const std::lock_guard lock(mutex_);
  any_ = false;
  return std::exchange(ranges_, {});
}

}  // namespace host
