// The element loops between registers and guest memory, for all loads and stores of elements. The
// forms differ only in the address of element i.
//
// Each element is accessed separately, in one access of its width in memory. A wider access would
// touch the memory of inactive elements, which may be unmapped or belong to somebody else.
// `address(i)` is called for active elements only, and before element i of the register is written.
// So the offsets may come from the register that is loaded. In a list of N registers, which wraps
// from Z31 to Z0, element i of each follows element i of the previous register in memory.
#pragma once

#include <cstdint>

#include "sve/state/access.h"
#include "sve/state/guest_memory.h"
#include "sve/state/integers.h"

// Short names for the definitions of the loads and stores, so that each fits on one line.
namespace sve::fast::memory {

using namespace integers;

using RC = aarch64_decode_rc;
using CPU = cpu_state;
using Z = aarch64_z_reg;
using P = aarch64_p_reg;
using R = aarch64_i_rsp_reg;  // a base
using X = aarch64_i_reg;      // an index

}  // namespace sve::fast::memory

namespace sve::fast {

// Offset of the zpri forms in memory elements, for lists of N registers with elements of type T.
template <class T, int N = 1>
inline long register_offset(int imm) {
  return static_cast<long>(imm) * elements<T> * N;
}

// The addresses of a run of elements, or of groups of N.
template <class M, int N = 1>
inline auto consecutive(std::uint64_t first) {
  return [first](unsigned i) { return first + std::uint64_t{i} * N * sizeof(M); };
}

// Loads the first `count` elements T of each register: a memory element M, extended as its type
// requires, where pg, else 0.
template <class M, class T, int N = 1, class Address>
inline void load_elements(cpu_state* cpu, aarch64_z_reg zt, aarch64_p_reg pg, unsigned count,
                          Address address) {
  for (unsigned i = 0; i < count; ++i) {
    const bool is_active = active<T>(cpu->p[pg.num], i);
    for (unsigned r = 0; r < N; ++r) {
      const T value = is_active ? static_cast<T>(read_guest<M>(address(i) + r * sizeof(M))) : T{0};
      set_element<T>(cpu->z[(zt.num + r) & 31], i, value);
    }
  }
}

// Stores the low bytes of the active elements T, in ascending order. If two go to the same address,
// those of the higher element remain.
template <class M, class T, int N = 1, class Address>
inline void store_elements(const cpu_state* cpu, aarch64_z_reg zt, aarch64_p_reg pg,
                           Address address) {
  for (unsigned i = 0; i < elements<T>; ++i) {
    if (!active<T>(cpu->p[pg.num], i)) continue;
    for (unsigned r = 0; r < N; ++r) {
      const T value = element<T>(cpu->z[(zt.num + r) & 31], i);
      write_guest<M>(address(i) + r * sizeof(M), static_cast<M>(value));
    }
  }
}

}  // namespace sve::fast
