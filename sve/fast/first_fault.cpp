// A probe costs one load if the memory can be read, and a signal if it cannot. If another thread
// unmaps a page between the probe and the load, the load faults like any other access.
#include "sve/fast/first_fault.h"

#include <algorithm>
#include <unistd.h>

#include "sve/fast/memory_elements.h"
#include "sve/semantics/memory_access.h"

namespace {

using sve::active;
using sve::elements;
using sve::read_guest;
using sve::read_x;
using sve::set_active;
using sve::set_element;
using sve::vector_bytes;

using namespace sve::fast::memory;

const S32 page_size = static_cast<S32>(sysconf(_SC_PAGESIZE));

S32 page_offset(U64 address) { return static_cast<S32>(address) & (page_size - 1); }

bool is_readable(U64 address) {
  return addr_is_readable<char>(sve::guest_pointer<volatile char>(address));
}

// How many bytes of a vector at an address can be read if the first one can. It covers the full
// vector, although a widening load reads less.
unsigned bytes_in_readable_pages(U64 address) {
  if (page_offset(address) <= page_offset(address + vector_bytes)) return vector_bytes;
  if (is_readable(address + static_cast<U64>(page_size))) return vector_bytes;
  return std::min(static_cast<unsigned>(page_size - page_offset(address)), vector_bytes);
}

// The number of elements up to and including the first active one, or 0 if none is active.
template <class T>
unsigned through_first_active(const unsigned char* pg) {
  for (unsigned i = 0; i < elements<T>; ++i) {
    if (active<T>(pg, i)) return i + 1;
  }
  return 0;
}

// If not even one register element fits before an unreadable page, the elements up to the first
// active one are loaded anyway. That one may be narrower in memory and lie before the page, and is
// then loaded. Otherwise it takes its fault, as the architecture requires for the first active
// element. If FFR came back empty instead, a loop that waits for progress would never end.
template <class M, class T = M>
RC ldff1(CPU* cpu, Z zt, P pg, R rn, X rm) {
  const U64 address = read_x(cpu, rn) + read_x(cpu, rm) * sizeof(M);
  unsigned count = bytes_in_readable_pages(address) / sizeof(T);
  if (count == 0) count = through_first_active<T>(cpu->p[pg.num]);
  sve::fast::load_elements<M, T>(cpu, zt, pg, count, sve::fast::consecutive<M>(address));
  std::fill(cpu->ffr + count * sizeof(T), cpu->ffr + vector_bytes, 0);
  return aarch64_decode_ok;
}

// Whether ascending addresses less than a page apart can be read. It probes once a page.
class ascending_probe {
 public:
  explicit ascending_probe(U64 first) : last_(page_offset(first)), readable_(is_readable(first)) {}

  // If an element crosses into the next page, that page is probed as well: a non-fault load takes
  // no fault, aligned or not.
  bool can_read(U64 address, unsigned bytes) {
    const S32 offset = page_offset(address);
    if (offset <= last_) {
      readable_ = is_readable(address);
      last_ = offset;
    }
    const U64 last_byte = address + bytes - 1;
    return readable_ && (page_offset(last_byte) >= offset || is_readable(last_byte));
  }

 private:
  S32 last_;  // page offset of the last address that was checked
  bool readable_;
};

template <class M, class T = M>
RC ldnf1(CPU* cpu, Z zt, P pg, R rn, int imm) {
  U64 address = read_x(cpu, rn) + static_cast<U64>(sve::fast::register_offset<T>(imm)) * sizeof(M);
  ascending_probe probe(address);
  for (unsigned i = 0; i < elements<T>; ++i, address += sizeof(M)) {
    if (!active<T>(cpu->p[pg.num], i)) {
      set_element<T>(cpu->z[zt.num], i, 0);
    } else if (probe.can_read(address, sizeof(M))) {
      set_element<T>(cpu->z[zt.num], i, static_cast<T>(read_guest<M>(address)));
    } else {
      set_active<T>(cpu->ffr, i, false);
    }
  }
  return aarch64_decode_ok;
}

}  // namespace

RC sve_ldff1b_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U8>(c, t, g, n, x); }
RC sve_ldff1b_h_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U8, U16>(c, t, g, n, x); }
RC sve_ldff1b_s_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U8, U32>(c, t, g, n, x); }
RC sve_ldff1b_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U8, U64>(c, t, g, n, x); }
RC sve_ldff1w_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U32>(c, t, g, n, x); }
RC sve_ldff1w_d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U32, U64>(c, t, g, n, x); }
RC sve_ldff1d_scaled_zprr(CPU* c, Z t, P g, R n, X x) { return ldff1<U64>(c, t, g, n, x); }

RC sve_ldnf1b_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U8>(c, t, g, n, i); }
RC sve_ldnf1b_h_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U8, U16>(c, t, g, n, i); }
RC sve_ldnf1b_s_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U8, U32>(c, t, g, n, i); }
RC sve_ldnf1b_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U8, U64>(c, t, g, n, i); }
RC sve_ldnf1sb_h_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S8, U16>(c, t, g, n, i); }
RC sve_ldnf1sb_s_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S8, U32>(c, t, g, n, i); }
RC sve_ldnf1sb_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S8, U64>(c, t, g, n, i); }
RC sve_ldnf1h_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U16>(c, t, g, n, i); }
RC sve_ldnf1h_s_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U16, U32>(c, t, g, n, i); }
RC sve_ldnf1h_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U16, U64>(c, t, g, n, i); }
RC sve_ldnf1sh_s_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S16, U32>(c, t, g, n, i); }
RC sve_ldnf1sh_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S16, U64>(c, t, g, n, i); }
RC sve_ldnf1w_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U32>(c, t, g, n, i); }
RC sve_ldnf1w_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U32, U64>(c, t, g, n, i); }
RC sve_ldnf1sw_d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<S32, U64>(c, t, g, n, i); }
RC sve_ldnf1d_zpri(CPU* c, Z t, P g, R n, int i) { return ldnf1<U64>(c, t, g, n, i); }
