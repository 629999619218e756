#include "host/code_cache.h"

#include <algorithm>
#include <array>
#include <asm/sigcontext.h>
#include <atomic>
#include <cstring>
#include <sys/mman.h>

#include "host/address.h"
#include "host/fatal.h"

namespace host {
namespace {

constexpr std::size_t arena_bytes = 64u << 20;
static_assert(arena_bytes <= 128u << 20, "B and BL must reach from one end to the other");

// Entries that a lookup may touch: the mask selects one of 2^n, and probing goes on upward without
// wrapping round, through as many more.
constexpr std::size_t first_table_entries = 1u << 10;
constexpr std::size_t last_table_entries = 1u << 20;
constexpr std::size_t overflow_entries = 64;
constexpr std::size_t entry_bytes = 16;

void* map_memory(std::size_t bytes, int protection) {
  void* memory =
      mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) fatal("cannot map %zu bytes for the code cache", bytes);
  return memory;
}

// An empty table, good for every mask.
std::uint64_t empty_table() {
  static const void* const table =
      map_memory((last_table_entries + overflow_entries) * entry_bytes, PROT_READ);
  return address_of(table);
}

exit_record indirect_record = {.kind = exit_kind::indirect};

// Expects the target in X0, and X0 and X1 at home. Found: all registers are restored but X2, which
// the block's first word restores. Not found: the target goes to thread_context::pc.
constexpr std::array<std::uint32_t, 14> lookup_words = {
    0xa9010f82,  // stp  x2, x3, [x28, #16]
    0xa9538f82,  // ldp  x2, x3, [x28, #312]   table and mask
    0x8a000861,  // and  x1, x3, x0, lsl #2
    0x8b010041,  // add  x1, x2, x1
    0xa8c10823,  // ldp  x3, x2, [x1], #16     probe: address and code
    0xb40000c2,  // cbz  x2, miss
    0xcb000063,  // sub  x3, x3, x0
    0xb5ffffa3,  // cbnz x3, probe
    0xa9400780,  // ldp  x0, x1, [x28]
    0xf9400f83,  // ldr  x3, [x28, #24]
    0xd61f0040,  // br   x2
    0xf9008380,  // str  x0, [x28, #256]       miss: thread_context::pc
    0xa9410f82,  // ldp  x2, x3, [x28, #16]
    0xa9400780,  // ldp  x0, x1, [x28]
};
static_assert(CONTEXT_BRANCH_TABLE == 312 && CONTEXT_PC == 256);

// Expects X30 at home and the address of the record's address in X30.
constexpr std::array<std::uint32_t, 3> exit_words = {
    a64::store_home(0),                                 // str x0, [x28]
    a64::ldr(0, context_register, CONTEXT_EXIT_ENTRY),  // ldr x0, [x28, #328]
    a64::br(0),                                         // br  x0
};

// Places in it, by the index of a word.
constexpr std::size_t lookup_reads_table = 1;
constexpr std::size_t lookup_has_found = 9;  // X0 and X1 are the application's again
constexpr std::size_t lookup_has_missed = 11;

void synchronise(std::uint32_t* begin, std::uint32_t* end) {
  __builtin___clear_cache(reinterpret_cast<char*>(begin), reinterpret_cast<char*>(end));
}

std::int64_t distance(const std::uint32_t* from, const std::uint32_t* to) {
  return (to - from) * 4;
}

constexpr std::size_t stub_words = 4;

constexpr std::uint64_t nzcv_mask = 0xf0000000;

// The kernel always writes this record, and always before those that may lie elsewhere.
const fpsimd_context& vectors_of(const mcontext_t& interrupted) {
  const auto* record = reinterpret_cast<const _aarch64_ctx*>(interrupted.__reserved);
  while (record->magic != FPSIMD_MAGIC) {
    if (record->magic == 0) fatal("a signal frame has no record of the vector registers");
    record = pointer_to<const _aarch64_ctx>(address_of(record) + record->size);
  }
  return *reinterpret_cast<const fpsimd_context*>(record);
}

}  // namespace

code_cache::code_cache(thread_context& context)
    : context_(context),
      begin_(reinterpret_cast<std::uintptr_t>(
          map_memory(arena_bytes, PROT_READ | PROT_WRITE | PROT_EXEC))),
      end_(begin_ + arena_bytes) {
  flush();
}

code_cache::~code_cache() { munmap(pointer_to(begin_), arena_bytes); }

// str x30, [x28, #240]; bl exit; the record's address
std::uint32_t* code_cache::emit_stub(std::uint32_t* at, const exit_record* record) {
  *at++ = a64::store_home(30);
  *at = a64::bl(distance(at, exit_routine_));
  at++;
  const std::uint64_t address = address_of(record);
  std::memcpy(at, &address, sizeof address);
  return at + 2;
}

void code_cache::emit_shared_routines() {
  exit_routine_ = cursor_;
  cursor_ = std::ranges::copy(exit_words, cursor_).out;
  lookup_routine_ = cursor_;
  cursor_ = std::ranges::copy(lookup_words, cursor_).out;
  cursor_ = emit_stub(cursor_, &indirect_record);
  synchronise(exit_routine_, cursor_);
}

const fragment* code_cache::find(std::uint64_t pc) const {
  const auto found = by_pc_.find(pc);
  return found == by_pc_.end() ? nullptr : found->second;
}

