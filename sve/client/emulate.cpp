#include "sve/client/emulate.h"

#include <cstdio>

#include "dr_api.h"
#include "sve/client/counters.h"
#include "sve/client/thread_state.h"

namespace {

// The registers that the inserted code cannot transfer: it works in X26 and X27, and the host keeps
// X28 for itself. Their application values are in save slots.
struct slotted_register {
  unsigned number;
  dr_spill_slot_t slot;
};

constexpr slotted_register slotted_registers[] = {
    {26, SPILL_SLOT_1}, {27, SPILL_SLOT_2}, {28, SPILL_SLOT_3}};

}  // namespace

void emulate_instruction(unsigned int word, unsigned char* pc, decode_handler handler) {
  void* drcontext = dr_get_current_drcontext();
  cpu_state* state = sve::thread_state(drcontext);
  state->pc = reinterpret_cast<std::uint32_t*>(pc);
  for (const auto [number, slot] : slotted_registers) {
    state->x[number] = dr_read_saved_reg(drcontext, slot);
  }

  if (handler(state, word) == aarch64_decode_ok) {
    update_sve_stats(reinterpret_cast<unsigned int*>(pc), word);
  } else {
    std::fprintf(stderr, "Error: failed to emulate SVE instruction 0x%08x at PC %p\n",
                 *reinterpret_cast<unsigned int*>(pc), static_cast<void*>(pc));
  }

  for (const auto [number, slot] : slotted_registers) {
    dr_write_saved_reg(drcontext, slot, state->x[number]);
  }
}
