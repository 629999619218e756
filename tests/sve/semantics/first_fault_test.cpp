// First-fault and non-fault loads where real pages end, at every distance from the boundary.
#include "sve/fast/first_fault.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <sys/resource.h>

#include "guarded_memory.h"
#include "sve/semantics/memory_access.h"
#include "sve/state/vector_length.h"

namespace {

using sve::vector_bytes;

constexpr aarch64_z_reg zt{30, 0, 0, 0};
constexpr aarch64_p_reg pg{3, sve::zeroing, 0, 0};

// What a name says after the 1: s where the sign is extended, the memory element, and the register
// element where it is wider.
struct Shape {
  explicit constexpr Shape(std::string_view name) {
    std::size_t at = name.find('1') + 1;
    sign = name[at] == 's';
    if (sign) ++at;
    memory_bytes = bytes_of(name[at++]);
    element_bytes = at < name.size() ? bytes_of(name[at + 1]) : memory_bytes;
  }
  static constexpr std::size_t bytes_of(char letter) {
    return letter == 'b' ? 1 : letter == 'h' ? 2 : letter == 'd' ? 8 : 4;
  }
  std::size_t elements() const { return vector_bytes / element_bytes; }

  std::size_t memory_bytes, element_bytes;
  bool sign;
};

template <class Function>
struct Form : Shape {
  constexpr Form(const char* form_name, Function* load)
      : Shape(form_name), name(form_name), function(load) {}

  const char* name;
  Function* function;
};

#define FIRST_FAULT(name) Form(#name, sve_##name##_scaled_zprr)
const Form<sve::contiguous_scaled_zprr> first_fault_loads[] = {
    FIRST_FAULT(ldff1b), FIRST_FAULT(ldff1b_h), FIRST_FAULT(ldff1b_s), FIRST_FAULT(ldff1b_d),
    FIRST_FAULT(ldff1w), FIRST_FAULT(ldff1w_d), FIRST_FAULT(ldff1d)};

#define NON_FAULT(name) Form(#name, sve_##name##_zpri)
const Form<sve::contiguous_zpri> non_fault_loads[] = {
    NON_FAULT(ldnf1b),    NON_FAULT(ldnf1b_h),  NON_FAULT(ldnf1b_s),  NON_FAULT(ldnf1b_d),
    NON_FAULT(ldnf1sb_h), NON_FAULT(ldnf1sb_s), NON_FAULT(ldnf1sb_d), NON_FAULT(ldnf1h),
    NON_FAULT(ldnf1h_s),  NON_FAULT(ldnf1h_d),  NON_FAULT(ldnf1sh_s), NON_FAULT(ldnf1sh_d),
    NON_FAULT(ldnf1w),    NON_FAULT(ldnf1w_d),  NON_FAULT(ldnf1sw_d), NON_FAULT(ldnf1d)};

class FirstFault : public testing::Test {
 protected:
  // Random bytes everywhere: predicate bytes are true by bit 0 alone, with the other bits set too.
  FirstFault() {
    SVEInitialize();
    auto* bytes = reinterpret_cast<unsigned char*>(state.get());
    std::generate_n(bytes, sizeof(cpu_state), [this] { return byte(); });
    std::generate_n(memory.data(), memory.size(), [this] { return byte(); });
  }

  void call(const Form<sve::contiguous_scaled_zprr>& form, std::uint64_t address) {
    state->x[30] = random() % 100;
    state->sp = address - state->x[30] * form.memory_bytes;
    std::memset(state->ffr, 1, vector_bytes);
    std::memcpy(before.get(), state.get(), sizeof(cpu_state));
    form.function(state.get(), zt, pg, {31, sve::D}, {30, sve::D, 4, 4});
  }

  void call(const Form<sve::contiguous_zpri>& form, std::uint64_t address) {
    const int imm = static_cast<int>(random() % 16) - 8;
    const std::int64_t offset =
        std::int64_t{imm} * static_cast<int>(form.elements() * form.memory_bytes);
    state->x[7] = address - static_cast<std::uint64_t>(offset);
    std::memset(state->ffr, 1, vector_bytes);
    std::memcpy(before.get(), state.get(), sizeof(cpu_state));
    form.function(state.get(), zt, pg, {7, sve::D}, imm);
  }

  void expect_element(const Shape& form, std::uint64_t address, std::size_t e) {
    const std::int64_t value = active(form, e) ? loaded(form, address + e * form.memory_bytes) : 0;
    std::memcpy(before->z[zt.num] + e * form.element_bytes, &value, form.element_bytes);
  }
  void expect_cleared(const Shape& form, std::size_t e) {
    std::memset(before->ffr + e * form.element_bytes, 0, form.element_bytes);
  }

