// On x86-64, floating-point fast paths take the controls and flags only from the state.
#pragma once

#include "sve/state/cpu_state.h"

namespace conformance {

struct fp_registers_of {
  explicit fp_registers_of(const cpu_state& /*state*/) {}
};

}  // namespace conformance
