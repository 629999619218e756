// Any instruction words at any address. Their translation must do to the application what the words
// themselves do. The test carries out both on an abstract machine, whose values have no meaning. An
// instruction that computes is a function of its word, of the registers that it reads, and of SP,
// which no word changes here. Its result is a hash of these. The machine carries out inserted
// instructions, constants and moves as they are. At the end, the same instructions must have met
// the same values in the same order, and the registers and the next address must be equal. Wherever
// an instruction may fault, each of the application's registers must be where the block's map says:
// in its place or in its home.
//
// The translator's own table says which registers an instruction reads and writes. Another test
// checks that table with a disassembler (tests/host/translation/register_fields.py).
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

#include "host/translation/block_code.h"
#include "host/translation/context.h"
#include "host/translation/mangle.h"
#include "host/translation/register_fields.h"
#include "tests/fuzz/target.h"

namespace {

using namespace host;
using conformance::random_source;

constexpr unsigned x28 = context_register;

// --- The machine ---------------------------------------------------------------------------------

using registers = std::array<std::uint64_t, 32>;  // 31 is SP or zero, a value like any other

enum class way : std::uint8_t { on, trap, exit, lookup };

struct machine {
  registers x{};
  std::vector<std::uint64_t> met{};  // the values that abstract instructions were given
  way left = way::on;
  exit_record exit{};
  std::uint64_t target = 0;  // the target of an indirect branch

  void write(unsigned reg, std::uint64_t value) {
    if (reg != zero_register) x[reg] = value;
  }
};

std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
  return random_source(hash * 0x9e3779b97f4a7c15 + value)();
}

unsigned field_at(std::uint32_t word, unsigned position) {
  return field(word, position + 4, position);
}

bool is_register(role kind) { return kind != role::none && kind != role::ambiguous; }

unsigned width_of(role kind) { return kind == role::octet ? 8 : kind == role::pair ? 2 : 1; }

// The word without its general registers: what it does, no matter to which registers.
std::uint32_t operation_of(std::uint32_t word, const register_roles& roles) {
  for (unsigned i = 0; i < roles.size(); i++) {
    if (is_register(roles[i])) word = replace_field(word, field_positions[i], 0);
  }
  return word;
}

// A pair that begins at an odd number is not an instruction, nor are eight registers past X30.
bool is_undefined(std::uint32_t word, const register_roles& roles) {
  for (unsigned i = 0; i < roles.size(); i++) {
    const unsigned reg = field_at(word, field_positions[i]);
    if (roles[i] == role::pair && reg % 2 != 0) return true;
    if (roles[i] == role::octet && reg > 23) return true;
  }
  return false;
}

void trap(std::uint32_t word, machine& on) {
  on.met.push_back(word);
  on.left = way::trap;
}

void meet(std::uint32_t word, machine& on) {
  const register_roles roles = roles_of(word);
  if (is_undefined(word, roles)) return trap(operation_of(word, roles), on);
  std::uint64_t hash = mix(on.x[31], operation_of(word, roles));
  for (unsigned i = 0; i < roles.size(); i++) {
    if (!is_register(roles[i]) || roles[i] == role::written) continue;
    const unsigned reg = field_at(word, field_positions[i]);
    for (unsigned j = 0; j < width_of(roles[i]); j++) hash = mix(hash, on.x[(reg + j) % 32]);
  }
  on.met.push_back(hash);
  for (unsigned i = 0; i < roles.size(); i++) {
    if (!is_register(roles[i]) || roles[i] == role::read) continue;
    const unsigned reg = field_at(word, field_positions[i]);
    for (unsigned j = 0; j < width_of(roles[i]); j++) on.write(reg + j, mix(hash, 8 * i + j));
  }
}

