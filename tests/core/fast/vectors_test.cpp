// Every vector fast path against a scalar model, from random states: all sizes, register numbers
// close enough together that operands coincide, predicate bytes of every kind. The whole state is
// compared, so nothing else may change.
#include <algorithm>
#include <functional>

#include "sve/fast/compare.h"
#include "sve/fast/immediates_shifts_moves.h"
#include "sve/fast/integer_arithmetic.h"
#include "sve/fast/permutes_reductions.h"
#include "tests/core/fast/machine.h"

namespace {

using sve::vector_bytes;
namespace form = sve::form;

constexpr int rounds = 25;

// Register numbers and immediates of one random instruction.
struct Operands {
  unsigned d, n, m, g, xn, xm, size;
  int imm;
  u64 mask;
};

// What a model sees: element i of an instruction's operands, zero-extended, before it ran.
struct Element {
  const cpu_state& s;
  const Operands& o;
  unsigned i, bytes;

  unsigned w() const { return 8 * bytes; }
  unsigned count() const { return vector_bytes / bytes; }
  u64 d() const { return get(s.z[o.d], i, bytes); }
  u64 n() const { return n(i); }
  u64 m() const { return m(i); }
  u64 n(u64 k) const { return get(s.z[o.n], k, bytes); }
  u64 m(u64 k) const { return get(s.z[o.m], k, bytes); }
  s64 sd() const { return sign_extended(d(), w()); }
  s64 sn() const { return sign_extended(n(), w()); }
  s64 sm() const { return sign_extended(m(), w()); }
  u64 narrow_n(u64 k) const { return get(s.z[o.n], k, bytes / 2); }
  u64 low_n(unsigned bits) const { return low_bits(n(), bits); }
  bool active() const { return bit(s.p[o.g], i, bytes); }
  u64 imm() const { return static_cast<u64>(s64{o.imm}); }
  u64 uimm() const { return static_cast<unsigned>(o.imm); }
  u64 shift() const { return low_bits(uimm(), w()); }
  u64 xn() const { return o.xn < 31 ? s.x[o.xn] : 0; }
  u64 xm() const { return o.xm < 31 ? s.x[o.xm] : 0; }
  u64 xn_or_sp() const { return o.xn < 31 ? s.x[o.xn] : s.sp; }
};

using Call = std::function<aarch64_decode_rc(cpu_state*, const Operands&)>;
using E = const Element&;
using Model = u64 (*)(E e);

aarch64_z_reg d(const Operands& o) { return z_one_way(o.d, o.size); }
aarch64_z_reg dn(const Operands& o) { return z_both_ways(o.d, o.size); }
aarch64_z_reg n(const Operands& o) { return z_one_way(o.n, o.size); }
aarch64_z_reg m(const Operands& o) { return z_one_way(o.m, o.size); }
aarch64_p_reg g(const Operands& o, unsigned qualifier) { return predicate(o.g, qualifier); }
aarch64_i_rsp_reg xn_or_sp(const Operands& o) { return {o.xn, o.size}; }
aarch64_i_reg xn(const Operands& o) { return x_one_way(o.xn, o.size); }
aarch64_i_reg xm(const Operands& o) { return x_one_way(o.xm, o.size); }

// How a handler calls a fast path of each form: with Zdn, or with Zd.
Call with_zdn(form::zpz* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, dn(o), g(o, sve::merging), n(o)); };
}
Call with_zd(form::zpz* f, unsigned qualifier = sve::merging) {
  return [=](cpu_state* s, const Operands& o) { return f(s, d(o), g(o, qualifier), n(o)); };
}
Call with_zdn(form::zpzz* f) {
  return
      [f](cpu_state* s, const Operands& o) { return f(s, dn(o), g(o, sve::merging), n(o), m(o)); };
}
Call with_zd(form::zpzz* f) {
  return [f](cpu_state* s, const Operands& o) {
    return f(s, d(o), g(o, sve::unqualified), n(o), m(o));
  };
}
Call with_zd(form::zzz* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), n(o), m(o)); };
}
Call with_zd(form::zz* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), n(o)); };
}
Call with_zdn(form::zi* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, dn(o), unsigned(o.imm)); };
}
Call with_zdn(form::zi_signed* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, dn(o), o.imm); };
}
Call with_zd(form::zi_signed* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), o.imm); };
}
Call with_zdn(form::zi_mask* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, dn(o), {o.mask}); };
}
Call with_zd(form::zi_mask* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), {o.mask}); };
}
Call with_zdn(form::zpi* f) {
  return [f](cpu_state* s, const Operands& o) {
    return f(s, dn(o), g(o, sve::merging), unsigned(o.imm));
  };
}
Call with_zd(form::zzi* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), n(o), unsigned(o.imm)); };
}
Call with_zdn(form::zzi* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, dn(o), n(o), unsigned(o.imm)); };
}
Call with_zd(form::zr* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), xn_or_sp(o)); };
}
Call with_zd(form::zpi_signed* f, unsigned qualifier) {
  return [=](cpu_state* s, const Operands& o) { return f(s, d(o), g(o, qualifier), o.imm); };
}
Call with_zd(form::zpr* f) {
  return
      [f](cpu_state* s, const Operands& o) { return f(s, d(o), g(o, sve::merging), xn_or_sp(o)); };
}
Call copying_scalar(form::zpv* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), g(o, sve::merging), o.n); };
}
Call with_zd(form::zii_signed* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), o.imm, -o.imm); };
}
Call with_zd(form::zir* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), o.imm, xm(o)); };
}
Call with_zd(form::zri* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), xn(o), o.imm); };
}
Call with_zd(form::zrr* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, d(o), xn(o), xm(o)); };
}

