// Vector fast paths, one or two of every shape, against a scalar model from random states: all
// sizes, register numbers so close together that operands coincide, predicate bytes of every kind.
// The whole state is compared, so nothing else may change. What the other operations make of legal
// states is compared with a processor elsewhere.
#include <algorithm>
#include <functional>

#include "sve/fast/compare.h"
#include "sve/fast/immediates_shifts_moves.h"
#include "sve/fast/integer_arithmetic.h"
#include "sve/fast/permutes_reductions.h"
#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;

constexpr int rounds = 25;

// Register numbers and immediates of one random instruction.
struct Operands {
  unsigned d, n, m, g, xn, size;
  int imm;

  unsigned pd() const { return d - 29; }  // takes the same numbers as g
};

// What a model sees: element i of an instruction's operands as they were before it ran, as unsigned
// and as signed values.
struct Element {
  Element(const cpu_state& state, const Operands& operands, unsigned index)
      : s(state), o(operands), i(index) {}

  u64 nth_n(u64 k) const { return get(s.z[o.n], k, bytes); }

  const cpu_state& s;
  const Operands& o;
  unsigned i, bytes = 1U << o.size, w = 8 * bytes, count = vector_bytes / bytes;
  u64 d = get(s.z[o.d], i, bytes), n = nth_n(i), m = get(s.z[o.m], i, bytes);
  s64 sd = sign_extended(d, w), sn = sign_extended(n, w), sm = sign_extended(m, w);
  bool active = bit(s.p[o.g], i, bytes);
  u64 imm = static_cast<u64>(s64{o.imm}), uimm = static_cast<unsigned>(o.imm);
  u64 shift = low_bits(uimm, w);
  u64 xn = o.xn < 31 ? s.x[o.xn] : 0;
  u64 xn_or_sp = o.xn < 31 ? xn : s.sp;
};

using Call = std::function<aarch64_decode_rc(cpu_state*, const Operands&)>;
using E = const Element&;
using Model = u64 (*)(E e);

using O = const Operands&;

// What handlers make of the operands for a fast path, by role.
constexpr auto d = [](O o) { return z_one_way(o.d, o.size); };
constexpr auto dn = [](O o) { return z_both_ways(o.d, o.size); };
constexpr auto n = [](O o) { return z_one_way(o.n, o.size); };
constexpr auto m = [](O o) { return z_one_way(o.m, o.size); };
constexpr auto g = [](O o) { return predicate(o.g, sve::merging); };
constexpr auto gz = [](O o) { return predicate(o.g, sve::zeroing); };
constexpr auto gu = [](O o) { return predicate(o.g, sve::unqualified); };
constexpr auto pd = [](O o) { return predicate(o.pd(), o.size); };
constexpr auto vd = [](O o) { return o.d; };
constexpr auto vn = [](O o) { return o.n; };
constexpr auto xn = [](O o) { return x_one_way(o.xn, o.size); };
constexpr auto xdn = [](O o) { return x_both_ways(o.xn, o.size); };
constexpr auto xn_or_sp = [](O o) { return aarch64_i_rsp_reg{o.xn, o.size}; };
constexpr auto imm = [](O o) { return o.imm; };
constexpr auto uimm = [](O o) { return static_cast<unsigned>(o.imm); };

using std::min;

u64 ratio(s64 a, s64 b) { return b == 0 ? 0 : b == -1 ? -static_cast<u64>(a) : u64(a / b); }
u64 shl(u64 a, u64 n, unsigned w) { return n < w ? a << n : 0; }
u64 shr(s64 a, u64 n, unsigned w) { return u64(a >> std::min<u64>(n, w - 1)); }
u64 extended(u64 a, unsigned bits) { return static_cast<u64>(sign_extended(a, bits)); }

u64 reversed(u64 value, unsigned width) {
  u64 result = 0;
  for (unsigned i = 0; i < width; ++i) result |= ((value >> i) & 1) << (width - 1 - i);
  return result;
}

enum Written { merging, zeroing, all };  // which elements, and what becomes of the others

struct VectorCase {
  const char* name;
  unsigned smallest, largest;  // size codes
  Written written;
  Call call;
  Model model;  // its low bits count
};