  // How many elements a first-fault load handles `room` bytes before an unreadable page: whole
  // register elements, or else up to the first active one; nothing if that one faults.
  std::optional<std::size_t> handled(const Shape& form, std::size_t room) const {
    if (room >= form.element_bytes) return std::min(form.elements(), room / form.element_bytes);
    for (std::size_t e = 0; e < form.elements(); ++e) {
      if (!active(form, e)) continue;
      if ((e + 1) * form.memory_bytes > room) return std::nullopt;
      return e + 1;
    }
    return 0;
  }

  unsigned char byte() { return static_cast<unsigned char>(random()); }

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
  GuardedMemory memory{2};
};

TEST_F(FirstFault, HandlesTheElementsBeforeAnUnreadablePage) {
  for (const auto& form : first_fault_loads) {
    for (std::size_t room = 1; room <= vector_bytes + 2; ++room) {
      for (unsigned choice = 0; choice < 5; ++choice) {
        choose_predicate(form, choice);
        const std::optional<std::size_t> count = handled(form, room);
        if (!count) continue;
        const std::uint64_t address = memory.end() - room;
        call(form, address);
        for (std::size_t e = 0; e < form.elements(); ++e) {
          if (e < *count) expect_element(form, address, e);
          if (e >= *count) expect_cleared(form, e);
        }
        expect_state_as_before((form.name + (" " + std::to_string(room))).c_str(), choice);
      }
    }
  }
}

TEST_F(FirstFault, IsAPlainLoadWhereThePagesAreReadable) {
  const std::uint64_t boundary = memory.begin() + GuardedMemory::page_size();
  for (const auto& form : first_fault_loads) {
    for (unsigned choice = 0; choice < 40; ++choice) {
      choose_predicate(form, choice % 5);
      const std::uint64_t address = boundary - random() % (vector_bytes + 8);
      call(form, address);
      for (std::size_t e = 0; e < form.elements(); ++e) expect_element(form, address, e);
      expect_state_as_before(form.name, choice);
    }
    choose_predicate(form, 1);
    call(form, memory.end() + 8);
    for (std::size_t e = 0; e < form.elements(); ++e) expect_element(form, 0, e);
    expect_state_as_before(form.name, 40);
  }
}

TEST_F(FirstFault, NonFaultLoadsReadWhatCanBeRead) {
  const std::uint64_t boundaries[] = {memory.begin(), memory.begin() + GuardedMemory::page_size(),
                                      memory.end()};
  for (const auto& form : non_fault_loads) {
    for (const std::uint64_t boundary : boundaries) {
      for (std::uint64_t before_it = 0; before_it <= vector_bytes + 2; ++before_it) {
        const unsigned choice = static_cast<unsigned>(before_it + form.element_bytes) % 5;
        choose_predicate(form, choice);
        const std::uint64_t address = boundary - before_it;
        call(form, address);
        for (std::size_t e = 0; e < form.elements(); ++e) {
          const std::uint64_t at = address + e * form.memory_bytes;
          const bool readable = at >= memory.begin() && at + form.memory_bytes <= memory.end();
          if (readable || !active(form, e)) {
            expect_element(form, address, e);
          } else {
            expect_cleared(form, e);
          }
        }
        expect_state_as_before((form.name + (" " + std::to_string(before_it))).c_str(), choice);
      }
    }
  }
}

using FirstFaultDeathTest = FirstFault;

// A first active element that can't be read takes its fault if nothing before it can be loaded.
TEST_F(FirstFaultDeathTest, FaultsWithoutProgress) {
  const rlimit no_core_file{0, 0};
  setrlimit(RLIMIT_CORE, &no_core_file);
  const auto& byte = first_fault_loads[0];
  const auto& byte_to_doubleword = first_fault_loads[3];
  const auto& word = first_fault_loads[4];
  const struct {
    const Form<sve::contiguous_scaled_zprr>& form;
    std::size_t first_active;
    std::uint64_t address;
  } faults[] = {{byte, 0, memory.end() + 8},
                {byte, 100 % vector_bytes, memory.end() + 8},
                {word, 0, memory.end() - 3},
                {word, 1, memory.end() - 3},
                {byte_to_doubleword, 1, memory.end() - 1}};
  for (const auto& [form, first_active, address] : faults) {
    choose_predicate(form, 1);
    state->p[pg.num][first_active * form.element_bytes] = 1;
    EXPECT_EXIT(call(form, address), testing::KilledBySignal(SIGSEGV), "caught signal SIGSEGV")
        << form.name;
  }
}

}  // namespace
