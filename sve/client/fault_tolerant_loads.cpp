#include "sve/client/fault_tolerant_loads.h"

#include <csetjmp>
#include <cstring>

#include "sve/client/memory_emulation.h"
#include "sve/client/program_access.h"
#include "sve/state/access.h"

namespace sve {
namespace {

// LDNF1 differs from LD1 (scalar plus immediate) in bit 20, and each LDFF1 from its LD1 in bit 13.
constexpr std::uint32_t first_fault_bit = 1U << 13;
constexpr std::uint32_t non_fault_bit = 1U << 20;

constexpr bool is_non_fault(std::uint32_t word) { return (word & 0xfe10e000) == 0xa410a000; }

// The size of a register element in bytes. A contiguous load has it in its field dtype.
unsigned element_bytes(std::uint32_t word) {
  constexpr unsigned shift_of_dtype[16] = {0, 1, 2, 3, 3, 1, 2, 3, 3, 2, 2, 3, 3, 2, 1, 3};
  switch (bits(word, 31, 25)) {
    case 0b1000010: return 4;
    case 0b1100010: return 8;
    default: return 1U << shift_of_dtype[bits(word, 24, 21)];
  }
}

// Runs the plain load with the governing predicate as it is below byte `end`, and false from there.
// Returns false if it faulted; everything is then as before.
[[gnu::noinline]] bool loads_below(program_access& access, unsigned word, unsigned end,
                                   const predicate_register& governing) {
  predicate_register& p = access.state->p[bits(word, 12, 10)];
  std::memcpy(p, governing, end);
  std::memset(p + end, 0, sizeof p - end);
  access.put_back();
  std::jmp_buf here;
  access.retry = &here;
  const bool has_loaded = setjmp(here) == 0;  // NOLINT(cert-err52-cpp): a fault cannot throw
  if (has_loaded) access.run(word);
  access.retry = nullptr;
  std::memcpy(p, governing, sizeof p);
  return has_loaded;
}

// The number of elements up to the first active one that cannot be read. The whole vector cannot.
unsigned readable_elements(program_access& access, unsigned word, unsigned size,
                           const predicate_register& governing) {
  unsigned readable = 0;
  unsigned unreadable = vector_bytes / size;
  while (unreadable - readable > 1) {
    const unsigned middle = (readable + unreadable) / 2;
    const bool loads = loads_below(access, word, middle * size, governing);
    (loads ? readable : unreadable) = middle;
  }
  return readable;
}

bool is_any_active(const predicate_register& governing, unsigned size, unsigned end) {
  for (unsigned i = 0; i < end; i += size) {
    if ((governing[i] & 1) != 0) return true;
  }
  return false;
}

// The architecture's rule: the first active element of a first-fault load loads or faults. Any
// other active element that cannot be read makes the FFR false from there on. What the register
// holds from there on is left to each processor; here it is 0.
aarch64_decode_rc run_fault_tolerant(cpu_state* state, unsigned word) {
  program_access& access = current_access();
  access.keep();
  const std::uint32_t plain = plain_load_of(word);
  predicate_register governing;
  std::memcpy(governing, state->p[bits(word, 12, 10)], sizeof governing);
  const unsigned size = element_bytes(word);
  unsigned end = vector_bytes;
  while (!loads_below(access, plain, end, governing)) {
    end = readable_elements(access, plain, size, governing) * size;
    if (!is_non_fault(word) && !is_any_active(governing, size, end)) {
      access.put_back();
      return access.run(plain);  // faults
    }
  }
  std::memset(state->ffr + end, 0, sizeof state->ffr - end);
  return aarch64_decode_ok;
}

}  // namespace

bool is_fault_tolerant(const instruction_row& row) {
  return row.mnemonic.starts_with("LDFF1") || row.mnemonic.starts_with("LDNF1");
}

std::uint32_t plain_load_of(std::uint32_t word) {
  return word & ~(is_non_fault(word) ? non_fault_bit : first_fault_bit);
}

void emulate_fault_tolerant_load(unsigned int word, unsigned char* pc, decode_handler handler,
                                 std::uint64_t run, std::uint64_t kept) {
  emulate_access(word, pc, {handler, run, kept}, run_fault_tolerant);
}

}  // namespace sve
