#include "sve/client/saved_vectors.h"

#include <algorithm>
#include <cstring>

namespace sve {

void saved_vectors::save(std::uint64_t frame, const cpu_state& state) {
  forget(frame);
  if (entries_.size() == max_entries) entries_.pop_front();
  entry& made = entries_.emplace_back();
  made.frame = frame;
  std::memcpy(made.z, state.z, sizeof made.z);
  std::memcpy(made.p, state.p, sizeof state.p);
  std::memcpy(made.p[16], state.ffr, sizeof state.ffr);
}

void saved_vectors::restore(std::uint64_t frame, cpu_state& state) {
  const auto found = std::ranges::find(entries_, frame, &entry::frame);
  if (found == entries_.end()) return;
  std::memcpy(state.z, found->z, sizeof state.z);
  std::memcpy(state.p, found->p, sizeof state.p);
  std::memcpy(state.ffr, found->p[16], sizeof state.ffr);
  entries_.erase(found);
}

void saved_vectors::forget(std::uint64_t frame) {
  std::erase_if(entries_, [frame](const entry& e) { return e.frame == frame; });
}

}  // namespace sve