const fragment* code_cache::install(std::uint64_t pc, const block_code& block) {
  const std::size_t size = 1 + block.code.size() + stub_words * block.exits.size();
  if (cursor_ + size > pointer_to<std::uint32_t>(end_)) return nullptr;
  fragment& made = fragments_.emplace_back(fragment{.pc = pc,
                                                    .code = cursor_,
                                                    .size = static_cast<std::uint32_t>(size),
                                                    .map = block.map,
                                                    .first_exit = exits_.size(),
                                                    .exit_count = block.exits.size()});
  *cursor_ = entry_word;
  std::uint32_t* const body = cursor_ + 1;
  std::uint32_t* stub = std::ranges::copy(block.code, body).out;
  for (const std::uint32_t index : block.lookups) {
    body[index] = a64::b(distance(body + index, lookup_routine_));
  }
  for (const open_exit& exit : block.exits) {
    exit_record& record = exits_.emplace_back(exit.record);
    record.branch = body + exit.index;
    record.stub = stub;
    *record.branch = a64::b(distance(record.branch, stub));
    stub = emit_stub(stub, &record);
  }
  synchronise(cursor_, stub);
  cursor_ = stub;
  by_pc_[pc] = &made;
  by_code_[address_of(made.code)] = &made;
  return &made;
}

void code_cache::link(const exit_record& exit, const fragment& target) {
  *exit.branch = a64::b(distance(exit.branch, target.code + 1));
  synchronise(exit.branch, exit.branch + 1);
}

void code_cache::insert(std::uint64_t pc, std::uint64_t code) {
  const std::size_t mask = table_.size() - overflow_entries - 1;
  std::size_t index = (pc / 4) & mask;
  while (index < table_.size() - 1 && table_[index].code != 0) {
    if (table_[index].pc == pc) return;
    index++;
  }
  if (index == table_.size() - 1) return;  // the last entry stays free, to end every probe
  table_[index] = {pc, code};
  table_used_++;
}

void code_cache::grow_table() {
  std::vector<branch_entry> old(2 * (table_.size() - overflow_entries) + overflow_entries);
  old.swap(table_);
  table_used_ = 0;
  for (const branch_entry& entry : old) {
    if (entry.code != 0) insert(entry.pc, entry.code);
  }
  point_context_at_table();
}

void code_cache::admit(const fragment& target) {
  point_context_at_table();
  const std::size_t entries = table_.size() - overflow_entries;
  if (table_used_ * 2 > entries && entries < last_table_entries) grow_table();
  insert(target.pc, address_of(target.code));
}

void code_cache::point_context_at_table() {
  const std::size_t entries = table_.size() - overflow_entries;
  context_.branch_mask = (entries - 1) * entry_bytes;
  context_.branch_table = address_of(table_.data());
}

void code_cache::flush() {
  fragments_.clear();
  exits_.clear();
  by_pc_.clear();
  by_code_.clear();
  table_.assign(first_table_entries + overflow_entries, {});
  table_used_ = 0;
  cursor_ = pointer_to<std::uint32_t>(begin_);
  emit_shared_routines();
  point_context_at_table();
}

void code_cache::forget_branches() {
  std::atomic_ref<std::uint64_t>(context_.branch_table).store(empty_table());
}

void code_cache::leave_soon(mcontext_t& interrupted) {
  const auto* const pc = pointer_to<const std::uint32_t>(interrupted.pc);
  const auto index = static_cast<std::size_t>(pc - lookup_routine_);
  if (pc < lookup_routine_ || index >= lookup_words.size()) return leave_soon_at(interrupted.pc);
  if (index >= lookup_has_missed) return;
  if (index >= lookup_has_found) return leave_soon_at(interrupted.regs[2]);
  forget_branches();
  if (index > lookup_reads_table) {
    interrupted.pc = address_of(lookup_routine_ + lookup_reads_table);
  }
}

void code_cache::leave_soon_at(std::uint64_t address) {
  const fragment* const running = fragment_at(address);
  if (running == nullptr) return;  // in the exit routine
  forget_branches();
  for (std::size_t i = 0; i < running->exit_count; i++) {
    const exit_record& exit = exits_[running->first_exit + i];
    *exit.branch = a64::b(distance(exit.branch, exit.stub));
    synchronise(exit.branch, exit.branch + 1);
  }
}

void code_cache::recover(const mcontext_t& interrupted, thread_context& context) const {
  const translated_pc instruction = at(interrupted.pc);
  const std::uint32_t at_home = instruction.borrowed | 1u << context_register;
  for (unsigned reg = 0; reg < 31; reg++) {
    if ((at_home >> reg & 1) == 0) context.x[reg] = interrupted.regs[reg];
  }
  context.sp = interrupted.sp;
  context.pc = instruction.pc;
  context.nzcv = interrupted.pstate & nzcv_mask;
  const fpsimd_context& vectors = vectors_of(interrupted);
  context.fpcr = vectors.fpcr;
  context.fpsr = vectors.fpsr;
  std::memcpy(context.q, vectors.vregs, sizeof context.q);
}

const fragment* code_cache::fragment_at(std::uint64_t address) const {
  const auto next = by_code_.upper_bound(address);
  return next == by_code_.begin() ? nullptr : std::prev(next)->second;
}

translated_pc code_cache::at(std::uint64_t address) const {
  const fragment* const found = fragment_at(address);
  if (found == nullptr) return {};
  const auto index = static_cast<std::int64_t>((address - address_of(found->code)) / 4) - 1;
  translated_pc last = {.index = 0, .pc = found->pc};
  for (const translated_pc& entry : found->map) {
    if (entry.index > index) break;
    last = entry;
  }
  return last;
}

}  // namespace host