const VectorCase vector_cases[] = {
    {"add_zpz", 0, 3, merging, with(sve_add_zpz, dn, g, n), [](E e) { return e.d + e.n; }},
    {"mul_zpz", 0, 3, merging, with(sve_mul_zpz, dn, g, n), [](E e) { return e.d * e.n; }},
    {"smin", 0, 3, merging, with(sve_smin_zpz, dn, g, n), [](E e) { return u64(min(e.sd, e.sn)); }},
    {"sdiv", 2, 3, merging, with(sve_sdiv_zpz, dn, g, n), [](E e) { return ratio(e.sd, e.sn); }},
    {"neg", 0, 3, merging, with(sve_neg_zpz, d, g, n), [](E e) { return -e.n; }},
    {"mla", 0, 3, merging, with(sve_mla_zpzz, dn, g, n, m), [](E e) { return e.d + e.n * e.m; }},
    {"sel", 0, 3, all, with(sve_sel_zpzz, d, gu, n, m), [](E e) { return e.active ? e.n : e.m; }},
    {"add_zzz", 0, 3, all, with(sve_add_zzz, d, n, m), [](E e) { return e.n + e.m; }},

    {"add_zi", 0, 3, all, with(sve_add_zi, dn, uimm), [](E e) { return e.d + e.uimm; }},
    {"lsl_zpz", 0, 3, merging, with(sve_lsl_zpz, dn, g, n), [](E e) { return shl(e.d, e.n, e.w); }},
    {"asr_zpz", 0, 3, merging, with(sve_asr_zpz, dn, g, n),
     [](E e) { return shr(e.sd, e.n, e.w); }},
    {"lsl_zpi", 0, 3, merging, with(sve_lsl_zpi, dn, g, uimm),
     [](E e) { return shl(e.d, e.shift, e.w); }},
    {"asr_zpi", 0, 3, merging, with(sve_asr_zpi, dn, g, uimm),
     [](E e) { return shr(e.sd, e.shift, e.w); }},
    {"cpy_zpi/m", 0, 3, merging, with(sve_cpy_zpi, d, g, imm), [](E e) { return e.imm; }},
    {"cpy_zpi/z", 0, 3, zeroing, with(sve_cpy_zpi, d, gz, imm), [](E e) { return e.imm; }},
    {"cpy_zpr", 0, 3, merging, with(sve_cpy_zpr, d, g, xn_or_sp), [](E e) { return e.xn_or_sp; }},
    {"cpy_zpv", 0, 3, merging, with(sve_cpy_zpv, d, g, vn), [](E e) { return e.nth_n(0); }},
    {"movprfx/m", 0, 3, merging, with(sve_movprfx_zpz, d, g, n), [](E e) { return e.n; }},
    {"movprfx/z", 0, 3, zeroing, with(sve_movprfx_zpz, d, gz, n), [](E e) { return e.n; }},
    {"sxtb", 1, 3, merging, with(sve_sxtb_zpz, d, g, n), [](E e) { return extended(e.n, 8); }},
    {"rbit", 0, 3, merging, with(sve_rbit_zpz, d, g, n), [](E e) { return reversed(e.n, e.w); }},
    {"revw", 3, 3, merging, with(sve_revw_zpz, d, g, n), [](E e) { return e.n << 32 | e.n >> 32; }},

};

class Vectors : public RandomMachine {
 protected:
  // Random operands at a size; the numbers of three registers often coincide.
  void draw(unsigned size) {
    randomize(state);
    const auto near = [this] { return static_cast<unsigned>(29 + number(3)); };
    const auto scalar = [this] { return static_cast<unsigned>(number(3) == 0 ? 31 : number(31)); };
    o = {near(), near(), near(), static_cast<unsigned>(number(3)), scalar(), size, 0};
    o.imm = static_cast<int>(number(400)) - 130;
  }

  // In many states, `call` on one copy and the model on another must make the same of them.
  void compare(const char* name, unsigned smallest, unsigned largest, const Call& call,
               const std::function<void(cpu_state&)>& model) {
    for (unsigned size = smallest; size <= largest; ++size) {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        draw(size);
        cpu_state expected = state, actual = state;
        model(expected);
        EXPECT_EQ(call(&actual, o), aarch64_decode_ok);
        EXPECT_EQ(difference(expected, actual), "") << name << " at size " << size_names[o.size];
      }
    }
  }

  Element element(unsigned i) const { return {state, o, i}; }
  unsigned count() const { return vector_bytes >> o.size; }

  cpu_state state;
  Operands o;
};

