// The client interface's save slots, stolen register and inserted call.
#include <cstdarg>

#include "host/client/instruction_list.h"
#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/threads/thread.h"
#include "host/translation/context.h"

namespace {

using host::context_register;
using host::fatal;
namespace a64 = host::a64;

unsigned usable_register(const char* function, reg_id_t reg) {
  if (reg < DR_REG_X0 || reg > DR_REG_X30 || reg == DR_REG_X28) {
    fatal("%s: register %d is not X0 to X27, X29 or X30", function, reg);
  }
  return static_cast<unsigned>(reg - DR_REG_X0);
}

unsigned slot_displacement(const char* function, int slot) {
  if (slot < 0 || slot > SPILL_SLOT_MAX) fatal("%s: there is no slot %d", function, slot);
  return CONTEXT_SLOTS + 8 * static_cast<unsigned>(slot);
}

reg_t& slot_of(const char* function, void* drcontext, int slot) {
  slot_displacement(function, slot);
  return static_cast<host::thread_state*>(drcontext)->context.slots[slot];
}

}  // namespace

reg_id_t dr_get_stolen_reg() { return DR_REG_X28; }

void dr_save_reg(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                 dr_spill_slot_t slot) {
  const unsigned number = usable_register("dr_save_reg", reg);
  const unsigned displacement = slot_displacement("dr_save_reg", slot);
  host::insert_word(*ilist, where, OP_str, a64::str(number, context_register, displacement), true);
}

void dr_restore_reg(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                    dr_spill_slot_t slot) {
  const unsigned number = usable_register("dr_restore_reg", reg);
  const unsigned displacement = slot_displacement("dr_restore_reg", slot);
  host::insert_word(*ilist, where, OP_ldr, a64::ldr(number, context_register, displacement), true);
}

reg_t dr_read_saved_reg(void* drcontext, dr_spill_slot_t slot) {
  return slot_of("dr_read_saved_reg", drcontext, slot);
}

void dr_write_saved_reg(void* drcontext, dr_spill_slot_t slot, reg_t value) {
  slot_of("dr_write_saved_reg", drcontext, slot) = value;
}

bool dr_insert_get_stolen_reg_value(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                                    reg_id_t reg) {
  const unsigned number = usable_register("dr_insert_get_stolen_reg_value", reg);
  host::insert_word(*ilist, where, OP_ldr, a64::ldr(number, context_register, host::home_of(28)),
                    true);
  return true;
}

bool dr_insert_set_stolen_reg_value(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                                    reg_id_t reg) {
  const unsigned number = usable_register("dr_insert_set_stolen_reg_value", reg);
  host::insert_word(*ilist, where, OP_str, a64::str(number, context_register, host::home_of(28)),
                    true);
  return true;
}

// mov x0, #argument...; mov x9, #callee; ldr x10, [x28, #call_entry]; blr x10
void dr_insert_call_velox(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, app_pc pc,
                          void* callee, uint num_args, ...) {
  constexpr uint max_arguments = 8;
  if (num_args > max_arguments) {
    fatal("dr_insert_call_velox: %u arguments; at most %u can be passed", num_args, max_arguments);
  }
  host::words code;
  va_list arguments;
  va_start(arguments, num_args);
  for (uint i = 0; i < num_args; i++) {
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it misses AArch64's va_start
    const opnd_t argument = va_arg(arguments, opnd_t);
    if (argument.kind != opnd_kind::immed_int) {
      fatal("dr_insert_call_velox: argument %u is not an immediate", i);
    }
    auto value = static_cast<std::uint64_t>(argument.value);
    if (argument.size == OPSZ_4) value = static_cast<std::uint32_t>(value);
    host::append(code, a64::mov_constant(i, value));
  }
  va_end(arguments);
  host::append(code, a64::mov_constant(9, host::address_of(callee)));
  code.push_back(a64::ldr(10, context_register, CONTEXT_CALL_ENTRY));
  for (const std::uint32_t word : code) {
    instr_set_translation(host::insert_word(*ilist, where, OP_UNDECODED, word, true), pc);
  }
  instr_set_translation(host::insert_word(*ilist, where, OP_blr, a64::blr(10), true), pc);
}
