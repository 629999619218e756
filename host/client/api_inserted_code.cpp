// The client interface's save slots, stolen register, raw slots and inserted call.
#include <algorithm>
#include <cstdarg>
#include <mutex>

#include "host/client/instruction_list.h"
#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/fork_lock.h"
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

// --- Raw slots -----------------------------------------------------------------------------------

namespace {

host::fork_safe_mutex raw_tls_mutex;
bool raw_tls_taken[host::raw_tls_slots];

constexpr uint displacement_of_raw_slot(uint index) { return CONTEXT_RAW_TLS + 8 * index; }

bool are_free(uint first, uint count) {
  return std::all_of(raw_tls_taken + first, raw_tls_taken + first + count,
                     [](bool taken) { return !taken; });
}

unsigned raw_slot_displacement(const char* function, reg_id_t base, uint displacement) {
  const bool in_slots = displacement >= CONTEXT_RAW_TLS && displacement % 8 == 0 &&
                        displacement < displacement_of_raw_slot(host::raw_tls_slots);
  if (base != DR_REG_X28 || !in_slots) fatal("%s: there is no slot at %u", function, displacement);
  return displacement;
}

}  // namespace

bool dr_raw_tls_calloc(reg_id_t* tls_register, uint* offset, uint num_slots, uint /*alignment*/) {
  const std::lock_guard lock(raw_tls_mutex);
  for (uint first = 0; first + num_slots <= host::raw_tls_slots; first++) {
    if (!are_free(first, num_slots)) continue;
    std::fill_n(raw_tls_taken + first, num_slots, true);
    *tls_register = DR_REG_X28;
    *offset = displacement_of_raw_slot(first);
    return true;
  }
  return false;
}

bool dr_raw_tls_cfree(uint offset, uint num_slots) {
  const std::lock_guard lock(raw_tls_mutex);
  const uint first = (offset - CONTEXT_RAW_TLS) / 8;
  if (first >= host::raw_tls_slots || num_slots > host::raw_tls_slots - first) return false;
  std::fill_n(raw_tls_taken + first, num_slots, false);
  return true;
}

void* dr_get_dr_segment_base(reg_id_t /*tls_register*/) { return &host::current_thread()->context; }

void dr_insert_read_raw_tls(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                            reg_id_t tls_register, uint tls_offs, reg_id_t reg) {
  const unsigned number = usable_register("dr_insert_read_raw_tls", reg);
  const unsigned at = raw_slot_displacement("dr_insert_read_raw_tls", tls_register, tls_offs);
  host::insert_word(*ilist, where, OP_ldr, a64::ldr(number, context_register, at), true);
}

void dr_insert_write_raw_tls(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                             reg_id_t tls_register, uint tls_offs, reg_id_t reg) {
  const unsigned number = usable_register("dr_insert_write_raw_tls", reg);
  const unsigned at = raw_slot_displacement("dr_insert_write_raw_tls", tls_register, tls_offs);
  host::insert_word(*ilist, where, OP_str, a64::str(number, context_register, at), true);
}

// --- Calls ---------------------------------------------------------------------------------------

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
