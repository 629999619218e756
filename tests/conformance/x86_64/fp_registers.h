// Here the fast paths of floating point take controls and flags from the state alone.
#pragma once

#include "sve/state/cpu_state.h"

namespace conformance {

struct fp_registers_of {
  explicit fp_registers_of(const cpu_state& /*state*/) {}
};

}  // namespace conformance
