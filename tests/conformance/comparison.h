// Compares what the processor and what the emulation left behind.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/conformance/arena.h"
#include "tests/conformance/native_run.h"
#include "tests/conformance/states.h"

namespace conformance {

// One thing that differs: what it is, and its value before and after, native and emulated.
struct difference {
  std::string place;
  std::string before, native, emulated;
};

// Both outcomes of one case.
struct both_runs {
  const machine_image* native;
  const arena_content* native_memory;
  const cpu_state* emulated;
  const arena_content* emulated_memory;
  emulated_outcome outcome;
};

// Everything that differs: general registers and SP, all vector bytes, predicates and FFR, NZCV,
// FPSR, FPCR, memory, and how the emulation ended. Predicate bytes have to be 0 or 1.
std::vector<difference> compare(const test_case& tested, const both_runs& runs);

}  // namespace conformance
