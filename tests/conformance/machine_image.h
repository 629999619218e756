// The whole machine state as the processor itself reads and writes it. A case is made in this form,
// loaded into the processor with SVE, and stored again after the instruction.
//
// cpu_state holds the same state with its predicates unpacked; unpack() and pack() convert between
// the two.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sve/state/cpu_state.h"

namespace conformance {

inline constexpr unsigned ffr_index = 16;  // the FFR follows P15 in both forms

// A predicate as LDR and STR of a predicate register access it: bit k belongs to vector byte k.
using packed_predicate = unsigned char[sve::predicate_bytes];

struct machine_image {
  std::uint64_t x[31];
  std::uint64_t sp;
  std::uint64_t nzcv;
  std::uint32_t fpsr;
  std::uint32_t fpcr;
  vector_register z[32];
  packed_predicate p[17];
};

static_assert(offsetof(machine_image, sp) == 248 && offsetof(machine_image, nzcv) == 256 &&
                  offsetof(machine_image, fpsr) == 264 && offsetof(machine_image, z) == 272,
              "native_run.S reaches the fields by these offsets");
static_assert(offsetof(machine_image, p) == offsetof(machine_image, z) + sizeof(machine_image::z),
              "native_run.S finds the predicates 32 vector lengths behind z");

inline bool predicate_bit(const packed_predicate& predicate, unsigned lane) {
  return ((predicate[lane / 8] >> (lane % 8)) & 1) != 0;
}

inline void set_predicate_bit(packed_predicate& predicate, unsigned lane, bool value) {
  const unsigned bit = 1U << (lane % 8);
  predicate[lane / 8] =
      static_cast<unsigned char>(value ? predicate[lane / 8] | bit : predicate[lane / 8] & ~bit);
}

// Makes the emulated register file that corresponds to `image`. Its pc is null.
void unpack(const machine_image& image, cpu_state& state);

// The reverse. It takes bit 0 of each predicate byte.
void pack(const cpu_state& state, machine_image& image);

}  // namespace conformance
