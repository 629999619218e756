// Every contiguous and structured load and store between guard pages: the active elements are moved
// so that the first one begins with the first accessible byte or the last one ends with the last.
// An access to an inactive element outside them, or one that is too wide, faults.
#include "sve/fast/contiguous_memory.h"

#include <utility>
#include <vector>

#include "memory_fixture.h"
#include "sve/state/access.h"

namespace {

using sve::vector_bytes;

struct Form : Shape {
  constexpr Form(const char* form_name, sve::contiguous_zpri* i, sve::contiguous_scaled_zprr* x)
      : Shape(form_name), name(form_name), immediate(i), indexed(x) {}

  const char* name;
  sve::contiguous_zpri* immediate;
  sve::contiguous_scaled_zprr* indexed;
};

#define FORM(name) Form(#name, sve_##name##_zpri, sve_##name##_scaled_zprr)

const Form loads[] = {FORM(ld1b),    FORM(ld1b_h),  FORM(ld1b_s),  FORM(ld1b_d),  FORM(ld1h),
                      FORM(ld1h_s),  FORM(ld1h_d),  FORM(ld1w),    FORM(ld1w_d),  FORM(ld1d),
                      FORM(ld1sb_h), FORM(ld1sb_s), FORM(ld1sb_d), FORM(ld1sh_s), FORM(ld1sh_d),
                      FORM(ld1sw_d), FORM(ldnt1b),  FORM(ldnt1h),  FORM(ldnt1w),  FORM(ldnt1d),
                      FORM(ld2b),    FORM(ld2h),    FORM(ld2w),    FORM(ld2d),    FORM(ld3b),
                      FORM(ld3h),    FORM(ld3w),    FORM(ld3d),    FORM(ld4b),    FORM(ld4h),
                      FORM(ld4w),    FORM(ld4d)};
const Form stores[] = {
    FORM(st1b), FORM(st1b_h), FORM(st1b_s), FORM(st1b_d), FORM(st1h),   FORM(st1h_s), FORM(st1h_d),
    FORM(st1w), FORM(st1w_d), FORM(st1d),   FORM(stnt1b), FORM(stnt1h), FORM(stnt1w), FORM(stnt1d),
    FORM(st2b), FORM(st2h),   FORM(st2w),   FORM(st2d),   FORM(st3b),   FORM(st3h),   FORM(st3w),
    FORM(st3d), FORM(st4b),   FORM(st4h),   FORM(st4w),   FORM(st4d)};

class ContiguousMemory : public MemoryTest {
 protected:
  // The address of element 0 for which the active elements touch the lower or the upper guard
  // page; where nothing is active, an address that must not be accessed at all.
  std::uint64_t place(const Shape& form, bool at_end) const {
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

  static std::size_t offset(const Shape& form, std::size_t e, std::size_t r) {
    return (e * form.registers + r) * form.memory_bytes;
  }
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
#define REPLICATE(name) \
  { #name, sve_##name##_zpri }
  const std::pair<const char*, sve::replicate_zpri*> forms[] = {
      REPLICATE(ld1rb),    REPLICATE(ld1rb_h),  REPLICATE(ld1rb_s),  REPLICATE(ld1rb_d),
      REPLICATE(ld1rh),    REPLICATE(ld1rh_s),  REPLICATE(ld1rh_d),  REPLICATE(ld1rw),
      REPLICATE(ld1rw_d),  REPLICATE(ld1rd),    REPLICATE(ld1rsb_h), REPLICATE(ld1rsb_s),
      REPLICATE(ld1rsb_d), REPLICATE(ld1rsh_s), REPLICATE(ld1rsh_d), REPLICATE(ld1rsw_d)};
  for (const auto& [name, replicate] : forms) {
    const Shape form(name);
    for (unsigned choice = 0; choice < 10; ++choice) {
      choose_predicate(form, choice % 5);
      randomise_memory();
      const bool none = choice % 5 == 1;
      const unsigned imm = static_cast<unsigned>(random() % 64);
      const std::uint64_t address =
          choice % 2 == 0 ? memory.begin() : memory.end() - form.memory_bytes;
      state->sp = none ? 8 : address - imm * form.memory_bytes;
      replicate(state.get(), zt, pg, {31, sve::D}, imm);
      const std::int64_t value = loaded(form, address);
      const std::int64_t zero = 0;
      for (std::size_t e = 0; e < form.elements(); ++e) {
        EXPECT_EQ(std::memcmp(state->z[zt.num] + e * form.element_bytes,
                              active(form, e) ? &value : &zero, form.element_bytes),
                  0)
            << name << " element " << e;
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
  const Shape form("ld3w");
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