// The machine carries out the constants, moves and masks that the translator inserts. It does the
// same with those in the application's own code.
bool carry_out_move(std::uint32_t word, machine& on) {
  const unsigned d = field(word, 4, 0);
  const unsigned shift = 16 * field(word, 22, 21);
  const std::uint64_t part = std::uint64_t{field(word, 20, 5)} << shift;
  switch (word & 0xff800000) {
    case 0xd2800000: return on.write(d, part), true;
    case 0x92800000: return on.write(d, ~part), true;
    case 0xf2800000: return on.write(d, (on.x[d] & ~(std::uint64_t{0xffff} << shift)) | part), true;
    default: break;
  }
  if ((word & 0xffe0ffe0) == 0xaa0003e0) {
    return on.write(d, on.x[field(word, 20, 16)]), true;
  }
  if ((word & 0xfffffc00) == 0x9262f800) {
    return on.write(d, on.x[field(word, 9, 5)] & ~(std::uint64_t{1} << 29)), true;
  }
  return false;
}

void carry_out(std::uint32_t word, machine& on) {
  if (!carry_out_move(word, on)) meet(word, on);
}

// --- What the application's words mean -----------------------------------------------------------

std::uint64_t literal_address(std::uint32_t word, std::uint64_t pc) {
  return pc + static_cast<std::uint64_t>(signed_field(word, 23, 5) * 4);
}

// Each load of a literal, and the load from [X0] that reads the same.
constexpr struct {
  std::uint32_t literal;
  std::uint32_t based;
} literal_loads[] = {
    {0x18000000, 0xb9400000},  // LDR Wt
    {0x58000000, 0xf9400000},  // LDR Xt
    {0x98000000, 0xb9800000},  // LDRSW Xt
    {0xd8000000, 0xf9800000},  // PRFM
    {0x1c000000, 0xbd400000},  // LDR St
    {0x5c000000, 0xfd400000},  // LDR Dt
    {0x9c000000, 0x3dc00000},  // LDR Qt
};

// Carries out the load from X0 in its place, and then restores X0 unless it is the target.
void run_literal_load(std::uint32_t word, std::uint64_t pc, machine& on) {
  const auto* const load = std::ranges::find(literal_loads, word & 0xff000000,
                                             [](const auto& line) { return line.literal; });
  if (load == std::end(literal_loads)) return trap(word, on);
  const std::uint32_t based = load->based | field(word, 4, 0);
  const bool is_target = is_register(roles_of(based)[0]) && field(word, 4, 0) == 0;
  const std::uint64_t kept = on.x[0];
  on.x[0] = literal_address(word, pc);
  meet(based, on);
  if (!is_target) on.x[0] = kept;
}

void run_straight(std::uint32_t word, std::uint64_t pc, bool has_sve, machine& on) {
  if (!has_sve && field(word, 28, 25) == 2) return trap(word, on);
  if ((word & 0x9f000000) == 0x10000000) {  // ADR
    return on.write(field(word, 4, 0), literal_address(word, pc) + field(word, 30, 29));
  }
  if ((word & 0x9f000000) == 0x90000000) {  // ADRP
    const std::int64_t pages = signed_field(word, 23, 5) * 4 + field(word, 30, 29);
    return on.write(field(word, 4, 0),
                    (pc >> 12 << 12) + (static_cast<std::uint64_t>(pages) << 12));
  }
  if ((word & 0x3b000000) == 0x18000000) return run_literal_load(word, pc, on);
  carry_out(word, on);
  if ((word & 0xffffffe0) == 0xd53b0020) {  // MRS Xt, CTR_EL0: DIC is hidden
    on.write(field(word, 4, 0), on.x[field(word, 4, 0)] & ~(std::uint64_t{1} << 29));
  }
}

void leave(machine& on, const exit_record& record) {
  on.left = way::exit;
  on.exit = record;
}

// The word of a conditional branch, without the distance and the register.
std::uint32_t condition_of(std::uint32_t word) {
  if ((word & 0x7e000000) == 0x36000000) return word & ~(0x3fffu << 5 | 31u);   // TBZ
  if ((word & 0x7e000000) == 0x34000000) return word & ~(0x7ffffu << 5 | 31u);  // CBZ
  return word & ~(0x7ffffu << 5);
}

bool tests_register(std::uint32_t word) { return (word & 0x7c000000) == 0x34000000; }

void meet_condition(std::uint32_t word, machine& on) {
  on.met.push_back(mix(condition_of(word), tests_register(word) ? on.x[field(word, 4, 0)] : 0));
}

