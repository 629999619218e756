// The state that a signal must preserve in the code it interrupts, and that no register of the
// processor holds: the upper parts of the Z registers, the predicates and the FFR.
//
// The kernel of a processor with SVE keeps them in the signal frame. Here they are kept outside it,
// keyed by the frame's address. When a handler returns, the code it interrupted gets its values
// back, however deeply handlers nest. A handler that jumps out never asks for them, so the
// registers stay as they are. Its entry is dropped when a new frame gets the same address, or when
// there are too many entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "sve/state/cpu_state.h"

namespace sve {

class saved_vectors {
 public:
  // The most entries that one thread keeps. Beyond that, the oldest entry is dropped.
  static constexpr std::size_t max_entries = 256;

  void save(std::uint64_t frame, const cpu_state& state);

  // Leaves the state alone if nothing was saved for the frame.
  void restore(std::uint64_t frame, cpu_state& state);

 private:
  struct entry {
    std::uint64_t frame;
    vector_register z[32];
    predicate_register p[17];  // the last is the FFR
  };

  void forget(std::uint64_t frame);

  std::deque<entry> entries_;
};

}  // namespace sve