u64 quotient(s64 a, s64 b) { return b == 0 ? 0 : b == -1 ? -static_cast<u64>(a) : u64(a / b); }
u64 quotient(u64 a, u64 b) { return b == 0 ? 0 : a / b; }
u64 left(u64 a, u64 n, unsigned w) { return n < w ? a << n : 0; }
u64 right(u64 a, u64 n, unsigned w) { return n < w ? a >> n : 0; }
u64 right(s64 a, u64 n, unsigned w) { return u64(a >> std::min<u64>(n, w - 1)); }
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
    {"add_zpz", 0, 3, merging, with_zdn(sve_add_zpz), [](E e) { return e.d() + e.n(); }},
    {"sub_zpz", 0, 3, merging, with_zdn(sve_sub_zpz), [](E e) { return e.d() - e.n(); }},
    {"mul_zpz", 0, 3, merging, with_zdn(sve_mul_zpz), [](E e) { return e.d() * e.n(); }},
    {"and_zpz", 0, 3, merging, with_zdn(sve_and_zpz), [](E e) { return e.d() & e.n(); }},
    {"orr_zpz", 0, 3, merging, with_zdn(sve_orr_zpz), [](E e) { return e.d() | e.n(); }},
    {"eor_zpz", 0, 3, merging, with_zdn(sve_eor_zpz), [](E e) { return e.d() ^ e.n(); }},
    {"bic_zpz", 0, 3, merging, with_zdn(sve_bic_zpz), [](E e) { return e.d() & ~e.n(); }},
    {"smin", 0, 3, merging, with_zdn(sve_smin_zpz), [](E e) { return u64(std::min(e.sd(), e.sn())); }},
    {"smax", 0, 3, merging, with_zdn(sve_smax_zpz), [](E e) { return u64(std::max(e.sd(), e.sn())); }},
    {"umin", 0, 3, merging, with_zdn(sve_umin_zpz), [](E e) { return std::min(e.d(), e.n()); }},
    {"umax", 0, 3, merging, with_zdn(sve_umax_zpz), [](E e) { return std::max(e.d(), e.n()); }},
    {"sdiv", 2, 3, merging, with_zdn(sve_sdiv_zpz), [](E e) { return quotient(e.sd(), e.sn()); }},
    {"udiv", 2, 3, merging, with_zdn(sve_udiv_zpz), [](E e) { return quotient(e.d(), e.n()); }},
    {"sdivr", 2, 3, merging, with_zdn(sve_sdivr_zpz), [](E e) { return quotient(e.sn(), e.sd()); }},
    {"udivr", 2, 3, merging, with_zdn(sve_udivr_zpz), [](E e) { return quotient(e.n(), e.d()); }},
    {"neg", 0, 3, merging, with_zd(sve_neg_zpz), [](E e) { return -e.n(); }},
    {"mad", 0, 3, merging, with_zdn(sve_mad_zpzz), [](E e) { return e.m() + e.d() * e.n(); }},
    {"msb", 0, 3, merging, with_zdn(sve_msb_zpzz), [](E e) { return e.m() - e.d() * e.n(); }},
    {"mla", 0, 3, merging, with_zdn(sve_mla_zpzz), [](E e) { return e.d() + e.n() * e.m(); }},
    {"mls", 0, 3, merging, with_zdn(sve_mls_zpzz), [](E e) { return e.d() - e.n() * e.m(); }},
    {"sel", 0, 3, all, with_zd(sve_sel_zpzz), [](E e) { return e.active() ? e.n() : e.m(); }},
    {"add_zzz", 0, 3, all, with_zd(sve_add_zzz), [](E e) { return e.n() + e.m(); }},
    {"sub_zzz", 0, 3, all, with_zd(sve_sub_zzz), [](E e) { return e.n() - e.m(); }},
    {"and_zzz", 3, 3, all, with_zd(sve_and_zzz), [](E e) { return e.n() & e.m(); }},
    {"orr_zzz", 3, 3, all, with_zd(sve_orr_zzz), [](E e) { return e.n() | e.m(); }},
    {"eor_zzz", 3, 3, all, with_zd(sve_eor_zzz), [](E e) { return e.n() ^ e.m(); }},
    {"bic_zzz", 3, 3, all, with_zd(sve_bic_zzz), [](E e) { return e.n() & ~e.m(); }},

    {"add_zi", 0, 3, all, with_zdn(sve_add_zi), [](E e) { return e.d() + e.uimm(); }},
    {"sub_zi", 0, 3, all, with_zdn(sve_sub_zi), [](E e) { return e.d() - e.uimm(); }},
    {"mul_zi", 0, 3, all, with_zdn(sve_mul_zi), [](E e) { return e.d() * e.imm(); }},
    {"and_zi", 3, 3, all, with_zdn(sve_and_zi), [](E e) { return e.d() & e.o.mask; }},
    {"orr_zi", 3, 3, all, with_zdn(sve_orr_zi), [](E e) { return e.d() | e.o.mask; }},
    {"eor_zi", 3, 3, all, with_zdn(sve_eor_zi), [](E e) { return e.d() ^ e.o.mask; }},
    {"lsl_zpz", 0, 3, merging, with_zdn(sve_lsl_zpz), [](E e) { return left(e.d(), e.n(), e.w()); }},
    {"lsr_zpz", 0, 3, merging, with_zdn(sve_lsr_zpz), [](E e) { return right(e.d(), e.n(), e.w()); }},
    {"asr_zpz", 0, 3, merging, with_zdn(sve_asr_zpz), [](E e) { return right(e.sd(), e.n(), e.w()); }},
    {"lsl_zpi", 0, 3, merging, with_zdn(sve_lsl_zpi), [](E e) { return left(e.d(), e.shift(), e.w()); }},
    {"asr_zpi", 0, 3, merging, with_zdn(sve_asr_zpi), [](E e) { return right(e.sd(), e.shift(), e.w()); }},
    {"lsl_zzi", 0, 3, all, with_zd(sve_lsl_zzi), [](E e) { return left(e.n(), e.shift(), e.w()); }},
    {"asr_zzi", 0, 3, all, with_zd(sve_asr_zzi), [](E e) { return right(e.sn(), e.shift(), e.w()); }},
    {"dup_zi", 0, 3, all, with_zd(sve_dup_zi), [](E e) { return e.imm(); }},
    {"dup_zr", 0, 3, all, with_zd(sve_dup_zr), [](E e) { return e.xn_or_sp(); }},
    {"dupm", 3, 3, all, with_zd(sve_dupm_zi), [](E e) { return e.o.mask; }},
    {"dup_zzi", 0, 3, all, with_zd(sve_dup_zzi), [](E e) { return e.uimm() < e.count() ? e.n(e.uimm()) : 0; }},
    {"cpy_zpi/m", 0, 3, merging, with_zd(sve_cpy_zpi, sve::merging), [](E e) { return e.imm(); }},
    {"cpy_zpi/z", 0, 3, zeroing, with_zd(sve_cpy_zpi, sve::zeroing), [](E e) { return e.imm(); }},
    {"cpy_zpr", 0, 3, merging, with_zd(sve_cpy_zpr), [](E e) { return e.xn_or_sp(); }},
    {"cpy_zpv", 0, 3, merging, copying_scalar(sve_cpy_zpv), [](E e) { return e.n(0); }},
    {"index_zii", 0, 3, all, with_zd(sve_index_zii), [](E e) { return e.imm() - e.i * e.imm(); }},
    {"index_zir", 0, 3, all, with_zd(sve_index_zir), [](E e) { return e.imm() + e.i * e.xm(); }},
    {"index_zri", 0, 3, all, with_zd(sve_index_zri), [](E e) { return e.xn() + e.i * e.imm(); }},
    {"index_zrr", 0, 3, all, with_zd(sve_index_zrr), [](E e) { return e.xn() + e.i * e.xm(); }},
    {"movprfx_zz", 3, 3, all, with_zd(sve_movprfx_zz), [](E e) { return e.n(); }},
    {"movprfx/m", 0, 3, merging, with_zd(sve_movprfx_zpz, sve::merging), [](E e) { return e.n(); }},
    {"movprfx/z", 0, 3, zeroing, with_zd(sve_movprfx_zpz, sve::zeroing), [](E e) { return e.n(); }},
    {"sxtb", 1, 3, merging, with_zd(sve_sxtb_zpz), [](E e) { return extended(e.n(), 8); }},
    {"sxth", 2, 3, merging, with_zd(sve_sxth_zpz), [](E e) { return extended(e.n(), 16); }},
    {"sxtw", 3, 3, merging, with_zd(sve_sxtw_zpz), [](E e) { return extended(e.n(), 32); }},
    {"uxth", 2, 3, merging, with_zd(sve_uxth_zpz), [](E e) { return e.low_n(16); }},
    {"uxtw", 3, 3, merging, with_zd(sve_uxtw_zpz), [](E e) { return e.low_n(32); }},
    {"rbit", 0, 3, merging, with_zd(sve_rbit_zpz), [](E e) { return reversed(e.n(), e.w()); }},
    {"revw", 3, 3, merging, with_zd(sve_revw_zpz), [](E e) { return e.n() << 32 | e.n() >> 32; }},
    {"adr", 3, 3, all, with_zd(sve_adr_scaled_zzz),
     [](E e) { return e.n() + (e.m() << (e.s.instr >> 10 & 3)); }},

    {"zip1", 0, 3, all, with_zd(sve_zip1_zzz), [](E e) { return e.i % 2 != 0 ? e.m(e.i / 2) : e.n(e.i / 2); }},
    {"zip2", 0, 3, all, with_zd(sve_zip2_zzz),
     [](E e) {
       const unsigned k = e.count() / 2 + e.i / 2;
       return e.i % 2 != 0 ? e.m(k) : e.n(k);
     }},
    {"uzp1", 0, 3, all, with_zd(sve_uzp1_zzz),
     [](E e) { return 2 * e.i < e.count() ? e.n(2 * e.i) : e.m(2 * e.i - e.count()); }},
    {"uzp2", 0, 3, all, with_zd(sve_uzp2_zzz),
     [](E e) { return 2 * e.i < e.count() ? e.n(2 * e.i + 1) : e.m(2 * e.i + 1 - e.count()); }},
    {"trn2", 0, 3, all, with_zd(sve_trn2_zzz), [](E e) { return e.i % 2 != 0 ? e.m(e.i) : e.n(e.i + 1); }},
    {"tbl", 0, 3, all, with_zd(sve_tbl_zzz), [](E e) { return e.m() < e.count() ? e.n(e.m()) : 0; }},
    {"ext", 0, 0, all, with_zdn(sve_ext_zzi),
     [](E e) {
       const u64 k = e.i + (e.uimm() < e.count() ? e.uimm() : 0);
       return k < e.count() ? get(e.s.z[e.o.d], k, 1) : e.n(k - e.count());
     }},
    {"rev", 0, 3, all, with_zd(sve_rev_zz), [](E e) { return e.n(e.count() - 1 - e.i); }},
    {"uunpklo_b2h", 1, 1, all, with_zd(sve_uunpklo_b2h_zz), [](E e) { return e.narrow_n(e.i); }},
    {"uunpkhi_b2h", 1, 1, all, with_zd(sve_uunpkhi_b2h_zz),
     [](E e) { return e.narrow_n(e.count() + e.i); }},
    {"uunpklo_h2s", 2, 2, all, with_zd(sve_uunpklo_h2s_zz), [](E e) { return e.narrow_n(e.i); }},
    {"uunpkhi_h2s", 2, 2, all, with_zd(sve_uunpkhi_h2s_zz),
     [](E e) { return e.narrow_n(e.count() + e.i); }},
    {"uunpklo_s2d", 3, 3, all, with_zd(sve_uunpklo_s2d_zz), [](E e) { return e.narrow_n(e.i); }},
    {"uunpkhi_s2d", 3, 3, all, with_zd(sve_uunpkhi_s2d_zz),
     [](E e) { return e.narrow_n(e.count() + e.i); }},
    {"sunpklo_s2d", 3, 3, all, with_zd(sve_sunpklo_s2d_zz),
     [](E e) { return extended(e.narrow_n(e.i), 32); }},
    {"sunpkhi_s2d", 3, 3, all, with_zd(sve_sunpkhi_s2d_zz),
     [](E e) { return extended(e.narrow_n(e.count() + e.i), 32); }},
};

