#include "host/translation/block_code.h"

#include "host/translation/branch_tables.h"
#include "host/translation/context.h"
#include "host/translation/mangle.h"

namespace host {
namespace {

constexpr std::uint32_t open_branch = a64::b(0);

std::uint32_t next_index(const block_code& out) {
  return static_cast<std::uint32_t>(out.code.size());
}

void emit_literal(unsigned t, std::uint64_t value, block_code& out) {
  out.literals.push_back({next_index(out), value});
  out.code.push_back(load_literal(t));
}

void emit_reload(block_code& out) {
  out.reloads.push_back(next_index(out));
  out.code.push_back(reload_context);
}

void emit_link(std::uint64_t pc, block_code& out) { emit_literal(30, pc + 4, out); }

void emit_direct(const control_flow& branch, std::uint64_t pc, block_code& out) {
  if (branch.links) emit_link(pc, out);
  emit_exit({.kind = exit_kind::direct, .target = branch.target}, out);
}

// The same condition with another offset, which must be small enough for TBZ.
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
    out.exits.push_back({next_index(out), taken});
    out.code.push_back(with_offset(word, 0));
    return emit_exit(not_taken, out);
  }
  out.code.push_back(a64::ldr(context_register, context_register, home_of(28)));
  out.code.push_back(with_offset(word, 12));
  emit_reload(out);
  emit_exit(not_taken, out);
  emit_reload(out);
  emit_exit(taken, out);
}

// X0 holds the target. The application's X0 and X1 are at home.
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

// Leaves the target in X0, and the application's X0 and X1 at home.
void emit_target(const control_flow& branch, block_code& out) {
  out.code.push_back(a64::stp(0, 1, context_register, 0));
  if (branch.reg == context_register) {
    out.code.push_back(a64::ldr(0, context_register, home_of(28)));
  } else if (branch.reg != 0) {
    out.code.push_back(a64::mov(0, branch.reg));
  }
  emit_authentication(branch, out);
}

// Whether the branch's register still holds the application's target when the branch is taken.
bool has_table(const control_flow& branch) {
  const bool is_overwritten = branch.links && branch.reg == 30;
  return branch.authenticate == 0 && branch.reg != context_register &&
         branch.reg != zero_register && !is_overwritten;
}

void emit_indirect(const control_flow& branch, std::uint64_t pc, block_code& out) {
  if (has_table(branch)) {
    if (branch.links) emit_link(pc, out);
    append(out.code, jump_by_table(branch.reg));
    out.jump = {next_index(out) - 1, branch.reg};
  } else {
    emit_target(branch, out);
    if (branch.links) emit_link(pc, out);
    out.jump = {next_index(out), no_table};
    out.code.push_back(open_branch);
  }
}

// Records the words from `index` on that are still open.
void note_open_words(std::uint32_t index, const mangling& done, block_code& out) {
  for (; index < out.code.size(); index++) {
    if (out.code[index] == reload_context) out.reloads.push_back(index);
    if (is_load_literal(out.code[index])) out.literals.push_back({index, done.literal.value()});
  }
}

}  // namespace

words jump_by_table(unsigned reg) {
  constexpr unsigned x28 = context_register;
  words out;
  const unsigned number = branch_table_of(reg);
  if (number != 0) out.push_back(a64::add_pages(x28, x28, number * branch_pages));
  out.push_back(a64::bfi(x28, reg, 3, branch_slot_bits));
  out.push_back(a64::ldr(x28, x28, branch_slot_displacement));
  out.push_back(a64::br(x28));
  return out;
}

void begin_instruction(std::uint64_t pc, block_code& out) {
  if (!out.map.empty() && out.map.back().pc == pc) return;
  out.map.push_back({next_index(out), pc});
}

void emit_exit(const exit_record& record, block_code& out) {
  out.exits.push_back({next_index(out), record});
  out.code.push_back(open_branch);
}

void emit_straight(std::uint32_t word, std::uint64_t pc, bool processor_has_sve, block_code& out) {
  begin_instruction(pc, out);
  const bool is_sve = field(word, 28, 25) == 2;
  if (is_sve && !processor_has_sve) return out.code.push_back(word);  // raises SIGILL
  const std::uint32_t index = next_index(out);
  const mangling done = mangle(word, pc, out.code);
  note_open_words(index, done, out);
  out.map.back().borrowed = done.borrowed;
  if (!done) emit_exit({.kind = exit_kind::refused, .target = pc, .word = word}, out);
}

bool is_load_exclusive(std::uint32_t word) { return (word & 0x3fc00000) == 0x08400000; }
bool is_store_exclusive(std::uint32_t word) { return (word & 0x3fc00000) == 0x08000000; }

bool emit_exclusive(std::span<const std::uint32_t> code, std::uint64_t pc, block_code& out) {
  const auto reg = substitute_for_x28(code);
  if (!reg) return false;
  begin_instruction(pc, out);
  out.code.push_back(a64::store_home(*reg));
  out.code.push_back(a64::ldr(*reg, context_register, home_of(28)));
  for (const std::uint32_t word : code) {
    begin_instruction(pc, out);
    out.map.back().borrowed = 1u << *reg;
    out.map.back().x28 = *reg;
    out.code.push_back(with_substitute(word, *reg));
    pc += 4;
  }
  out.code.push_back(a64::str(*reg, context_register, home_of(28)));
  out.code.push_back(a64::load_home(*reg));
  return true;
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
    case flow::synchronize:
      out.code.push_back(word);
      return emit_exit({.kind = exit_kind::synchronize, .target = pc + 4}, out);
    case flow::unknown:
      return emit_exit({.kind = exit_kind::refused, .target = pc, .word = word}, out);
  }
}

}  // namespace host
