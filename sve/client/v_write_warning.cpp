#include "sve/client/v_write_warning.h"

#include <atomic>
#include <bit>
#include <cstdio>

#include "sve/client/emulate.h"
#include "sve/client/pending_writes.h"
#include "sve/client/runs.h"
#include "sve/client/transfer.h"
#include "sve/decode/register_use.h"
#include "sve/state/access.h"
#include "sve/state/predicate_pattern.h"

namespace sve {
namespace {

void warn_once(unsigned word, const unsigned char* pc, std::uint32_t registers) {
  static std::atomic<bool> has_warned = false;
  if (has_warned.exchange(true)) return;
  const int n = std::countr_zero(registers);
  std::fprintf(stderr,
               "Warning: the instruction at %p, %s, reads all of z%d after the program wrote v%d. "
               "On a processor with SVE, that write clears the rest of z%d, so the result may "
               "differ. The option --architectural clears it here, too.\n",
               static_cast<const void*>(pc), disassemble(word).c_str(), n, n, n);
}

constexpr std::uint64_t pack(std::uint32_t read, std::uint32_t written) {
  return static_cast<std::uint64_t>(written) << 32 | read;
}

void emulate_with_warning(unsigned int word, unsigned char* pc, decode_handler handler,
                          std::uint64_t run, std::uint64_t use) {
  const auto read = static_cast<std::uint32_t>(use);
  const auto written = static_cast<std::uint32_t>(use >> 32);
  std::uint64_t& pending = pending_writes();
  pending |= run;
  if ((pending & read) != 0) warn_once(word, pc, static_cast<std::uint32_t>(pending & read));
  pending &= ~std::uint64_t{written};
  emulate_instruction(word, pc, handler);
}

// PTRUE and PTRUES of a fixed number of elements: 00100101 size 01100 s 111000 pattern 0 Pd.
bool is_short_ptrue(std::uint32_t word) {
  if ((word & 0xff3efc10) != 0x2518e000) return false;
  const unsigned pattern = bits(word, 9, 5);
  const bool is_fixed = pattern >= 1 && pattern <= 13;
  const unsigned element_bytes = 1U << bits(word, 23, 22);
  return is_fixed && pattern_count(pattern, vector_bytes / element_bytes) * element_bytes <= 16;
}

// The predicates that a PTRUE of the block has made short.
class short_predicates {
 public:
  [[nodiscard]] bool governs(const register_use& use) const {
    return use.governing >= 0 && (set_ >> use.governing & 1) != 0;
  }
  void note(std::uint32_t word, const register_use& use) {
    set_ &= ~use.p_written;
    if (is_short_ptrue(word)) set_ |= use.p_written;
  }

 private:
  std::uint32_t set_ = 0;
};

}  // namespace

bool start_v_write_warnings() { return reserve_pending_writes(); }

void forget_v_writes() { begin_pending_writes(0); }

unsigned rewrite_with_warnings(void* drcontext, instrlist_t* block, cpu_state* state) {
  short_predicates shorts;
  return rewrite_runs(
      drcontext, block,
      [&](instr_t* instr, std::uint32_t word, const instruction_row& row, std::uint32_t run) {
        const register_use use = register_use_of(row, word);
        // Under a short predicate, a merging instruction keeps the rest of its destination, which
        // it also reads.
        const bool is_short = shorts.governs(use);
        const std::uint32_t read = is_short ? 0 : use.z_read;
        const std::uint32_t written = is_short ? use.z_written & ~use.z_read : use.z_written;
        shorts.note(word, use);
        insert_emulation(drcontext, block, instr, state,
                         {emulate_with_warning, row.handler, run, pack(read, written)});
      });
}

}  // namespace sve