class Vectors : public RandomMachine {
 protected:
  // Random operands at a size; the numbers of three registers often coincide.
  void draw(unsigned size) {
    randomize(state);
    const auto near = [this] { return static_cast<unsigned>(29 + number(3)); };
    const auto scalar = [this] { return static_cast<unsigned>(number(3) == 0 ? 31 : number(31)); };
    o = {near(), near(), near(), static_cast<unsigned>(number(3)), scalar(), scalar(), size, 0, 0};
    o.imm = static_cast<int>(number(400)) - 130;
    o.mask = doubleword();
  }

  // Runs `call` on one copy of the state and the model on another.
  void expect_same(const char* name, const std::function<void(cpu_state&)>& model,
                   const Call& call) {
    cpu_state expected = state, actual = state;
    model(expected);
    EXPECT_EQ(call(&actual, o), aarch64_decode_ok);
    EXPECT_EQ(difference(expected, actual), "") << name << " at size " << size_names[o.size];
  }

  Element element(unsigned i) const { return {state, o, i, 1U << o.size}; }
  unsigned count() const { return vector_bytes >> o.size; }

  cpu_state state;
  Operands o;
};

TEST_F(Vectors, AgreeWithTheScalarModel) {
  for (const VectorCase& c : vector_cases) {
    for (unsigned size = c.smallest; size <= c.largest; ++size) {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        draw(size);
        const auto model = [&](cpu_state& s) {
          for (unsigned i = 0; i < count(); ++i) {
            const Element e = element(i);
            if (c.written == all || e.active()) {
              put(s.z[o.d], i, e.bytes, c.model(e));
            } else if (c.written == zeroing) {
              put(s.z[o.d], i, e.bytes, 0);
            }
          }
        };
        expect_same(c.name, model, c.call);
      }
    }
  }
}

