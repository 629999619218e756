// Operations on single bytes work in groups. Scans and permutes are plain loops over bytes or
// elements.
#include "sve/fast/predicates.h"

#include "sve/fast/element_loops.h"
#include "sve/fast/operations.h"
#include "sve/fast/predicate_scan.h"
#include "sve/state/predicate_pattern.h"

using namespace sve::fast;
using sve::active;
using sve::element;
using sve::elements;
using sve::set_active;
using sve::set_element;
using sve::vector_bytes;

namespace {

using byte = unsigned char;

const byte* as_bytes(const char* p) { return reinterpret_cast<const byte*>(p); }
byte* as_bytes(char* p) { return reinterpret_cast<byte*>(p); }
const char* as_chars(const byte* p) { return reinterpret_cast<const char*>(p); }
char* as_chars(byte* p) { return reinterpret_cast<char*>(p); }

using bytes = group<byte>;

// Byte by byte: op(pn, pm) where pg, else 0.
template <class Op>
rc logic(cpu_state* s, P pd, P pg, P pn, P pm, Op op) {
  const byte *g = s->p[pg.num], *n = s->p[pn.num], *m = s->p[pm.num];
  return write_in_place<bytes>(s->p[pd.num], [=](std::size_t i) {
    return (bytes)op(load_unit<bytes>(n, i), load_unit<bytes>(m, i)) & governing_mask<bytes>(g, i);
  });
}

// An operand byte counts as true unless it is zero. These operations store only 0 and 1.
constexpr auto both = [](bytes a, bytes b) { return ((a != 0) & (b != 0)) & 1; };
constexpr auto either = [](bytes a, bytes b) { return ((a | b) != 0) & 1; };
constexpr auto one = [](bytes a, bytes b) { return ((a != 0) ^ (b != 0)) & 1; };
constexpr auto neither = [](bytes a, bytes b) { return ((a | b) == 0) & 1; };

// The first `count` bytes are true where pg is, and the others false. Bytes where pg is false
// become 0, or keep their old value if `merge` is set.
void keep_first(byte* result, const byte* g, unsigned count, bool merge = false) {
  write_by_first<byte>(result, count, [=](std::size_t i, bytes first) {
    return where_governed<bytes>(
        g, i, [=] { return first; }, [=] { return merge ? load_unit<bytes>(result, i) : bytes{}; });
  });
}

// A break keeps what comes before the first active true byte of pn, and that byte too if `with_it`.
rc break_at(cpu_state* s, P pd, P pg, P pn, bool with_it) {
  const byte* g = s->p[pg.num];
  const std::size_t first = first_in_both<byte>(g, s->p[pn.num]);
  const unsigned kept = static_cast<unsigned>(first) + (with_it && first < vector_bytes);
  keep_first(s->p[pd.num], g, kept, pg.size != sve::zeroing);
  return aarch64_decode_ok;
}

bool true_at_last_active(const byte* pg, const byte* pn) {
  const std::size_t end = end_of_active<byte>(pg);
  return end > 0 && pn[end - 1] != 0;
}

// Makes only one element of pdn true: the next one after its last true element where pv is true.
template <class T>
void next_active_element(cpu_state* s, byte* pdn, const byte* pv) {
  byte result[vector_bytes] = {};
  const std::size_t next = next_active<T>(pv, end_of_active<T>(pdn));
  if (next < elements<T>) set_active<T>(result, next, true);
  sve_ptest<T>(s, as_chars(pv), as_chars(result));
  std::memcpy(pdn, result, vector_bytes);
}

// Makes halfword elements from the vector_bytes / 2 bytes at `half`.
rc unpack(byte* pd, const byte* half) {
  return write_units<std::uint16_t>(
      pd, [=](std::size_t i) { return static_cast<std::uint16_t>(half[i] & 1); });
}

template <class T>
void zip(byte* out, const byte* a, const byte* b) {
  for (std::size_t i = 0; i < elements<T> / 2; ++i) {
    set_element<T>(out, 2 * i, element<T>(a, i));
    set_element<T>(out, 2 * i + 1, element<T>(b, i));
  }
}

template <class Permute>
rc permute(cpu_state* s, P pd, P pn, P pm, Permute to_result) {
  byte result[vector_bytes];
  to_result(as_chars(result), as_chars(s->p[pn.num]), as_chars(s->p[pm.num]),
            static_cast<element_size>(pd.size));
  std::memcpy(s->p[pd.num], result, vector_bytes);
  return aarch64_decode_ok;
}

}  // namespace

