#include "host/translation/code_cache.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>

#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/translation/branch_tables.h"
#include "host/translation/code_cache_words.h"
#include "host/translation/mangle.h"

namespace host {
namespace {

constexpr std::size_t arena_bytes = 64u << 20;
static_assert(arena_bytes <= 128u << 20, "B and BL must reach from one end to the other");

// Bounds the memory that is used besides the arena.
constexpr std::size_t max_fragments = 1u << 17;

constexpr std::size_t chunk_words = (32u << 10) / 4;
static_assert(chunk_words * 4 <= 32u << 10, "TBZ must reach from one end to the other");

// A larger block gets a chunk of its own size. TBZ still reaches its stub there: it is the block's
// last word but one, and its stub lies just behind the block.
constexpr std::size_t max_chunk_words = (1u << 20) / 4;
static_assert(max_chunk_words * 4 <= 1u << 20, "LDR (literal) must reach the end");

// The number of entries in the lookup. The mask selects one of 2^n. Probing goes upward from there
// without wrapping round, so overflow_entries follow the last.
constexpr std::size_t first_lookup_entries = 1u << 10;
constexpr std::size_t last_lookup_entries = 1u << 18;
constexpr std::size_t overflow_entries = 64;
constexpr std::size_t entry_bytes = 16;

// Exit records for indirect branches whose target was not found in the cache, by register.
constexpr auto indirect_records = [] {
  std::array<exit_record, 32> records{};
  for (unsigned reg = 0; reg < records.size(); reg++) {
    records[reg] = {.kind = exit_kind::indirect, .reg = reg};
  }
  return records;
}();

// Expects the application's X30 at home. X30 is the address of a word that holds the record's
// address.
constexpr std::array<std::uint32_t, 3> exit_words = {
    a64::store_home(0),                                 // str x0, [x28]
    a64::ldr(0, context_register, CONTEXT_EXIT_ENTRY),  // ldr x0, [x28, #328]
    a64::br(0),                                         // br  x0
};

constexpr std::size_t stub_words = 4;
constexpr std::size_t literal_words = 2;
constexpr std::size_t plain_entry_words = 2;      // with the branch to the code
constexpr std::size_t checked_entry_words = 4;    // LDR, SUB, CBNZ, LDR
constexpr std::size_t conflict_branch_words = 2;  // the branch, and one word of padding
constexpr std::uint32_t enter_lookup = a64::b(0);

// Whether the next fragment may take the place of this one's last branch. drop() overwrites the
// first word, so that word must stay.
bool may_run_on(const fragment& before) { return before.successor == nullptr && before.size > 1; }

// Leaves out each entry that follows from the one kept before it: both instructions were copied as
// they are, and the address advanced with each word.
std::vector<translated_pc> without_the_regular(const std::vector<translated_pc>& map) {
  std::vector<translated_pc> kept;
  for (const translated_pc& next : map) {
    const bool regular =
        !kept.empty() && kept.back().borrowed == 0 && next.borrowed == 0 &&
        next.pc - kept.back().pc == std::uint64_t{next.index - kept.back().index} * 4;
    if (!regular) kept.push_back(next);
  }
  return kept;
}

std::uintptr_t map_arena() {
  void* const memory = mmap(nullptr, arena_bytes, PROT_READ | PROT_WRITE | PROT_EXEC,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) fatal("cannot map %zu bytes for the code cache", arena_bytes);
  return address_of(memory);
}

}  // namespace

code_cache::code_cache(thread_context& context)
    : context_(context), begin_(map_arena()), end_(begin_ + arena_bytes) {
  flush();
}

code_cache::~code_cache() { munmap(pointer_to(begin_), arena_bytes); }

// --- Space ---------------------------------------------------------------------------------------

bool code_cache::has_room(std::size_t words_needed) const {
  return static_cast<std::size_t>(far_ - cursor_) >= words_needed;
}

bool code_cache::open_chunk(std::size_t words_needed) {
  const std::size_t size = std::max(chunk_words, (words_needed + literal_words + 1) & ~1u);
  if (size > max_chunk_words) return false;
  if (next_chunk_ + size > pointer_to<std::uint32_t>(end_)) return false;
  cursor_ = next_chunk_;
  next_chunk_ += size;
  far_ = next_chunk_;
  reload_ = far_literal(address_of(&context_));
  return true;
}

std::uint32_t* code_cache::take_far(std::size_t count) { return far_ -= count; }

std::uint32_t* code_cache::far_literal(std::uint64_t value) {
  std::uint32_t* const at = take_far(literal_words);
  std::memcpy(at, &value, sizeof value);
  return at;
}

std::uint32_t* code_cache::far_stub(const exit_record& record) {
  std::uint32_t* const at = take_far(stub_words);
  emit_stub(at, record);
  return at;
}

// str x30, [x28, #240]; bl exit; the record's address
std::uint32_t* code_cache::emit_stub(std::uint32_t* at, const exit_record& record) {
  *at++ = a64::store_home(30);
  *at = a64::bl(distance(at, exit_routine_));
  at++;
  const std::uint64_t address = address_of(&record);
  std::memcpy(at, &address, sizeof address);
  return at + 2;
}

void code_cache::emit_reload(std::uint32_t*& at) const {
  *at = a64::ldr_literal(context_register, distance(at, reload_));
  at++;
}

// --- Shared routines -----------------------------------------------------------------------------

void code_cache::emit_shared_routines() {
  exit_routine_ = cursor_;
  cursor_ = std::ranges::copy(exit_words, cursor_).out;
  lookup_routine_ = cursor_;
  cursor_ = std::ranges::copy(lookup_words, cursor_).out;
  cursor_ = emit_stub(cursor_, indirect_records[no_table]);
  for (unsigned reg = 0; reg < 31; reg++) emit_routines_of(reg);
  end_of_routines_ = cursor_;
  synchronise(exit_routine_, cursor_);
}

// Both expect the target in the register. X28 may hold anything.
void code_cache::emit_routines_of(unsigned reg) {
  leave_routines_[reg] = cursor_;
  emit_reload(cursor_);
  emit(a64::str(reg, context_register, CONTEXT_PC));
  cursor_ = emit_stub(cursor_, indirect_records[reg]);
  conflict_routines_[reg] = cursor_;
  emit_reload(cursor_);
  emit(a64::stp(0, 1, context_register, 0));
  emit(a64::mov(0, reg));
  emit(a64::b(distance(cursor_, lookup_routine_)));
}

// --- Blocks --------------------------------------------------------------------------------------

const fragment* code_cache::find(std::uint64_t pc) const {
  const auto found = by_pc_.find(pc);
  return found == by_pc_.end() ? nullptr : found->second;
}

const fragment* code_cache::install(std::uint64_t pc, const block_code& block,
                                    const exit_record* came_from) {
  if (fragments_.size() == max_fragments) return nullptr;
  const std::size_t needed =
      checked_entry_words + block.code.size() + literal_words + conflict_branch_words +
      plain_entry_words + stub_words * block.exits.size() + literal_words * block.literals.size();
  if (!has_room(needed) && !open_chunk(needed)) return nullptr;
  fragment& made = fragments_.emplace_back();
  made.pc = pc;
  made.end = block.map.empty() ? pc + 4 : block.map.back().pc + 4;
  made.map = without_the_regular(block.map);
  begin_fragment(made, came_from);
  made.size = static_cast<std::uint32_t>(block.code.size());
  cursor_ = std::ranges::copy(block.code, cursor_).out;
  close_open_words(block, made);
  synchronise(made.checked != nullptr ? made.checked : made.code - 1, cursor_);
  by_pc_[pc] = &made;
  return &made;
}

// Emits everything that comes before the code itself.
void code_cache::begin_fragment(fragment& made, const exit_record* came_from) {
  const bool is_direct = came_from != nullptr && came_from->kind == exit_kind::direct;
  const bool is_indirect = came_from != nullptr && came_from->kind == exit_kind::indirect;
  const bool is_last = is_direct && came_from->branch == cursor_ - 1;
  if (is_last && may_run_on(fragments_[fragments_.size() - 2])) {
    take_place_of_last_branch(made);
  } else if (is_indirect && came_from->reg != no_table) {
    made.checked = cursor_;
    made.checked_register = came_from->reg;
    made.entry = cursor_ + 3;
    emit_checked_entry(cursor_, made.pc, came_from->reg);
    made.code = cursor_;
  } else {
    made.entry = cursor_;
    emit_reload(cursor_);
    made.code = cursor_;
  }
}

// The branch belongs to the last exit of the fragment before.
void code_cache::take_place_of_last_branch(fragment& made) {
  fragment& before = fragments_[fragments_.size() - 2];
  before.runs_into = &made;
  before.size--;
  exits_[before.first_exit + before.exit_count - 1].branch = nullptr;
  made.code = --cursor_;
  made.entry = take_far(plain_entry_words);
  std::uint32_t* at = made.entry;
  emit_reload(at);
  *at = a64::b(distance(at, made.code));
  synchronise(made.entry, made.entry + plain_entry_words);
}

void code_cache::emit_checked_entry(std::uint32_t*& at, std::uint64_t pc, unsigned reg) {
  const std::uint32_t* const literal = far_literal(pc);
  std::uint32_t* const conflict = take_far(conflict_branch_words);
  conflict[0] = a64::b(distance(conflict, conflict_routines_[reg]));
  synchronise(conflict, conflict + 1);
  *at = a64::ldr_literal(context_register, distance(at, literal));
  at++;
  *at++ = a64::sub(context_register, context_register, reg);
  *at = a64::cbnz(context_register, distance(at, conflict));
  at++;
  emit_reload(at);
}

// Makes the exits' records and stubs, and the constants.
void code_cache::close_open_words(const block_code& block, fragment& made) {
  made.first_exit = exits_.size();
  made.exit_count = block.exits.size();
  for (const open_literal& open : block.literals) {
    std::uint32_t* const word = made.code + open.index;
    *word = a64::ldr_literal(field(*word, 4, 0), distance(word, far_literal(open.value)));
  }
  for (const std::uint32_t index : block.reloads) {
    std::uint32_t* word = made.code + index;
    emit_reload(word);
  }
  std::uint32_t* const end = far_;
  for (const open_exit& open : block.exits) {
    exit_record& record = exits_.emplace_back(open.record);
    record.branch = made.code + open.index;
    record.stub = far_stub(record);
    *record.branch = with_distance(*record.branch, distance(record.branch, record.stub));
  }
  synchronise(far_, end);
  if (block.jump) {
    made.jump = made.code + block.jump->index;
    made.jump_register = block.jump->reg;
    if (made.jump_register == no_table) {
      *made.jump = a64::b(distance(made.jump, lookup_routine_));
    } else {
      prepare_branch_table(made.jump_register);
    }
  }
}

void code_cache::link(const exit_record& exit, const fragment& target) {
  if (exit.branch == nullptr) return;
  const std::int64_t straight = distance(exit.branch, target.code);
  if (reaches(*exit.branch, straight)) {
    write(exit.branch, with_distance(*exit.branch, straight));
  } else {
    write(exit.stub, a64::b(distance(exit.stub, target.code)));
  }
}

// --- Indirect branches ---------------------------------------------------------------------------

void code_cache::prepare_branch_table(unsigned reg) {
  if (has_branch_table_[reg]) return;
  has_branch_table_[reg] = true;
  std::fill_n(branch_table(&context_, reg), branch_slots, address_of(leave_routines_[reg]));
}

void code_cache::admit(const fragment& target, unsigned reg) {
  if (reg != no_table) admit_to_table(target, reg);
  admit_to_lookup(target);
}

void code_cache::admit_to_table(const fragment& target, unsigned reg) {
  const std::uint32_t* const entry = checked_entry_of(target, reg);
  if (entry != nullptr) branch_table(&context_, reg)[target.pc % branch_slots] = address_of(entry);
}

// Returns null if no room is left. The next block to be installed will find that out.
std::uint32_t* code_cache::checked_entry_of(const fragment& target, unsigned reg) {
  if (target.checked != nullptr && target.checked_register == reg) return target.checked;
  constexpr std::size_t words_of_entry = checked_entry_words + 2;
  constexpr std::size_t needed = words_of_entry + literal_words + conflict_branch_words;
  if (!has_room(needed) && !open_chunk(needed)) return nullptr;
  std::uint32_t* const made = take_far(words_of_entry);
  std::uint32_t* at = made;
  emit_checked_entry(at, target.pc, reg);
  *at = a64::b(distance(at, target.code));
  synchronise(made, at + 1);
  return made;
}

void code_cache::insert(std::uint64_t pc, std::uint64_t code) {
  const std::size_t mask = lookup_.size() - overflow_entries - 1;
  std::size_t index = (pc / 4) & mask;
  while (index < lookup_.size() - 1 && lookup_[index].code != 0) {
    if (lookup_[index].pc == pc) return;
    index++;
  }
  if (index == lookup_.size() - 1) return;  // the last entry stays free, to end every probe
  lookup_[index] = {pc, code};
  lookup_used_++;
}

void code_cache::grow_lookup() {
  std::vector<branch_entry> old(2 * (lookup_.size() - overflow_entries) + overflow_entries);
  old.swap(lookup_);
  lookup_used_ = 0;
  for (const branch_entry& entry : old) {
    if (entry.code != 0) insert(entry.pc, entry.code);
  }
  point_context_at_lookup();
}

void code_cache::admit_to_lookup(const fragment& target) {
  const std::size_t entries = lookup_.size() - overflow_entries;
  if (lookup_used_ * 2 > entries && entries < last_lookup_entries) grow_lookup();
  insert(target.pc, address_of(target.entry));
}

void code_cache::point_context_at_lookup() {
  const std::size_t entries = lookup_.size() - overflow_entries;
  context_.branch_mask = (entries - 1) * entry_bytes;
  context_.branch_table = address_of(lookup_.data());
}

void code_cache::flush() {
  fragments_.clear();
  exits_.clear();
  by_pc_.clear();
  lookup_.assign(first_lookup_entries + overflow_entries, {});
  lookup_used_ = 0;
  has_branch_table_ = {};
  leaving_ = nullptr;
  next_chunk_ = pointer_to<std::uint32_t>(begin_);
  open_chunk(chunk_words);
  emit_shared_routines();
  point_context_at_lookup();
}

bool code_cache::drop(std::uint64_t start, std::uint64_t end) {
  const auto overlaps = [=](const fragment& each) { return each.pc < end && each.end > start; };
  bool done = true;
  if (end - start > max_block_bytes) {
    for (fragment& each : fragments_) {
      if (overlaps(each) && each.successor == nullptr) done = done && drop(each);
    }
    return done;
  }
  for (std::uint64_t pc = (start & ~3ull) - max_block_bytes; pc != ((end + 3) & ~3ull); pc += 4) {
    const auto found = by_pc_.find(pc);
    if (found != by_pc_.end() && overlaps(*found->second)) done = done && drop(*found->second);
  }
  return done;
}

bool code_cache::drop(fragment& stale) {
  if (!has_room(stub_words) && !open_chunk(stub_words)) return false;
  exit_record& record = exits_.emplace_back();
  record = {.kind = exit_kind::direct, .target = stale.pc};
  std::uint32_t* const end = far_;
  record.stub = far_stub(record);
  synchronise(far_, end);
  record.branch = stale.code;
  stale.successor = &record;
  for (std::size_t i = 0; i < stale.exit_count; i++) {
    exit_record& exit = exits_[stale.first_exit + i];
    if (exit.branch == stale.code) exit.branch = nullptr;
  }
  write(stale.code, a64::b(distance(stale.code, record.stub)));
  by_pc_.erase(stale.pc);
  return true;
}

}  // namespace host
