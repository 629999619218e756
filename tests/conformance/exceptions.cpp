#include "tests/conformance/exceptions.h"

#include <array>
#include <bit>
#include <cstring>
#include <fnmatch.h>
#include <string>

#include "sve/state/vector_length.h"

namespace conformance {
namespace {

// Changes LDFF1 (scalar plus scalar) to LD1. LD1 has no form without an index, but scalar plus
// immediate 0 does the same.
std::uint32_t plain_for_first_fault(std::uint32_t word) {
  const bool no_index = ((word >> 16) & 31) == 31;
  if (!no_index) return word & ~0x2000U;
  return (word & ~0x001fe000U) | 0xa000U;
}

// Changes LDFF1 (gather) to LD1.
std::uint32_t plain_for_first_fault_gather(std::uint32_t word) { return word & ~0x2000U; }

// Changes LDNF1 (scalar plus immediate) to LD1.
std::uint32_t plain_for_non_fault(std::uint32_t word) { return word & ~0x00100000U; }

// Takes every second element of Pn and then of Pm, from element 0 (UZP1) or 1 (UZP2). An element
// keeps all its bits.
void unzip_predicates(const row_shape& shape, std::uint32_t word, const machine_image& before,
                      machine_image& after) {
  const unsigned element_bytes = shape.element_bytes;
  const unsigned count = sve::vector_bytes / element_bytes;
  const unsigned part = shape.row->name.ends_with("Uzp2PP") ? 1 : 0;
  packed_predicate result{};
  for (unsigned lane = 0; lane < sve::vector_bytes; ++lane) {
    const unsigned source = 2 * (lane / element_bytes) + part;
    const auto& from = before.p[shape.value(source < count ? 'n' : 'm', word)];
    const unsigned element = source < count ? source : source - count;
    const unsigned source_lane = element * element_bytes + lane % element_bytes;
    set_predicate_bit(result, lane, predicate_bit(from, source_lane));
  }
  std::memcpy(after.p[shape.value('d', word)], result, sizeof result);
}

bool any_active(const row_shape& shape, std::uint32_t word, const machine_image& before) {
  const packed_predicate& governing = before.p[shape.value('g', word)];
  for (unsigned lane = 0; lane < sve::vector_bytes; lane += shape.element_bytes)
    if (predicate_bit(governing, lane)) return true;
  return false;
}

void keep_old_w_register(const row_shape& shape, std::uint32_t word, const machine_image& before,
                         machine_image& after) {
  const unsigned d = shape.value('d', word);
  if (d < 31 && !any_active(shape, word, before)) after.x[d] = before.x[d] & 0xffffffff;
}

void keep_old_simd_scalar(const row_shape& shape, std::uint32_t word, const machine_image& before,
                          machine_image& after) {
  if (any_active(shape, word, before)) return;
  const unsigned d = shape.value('d', word);
  std::memset(after.z[d], 0, sizeof after.z[d]);
  std::memcpy(after.z[d], before.z[d], 8);
}

constexpr std::array exceptions{
    exception{
        "VecP*Uzp[12]PP",
        "QEMU 7.2: at lengths other than powers of two, UZP1 and UZP2 of predicates lose bits; "
        "a model of the architecture's definition replaces it",
        nullptr, unzip_predicates},
    exception{"Vec*CLoadFF*LSSZ",
              "QEMU 7.2: a contiguous LDFF1 misreads the predicate when the first active element "
              "is beyond vector byte 7, and stops at a page boundary although the next page is "
              "readable; with all memory mapped, LD1 has the right outcome",
              plain_for_first_fault, nullptr},
    exception{"Vec*CLoadNF*SIZ", "QEMU 7.2: LDNF1 has the same faults as LDFF1",
              plain_for_non_fault, nullptr},
    exception{"Vec[US][36][24]LoadFF*V*Z",
              "QEMU 7.2: a gathering LDFF1 stops at an element that is in two pages, although "
              "both are readable",
              plain_for_first_fault_gather, nullptr},
    exception{"Vec[US]*CondXASV",
              "intended: CLASTA to a general register without an active element keeps the old "
              "register's whole W part; the architecture cuts it to the element",
              nullptr, keep_old_w_register},
    exception{"Vec[BHF]*CondX[AB]SV",
              "intended: CLASTA and CLASTB to a SIMD&FP scalar without an active element keep the "
              "old low 64 bits; the architecture cuts them to the element",
              nullptr, keep_old_simd_scalar},
};

bool applies(const exception& entry, const row_shape& shape) {
  if (entry.correct == unzip_predicates && std::has_single_bit(sve::vector_bytes)) return false;
  if (entry.correct == keep_old_w_register && shape.element_bytes == 8) return false;
  return fnmatch(entry.rows, std::string{shape.row->name}.c_str(), 0) == 0;
}

}  // namespace

const exception* find_exception(const row_shape& shape) {
  for (const exception& entry : exceptions)
    if (applies(entry, shape)) return &entry;
  return nullptr;
}

}  // namespace conformance
