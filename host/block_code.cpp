#include "host/block_code.h"

#include "host/context.h"
#include "host/mangle.h"

namespace host {
namespace {

constexpr std::uint32_t open_branch = a64::b(0);

void emit_link(std::uint64_t pc, block_code& out) {
  append(out.code, a64::mov_constant(30, pc + 4));
}

void emit_direct(const control_flow& branch, std::uint64_t pc, block_code& out) {
  if (branch.links) emit_link(pc, out);
  emit_exit({.kind = exit_kind::direct, .target = branch.target}, out);
}

// The same condition, over a distance that fits even TBZ; the far branches follow it.
std::uint32_t with_offset(std::uint32_t word, unsigned offset) {
  const bool is_test = (word & 0x7e000000) == 0x36000000;
  const std::uint32_t offset_mask = is_test ? 0x3fffu << 5 : 0x7ffffu << 5;
  return (word & ~offset_mask) | (offset / 4) << 5;
}

void emit_conditional(std::uint32_t word, const control_flow& branch, std::uint64_t pc,
                      block_code& out) {
  const exit_record not_taken = {.kind = exit_kind::direct, .target = pc + 4};
  const exit_record taken = {.kind = exit_kind::direct, .target = branch.target};
  if (!branch.tests_register || branch.reg != context_register) {
    out.code.push_back(with_offset(word, 8));
    emit_exit(not_taken, out);
    return emit_exit(taken, out);
  }
  out.code.push_back(a64::store_home(0));
  out.code.push_back(a64::ldr(0, context_register, home_of(28)));
  out.code.push_back(with_offset(replace_field(word, 0, 0), 12));
  out.code.push_back(a64::load_home(0));
  emit_exit(not_taken, out);
  out.code.push_back(a64::load_home(0));
  emit_exit(taken, out);
}

// X0 holds the target; its own value is at home, and so is that of X1.
void emit_authentication(const control_flow& branch, block_code& out) {
  if (branch.authenticate == 0) return;
  out.map.back().borrowed = 0b11;
  unsigned modifier = branch.modifier;
  if (branch.has_modifier && (modifier == 0 || modifier == context_register)) {
    out.code.push_back(a64::ldr(1, context_register, home_of(modifier)));
    modifier = 1;
  }
  out.code.push_back(branch.has_modifier ? replace_field(branch.authenticate, 5, modifier)
                                         : branch.authenticate);
}

void emit_indirect(const control_flow& branch, std::uint64_t pc, block_code& out) {
  out.code.push_back(a64::stp(0, 1, context_register, 0));
  if (branch.reg == context_register) {
    out.code.push_back(a64::ldr(0, context_register, home_of(28)));
  } else if (branch.reg != 0) {
    out.code.push_back(a64::mov(0, branch.reg));
  }
  emit_authentication(branch, out);
  if (branch.links) emit_link(pc, out);
  out.lookups.push_back(static_cast<std::uint32_t>(out.code.size()));
  out.code.push_back(open_branch);
}

}  // namespace

void begin_instruction(std::uint64_t pc, block_code& out) {
  if (!out.map.empty() && out.map.back().pc == pc) return;
  out.map.push_back({static_cast<std::uint32_t>(out.code.size()), pc});
}

void emit_exit(const exit_record& record, block_code& out) {
  out.exits.push_back({static_cast<std::uint32_t>(out.code.size()), record});
  out.code.push_back(open_branch);
}

void emit_straight(std::uint32_t word, std::uint64_t pc, bool processor_has_sve, block_code& out) {
  begin_instruction(pc, out);
  const bool is_sve = field(word, 28, 25) == 2;
  if (is_sve && !processor_has_sve) return out.code.push_back(word);  // raises SIGILL
  const mangling done = mangle(word, pc, out.code);
  out.map.back().borrowed = done.borrowed;
  if (!done) emit_exit({.kind = exit_kind::refused, .target = pc, .word = word}, out);
}

void emit_control_flow(std::uint32_t word, std::uint64_t pc, block_code& out) {
  begin_instruction(pc, out);
  const control_flow branch = decode_control_flow(word, pc);
  switch (branch.kind) {
    case flow::none: break;
    case flow::direct: return emit_direct(branch, pc, out);
    case flow::conditional: return emit_conditional(word, branch, pc, out);
    case flow::indirect: return emit_indirect(branch, pc, out);
    case flow::supervisor_call:
      return emit_exit({.kind = exit_kind::supervisor_call, .target = pc + 4}, out);
    case flow::invalidate:
      return emit_exit({.kind = exit_kind::invalidate, .target = pc + 4, .reg = branch.reg}, out);
    case flow::unknown:
      return emit_exit({.kind = exit_kind::refused, .target = pc, .word = word}, out);
  }
}

}  // namespace host