template <class T>
void sve_ptest(cpu_state* state, const char* governing, const char* result) {
  const byte *g = as_bytes(governing), *r = as_bytes(result);
  const std::size_t first = next_active<T>(g, 0), end = end_of_active<T>(g);
  set_flags(state, end > 0 && active<T>(r, first), any_in_both<T>(g, r),
            end > 0 && active<T>(r, end - 1));
}

template void sve_ptest<signed char>(cpu_state*, const char*, const char*);
template void sve_ptest<short>(cpu_state*, const char*, const char*);
template void sve_ptest<int>(cpu_state*, const char*, const char*);
template void sve_ptest<long>(cpu_state*, const char*, const char*);
template void sve_ptest<unsigned char>(cpu_state*, const char*, const char*);
template void sve_ptest<unsigned short>(cpu_state*, const char*, const char*);
template void sve_ptest<unsigned int>(cpu_state*, const char*, const char*);
template void sve_ptest<unsigned long>(cpu_state*, const char*, const char*);

rc sve_ptest_pp(cpu_state* s, P pg, P pn) {
  sve_ptest<signed char>(s, as_chars(s->p[pg.num]), as_chars(s->p[pn.num]));
  return aarch64_decode_ok;
}

rc sve_and_pppp(cpu_state* s, P pd, P pg, P pn, P pm) { return logic(s, pd, pg, pn, pm, both); }
rc sve_orr_pppp(cpu_state* s, P pd, P pg, P pn, P pm) { return logic(s, pd, pg, pn, pm, either); }
rc sve_eor_pppp(cpu_state* s, P pd, P pg, P pn, P pm) { return logic(s, pd, pg, pn, pm, one); }
rc sve_bic_pppp(cpu_state* s, P pd, P pg, P pn, P pm) {
  return logic(s, pd, pg, pn, pm, bit_clear);
}
rc sve_nor_pppp(cpu_state* s, P pd, P pg, P pn, P pm) { return logic(s, pd, pg, pn, pm, neither); }

rc sve_sel_pppp(cpu_state* s, P pd, P pg, P pn, P pm) {
  const byte *g = s->p[pg.num], *n = s->p[pn.num], *m = s->p[pm.num];
  return write_in_place<bytes>(s->p[pd.num], [=](std::size_t i) {
    return where_governed<bytes>(
        g, i, [=] { return load_unit<bytes>(n, i); }, [=] { return load_unit<bytes>(m, i); });
  });
}

rc sve_ptrue_pi(cpu_state* s, P pd, unsigned pattern) {
  return by_size<single>(pd.size, [=]<class T>() {
    set_first_elements<T>(s->p[pd.num], sve::pattern_count(pattern, elements<T>));
  });
}

rc sve_pfalse_p(cpu_state* s, P pd) {
  std::memset(s->p[pd.num], 0, vector_bytes);
  return aarch64_decode_ok;
}

rc sve_brka_ppp(cpu_state* s, P pd, P pg, P pn) { return break_at(s, pd, pg, pn, true); }
rc sve_brkb_ppp(cpu_state* s, P pd, P pg, P pn) { return break_at(s, pd, pg, pn, false); }

rc sve_brkn(cpu_state* s, P pdm, P pg, P pn, bool set_flags) {
  byte* dm = s->p[pdm.num];
  if (!true_at_last_active(s->p[pg.num], s->p[pn.num])) std::memset(dm, 0, vector_bytes);
  if (set_flags) set_flags_all_active<byte>(s, dm);
  return aarch64_decode_ok;
}