// pd takes the numbers of pg, so that it often is pg.
Call compare(form::ppzz* f) {
  return [f](cpu_state* s, const Operands& o) {
    return f(s, predicate(o.d - 29, o.size), g(o, sve::zeroing), n(o), m(o));
  };
}
Call compare(form::ppzi_signed* f) {
  return [f](cpu_state* s, const Operands& o) {
    return f(s, predicate(o.d - 29, o.size), g(o, sve::zeroing), n(o), o.imm);
  };
}
Call compare(form::ppzi* f) {
  return [f](cpu_state* s, const Operands& o) {
    return f(s, predicate(o.d - 29, o.size), g(o, sve::zeroing), n(o), unsigned(o.imm));
  };
}

struct CompareCase {
  const char* name;
  Call call;
  bool (*holds)(E e);
};

s64 simm(E e) { return sign_extended(e.imm(), e.w()); }
u64 uimm(E e) { return low_bits(e.uimm(), e.w()); }

const CompareCase compare_cases[] = {
    {"cmpeq_ppzz", compare(sve_cmpeq_ppzz), [](E e) { return e.n() == e.m(); }},
    {"cmpne_ppzz", compare(sve_cmpne_ppzz), [](E e) { return e.n() != e.m(); }},
    {"cmpge_ppzz", compare(sve_cmpge_ppzz), [](E e) { return e.sn() >= e.sm(); }},
    {"cmpgt_ppzz", compare(sve_cmpgt_ppzz), [](E e) { return e.sn() > e.sm(); }},
    {"cmphs_ppzz", compare(sve_cmphs_ppzz), [](E e) { return e.n() >= e.m(); }},
    {"cmphi_ppzz", compare(sve_cmphi_ppzz), [](E e) { return e.n() > e.m(); }},
    {"cmpeq_ppzi", compare(sve_cmpeq_ppzi), [](E e) { return e.sn() == simm(e); }},
    {"cmpne_ppzi", compare(sve_cmpne_ppzi), [](E e) { return e.sn() != simm(e); }},
    {"cmpgt_ppzi", compare(sve_cmpgt_ppzi), [](E e) { return e.sn() > simm(e); }},
    {"cmplt_ppzi", compare(sve_cmplt_ppzi), [](E e) { return e.sn() < simm(e); }},
    {"cmple_ppzi", compare(sve_cmple_ppzi), [](E e) { return e.sn() <= simm(e); }},
    {"cmphi_ppzi", compare(sve_cmphi_ppzi), [](E e) { return e.n() > uimm(e); }},
    {"cmplo_ppzi", compare(sve_cmplo_ppzi), [](E e) { return e.n() < uimm(e); }},
};

