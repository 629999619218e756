// Every contiguous and structured load and store between guard pages: the active elements are moved
// so that the first one begins with the first accessible byte or the last one ends with the last.
// An access to an inactive element outside them, or one that is too wide, faults.
#include "sve/fast/contiguous_memory.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

#include "guarded_memory.h"
#include "sve/state/access.h"

namespace {

using sve::vector_bytes;

struct Form {
  const char* name;
  sve::contiguous_zpri* immediate;
  sve::contiguous_scaled_zprr* indexed;
  std::size_t memory_bytes;
  bool sign;
  std::size_t element_bytes;
  std::size_t registers;

  std::size_t elements() const { return vector_bytes / element_bytes; }
};

const Form loads[] = {
    {"ld1b", sve_ld1b_zpri, sve_ld1b_scaled_zprr, 1, false, 1, 1},
    {"ld1b_h", sve_ld1b_h_zpri, sve_ld1b_h_scaled_zprr, 1, false, 2, 1},
    {"ld1b_s", sve_ld1b_s_zpri, sve_ld1b_s_scaled_zprr, 1, false, 4, 1},
    {"ld1b_d", sve_ld1b_d_zpri, sve_ld1b_d_scaled_zprr, 1, false, 8, 1},
    {"ld1h", sve_ld1h_zpri, sve_ld1h_scaled_zprr, 2, false, 2, 1},
    {"ld1h_s", sve_ld1h_s_zpri, sve_ld1h_s_scaled_zprr, 2, false, 4, 1},
    {"ld1h_d", sve_ld1h_d_zpri, sve_ld1h_d_scaled_zprr, 2, false, 8, 1},
    {"ld1w", sve_ld1w_zpri, sve_ld1w_scaled_zprr, 4, false, 4, 1},
    {"ld1w_d", sve_ld1w_d_zpri, sve_ld1w_d_scaled_zprr, 4, false, 8, 1},
    {"ld1d", sve_ld1d_zpri, sve_ld1d_scaled_zprr, 8, false, 8, 1},
    {"ld1sb_h", sve_ld1sb_h_zpri, sve_ld1sb_h_scaled_zprr, 1, true, 2, 1},
    {"ld1sb_s", sve_ld1sb_s_zpri, sve_ld1sb_s_scaled_zprr, 1, true, 4, 1},
    {"ld1sb_d", sve_ld1sb_d_zpri, sve_ld1sb_d_scaled_zprr, 1, true, 8, 1},
    {"ld1sh_s", sve_ld1sh_s_zpri, sve_ld1sh_s_scaled_zprr, 2, true, 4, 1},
    {"ld1sh_d", sve_ld1sh_d_zpri, sve_ld1sh_d_scaled_zprr, 2, true, 8, 1},
    {"ld1sw_d", sve_ld1sw_d_zpri, sve_ld1sw_d_scaled_zprr, 4, true, 8, 1},
    {"ldnt1b", sve_ldnt1b_zpri, sve_ldnt1b_scaled_zprr, 1, false, 1, 1},
    {"ldnt1h", sve_ldnt1h_zpri, sve_ldnt1h_scaled_zprr, 2, false, 2, 1},
    {"ldnt1w", sve_ldnt1w_zpri, sve_ldnt1w_scaled_zprr, 4, false, 4, 1},
    {"ldnt1d", sve_ldnt1d_zpri, sve_ldnt1d_scaled_zprr, 8, false, 8, 1},
    {"ld2b", sve_ld2b_zpri, sve_ld2b_scaled_zprr, 1, false, 1, 2},
    {"ld2h", sve_ld2h_zpri, sve_ld2h_scaled_zprr, 2, false, 2, 2},
    {"ld2w", sve_ld2w_zpri, sve_ld2w_scaled_zprr, 4, false, 4, 2},
    {"ld2d", sve_ld2d_zpri, sve_ld2d_scaled_zprr, 8, false, 8, 2},
    {"ld3b", sve_ld3b_zpri, sve_ld3b_scaled_zprr, 1, false, 1, 3},
    {"ld3h", sve_ld3h_zpri, sve_ld3h_scaled_zprr, 2, false, 2, 3},
    {"ld3w", sve_ld3w_zpri, sve_ld3w_scaled_zprr, 4, false, 4, 3},
    {"ld3d", sve_ld3d_zpri, sve_ld3d_scaled_zprr, 8, false, 8, 3},
    {"ld4b", sve_ld4b_zpri, sve_ld4b_scaled_zprr, 1, false, 1, 4},
    {"ld4h", sve_ld4h_zpri, sve_ld4h_scaled_zprr, 2, false, 2, 4},
    {"ld4w", sve_ld4w_zpri, sve_ld4w_scaled_zprr, 4, false, 4, 4},
    {"ld4d", sve_ld4d_zpri, sve_ld4d_scaled_zprr, 8, false, 8, 4},
};

const Form stores[] = {
    {"st1b", sve_st1b_zpri, sve_st1b_scaled_zprr, 1, false, 1, 1},
    {"st1b_h", sve_st1b_h_zpri, sve_st1b_h_scaled_zprr, 1, false, 2, 1},
    {"st1b_s", sve_st1b_s_zpri, sve_st1b_s_scaled_zprr, 1, false, 4, 1},
    {"st1b_d", sve_st1b_d_zpri, sve_st1b_d_scaled_zprr, 1, false, 8, 1},
    {"st1h", sve_st1h_zpri, sve_st1h_scaled_zprr, 2, false, 2, 1},
    {"st1h_s", sve_st1h_s_zpri, sve_st1h_s_scaled_zprr, 2, false, 4, 1},
    {"st1h_d", sve_st1h_d_zpri, sve_st1h_d_scaled_zprr, 2, false, 8, 1},
    {"st1w", sve_st1w_zpri, sve_st1w_scaled_zprr, 4, false, 4, 1},
    {"st1w_d", sve_st1w_d_zpri, sve_st1w_d_scaled_zprr, 4, false, 8, 1},
    {"st1d", sve_st1d_zpri, sve_st1d_scaled_zprr, 8, false, 8, 1},
    {"stnt1b", sve_stnt1b_zpri, sve_stnt1b_scaled_zprr, 1, false, 1, 1},
    {"stnt1h", sve_stnt1h_zpri, sve_stnt1h_scaled_zprr, 2, false, 2, 1},
    {"stnt1w", sve_stnt1w_zpri, sve_stnt1w_scaled_zprr, 4, false, 4, 1},
    {"stnt1d", sve_stnt1d_zpri, sve_stnt1d_scaled_zprr, 8, false, 8, 1},
    {"st2b", sve_st2b_zpri, sve_st2b_scaled_zprr, 1, false, 1, 2},
    {"st2h", sve_st2h_zpri, sve_st2h_scaled_zprr, 2, false, 2, 2},
    {"st2w", sve_st2w_zpri, sve_st2w_scaled_zprr, 4, false, 4, 2},
    {"st2d", sve_st2d_zpri, sve_st2d_scaled_zprr, 8, false, 8, 2},
    {"st3b", sve_st3b_zpri, sve_st3b_scaled_zprr, 1, false, 1, 3},
    {"st3h", sve_st3h_zpri, sve_st3h_scaled_zprr, 2, false, 2, 3},
    {"st3w", sve_st3w_zpri, sve_st3w_scaled_zprr, 4, false, 4, 3},
    {"st3d", sve_st3d_zpri, sve_st3d_scaled_zprr, 8, false, 8, 3},
    {"st4b", sve_st4b_zpri, sve_st4b_scaled_zprr, 1, false, 1, 4},
    {"st4h", sve_st4h_zpri, sve_st4h_scaled_zprr, 2, false, 2, 4},
    {"st4w", sve_st4w_zpri, sve_st4w_scaled_zprr, 4, false, 4, 4},
    {"st4d", sve_st4d_zpri, sve_st4d_scaled_zprr, 8, false, 8, 4},
};

constexpr aarch64_z_reg zt{30, 0, 0, 0};  // lists of more than two registers wrap to Z0
constexpr aarch64_p_reg pg{3, sve::zeroing, 0, 0};

class ContiguousMemory : public testing::Test {
 protected:
  ContiguousMemory() {
    // Random bytes everywhere: predicate bytes are true by bit 0 alone, with the other bits set
    // too.
    auto* bytes = reinterpret_cast<unsigned char*>(state.get());
    for (std::size_t i = 0; i < sizeof(cpu_state); ++i) bytes[i] = byte();
  }

