// The element loops between a register and guest memory, for all loads and stores of single
// registers: contiguous, gathered and scattered ones differ only in the address of element i.
//
// One element after the other, each by one access of its width in memory: a wider access would
// touch the memory of inactive elements, which may be unmapped or belong to somebody else.
// `address(i)` is called for active elements only, before element i of the register is written;
// so the offsets may come from the register that is loaded.
#pragma once

#include <cstdint>

#include "sve/state/access.h"
#include "sve/state/guest_memory.h"
#include "sve/state/integers.h"

// Short names for the definitions of the loads and stores, of which there is one to a line.
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

// Offset of the zpri forms in memory elements, for lists of N registers of elements T.
template <class T, int N = 1>
inline long register_offset(int imm) {
  return static_cast<long>(imm) * elements<T> * N;
}

// The first `count` elements T of zt: memory element M, extended as its type says, where pg, else
// 0.
template <class M, class T, class Address>
inline void load_elements(unsigned char* zt, const unsigned char* pg, unsigned count,
                          Address address) {
  for (unsigned i = 0; i < count; ++i) {
    set_element<T>(zt, i, active<T>(pg, i) ? static_cast<T>(read_guest<M>(address(i))) : T{0});
  }
}

// The low bytes of the active elements T of zt, in ascending order: where two of them go to the
// same address, the higher element's stay.
template <class M, class T, class Address>
inline void store_elements(const unsigned char* zt, const unsigned char* pg, Address address) {
  for (unsigned i = 0; i < elements<T>; ++i) {
    if (active<T>(pg, i)) write_guest<M>(address(i), static_cast<M>(element<T>(zt, i)));
  }
}

}  // namespace sve::fast
