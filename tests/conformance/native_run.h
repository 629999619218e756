// Carries out instructions on the processor with SVE and through the emulation.
#pragma once

#include <cstdint>
#include <span>

#include "tests/conformance/machine_image.h"

namespace conformance {

// The outcome of a run: no signal, or the signal that the instruction raised. For SIGSEGV and
// SIGBUS, it includes the address that the instruction could not access.
struct run_outcome {
  int signal = 0;
  std::uint64_t fault_address = 0;
};

// How many instructions prepare() takes at a time.
inline constexpr std::size_t max_prepared = 256;

// Takes over SIGILL, SIGSEGV and SIGBUS and makes the code page executable. Ends the program with a
// message if the processor lacks SVE at the vector length of the build.
void start_native_runs();

// Puts the instructions on the code page. It takes many at a time, because a translating host
// (qemu-user) translates a page again each time the page is written.
void prepare(std::span<const std::uint32_t> words);

// Runs prepared instruction `index` from `before`. `after` is only meaningful without a signal.
run_outcome run_native(std::size_t index, const machine_image& before, machine_image& after);

// The outcome of execute_sve_instruction().
struct emulated_outcome : run_outcome {
  aarch64_decode_rc rc = aarch64_decode_ok;
  std::int64_t pc_advance = 0;  // in instructions
};

// Runs `word` through the emulation on `state`, under the state's own FPCR and FPSR, as an
// application would run.
emulated_outcome run_emulated(std::uint32_t word, cpu_state& state);

}  // namespace conformance