  unsigned char byte() { return static_cast<unsigned char>(random()); }

  void randomise_memory() {
    for (std::size_t i = 0; i < memory.size(); ++i) memory.data()[i] = byte();
  }

  bool active(const Form& form, std::size_t e) const {
    return (state->p[pg.num][e * form.element_bytes] & 1) != 0;
  }

  // Governing predicates: all, none, one element, and random ones with many and few gaps.
  void choose_predicate(const Form& form, unsigned choice) {
    const std::size_t lone = random() % form.elements();
    for (std::size_t e = 0; e < form.elements(); ++e) {
      const bool truths[] = {true, false, e == lone, random() % 2 != 0, random() % 8 == 0};
      unsigned char& first = state->p[pg.num][e * form.element_bytes];
      first = static_cast<unsigned char>((byte() & 0xfe) | (truths[choice] ? 1 : 0));
    }
  }

  // The address of element 0 for which the active elements touch the lower or the upper guard
  // page; where nothing is active, an address that must not be accessed at all.
  std::uint64_t place(const Form& form, bool at_end) const {
    const std::size_t step = form.memory_bytes * form.registers;
    std::size_t first = form.elements(), last = 0;
    for (std::size_t e = 0; e < form.elements(); ++e) {
      if (!active(form, e)) continue;
      first = std::min(first, e);
      last = e;
    }
    if (first == form.elements()) return 8;
    return at_end ? memory.end() - (last + 1) * step : memory.begin() - first * step;
  }