// Carries out the authentication of a branch: an AUT instruction on X0, with its modifier, if any.
void authenticate(std::uint32_t word, machine& on) {
  if (field(word, 11, 11) == 0) return;
  const bool is_return = field(word, 22, 21) == 2;
  const bool has_modifier = is_return || field(word, 24, 24) == 1;
  const unsigned modifier = field(word, 4, 0);
  const std::uint32_t key_b = field(word, 10, 10) << 10;
  machine aside{.x = on.x};
  aside.x[0] = on.target;
  aside.x[1] = on.x[modifier];
  meet((has_modifier ? 0xdac11000 | 1u << 5 : 0xdac133e0) | key_b, aside);
  on.met.push_back(aside.met.back());
  on.target = aside.x[0];
}

void run_indirect(std::uint32_t word, std::uint64_t pc, machine& on) {
  const bool is_authenticated_return = (word & 0xfffffbff) == 0xd65f0bff;
  on.left = way::lookup;
  on.target = on.x[is_authenticated_return ? 30 : field(word, 9, 5)];
  authenticate(word, on);
  if (field(word, 22, 21) == 1) on.x[30] = pc + 4;
}

void run_branch(std::uint32_t word, std::uint64_t pc, bool taken, machine& on) {
  switch (decode_control_flow(word, pc).kind) {
    case flow::none: return;
    case flow::direct:
      if (field(word, 31, 31) != 0) on.x[30] = pc + 4;
      return leave(on, {.target = pc + static_cast<std::uint64_t>(signed_field(word, 25, 0) * 4)});
    case flow::conditional: {
      meet_condition(word, on);
      const unsigned hi = (word & 0x7e000000) == 0x36000000 ? 18 : 23;
      const std::int64_t distance = taken ? signed_field(word, hi, 5) * 4 : 4;
      return leave(on, {.target = pc + static_cast<std::uint64_t>(distance)});
    }
    case flow::indirect: return run_indirect(word, pc, on);
    case flow::supervisor_call:
      return leave(on, {.kind = exit_kind::supervisor_call, .target = pc + 4});
    case flow::invalidate:
      return leave(on, {.kind = exit_kind::invalidate, .target = pc + 4, .reg = field(word, 4, 0)});
    case flow::synchronize:
      meet(word, on);
      return leave(on, {.kind = exit_kind::synchronize, .target = pc + 4});
    case flow::unknown: return leave(on, {.kind = exit_kind::refused, .target = pc, .word = word});
  }
}

// Straight-line words, perhaps followed by one that ends the block.
struct block {
  std::uint64_t pc = 0;
  words code{};
  bool has_sve = false;
  bool taken = false;
};

// The states of the machine before each of the block's instructions and after the last.
std::vector<machine> run_application(const block& from, const registers& start) {
  std::vector<machine> states{{.x = start}};
  std::uint64_t pc = from.pc;
  for (const std::uint32_t word : from.code) {
    machine on = states.back();
    if (decode_control_flow(word, pc).kind == flow::none) {
      run_straight(word, pc, from.has_sve, on);
    } else {
      run_branch(word, pc, from.taken, on);
    }
    states.push_back(on);
    if (on.left != way::on) return states;
    pc += 4;
  }
  leave(states.back(), {.target = pc});
  return states;
}

// --- What their translation means ----------------------------------------------------------------

const block* in_question = nullptr;

void demand(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s: at %#lx,", what, in_question->pc);
  for (const std::uint32_t word : in_question->code) std::fprintf(stderr, " %08x", word);
  std::fprintf(stderr, "%s%s\n", in_question->has_sve ? ", with SVE" : "",
               in_question->taken ? ", branch taken" : "");
  std::abort();
}

block_code translate(const block& from) {
  block_code out;
  std::uint64_t pc = from.pc;
  for (const std::uint32_t word : from.code) {
    if (decode_control_flow(word, pc).kind != flow::none) {
      emit_control_flow(word, pc, out);
      return out;
    }
    emit_straight(word, pc, from.has_sve, out);
    pc += 4;
  }
  emit_exit({.target = pc}, out);
  return out;
}