TEST_F(Vectors, ComparesAgreeWithTheScalarModel) {
  for (const CompareCase& c : compare_cases) {
    for (unsigned size = 0; size < 4; ++size) {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        draw(size);
        const auto model = [&](cpu_state& s) {
          byte result[vector_bytes] = {};
          for (unsigned i = 0; i < count(); ++i) {
            const Element e = element(i);
            put(result, i, e.bytes, u64{e.active() && c.holds(e)});
          }
          set_model_flags(s, state.p[o.g], result, 1U << size);
          std::memcpy(s.p[o.d - 29], result, vector_bytes);
        };
        expect_same(c.name, model, c.call);
      }
    }
  }
}

Call to_vector(form::vpz* f) {
  return [f](cpu_state* s, const Operands& o) { return f(s, o.d, g(o, sve::unqualified), n(o)); };
}
Call to_scalar(form::rpz* f, aarch64_i_reg (*record)(unsigned, unsigned)) {
  return [=](cpu_state* s, const Operands& o) {
    return f(s, record(o.xn, o.size), g(o, sve::unqualified), n(o));
  };
}

struct ReductionCase {
  const char* name;
  Call call;
  u64 (*start)(E e);          // the result if no element is active
  u64 (*next)(u64 sum, E e);  // the low bits of sum count
  enum { element_0, doubleword_0, general } destination;
};

