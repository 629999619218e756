#include "host/translation/mangle.h"

#include <algorithm>
#include <bit>

#include "host/translation/register_fields.h"

namespace host {
namespace {

constexpr unsigned no_register = 32;

unsigned field_at(std::uint32_t word, unsigned position) {
  return field(word, position + 4, position);
}

// An even register that appears in none of the word's register fields, whatever they mean, and is
// not among eight that begin at one. The next odd register is free as well.
unsigned free_register(std::uint32_t word, const register_roles& roles) {
  const unsigned first_of_eight = roles[0] == role::octet ? field_at(word, 0) : no_register;
  for (unsigned candidate = 0; candidate < context_register; candidate += 2) {
    bool taken = candidate >= first_of_eight && candidate < first_of_eight + 8;
    for (const unsigned position : field_positions) {
      taken |= field_at(word, position) / 2 == candidate / 2;
    }
    if (!taken) return candidate;
  }
  return no_register;  // four fields cannot take fourteen pairs
}

// --- Instructions that compute from their address ----------------------------------------------

bool is_address(std::uint32_t word) { return (word & 0x1f000000) == 0x10000000; }       // ADR, ADRP
bool is_literal_load(std::uint32_t word) { return (word & 0x3b000000) == 0x18000000; }  // LDR label

std::uint64_t address_value(std::uint32_t word, std::uint64_t pc) {
  const std::int64_t immediate = signed_field(word, 23, 5) * 4 + field(word, 30, 29);
  if (field(word, 31, 31) == 0) return pc + static_cast<std::uint64_t>(immediate);
  return (pc & ~0xfffull) + static_cast<std::uint64_t>(immediate * 4096);
}

// The same load from [Xn], or 0 if the encoding is unallocated.
std::uint32_t load_from_register(std::uint32_t word, unsigned n) {
  const std::uint32_t operands = n << 5 | field(word, 4, 0);
  switch (field(word, 31, 30) << 1 | field(word, 26, 26)) {
    case 0b000: return 0xb9400000 | operands;  // LDR Wt
    case 0b010: return 0xf9400000 | operands;  // LDR Xt
    case 0b100: return 0xb9800000 | operands;  // LDRSW Xt
    case 0b110: return 0xf9800000 | operands;  // PRFM
    case 0b001: return 0xbd400000 | operands;  // LDR St
    case 0b011: return 0xfd400000 | operands;  // LDR Dt
    case 0b101: return 0x3dc00000 | operands;  // LDR Qt
    default: return 0;
  }
}

// Whether the load stays within the instruction's own page, where it cannot fault: as long as the
// translation runs, nothing has changed the mapping that the instruction was read from.
bool shares_page(std::uint64_t pc, std::uint64_t address) {
  constexpr std::uint64_t page_bytes = 4096;
  constexpr std::uint64_t largest_load = 16;
  return pc / page_bytes == address / page_bytes &&
         pc / page_bytes == (address + largest_load - 1) / page_bytes;
}

// Appends the word or words that load a constant.
void load_constant(unsigned d, std::uint64_t value, words& out, mangling& done) {
  const words moves = a64::mov_constant(d, value);
  if (moves.size() == 1) return append(out, moves);
  out.push_back(load_literal(d));
  done.literal = value;
}

mangling mangle_address(std::uint32_t word, std::uint64_t pc, words& out) {
  const unsigned d = field(word, 4, 0);
  const std::uint64_t value = address_value(word, pc);
  mangling done;
  if (d == zero_register) return done;
  if (d != context_register) return load_constant(d, value, out, done), done;
  out.push_back(a64::store_home(0));
  load_constant(0, value, out, done);
  out.push_back(a64::str(0, context_register, 28 * 8));
  out.push_back(a64::load_home(0));
  return done;
}

constexpr std::uint32_t borrowed(unsigned reg) { return 1u << reg; }

mangling mangle_literal_load(std::uint32_t word, std::uint64_t pc, words& out) {
  const unsigned t = field(word, 4, 0);
  const std::uint64_t address = pc + static_cast<std::uint64_t>(signed_field(word, 23, 5) * 4);
  const bool is_prefetch = field(word, 31, 30) == 3;
  const bool is_vector = field(word, 26, 26) != 0;
  mangling done;
  if (load_from_register(word, 0) == 0) return out.push_back(word), done;  // unallocated: SIGILL
  if (is_vector || is_prefetch || t == zero_register) {
    load_constant(context_register, address, out, done);
    out.push_back(load_from_register(word, context_register));
    out.push_back(reload_context);
  } else if (t == context_register) {
    out.push_back(a64::store_home(0));
    load_constant(0, address, out, done);
    out.push_back(load_from_register(replace_field(word, 0, 0), 0));
    out.push_back(a64::str(0, context_register, 28 * 8));
    out.push_back(a64::load_home(0));
    done.borrowed = borrowed(0);
  } else {
    const bool may_fault = !shares_page(pc, address);
    if (may_fault) out.push_back(a64::store_home(t));
    load_constant(t, address, out, done);
    out.push_back(load_from_register(word, t));
    if (may_fault) done.borrowed = borrowed(t);
  }
  return done;
}

// --- System registers whose value differs for the application ----------------------------------

constexpr std::uint32_t mrs_ctr_el0 = 0xd53b0020;
constexpr std::uint32_t mrs_id_aa64pfr0_el1 = 0xd5380400;

bool sve_is_shown = false;

// The instruction that corrects the value in X0, or 0.
//
// CTR_EL0.DIC says that no IC IVAU is needed after code was written. Here it is needed: it tells
// the translator of new code.
std::uint32_t correction_of(std::uint32_t word) {
  switch (word & ~31u) {
    case mrs_ctr_el0: return 0x9262f800;                             // and x0, x0, #~(1 << 29)
    case mrs_id_aa64pfr0_el1: return sve_is_shown ? 0xb2600000 : 0;  // orr x0, x0, #(1 << 32)
    default: return 0;
  }
}

// Appends the word, and the correction if it needs one.
void append_corrected(std::uint32_t word, words& out) {
  const unsigned t = field(word, 4, 0);
  const std::uint32_t correction = correction_of(word);
  out.push_back(word);
  if (correction != 0 && t != zero_register) out.push_back(correction | t << 5 | t);
}

// --- Instructions that name X28 ----------------------------------------------------------------

struct x28_use {
  bool named = false;
  bool read = false;
  bool written = false;
  bool paired = false;  // X29 is the other half of the pair
  bool refused = false;
};

x28_use use_of_x28(std::uint32_t word, const register_roles& roles) {
  x28_use use;
  for (unsigned i = 0; i < roles.size(); i++) {
    const unsigned reg = field_at(word, field_positions[i]);
    if (roles[i] == role::octet) use.refused |= reg > context_register - 8 && reg < 31;
    if (reg != context_register || roles[i] == role::none) continue;
    use.named = true;
    use.read |= roles[i] != role::written;
    use.written |= roles[i] != role::read;
    use.paired |= roles[i] == role::pair;
    use.refused |= roles[i] == role::ambiguous;
  }
  return use;
}

// Most words cannot name X28: none of their register fields is 28, and none begins eight registers
// that include it. This check needs no table.
bool may_name_x28(std::uint32_t word) {
  const unsigned first = field(word, 4, 0);
  if (first > context_register - 8 && first < 31) return true;
  return std::ranges::any_of(field_positions, [word](unsigned position) {
    return field_at(word, position) == context_register;
  });
}

std::uint32_t rename_x28(std::uint32_t word, const register_roles& roles, unsigned substitute) {
  for (unsigned i = 0; i < roles.size(); i++) {
    const unsigned position = field_positions[i];
    if (roles[i] != role::none && field_at(word, position) == context_register) {
      word = replace_field(word, position, substitute);
    }
  }
  return word;
}

void mangle_reader(std::uint32_t word, words& out) {
  out.push_back(a64::ldr(context_register, context_register, 28 * 8));
  out.push_back(word);
  out.push_back(reload_context);
}

void mangle_writer(std::uint32_t renamed, const x28_use& use, unsigned reg, words& out) {
  out.push_back(a64::store_home(reg));
  if (use.read) out.push_back(a64::ldr(reg, context_register, 28 * 8));
  append_corrected(renamed, out);
  out.push_back(a64::str(reg, context_register, 28 * 8));
  out.push_back(a64::load_home(reg));
}

void mangle_pair(std::uint32_t renamed, unsigned reg, words& out) {
  const int home = static_cast<int>(reg * 8);
  out.push_back(a64::stp(reg, reg + 1, context_register, home));
  out.push_back(a64::ldr(reg, context_register, 28 * 8));
  out.push_back(a64::mov(reg + 1, 29));
  out.push_back(renamed);
  out.push_back(a64::str(reg, context_register, 28 * 8));
  out.push_back(a64::mov(29, reg + 1));
  out.push_back(a64::ldp(reg, reg + 1, context_register, home));
}

mangling mangle_x28(std::uint32_t word, const register_roles& roles, const x28_use& use,
                    words& out) {
  if (!use.written) return mangle_reader(word, out), mangling{};
  const unsigned reg = free_register(word, roles);
  const std::uint32_t renamed = rename_x28(word, roles, reg);
  use.paired ? mangle_pair(renamed, reg, out) : mangle_writer(renamed, use, reg, out);
  return {.borrowed = borrowed(reg) | (use.paired ? borrowed(reg + 1) : 0)};
}

}  // namespace

void show_sve_in_registers() { sve_is_shown = true; }

std::optional<unsigned> substitute_for_x28(std::span<const std::uint32_t> code) {
  std::uint32_t taken = 0;
  bool named = false;
  for (const std::uint32_t word : code) {
    const register_roles roles = roles_of(word);
    const x28_use use = use_of_x28(word, roles);
    const bool has_octet = std::ranges::count(roles, role::octet) != 0;
    const bool has_pair = std::ranges::count(roles, role::pair) != 0;
    const bool is_plain = !is_address(word) && !is_literal_load(word) && correction_of(word) == 0;
    if (use.refused || has_octet || has_pair || !is_plain) return std::nullopt;
    named |= use.named;
    for (const unsigned position : field_positions) taken |= 1u << field_at(word, position);
  }
  const auto reg = static_cast<unsigned>(std::countr_one(taken));
  return named && reg < context_register ? std::optional(reg) : std::nullopt;
}

std::uint32_t with_substitute(std::uint32_t word, unsigned reg) {
  return rename_x28(word, roles_of(word), reg);
}

mangling mangle(std::uint32_t word, std::uint64_t pc, words& out) {
  if (is_address(word)) return mangle_address(word, pc, out);
  if (is_literal_load(word)) return mangle_literal_load(word, pc, out);
  if (may_name_x28(word)) {
    const register_roles roles = roles_of(word);
    const x28_use use = use_of_x28(word, roles);
    if (use.refused) return {.known = false};
    if (use.named) return mangle_x28(word, roles, use, out);
  }
  append_corrected(word, out);
  return {};
}

}  // namespace host