  // Calls the form with all kinds of base and index so that element 0 lies at `address`, and keeps
  // the state from before the call.
  void call(const Form& form, std::uint64_t address, unsigned choice) {
    const std::int64_t imm = static_cast<int>(random() % 16) - 8;
    const std::uint64_t offset = imm * form.elements() * form.registers * form.memory_bytes;
    const std::uint64_t index = choice % 2 == 0 ? random() : random() % 1000;
    state->x[7] = state->sp = address - offset;
    if (choice % 4 == 2) state->sp = address;
    if (choice % 4 == 3) state->x[7] = address - index * form.memory_bytes;
    state->x[30] = index;
    std::memcpy(before.get(), state.get(), sizeof(cpu_state));
    const aarch64_i_rsp_reg sp{31, sve::D}, x7{7, sve::D};
    const aarch64_i_reg xzr{31, sve::D, 4, 4}, x30{30, sve::D, 4, 4};
    switch (choice % 4) {
      case 0: form.immediate(state.get(), zt, pg, sp, static_cast<int>(imm)); break;
      case 1: form.immediate(state.get(), zt, pg, x7, static_cast<int>(imm)); break;
      case 2: form.indexed(state.get(), zt, pg, sp, xzr); break;
      default: form.indexed(state.get(), zt, pg, x7, x30);
    }
  }

  static std::size_t offset(const Form& form, std::size_t e, std::size_t r) {
    return (e * form.registers + r) * form.memory_bytes;
  }

  // The element as it arrives in a register: extended to 8 bytes.
  std::int64_t loaded(const Form& form, std::uint64_t address) const {
    std::int64_t value = 0;
    std::memcpy(&value, memory.data() + (address - memory.begin()), form.memory_bytes);
    const int shift = 64 - 8 * static_cast<int>(form.memory_bytes);
    return form.sign
               ? static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << shift) >> shift
               : value;
  }

