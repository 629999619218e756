#include "sve/client/architectural.h"

#include "drmgr.h"
#include "sve/client/emulate.h"
#include "sve/client/fault_tolerant_loads.h"
#include "sve/client/memory_emulation.h"
#include "sve/client/pending_writes.h"
#include "sve/client/program_access.h"
#include "sve/client/runs.h"
#include "sve/client/signal_record.h"
#include "sve/client/transfer.h"

namespace sve {
namespace {

constexpr bool is_supervisor_call(std::uint32_t word) { return (word & 0xffe0001f) == 0xd4000001; }

// For instructions that touch no memory.
void emulate_after_run(unsigned int word, unsigned char* pc, decode_handler handler,
                       std::uint64_t run, std::uint64_t /*unused*/) {
  pay_off_pending_writes(*current_access().state, run);
  emulate_instruction(word, pc, handler);
}

extended_call call_for(const instruction_row& row, std::uint32_t word, std::uint32_t run) {
  if (!accesses_memory(word)) return {emulate_after_run, row.handler, run, 0};
  const std::uint64_t kept = destinations_of(row, word).packed();
  if (!is_fault_tolerant(row)) return {emulate_memory_instruction, row.handler, run, kept};
  return {emulate_fault_tolerant_load, is_sve(plain_load_of(word)), run, kept};
}

// An instruction of the program itself has faulted. The writes before it in its run count, and
// later ones do not.
bool event_restore_state(void* /*drcontext*/, bool /*restore_memory*/,
                         dr_restore_state_info_t* info) {
  const auto* const begin =
      reinterpret_cast<const std::uint32_t*>(dr_fragment_app_pc(info->fragment_info.tag));
  pending_writes() |=
      written_before(begin, reinterpret_cast<const std::uint32_t*>(info->mcontext->pc));
  return true;
}

instr_t* last_app(instrlist_t* block) {
  instr_t* last = instrlist_last(block);
  while (last != nullptr && !instr_is_app(last)) last = instr_get_prev(last);
  return last;
}

}  // namespace

bool start_architectural() {
  deliver_faults_to_program();
  put_vectors_into_signal_frames();
  return reserve_pending_writes() && drmgr_register_restore_state_ex_event(event_restore_state);
}

void begin_architectural_thread(void* drcontext, cpu_state* state) {
  begin_pending_writes(no_live_state);
  begin_program_accesses(drcontext, state);
}

void end_architectural_thread(void* drcontext) { end_program_accesses(drcontext); }

unsigned rewrite_architectural(void* drcontext, instrlist_t* block, cpu_state* state) {
  instr_t* const last = last_app(block);
  const bool calls = last != nullptr && is_supervisor_call(word_of(last));
  const unsigned others = rewrite_runs(
      drcontext, block,
      [=](instr_t* instr, std::uint32_t word, const instruction_row& row, std::uint32_t run) {
        insert_emulation(drcontext, block, instr, state, call_for(row, word, run));
      });
  if (calls) insert_end_of_live_state(drcontext, block, last);
  return others;
}

}  // namespace sve
