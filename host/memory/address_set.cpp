#include "host/memory/address_set.h"

#include <iterator>

namespace host {

void address_set::cut(std::uint64_t start, std::uint64_t end) {
  if (start >= end) return;
  auto at = ranges_.lower_bound(start);
  if (at != ranges_.begin() && std::prev(at)->second > start) --at;
  while (at != ranges_.end() && at->first < end) {
    const auto [first, last] = *at;
    at = ranges_.erase(at);
    if (first < start) ranges_[first] = start;
    if (last > end) ranges_[end] = last;
  }
}

void address_set::put(std::uint64_t start, std::uint64_t end) {
  if (start >= end) return;
  cut(start, end);
  auto next = ranges_.lower_bound(start);
  if (next != ranges_.begin() && std::prev(next)->second == start) {
    start = std::prev(next)->first;
  }
  if (next != ranges_.end() && next->first == end) {
    end = next->second;
    ranges_.erase(next);
  }
  ranges_[start] = end;
}

bool address_set::contains(std::uint64_t address) const {
  const auto next = ranges_.upper_bound(address);
  return next != ranges_.begin() && std::prev(next)->second > address;
}

}  // namespace host