void check_form(const block_code& translated, std::size_t instructions) {
  std::vector<std::uint32_t> open;
  if (translated.jump) open.push_back(translated.jump->index);
  for (const open_exit& exit : translated.exits) {
    open.push_back(exit.index);
    const control_flow branch = decode_control_flow(translated.code[exit.index], 0);
    demand((branch.kind == flow::direct || branch.kind == flow::conditional) && branch.target == 0,
           "an exit is not an open branch");
  }
  std::ranges::sort(open);
  demand(std::ranges::adjacent_find(open) == open.end(), "a word has two exits");
  demand(!open.empty() && open.back() + 1 == translated.code.size(),
         "the last word is not an exit");
  demand(translated.code.size() <= 10 * instructions + 1, "too many words");
  demand(translated.map.size() == instructions, "the map has a wrong number of instructions");
}

// Whether the word loads a literal from the page of the instruction itself. That page can be read,
// because the instruction can.
bool cannot_fault(std::uint32_t word, std::uint64_t pc) {
  const std::uint64_t address = literal_address(word, pc);
  return (word & 0x3b000000) == 0x18000000 && address >> 12 == pc >> 12 &&
         (address + 15) >> 12 == pc >> 12;
}

class translation {
 public:
  translation(const block& from, const block_code& made, const std::vector<machine>& application)
      : from_(from), made_(made), application_(application), on_(application.front()) {
    home_[x28] = on_.x[x28];
    on_.x[x28] = context;
  }

  // Carries out the block, and then gives the application the register values in their homes.
  machine run() {
    std::size_t index = 0;
    while (on_.left == way::on) index = step(index);
    demand(has_context() || on_.left == way::trap, "the context register was lost");
    on_.x[x28] = home_[x28];
    if (on_.left == way::lookup && made_.jump->reg == no_table) {
      on_.target = on_.x[0];
      on_.x[0] = home_[0];
      on_.x[1] = home_[1];
    }
    return on_;
  }

 private:
  static constexpr std::uint64_t context = 0xc0de;

  // Between two loads of the context, X28 may hold the application's value or an address.
  [[nodiscard]] bool has_context() const { return on_.x[x28] == context; }

  std::size_t step(std::size_t index);
  bool load_open_word(std::size_t index);
  bool jump_at(std::size_t index);
  bool leave_at(std::size_t index);
  bool move_to_or_from_home(std::uint32_t word);
  std::uint64_t& home(std::int64_t displacement);
  void run_one(std::size_t index);
  void check_recoverable(std::size_t index) const;

  const block& from_;
  const block_code& made_;
  const std::vector<machine>& application_;
  machine on_;
  registers home_{};
};

std::size_t translation::step(std::size_t index) {
  demand(index < made_.code.size(), "control runs off the end");
  const std::uint32_t word = made_.code[index];
  const control_flow branch = decode_control_flow(word, 4 * index);
  if (branch.kind == flow::conditional) meet_condition(word, on_);
  const bool passes_by = branch.kind == flow::conditional && !from_.taken;
  if (!passes_by && leave_at(index)) return index + 1;
  if (jump_at(index) || load_open_word(index) || move_to_or_from_home(word)) return index + 1;
  if (branch.kind == flow::conditional) {
    if (passes_by) return index + 1;
    demand(branch.target > 4 * index, "a branch goes back");
    return branch.target / 4;
  }
  demand(branch.kind == flow::none || branch.kind == flow::synchronize, "a branch is not an exit");
  run_one(index);
  return index + 1;
}

bool translation::leave_at(std::size_t index) {
  const auto exit = std::ranges::find(made_.exits, index, &open_exit::index);
  if (exit != made_.exits.end()) leave(on_, exit->record);
  return exit != made_.exits.end();
}

// Recognises a jump by a table at its first word, or a jump by the shared lookup.
bool translation::jump_at(std::size_t index) {
  if (!made_.jump) return false;
  const unsigned reg = made_.jump->reg;
  const words sequence = reg == no_table ? words{a64::b(0)} : jump_by_table(reg);
  if (index + sequence.size() != made_.jump->index + 1) return false;
  demand(std::ranges::equal(sequence, std::span(made_.code).subspan(index, sequence.size())),
         "a wrong jump by a table");
  on_.left = way::lookup;
  on_.target = on_.x[reg];
  return true;
}

