// The writes of V registers that have not yet reached the Z registers.
//
// On a processor with SVE, an instruction that writes Vn clears the rest of Zn. Here the processor
// writes Vn, and the rest of Zn is in the cpu_state. So each thread has a mask of the V registers
// that were written since the last emulated instruction. It is in a raw slot of the thread's
// storage, which inserted code reaches by one instruction. Between two emulated instructions, a run
// of the program's own instructions adds the registers that it writes. Whoever looks at the Z
// registers pays the mask off first.
//
// The same mask says whether the thread has live SVE state. A system call clears everything but the
// V registers, as in the kernel. It only sets the mask: the state is cleared when it is needed.
#pragma once

#include <cstdint>

#include "dr_api.h"
#include "sve/state/cpu_state.h"

namespace sve {

// Bits 0 to 31 of the mask stand for V0 to V31. This bit says that the predicates and the FFR are
// to be cleared as well, and that the thread has no live SVE state.
inline constexpr std::uint64_t no_live_state = std::uint64_t{1} << 32;
inline constexpr std::uint64_t all_registers = 0xffffffff;

// Takes the slot from the host. Call it once, when the client starts. Returns false if the host has
// no slot.
bool reserve_pending_writes();

// The calling thread's mask. begin_pending_writes comes first, when the thread starts, and sets it.
void begin_pending_writes(std::uint64_t mask);
std::uint64_t& pending_writes();

// Clears what the mask and the further registers `run` say. The mask is 0 afterwards.
void pay_off_pending_writes(cpu_state& state, std::uint64_t run);

// Inserts code that adds the registers to the mask: at most 9 instructions, which change no
// register and no flag. Nothing if there are none.
void insert_pending_writes(void* drcontext, instrlist_t* block, instr_t* where, std::uint32_t run);

// Inserts code that sets the whole mask, ahead of a system call.
void insert_end_of_live_state(void* drcontext, instrlist_t* block, instr_t* where);

}  // namespace sve