s64 extended_sum(u64 sum, E e) { return sign_extended(sum, e.w()); }

const ReductionCase reduction_cases[] = {
    {"andv", to_vector(sve_andv_vpz), [](E) { return ~u64{0}; },
     [](u64 sum, E e) { return sum & e.n(); }, ReductionCase::element_0},
    {"orv", to_vector(sve_orv_vpz), [](E) { return u64{0}; },
     [](u64 sum, E e) { return sum | e.n(); }, ReductionCase::element_0},
    {"eorv", to_vector(sve_eorv_vpz), [](E) { return u64{0}; },
     [](u64 sum, E e) { return sum ^ e.n(); }, ReductionCase::element_0},
    {"smaxv", to_vector(sve_smaxv_vpz), [](E e) { return u64{1} << (e.w() - 1); },
     [](u64 sum, E e) { return u64(std::max(extended_sum(sum, e), e.sn())); },
     ReductionCase::element_0},
    {"sminv", to_vector(sve_sminv_vpz), [](E e) { return (u64{1} << (e.w() - 1)) - 1; },
     [](u64 sum, E e) { return u64(std::min(extended_sum(sum, e), e.sn())); },
     ReductionCase::element_0},
    {"umaxv", to_vector(sve_umaxv_vpz), [](E) { return u64{0}; },
     [](u64 sum, E e) { return std::max(sum, e.n()); }, ReductionCase::element_0},
    {"uminv", to_vector(sve_uminv_vpz), [](E) { return ~u64{0}; },
     [](u64 sum, E e) { return std::min(sum, e.n()); }, ReductionCase::element_0},
    {"uaddv", to_vector(sve_uaddv_vpz), [](E) { return u64{0}; },
     [](u64 sum, E e) { return sum + e.n(); }, ReductionCase::doubleword_0},
    {"lastb_vpz", to_vector(sve_lastb_vpz), [](E e) { return e.n(e.count() - 1); },
     [](u64, E e) { return e.n(); }, ReductionCase::element_0},
    {"lastb_rpz", to_scalar(sve_lastb_rpz, x_one_way), [](E e) { return e.n(e.count() - 1); },
     [](u64, E e) { return e.n(); }, ReductionCase::general},
    {"clastb_rpz", to_scalar(sve_clastb_rpz, x_both_ways), [](E e) { return e.xn(); },
     [](u64, E e) { return e.n(); }, ReductionCase::general},
};

