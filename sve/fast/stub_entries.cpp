#include "sve/fast/stub_entries.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

using namespace sve::stub;

namespace {

rc report(const cpu_state* state, const char* name) {
  std::fprintf(stderr, "Unimplemented instruction: [  %tx:\t %08x\t %s  ]\n",
               reinterpret_cast<std::ptrdiff_t>(state->pc),
               static_cast<std::uint32_t>(state->instr), name);
  return aarch64_decode_unimplemented;
}

}  // namespace

#define STUB(name, ...) \
  rc name(cpu_state* state, __VA_ARGS__) { return report(state, #name); }
#include "sve/fast/stub_entries.inc"
