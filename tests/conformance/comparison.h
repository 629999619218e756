// Compares the outcome on the processor with the outcome of the emulation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/conformance/arena.h"
#include "tests/conformance/native_run.h"
#include "tests/conformance/states.h"

namespace conformance {

// One difference: what differs, its value before, and its native and emulated values after.
struct difference {
  std::string place;
  std::string before, native, emulated;
};

// Both outcomes of a case.
struct both_runs {
  const machine_image* native;
  const arena_content* native_memory;
  const cpu_state* emulated;
  const arena_content* emulated_memory;
  emulated_outcome outcome;
};

// All differences: in general registers and SP, all vector bytes, predicates and FFR, NZCV, FPSR,
// FPCR, memory, and the way the emulation ended. Predicate bytes must be 0 or 1.
std::vector<difference> compare(const test_case& tested, const both_runs& runs);

}  // namespace conformance