TEST_F(Vectors, ReductionsAgreeWithTheScalarModel) {
  for (const ReductionCase& c : reduction_cases) {
    for (unsigned size = 0; size < 4; ++size) {
      for (int round = 0; round < rounds && !HasFailure(); ++round) {
        draw(size);
        const auto model = [&](cpu_state& s) {
          u64 sum = c.start(element(0));
          for (unsigned i = 0; i < count(); ++i) {
            if (element(i).active()) sum = c.next(sum, element(i));
          }
          if (c.destination != ReductionCase::doubleword_0) sum = low_bits(sum, 8U << size);
          if (c.destination == ReductionCase::general) {
            if (o.xn < 31) s.x[o.xn] = sum;
          } else {
            std::memset(s.z[o.d], 0, vector_bytes);
            put(s.z[o.d], 0, 8, sum);
          }
        };
        expect_same(c.name, model, c.call);
      }
    }
  }
}

TEST_F(Vectors, QuadwordsAreBroadcastByDup) {
  constexpr unsigned quadwords = vector_bytes / 16;
  for (unsigned index : {0U, quadwords - 1, quadwords}) {
    randomize(state);
    byte value[16] = {};
    if (index < quadwords) std::memcpy(value, state.z[3] + 16 * index, 16);
    sve_dup_zzi(&state, {3, 4, 5, 5}, {3, 4, 5, 5}, index);
    for (unsigned i = 0; i < quadwords; ++i) {
      EXPECT_EQ(std::memcmp(state.z[3] + 16 * i, value, 16), 0) << index << " in " << i;
    }
  }
}

}  // namespace
