// What a signal must not change in the code that it interrupts, and no register of the processor
// holds: the upper parts of the Z registers, the predicates and the FFR.
//
// The kernel of a processor with SVE keeps them in the signal frame. Here they wait beside it,
// under the frame's address: a handler that returns gets back what it interrupted, however handlers
// nest, and one that jumps out never asks, so that its registers stand as they are. What was saved
// for it goes when a frame comes to lie at the same address, or when too much has gathered.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "sve/state/cpu_state.h"

namespace sve {

class saved_vectors {
 public:
  // Handlers of one thread that are interrupted in turn. Beyond that, the oldest are forgotten.
  static constexpr std::size_t most = 256;

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