  // The state after the call is the one from before with the changes that the test made to it.
  void expect_state_as_before(const char* what, unsigned choice) {
    const auto* expected = reinterpret_cast<const unsigned char*>(before.get());
    const auto* got = reinterpret_cast<const unsigned char*>(state.get());
    const auto differs = std::mismatch(got, got + sizeof(cpu_state), expected).first - got;
    EXPECT_EQ(differs, static_cast<std::ptrdiff_t>(sizeof(cpu_state)))
        << what << ", choice " << choice << ": first difference in byte "
        << differs - static_cast<std::ptrdiff_t>(offsetof(cpu_state, z)) << " from Z0";
  }

  std::mt19937_64 random{1};
  std::unique_ptr<cpu_state> state = std::make_unique<cpu_state>();
  std::unique_ptr<cpu_state> before = std::make_unique<cpu_state>();
  GuardedMemory memory;
};

TEST_F(ContiguousMemory, LoadsReadExactlyTheActiveElements) {
  for (const Form& form : loads) {
    for (unsigned choice = 0; choice < 40; ++choice) {
      choose_predicate(form, choice % 5);
      randomise_memory();
      const std::uint64_t address = place(form, choice % 3 == 0);
      call(form, address, choice);
      for (std::size_t e = 0; e < form.elements(); ++e) {
        for (std::size_t r = 0; r < form.registers; ++r) {
          const std::int64_t value =
              active(form, e) ? loaded(form, address + offset(form, e, r)) : 0;
          std::memcpy(before->z[(zt.num + r) % 32] + e * form.element_bytes, &value,
                      form.element_bytes);
        }
      }
      expect_state_as_before(form.name, choice);
    }
  }
}

TEST_F(ContiguousMemory, StoresWriteExactlyTheActiveElements) {
  std::vector<unsigned char> expected(memory.size());
  for (const Form& form : stores) {
    for (unsigned choice = 0; choice < 40; ++choice) {
      choose_predicate(form, choice % 5);
      randomise_memory();
      std::memcpy(expected.data(), memory.data(), memory.size());
      const std::uint64_t address = place(form, choice % 3 == 0);
      call(form, address, choice);
      for (std::size_t e = 0; e < form.elements(); ++e) {
        for (std::size_t r = 0; active(form, e) && r < form.registers; ++r) {
          std::memcpy(expected.data() + (address + offset(form, e, r) - memory.begin()),
                      state->z[(zt.num + r) % 32] + e * form.element_bytes, form.memory_bytes);
        }
      }
      EXPECT_EQ(std::memcmp(expected.data(), memory.data(), memory.size()), 0) << form.name;
      expect_state_as_before(form.name, choice);
    }
  }
}

