#include "sve/client/memory_emulation.h"

#include <bit>
#include <unistd.h>

#include "sve/client/emulate.h"
#include "sve/client/pending_writes.h"
#include "sve/decode/register_use.h"
#include "sve/state/access.h"
#include "sve/state/guest_memory.h"
#include "sve/state/packed_predicate.h"

namespace sve {
namespace {

const auto page_bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));

// LDR and STR of a vector or a predicate: 1uu0010110 imm9h 0v0 imm9l Rn Rt. u is set in a store,
// and v for a vector.
constexpr bool moves_a_register(std::uint32_t word) {
  const std::uint32_t fixed = word & 0xffc0a000;
  return fixed == 0x85800000 || fixed == 0xe5800000;
}

// The fast paths copy the register as a block, in an order that the compiler chose. Touching its
// first byte in each page before that makes the lowest byte that cannot be accessed the one that
// faults, as on a processor. A store stores the byte that it will store anyway.
void touch_pages(const cpu_state* state, unsigned word) {
  const bool is_vector = bits(word, 14, 14) != 0;
  const bool is_store = bits(word, 30, 30) != 0;
  const unsigned length = is_vector ? vector_bytes : predicate_bytes;
  const int registers =
      static_cast<int>((bits(word, 21, 16) << 3 | bits(word, 12, 10)) << 23) >> 23;
  const std::uint64_t start = read_x(state, aarch64_i_rsp_reg{bits(word, 9, 5), D}) +
                              static_cast<std::uint64_t>(registers * static_cast<int>(length));
  const auto byte_at = [&](std::uint64_t i) {
    const unsigned t = bits(word, 4, 0);
    return is_vector ? state->z[t][i] : pack_lanes(element<std::uint64_t>(state->p[t], i));
  };
  for (std::uint64_t i = 0; i < length;
       i = (start + i + page_bytes) / page_bytes * page_bytes - start) {
    if (is_store) {
      write_guest<std::uint8_t>(start + i, byte_at(i));
    } else {
      [[maybe_unused]] const volatile std::uint8_t touched = read_guest<std::uint8_t>(start + i);
    }
  }
}

aarch64_decode_rc run_row(cpu_state* state, unsigned word) {
  program_access& access = current_access();
  access.keep();
  if (moves_a_register(word)) {
    access.is_under_way = true;
    touch_pages(state, word);
  }
  return access.run(word);
}

}  // namespace

destinations destinations_of(const instruction_row& row, std::uint32_t word) {
  const register_use use = register_use_of(row, word);
  const unsigned predicates = use.p_written & 0xffff;
  return {.first_vector = bits(word, 4, 0),
          .vectors = static_cast<unsigned>(std::popcount(use.z_written)),
          .predicate = predicates != 0 ? std::countr_zero(predicates) : -1};
}

void emulate_access(unsigned int word, unsigned char* pc, const access_call& call,
                    decode_handler around) {
  program_access& access = current_access();
  access.handler = call.handler;
  access.changed = destinations::unpacked(call.kept);
  pay_off_pending_writes(*access.state, call.run);
  emulate_instruction(word, pc, around);
}

void emulate_memory_instruction(unsigned int word, unsigned char* pc, decode_handler handler,
                                std::uint64_t run, std::uint64_t kept) {
  emulate_access(word, pc, {handler, run, kept}, run_row);
}

}  // namespace sve