rc sve_brkn_ppp(cpu_state* s, P pdm, P pg, P pn) { return sve_brkn(s, pdm, pg, pn, false); }
rc sve_brkns_ppp(cpu_state* s, P pdm, P pg, P pn) { return sve_brkn(s, pdm, pg, pn, true); }

rc sve_brkpb(cpu_state* s, P pd, P pg, P pn, P pm, bool set_flags) {
  const byte* g = s->p[pg.num];
  const bool kept = true_at_last_active(g, s->p[pn.num]);
  byte result[vector_bytes];
  keep_first(result, g, kept ? static_cast<unsigned>(first_in_both<byte>(g, s->p[pm.num])) : 0);
  if (set_flags) sve_ptest<signed char>(s, as_chars(g), as_chars(result));
  std::memcpy(s->p[pd.num], result, vector_bytes);
  return aarch64_decode_ok;
}

rc sve_brkpb_pppp(cpu_state* s, P pd, P pg, P pn, P pm) {
  return sve_brkpb(s, pd, pg, pn, pm, false);
}
rc sve_brkpbs_pppp(cpu_state* s, P pd, P pg, P pn, P pm) {
  return sve_brkpb(s, pd, pg, pn, pm, true);
}

rc sve_pnext_pp(cpu_state* s, P pdn, P pv) {
  return by_size<single>(
      pdn.src_size, [=]<class T>() { next_active_element<T>(s, s->p[pdn.num], s->p[pv.num]); });
}

rc sve_rdffr_p(cpu_state* s, P pd) {
  std::memcpy(s->p[pd.num], s->ffr, vector_bytes);
  return aarch64_decode_ok;
}

rc sve_rdffr_pp(cpu_state* s, P pd, P pg) {
  return write_in_place<bytes>(s->p[pd.num], [=](std::size_t i) {
    return load_unit<bytes>(s->ffr, i) & load_unit<bytes>(s->p[pg.num], i);
  });
}

rc sve_wrffr_p(cpu_state* s, P pn) {
  std::memcpy(s->ffr, s->p[pn.num], vector_bytes);
  return aarch64_decode_ok;
}

rc sve_setffr(cpu_state* s) {
  std::memset(s->ffr, 1, vector_bytes);
  return aarch64_decode_ok;
}

rc sve_punpklo_pp(cpu_state* s, P pd, P pn) { return unpack(s->p[pd.num], s->p[pn.num]); }
rc sve_punpkhi_pp(cpu_state* s, P pd, P pn) {
  return unpack(s->p[pd.num], s->p[pn.num] + vector_bytes / 2);
}

rc sve_rev_pp(cpu_state* s, P pd, P pn) {
  return by_size<single>(pd.size, [=]<class T>() {
    write_units<T>(s->p[pd.num],
                   [=](std::size_t i) { return element<T>(s->p[pn.num], elements<T> - 1 - i); });
  });
}

rc sve_zip1_ppp(cpu_state* s, P pd, P pn, P pm) { return permute(s, pd, pn, pm, sve_zip1); }
rc sve_zip2_ppp(cpu_state* s, P pd, P pn, P pm) { return permute(s, pd, pn, pm, sve_zip2); }
rc sve_uzp1_ppp(cpu_state* s, P pd, P pn, P pm) { return permute(s, pd, pn, pm, sve_uzp1); }

void sve_zip1(char* out, char* a, char* b, element_size size) {
  by_size<single>(size, [=]<class T>() { zip<T>(as_bytes(out), as_bytes(a), as_bytes(b)); });
}

void sve_zip2(char* out, char* a, char* b, element_size size) {
  sve_zip1(out, a + vector_bytes / 2, b + vector_bytes / 2, size);
}

void sve_uzp1(char* out, char* a, char* b, element_size size) {
  by_size<single>(
      size, [=]<class T>() { write_every_second<T>(as_bytes(out), as_bytes(a), as_bytes(b)); });
}