TEST_F(Vectors, AgreeWithTheScalarModel) {
  for (const VectorCase& c : vector_cases) {
    compare(c.name, c.smallest, c.largest, c.call, [&](cpu_state& s) {
      for (unsigned i = 0; i < count(); ++i) {
        const Element e = element(i);
        if (c.written == all || e.active) {
          put(s.z[o.d], i, e.bytes, c.model(e));
        } else if (c.written == zeroing) {
          put(s.z[o.d], i, e.bytes, 0);
        }
      }
    });
  }
}

struct CompareCase {
  const char* name;
  Call call;
  bool (*holds)(E e);
};

s64 low_imm(E e) { return sign_extended(e.imm, e.w); }
u64 low_uimm(E e) { return low_bits(e.uimm, e.w); }

const CompareCase compare_cases[] = {
    {"cmpgt_ppzz", with(sve_cmpgt_ppzz, pd, gz, n, m), [](E e) { return e.sn > e.sm; }},
    {"cmplt_ppzi", with(sve_cmplt_ppzi, pd, gz, n, imm), [](E e) { return e.sn < low_imm(e); }},
    {"cmphi_ppzi", with(sve_cmphi_ppzi, pd, gz, n, uimm), [](E e) { return e.n > low_uimm(e); }},
};

TEST_F(Vectors, ComparesAgreeWithTheScalarModel) {
  for (const CompareCase& c : compare_cases) {
    compare(c.name, 0, 3, c.call, [&](cpu_state& s) {
      byte result[vector_bytes] = {};
      for (unsigned i = 0; i < count(); ++i) {
        const Element e = element(i);
        put(result, i, e.bytes, u64{e.active && c.holds(e)});
      }
      set_model_flags(s, state.p[o.g], result, 1U << o.size);
      std::memcpy(s.p[o.pd()], result, vector_bytes);
    });
  }
}

struct ReductionCase {
  const char* name;
  Call call;
  u64 (*start)(E e);          // the result if no element is active
  u64 (*next)(u64 sum, E e);  // the low bits of sum count
  enum { element_0, doubleword_0, general } destination;
};

const ReductionCase reduction_cases[] = {
    {"andv", with(sve_andv_vpz, vd, gu, n), [](E) { return ~u64{0}; },
     [](u64 sum, E e) { return sum & e.n; }, ReductionCase::element_0},
    {"uaddv", with(sve_uaddv_vpz, vd, gu, n), [](E) { return u64{0}; },
     [](u64 sum, E e) { return sum + e.n; }, ReductionCase::doubleword_0},
    {"lastb_vpz", with(sve_lastb_vpz, vd, gu, n), [](E e) { return e.nth_n(e.count - 1); },
     [](u64, E e) { return e.n; }, ReductionCase::element_0},
    {"lastb_rpz", with(sve_lastb_rpz, xn, gu, n), [](E e) { return e.nth_n(e.count - 1); },
     [](u64, E e) { return e.n; }, ReductionCase::general},
    {"clastb_rpz", with(sve_clastb_rpz, xdn, gu, n), [](E e) { return e.xn; },
     [](u64, E e) { return e.n; }, ReductionCase::general},
};

TEST_F(Vectors, ReductionsAgreeWithTheScalarModel) {
  for (const ReductionCase& c : reduction_cases) {
    compare(c.name, 0, 3, c.call, [&](cpu_state& s) {
      u64 sum = c.start(element(0));
      for (unsigned i = 0; i < count(); ++i) {
        if (element(i).active) sum = c.next(sum, element(i));
      }
      if (c.destination != ReductionCase::doubleword_0) sum = low_bits(sum, 8U << o.size);
      if (c.destination == ReductionCase::general) {
        if (o.xn < 31) s.x[o.xn] = sum;
      } else {
        std::memset(s.z[o.d], 0, vector_bytes);
        put(s.z[o.d], 0, 8, sum);
      }
    });
  }
}

TEST_F(Vectors, QuadwordsAreBroadcastByDup) {
  constexpr std::size_t quadwords = vector_bytes / 16;
  for (std::size_t index : {std::size_t{0}, quadwords - 1, quadwords}) {
    randomize(state);
    byte value[16] = {};
    if (index < quadwords) std::memcpy(value, state.z[3] + 16 * index, 16);
    sve_dup_zzi(&state, {3, 4, 5, 5}, {3, 4, 5, 5}, static_cast<unsigned>(index));
    for (std::size_t i = 0; i < quadwords; ++i) {
      EXPECT_EQ(std::memcmp(state.z[3] + 16 * i, value, 16), 0) << index << " in " << i;
    }
  }
}

}  // namespace