TEST_F(ContiguousMemory, ReplicatingLoads) {
  const struct {
    const char* name;
    sve::replicate_zpri* f;
    std::size_t memory_bytes;
    bool sign;
    std::size_t element_bytes;
  } forms[] = {
      {"ld1rb", sve_ld1rb_zpri, 1, false, 1},      {"ld1rb_h", sve_ld1rb_h_zpri, 1, false, 2},
      {"ld1rb_s", sve_ld1rb_s_zpri, 1, false, 4},  {"ld1rb_d", sve_ld1rb_d_zpri, 1, false, 8},
      {"ld1rh", sve_ld1rh_zpri, 2, false, 2},      {"ld1rh_s", sve_ld1rh_s_zpri, 2, false, 4},
      {"ld1rh_d", sve_ld1rh_d_zpri, 2, false, 8},  {"ld1rw", sve_ld1rw_zpri, 4, false, 4},
      {"ld1rw_d", sve_ld1rw_d_zpri, 4, false, 8},  {"ld1rd", sve_ld1rd_zpri, 8, false, 8},
      {"ld1rsb_h", sve_ld1rsb_h_zpri, 1, true, 2}, {"ld1rsb_s", sve_ld1rsb_s_zpri, 1, true, 4},
      {"ld1rsb_d", sve_ld1rsb_d_zpri, 1, true, 8}, {"ld1rsh_s", sve_ld1rsh_s_zpri, 2, true, 4},
      {"ld1rsh_d", sve_ld1rsh_d_zpri, 2, true, 8}, {"ld1rsw_d", sve_ld1rsw_d_zpri, 4, true, 8},
  };
  for (const auto& f : forms) {
    const Form form{f.name, nullptr, nullptr, f.memory_bytes, f.sign, f.element_bytes, 1};
    for (unsigned choice = 0; choice < 10; ++choice) {
      choose_predicate(form, choice % 5);
      randomise_memory();
      const bool none = choice % 5 == 1;
      const unsigned imm = static_cast<unsigned>(random() % 64);
      const std::uint64_t address =
          choice % 2 == 0 ? memory.begin() : memory.end() - form.memory_bytes;
      state->sp = none ? 8 : address - imm * form.memory_bytes;
      f.f(state.get(), zt, pg, {31, sve::D}, imm);
      const std::int64_t value = loaded(form, address);
      const std::int64_t zero = 0;
      for (std::size_t e = 0; e < form.elements(); ++e) {
        EXPECT_EQ(std::memcmp(state->z[zt.num] + e * form.element_bytes,
                              active(form, e) ? &value : &zero, form.element_bytes),
                  0)
            << form.name << " element " << e;
      }
    }
  }
}

TEST_F(ContiguousMemory, WholeRegistersMoveTheirBytesAndNoMore) {
  randomise_memory();
  for (const int imm : {0, 1, -1, 255, -256}) {
    for (const bool at_end : {true, false}) {
      const std::uint64_t vector = at_end ? memory.end() - vector_bytes : memory.begin();
      const std::uint64_t offset = static_cast<std::int64_t>(imm) * vector_bytes;
      unsigned char* in_memory = memory.data() + (vector - memory.begin());
      state->sp = vector - offset;
      sve_ldr_zri(state.get(), {9, 0, 0, 0}, {31, sve::D}, imm);
      EXPECT_EQ(std::memcmp(state->z[9], in_memory, vector_bytes), 0);
      sve_str_zri(state.get(), {10, 0, 0, 0}, {31, sve::D}, imm);
      EXPECT_EQ(std::memcmp(state->z[10], in_memory, vector_bytes), 0);

      const std::uint64_t packed = at_end ? memory.end() - sve::predicate_bytes : memory.begin();
      state->x[5] = packed - static_cast<std::int64_t>(imm) * sve::predicate_bytes;
      sve_str_pri(state.get(), {2, 0, 0, 0}, {5, sve::D}, imm);
      sve_ldr_pri(state.get(), {4, 0, 0, 0}, {5, sve::D}, imm);
      for (unsigned k = 0; k < vector_bytes; ++k) {
        EXPECT_EQ(state->p[4][k], state->p[2][k] & 1) << "lane " << k;
        EXPECT_EQ(memory.data()[packed - memory.begin() + k / 8] >> k % 8 & 1, state->p[4][k])
            << "the least significant bit comes first";
      }
    }
  }
}

TEST_F(ContiguousMemory, StructuredLoadsCountTheirOffsetInElements) {
  randomise_memory();
  const Form form = loads[26];
  ASSERT_STREQ(form.name, "ld3w");
  choose_predicate(form, 0);
  state->x[1] = memory.begin() + 8;
  sve_ldN_zpri<std::uint32_t, std::uint32_t, 3>(state.get(), zt, pg, {1, sve::D}, -2);
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t e = 0; e < 2; ++e) {
      const std::uint64_t address = state->x[1] - 8 + offset(form, e, r);
      EXPECT_EQ(sve::element<std::uint32_t>(state->z[(zt.num + r) % 32], e),
                static_cast<std::uint32_t>(loaded(form, address)));
    }
  }
}

}  // namespace