bool translation::load_open_word(std::size_t index) {
  const std::uint32_t word = made_.code[index];
  const auto literal = std::ranges::find(made_.literals, index, &open_literal::index);
  if (literal != made_.literals.end()) {
    demand(is_load_literal(word), "a wrong word loads a literal");
    return on_.write(field(word, 4, 0), literal->value), true;
  }
  const bool reloads = std::ranges::count(made_.reloads, index) != 0;
  if (reloads) {
    demand(word == reload_context, "a wrong word loads the context");
    on_.x[x28] = context;
  }
  return reloads;
}

std::uint64_t& translation::home(std::int64_t displacement) {
  demand(displacement >= 0 && displacement <= home_of(30),
         "the context is accessed beyond the homes");
  return home_[static_cast<std::size_t>(displacement / 8)];
}

bool translation::move_to_or_from_home(std::uint32_t word) {
  if (field(word, 9, 5) != x28 || !has_context()) return false;
  const std::int64_t single = home_of(field(word, 21, 10));
  const std::int64_t pair = signed_field(word, 21, 15) * 8;
  const unsigned t = field(word, 4, 0);
  const unsigned t2 = field(word, 14, 10);
  switch (word & 0xffc00000) {
    case a64::ldr(0, 0, 0): return on_.write(t, home(single)), true;
    case a64::str(0, 0, 0): return home(single) = on_.x[t], true;
    case a64::ldp(0, 0, 0, 0): return on_.write(t, home(pair)), on_.write(t2, home(pair + 8)), true;
    case a64::stp(0, 0, 0, 0): return home(pair) = on_.x[t], home(pair + 8) = on_.x[t2], true;
    default: return false;
  }
}

bool names_context(std::uint32_t word) {
  const register_roles roles = roles_of(word);
  for (unsigned i = 0; i < roles.size(); i++) {
    const unsigned reg = field_at(word, field_positions[i]);
    if (roles[i] != role::none && reg <= x28 && reg + width_of(roles[i]) > x28) return true;
  }
  return false;
}

void translation::run_one(std::size_t index) {
  const std::uint32_t word = made_.code[index];
  const bool is_literal = (word & 0x3b000000) == 0x18000000;
  const bool traps = (field(word, 28, 25) == 2 && !from_.has_sve) || is_literal;
  demand((word & 0x1f000000) != 0x10000000,
         "an address is computed from the translation's own address");
  if (!traps && carry_out_move(word, on_)) return;
  demand(traps || !has_context() || !names_context(word) || is_undefined(word, roles_of(word)),
         "an instruction of the application names the context register");
  check_recoverable(index);
  traps ? trap(word, on_) : meet(word, on_);
}

// An instruction that may fault is about to run: the map must say where each register is.
void translation::check_recoverable(std::size_t index) const {
  const auto next = std::ranges::upper_bound(made_.map, index, {}, &translated_pc::index);
  demand(next != made_.map.begin(), "the map does not begin with the block");
  const translated_pc& here = *std::prev(next);
  const std::uint64_t number = (here.pc - from_.pc) / 4;
  demand(number < from_.code.size(), "the map names no instruction of the block");
  if (cannot_fault(from_.code[number], here.pc)) return;
  const registers& before = application_[number].x;
  for (unsigned reg = 0; reg < 31; reg++) {
    const bool at_home = reg == x28 || (here.borrowed >> reg & 1) != 0;
    demand((at_home ? home_ : on_.x)[reg] == before[reg], "a register is lost if this faults");
  }
}

// --- The comparison ------------------------------------------------------------------------------

bool may_name_x28(std::uint32_t word) {
  const unsigned first = field(word, 4, 0);
  return (first > x28 - 8 && first <= 30) ||
         std::ranges::any_of(field_positions, [=](unsigned p) { return field_at(word, p) == x28; });
}

