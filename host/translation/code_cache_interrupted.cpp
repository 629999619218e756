// A signal can interrupt its thread anywhere in the cache: in a block, an entry, a stub or a shared
// routine. The interrupted word shows which of them it was, and that decides what happens.
#include <algorithm>
#include <asm/sigcontext.h>
#include <cstring>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/translation/code_cache.h"
#include "host/translation/code_cache_words.h"

namespace host {
namespace {

constexpr std::uint64_t nzcv_mask = 0xf0000000;

bool is_load_of_x28(std::uint32_t word) { return (word & 0xff00001f) == (0x58000000 | 28); }
bool is_check(std::uint32_t word) { return (word & 0xffe0ffff) == a64::sub(28, 28, 0); }
bool is_branch_to_conflict(std::uint32_t word) { return (word & 0xff00001f) == a64::cbnz(28, 0); }

// The kernel always writes this record, and writes it before those that may lie elsewhere.
const fpsimd_context& vectors_of(const mcontext_t& interrupted) {
  const auto* record = reinterpret_cast<const _aarch64_ctx*>(interrupted.__reserved);
  while (record->magic != FPSIMD_MAGIC) {
    if (record->magic == 0) fatal("a signal frame has no record of the vector registers");
    record = pointer_to<const _aarch64_ctx>(address_of(record) + record->size);
  }
  return *reinterpret_cast<const fpsimd_context*>(record);
}

}  // namespace

void code_cache::leave_soon(mcontext_t& interrupted) {
  const auto* const pc = pointer_to<const std::uint32_t>(interrupted.pc);
  const auto index = static_cast<std::size_t>(pc - lookup_routine_);
  if (pc >= lookup_routine_ && index < lookup_words.size()) {
    leave_lookup(interrupted, index);
  } else if (const fragment* const running = fragment_at(interrupted.pc)) {
    leave_from(running);
  } else {
    leave_outside_of_blocks(interrupted);
  }
}

void code_cache::leave_soon_at(std::uint64_t address) { leave_from(fragment_at(address)); }

void code_cache::leave_lookup(mcontext_t& interrupted, std::size_t index) {
  if (index >= lookup_missed) return;
  if (index >= lookup_restored) {
    return leave_from(fragment_behind_entry(pointer_to<const std::uint32_t>(context_.entry)));
  }
  const std::size_t miss = index == 0 ? lookup_missed_early : lookup_missed;
  interrupted.pc = address_of(lookup_routine_ + miss);
}

// Handles entries, stubs and shared routines. An entry that has not yet loaded X28 again has
// changed nothing else, and neither has a conflict routine. So the branch's target counts as not
// found.
void code_cache::leave_outside_of_blocks(mcontext_t& interrupted) {
  const auto* const pc = pointer_to<const std::uint32_t>(interrupted.pc);
  const auto leave_by = [&](unsigned reg) { interrupted.pc = address_of(leave_routines_[reg]); };
  for (unsigned reg = 0; reg < conflict_routines_.size(); reg++) {
    const std::uint32_t* const conflict = conflict_routines_[reg];
    const bool comes_to_it = is_b(*pc) && target_of_b(pc) == conflict;
    if (comes_to_it || (pc >= conflict && pc < conflict + 3)) return leave_by(reg);
    if (pc == conflict + 3) {
      interrupted.pc = address_of(lookup_routine_ + lookup_missed_early);
      return;
    }
  }
  if (pc < end_of_routines_) return;
  if (is_load_of_x28(*pc) && is_check(pc[1])) return leave_by(field(pc[1], 20, 16));
  if (is_check(*pc)) return leave_by(field(*pc, 20, 16));
  if (is_branch_to_conflict(*pc)) return leave_by(field(pc[-1], 20, 16));
  if (is_load_of_x28(*pc)) return leave_from(fragment_behind_entry(pc));
  if (is_b(*pc)) leave_from(fragment_at(address_of(target_of_b(pc))));
}

const fragment* code_cache::fragment_behind_entry(const std::uint32_t* entry) const {
  const std::uint32_t* const next = entry + 1;
  if (const fragment* const behind = fragment_at(address_of(next))) return behind;
  return is_b(*next) ? fragment_at(address_of(target_of_b(next))) : nullptr;
}

// Includes the fragments that it runs into, since no branch lies between them. Until the thread has
// left the cache, it can only run the fragments changed here, so doing this once is enough.
void code_cache::leave_from(const fragment* running) {
  if (running == nullptr || leaving_ != nullptr) return;
  leaving_ = running;
  for (const fragment* each = running; each != nullptr; each = each->runs_into) {
    for (std::size_t i = 0; i < each->exit_count; i++) unlink(exits_[each->first_exit + i]);
    if (each->successor != nullptr) unlink(*each->successor);
  }
  set_jumps(running, true);
}

std::uint32_t* code_cache::way_out(unsigned reg) const {
  return reg == no_table ? lookup_routine_ + lookup_missed_early : leave_routines_[reg];
}

void code_cache::set_jumps(const fragment* first, bool leaving) {
  for (const fragment* each = first; each != nullptr; each = each->runs_into) {
    if (each->jump == nullptr) continue;
    const bool by_table = each->jump_register != no_table;
    const std::uint32_t* const to = leaving ? way_out(each->jump_register) : lookup_routine_;
    write(each->jump,
          !leaving && by_table ? a64::br(context_register) : a64::b(distance(each->jump, to)));
  }
}

void code_cache::settle() {
  if (leaving_ != nullptr) set_jumps(leaving_, false);
  leaving_ = nullptr;
}

void code_cache::recover(const mcontext_t& interrupted, thread_context& context) const {
  const translated_pc instruction = at(interrupted.pc);
  const std::uint32_t at_home = instruction.borrowed | 1u << context_register;
  for (unsigned reg = 0; reg < 31; reg++) {
    if ((at_home >> reg & 1) == 0) context.x[reg] = interrupted.regs[reg];
  }
  if (instruction.x28 != context_register) context.x[28] = interrupted.regs[instruction.x28];
  context.sp = interrupted.sp;
  context.pc = instruction.pc;
  context.nzcv = interrupted.pstate & nzcv_mask;
  const fpsimd_context& vectors = vectors_of(interrupted);
  context.fpcr = vectors.fpcr;
  context.fpsr = vectors.fpsr;
  std::memcpy(context.q, vectors.vregs, sizeof context.q);
}

const fragment* code_cache::fragment_at(std::uint64_t address) const {
  const auto* const word = pointer_to<const std::uint32_t>(address);
  const auto next = std::ranges::upper_bound(fragments_, word, {}, &fragment::code);
  if (next == fragments_.begin()) return nullptr;
  const fragment& found = *std::prev(next);
  return word < found.code + found.size ? &found : nullptr;
}

// Between two entries of the map, the address advances with each word, but not past the last
// instruction before the next entry.
translated_pc code_cache::at(std::uint64_t address) const {
  const fragment* const found = fragment_at(address);
  if (found == nullptr) return {};
  const auto index = static_cast<std::uint32_t>((address - address_of(found->code)) / 4);
  auto next = std::ranges::upper_bound(found->map, index, {}, &translated_pc::index);
  if (next == found->map.begin()) return {.index = 0, .pc = found->pc};
  translated_pc last = *std::prev(next);
  if (last.borrowed != 0) return last;
  const std::uint64_t end = next == found->map.end() ? found->end : next->pc;
  last.pc = std::min(last.pc + std::uint64_t{index - last.index} * 4, end - 4);
  return last;
}

}  // namespace host
