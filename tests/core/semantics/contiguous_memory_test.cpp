// Every contiguous and structured load and store between guard pages: the active elements are moved
// so that the first one begins with the first accessible byte or the last one ends with the last.
// An access to an inactive element outside them, or one that is too wide, faults.
#include "sve/fast/contiguous_memory.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "guarded_memory.h"
#include "sve/state/access.h"

namespace {

using sve::vector_bytes;

// What a name says: ld or st, nt perhaps, the number of registers, r where one element is
// replicated, s where its sign is extended, the memory element, and the register element where it
// is wider.
struct Shape {
  explicit constexpr Shape(std::string_view name) {
    std::size_t at = name.find_first_of("1234");
    registers = static_cast<std::size_t>(name[at++] - '0');
    if (name[at] == 'r') ++at;
    sign = name[at] == 's';
    if (sign) ++at;
    memory_bytes = bytes_of(name[at++]);
    element_bytes = at < name.size() ? bytes_of(name[at + 1]) : memory_bytes;
  }
  static constexpr std::size_t bytes_of(char letter) {
    return letter == 'b' ? 1 : letter == 'h' ? 2 : letter == 'd' ? 8 : 4;
  }
  std::size_t elements() const { return vector_bytes / element_bytes; }

  std::size_t registers, memory_bytes, element_bytes;
  bool sign;
};

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

constexpr aarch64_z_reg zt{30, 0, 0, 0};  // lists of more than two registers wrap to Z0
constexpr aarch64_p_reg pg{3, sve::zeroing, 0, 0};

class ContiguousMemory : public testing::Test {
 protected:
  ContiguousMemory() {
    // Random bytes everywhere: predicate bytes are true by bit 0 alone, with the other bits set
    // too.
    auto* bytes = reinterpret_cast<unsigned char*>(state.get());
    std::generate_n(bytes, sizeof(cpu_state), [this] { return byte(); });
  }

  unsigned char byte() { return static_cast<unsigned char>(random()); }

  void randomise_memory() {
    std::generate_n(memory.data(), memory.size(), [this] { return byte(); });
  }

  bool active(const Shape& form, std::size_t e) const {
    return (state->p[pg.num][e * form.element_bytes] & 1) != 0;
  }

  // Governing predicates: all, none, one element, and random ones with many and few gaps.
  void choose_predicate(const Shape& form, unsigned choice) {
    const std::size_t lone = random() % form.elements();
    for (std::size_t e = 0; e < form.elements(); ++e) {
      const bool truths[] = {true, false, e == lone, random() % 2 != 0, random() % 8 == 0};
      unsigned char& first = state->p[pg.num][e * form.element_bytes];
      first = static_cast<unsigned char>((byte() & 0xfe) | (truths[choice] ? 1 : 0));
    }
  }

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

  // The element as it arrives in a register: extended to 8 bytes.
  std::int64_t loaded(const Shape& form, std::uint64_t address) const {
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