// The state of the application when a block ends at an instruction that is refused.
machine until_refused(const block& from, const std::vector<machine>& application,
                      const exit_record& exit) {
  const std::uint64_t number = (exit.target - from.pc) / 4;
  demand(number < from.code.size() && exit.word == from.code[number], "the wrong word is refused");
  demand(may_name_x28(exit.word) || decode_control_flow(exit.word, 0).kind == flow::unknown,
         "a word that cannot name X28 is refused");
  machine before = application[number];
  leave(before, exit);
  return before;
}

void compare(const machine& expected, const machine& got) {
  demand(got.met == expected.met, "wrong instructions or wrong operands");
  demand(got.left == expected.left, "a wrong way out");
  if (got.left == way::trap) return;  // the registers have been checked already
  for (unsigned reg = 0; reg < 31; reg++) {
    demand(got.x[reg] == expected.x[reg], "a wrong value in a register");
  }
  demand(got.target == expected.target, "a wrong target");
  demand(got.exit.kind == expected.exit.kind && got.exit.target == expected.exit.target &&
             got.exit.reg == expected.exit.reg && got.exit.word == expected.exit.word,
         "a wrong exit");
}

void check(const block& from, const registers& start) {
  const std::vector<machine> application = run_application(from, start);
  const block_code made = translate(from);
  check_form(made, from.code.size());
  const machine got = translation(from, made, application).run();
  const bool refused = got.left == way::exit && got.exit.kind == exit_kind::refused;
  compare(refused ? until_refused(from, application, got.exit) : application.back(), got);
}

// --- The input -----------------------------------------------------------------------------------

// Groups that the rewriter treats specially: their fixed bits, and the values of these.
constexpr struct {
  std::uint32_t mask;
  std::uint32_t value;
} groups[] = {
    {0x1f000000, 0x10000000},  // ADR, ADRP
    {0x3b000000, 0x18000000},  // LDR (literal)
    {0xffffffe0, 0xd53b0020},  // MRS Xt, CTR_EL0
    {0xbfa07c00, 0x08207c00},  // CASP
    {0xfff00000, 0xd5500000},  // SYSP, MSRR
    {0xfff00000, 0xd5700000},  // MRRS
    {0xffe08000, 0xf8208000},  // ST64B and its like
    {0x3fa00000, 0x08000000},  // exclusive loads and stores
    {0x3e000000, 0x28000000},  // pairs
    {0x3b000000, 0x38000000},  // loads and stores of single registers
    {0x1e000000, 0x04000000},  // SVE
    {0x7c000000, 0x14000000},  // B, BL
    {0xff000000, 0x54000000},  // B.cond
    {0x7c000000, 0x34000000},  // CBZ, CBNZ, TBZ, TBNZ
    {0xfe9ffc1f, 0xd61f0000},  // BR, BLR, RET
    {0xfe9ff000, 0xd61f0000},  //   and the encodings next to them
    {0xfedff800, 0xd61f0800},  // BRAA, BLRAA...
    {0xffe0001f, 0xd4000001},  // SVC
    {0xffffffe0, 0xd50b7520},  // IC IVAU
    {0xfffff0ff, 0xd50330df},  // ISB
};

std::uint32_t make_word(random_source& random) {
  auto word = static_cast<std::uint32_t>(random());
  for (const unsigned position : field_positions) {
    if (random.chance(20)) word = replace_field(word, position, x28);
  }
  if (random.chance(40)) return word;
  const auto& group = groups[random.below(std::size(groups))];
  return (word & ~group.mask) | group.value;
}

// Addresses near the ends of the address space are included, so literals and targets may wrap.
std::uint64_t make_address(random_source& random) {
  return random() >> random.below(64) << random.below(2) * 32 & ~3ull;
}

block make_block(random_source& random) {
  block made{.pc = make_address(random), .has_sve = random.chance(50), .taken = random.chance(50)};
  do {
    made.code.push_back(make_word(random));
  } while (decode_control_flow(made.code.back(), 0).kind == flow::none && random.chance(70));
  return made;
}

}  // namespace

void run_input(random_source& random) {
  registers start;
  std::ranges::generate(start, random);
  const block made = make_block(random);
  in_question = &made;
  check(made, start);
}
