#include "host/client/block_builder.h"

#include <asm/hwcap.h>
#include <sys/auxv.h>

#include "host/client/events.h"
#include "host/client/instruction_list.h"
#include "host/kernel/address.h"
#include "host/memory/memory_map.h"

namespace host {
namespace {

constexpr std::uint64_t page_bytes = 4096;

bool processor_has_sve() {
  static const bool has = (getauxval(AT_HWCAP) & HWCAP_SVE) != 0;
  return has;
}

// Appends the block's instructions and returns the address after the last.
std::uint64_t discover(std::uint64_t pc, instrlist_t& list) {
  for (int count = 0; count < max_instructions; count++) {
    if ((count == 0 || pc % page_bytes == 0) && !is_executable(pc)) break;
    auto* const bits = pointer_to<byte>(pc);
    instr_t* const instr = instr_create_app(nullptr, bits, bits);
    instrlist_append(&list, instr);
    pc += 4;
    if (decode_control_flow(instr->word, pc - 4).kind != flow::none) break;
  }
  return pc;
}

bool ends_block(const instr_t& instr) {
  return instr.raw_bits != nullptr && decode_control_flow(instr.word, 0).kind != flow::none;
}

void emit(const instr_t& instr, block_code& out) {
  const auto pc = address_of(instr.pc);
  if (pc != 0) begin_instruction(pc, out);
  if (instr.meta) return out.code.push_back(instr.word);
  if (ends_block(instr)) return emit_control_flow(instr.word, pc, out);
  emit_straight(instr.word, pc, processor_has_sve(), out);
}

// Appends everything from a load-exclusive to its store-exclusive, if only the application's
// straight-line code lies between them, and returns the store-exclusive. Otherwise appends nothing
// and returns null.
const instr_t* emit_exclusive_from(const instr_t& first, block_code& out) {
  if (first.raw_bits == nullptr || !is_load_exclusive(first.word)) return nullptr;
  words code;
  for (const instr_t* instr = &first; instr != nullptr; instr = instr->next) {
    if (instr->raw_bits == nullptr || ends_block(*instr)) return nullptr;
    code.push_back(instr->word);
    if (!is_store_exclusive(instr->word)) continue;
    return emit_exclusive(code, address_of(first.pc), out) ? instr : nullptr;
  }
  return nullptr;
}

}  // namespace

std::optional<block_code> build_block(thread_state& thread, std::uint64_t pc) {
  instrlist_t list;
  note_translated(pc, pc + max_block_bytes);  // before it is read, so that no change is missed
  const std::uint64_t end = discover(pc, list);
  if (end == pc) return std::nullopt;
  run_block_events(thread, pc, list);
  block_code out;
  out.code.reserve(2 * (end - pc) / 4 + 1);
  out.map.reserve((end - pc) / 4);
  for (const instr_t* instr = list.first; instr != nullptr; instr = instr->next) {
    const instr_t* const last = emit_exclusive_from(*instr, out);
    if (last == nullptr) emit(*instr, out);
    if (last != nullptr) instr = last;
  }
  if (list.last == nullptr || !ends_block(*list.last)) {
    emit_exit({.kind = exit_kind::direct, .target = end}, out);
  }
  return out;
}

}  // namespace host
