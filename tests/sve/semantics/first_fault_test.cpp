// First-fault and non-fault loads at the ends of real pages, at every distance from the boundary,
// by their fast paths and by the reference semantics.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <vector>

#include "guarded_memory.h"
#include "sve/semantics/memory_access.h"
#include "sve/state/cpu_state.h"
#include "tests/conformance/row_shape.h"

namespace {

using sve::vector_bytes;

constexpr unsigned zt = 30, pg = 3;

using Addresses = std::vector<std::uint64_t>;

struct Form {
  explicit Form(const sve::instruction_row& row)
      : row(&row),
        name(row.name),
        memory(*conformance::describe(row).memory),
        element_bytes(memory.container),
        memory_bytes(memory.memory),
        sign(name[3] == 'S') {}
  std::size_t elements() const { return vector_bytes / element_bytes; }

  const sve::instruction_row* row;
  std::string name;
  conformance::memory_form memory;
  std::size_t element_bytes, memory_bytes;
  bool sign;
};

// The rows of that kind whose names contain `part`.
std::vector<Form> forms(std::string_view part, sve::row_kind kind = sve::row_kind::fast) {
  std::vector<Form> result;
  for (const sve::instruction_row& row : sve::instruction_rows()) {
    if (row.name.find(part) != std::string_view::npos && row.kind == kind) result.emplace_back(row);
  }
  return result;
}

const std::vector<Form> first_fault_loads = forms("CLoadFF"), non_fault_loads = forms("CLoadNF");

class FirstFault : public testing::Test {
 protected:
  // Random bytes everywhere. Predicate bytes are true by bit 0 alone, and have other bits set too.
  FirstFault() {
    SVEInitialize();
    EXPECT_FALSE(first_fault_loads.empty() || non_fault_loads.empty());
    auto* bytes = reinterpret_cast<unsigned char*>(state.get());
    std::generate_n(bytes, sizeof(cpu_state), [this] { return byte(); });
    std::generate_n(memory.data(), memory.size(), [this] { return byte(); });
  }

  // Calls the load with SP as the base. A first-fault load has an index in X30, and a non-fault
  // load has an immediate.
  void call(const Form& form, std::uint64_t address) {
    const bool is_first_fault = form.name.find("FF") != std::string::npos;
    const unsigned operand = static_cast<unsigned>(random() % 16);
    const auto index = is_first_fault ? std::int64_t{operand} : std::int64_t{operand ^ 8U} - 8;
    const std::size_t unit = form.memory_bytes * (is_first_fault ? 1 : form.elements());
    state->x[30] = static_cast<std::uint64_t>(index);
    state->sp = address - static_cast<std::uint64_t>(index) * unit;
    std::memset(state->ffr, 1, vector_bytes);
    std::memcpy(before.get(), state.get(), sizeof(cpu_state));
    const unsigned last = is_first_fault ? 30 : operand;
    const unsigned word = form.row->fixed_bits() | last << 16 | pg << 10 | 31U << 5 | zt;
    before->instr = word;
    form.row->handler(state.get(), word);
  }

  // Element e of a load, which is at this address.
  void expect_element(const Form& form, std::uint64_t address, std::size_t e) {
    const std::int64_t value = active(form, e) ? loaded(form, address) : 0;
    std::memcpy(before->z[zt] + e * form.element_bytes, &value, form.element_bytes);
  }
  void expect_cleared(const Form& form, std::size_t e) {
    std::memset(before->ffr + e * form.element_bytes, 0, form.element_bytes);
  }

  // Runs a load by the reference semantics. No element from `stop` on can be read. Those before the
  // first active one of them are loaded. The others become 0, and false in FFR.
  void expect_stop(const Form& form, unsigned operands, const Addresses& at, std::size_t stop) {
    std::generate_n(state->ffr, vector_bytes, [this] { return byte() & 1; });
    std::memcpy(before.get(), state.get(), sizeof(cpu_state));
    while (stop < form.elements() && !active(form, stop)) ++stop;
    std::memset(before->z[zt], 0, vector_bytes);
    for (std::size_t e = 0; e < stop; ++e) expect_element(form, at[e], e);
    for (std::size_t e = stop; e < form.elements(); ++e) expect_cleared(form, e);
    form.row->handler(state.get(), form.row->fixed_bits() | operands | pg << 10 | zt);
    EXPECT_EQ(std::memcmp(state->z[zt], before->z[zt], vector_bytes), 0) << form.name << stop;
    EXPECT_EQ(std::memcmp(state->ffr, before->ffr, vector_bytes), 0) << form.name << stop;
  }

  // Puts the addresses into Z4, as they are or as offsets from X1. Bits that the form ignores are
  // arbitrary. Returns the operand fields of the word.
  unsigned set_addresses(const Form& form, const Addresses& at) {
    const bool by_base = form.memory.address == conformance::address_shape::vector_immediate;
    const bool may_be_negative = form.memory.signed_offset || !form.memory.word_offset;
    const std::uint64_t distance = 3 * form.memory_bytes;
    state->x[1] = memory.begin() + (may_be_negative ? distance : -distance);
    for (std::size_t e = 0; e < form.elements(); ++e) {
      std::uint64_t value = by_base ? at[e] - distance : at[e] - state->x[1];
      value =
          static_cast<std::uint64_t>(static_cast<std::int64_t>(value) / form.memory.offset_scale);
      if (form.memory.word_offset) value = (value & 0xffffffff) | random() << 32;
      std::memcpy(state->z[4] + e * form.element_bytes, &value, form.element_bytes);
    }
    return by_base ? 3U << 16 | 4U << 5 : 4U << 16 | 1U << 5;
  }

  // How many elements a first-fault load handles when an unreadable page begins after `room` bytes:
  // as many register elements as fit, or, if none fits, all up to the first active one. Nothing if
  // that one faults.
  std::optional<std::size_t> handled(const Form& form, std::size_t room) const {
    if (room >= form.element_bytes) return std::min(form.elements(), room / form.element_bytes);
    for (std::size_t e = 0; e < form.elements(); ++e) {
      if (!active(form, e)) continue;
      if ((e + 1) * form.memory_bytes > room) return std::nullopt;
      return e + 1;
    }
    return 0;
  }

  unsigned char byte() { return static_cast<unsigned char>(random()); }

  bool active(const Form& form, std::size_t e) const {
    return (state->p[pg][e * form.element_bytes] & 1) != 0;
  }

  // Governing predicates: all, none, one element, and random ones with many and few gaps.
  void choose_predicate(const Form& form, std::size_t choice) {
    const std::size_t lone = random() % form.elements();
    for (std::size_t e = 0; e < form.elements(); ++e) {
      const bool truths[] = {true, false, e == lone, random() % 2 != 0, random() % 8 == 0};
      unsigned char& first = state->p[pg][e * form.element_bytes];
      first = static_cast<unsigned char>((byte() & 0xfe) | (truths[choice] ? 1 : 0));
    }
  }

  // The element as it arrives in a register, extended to 8 bytes.
  std::int64_t loaded(const Form& form, std::uint64_t address) const {
    std::int64_t value = 0;
    std::memcpy(&value, memory.data() + (address - memory.begin()), form.memory_bytes);
    const int shift = 64 - 8 * static_cast<int>(form.memory_bytes);
    return form.sign
               ? static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << shift) >> shift
               : value;
  }

  // Expects the state from before the call, with the changes that the test made to that copy.
  void expect_state_as_before(const std::string& what, unsigned choice) {
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
  for (const Form& form : first_fault_loads) {
    for (std::size_t room = 1; room <= vector_bytes + 2; ++room) {
      for (unsigned choice = 0; choice < 5; ++choice) {
        choose_predicate(form, choice);
        const std::optional<std::size_t> count = handled(form, room);
        if (!count) continue;
        const std::uint64_t address = memory.end() - room;
        call(form, address);
        for (std::size_t e = 0; e < form.elements(); ++e) {
          if (e < *count) expect_element(form, address + e * form.memory_bytes, e);
          if (e >= *count) expect_cleared(form, e);
        }
        expect_state_as_before(form.name + " " + std::to_string(room), choice);
      }
    }
  }
}

TEST_F(FirstFault, ReadsNothingWithoutAnActiveElement) {
  for (const Form& form : first_fault_loads) {
    choose_predicate(form, 1);
    call(form, memory.end() + 8);
    for (std::size_t e = 0; e < form.elements(); ++e) expect_element(form, 0, e);
    expect_state_as_before(form.name, 1);
  }
}

TEST_F(FirstFault, NonFaultLoadsReadWhatCanBeRead) {
  const std::uint64_t boundaries[] = {memory.begin(), memory.begin() + GuardedMemory::page_size(),
                                      memory.end()};
  for (const Form& form : non_fault_loads) {
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
            expect_element(form, at, e);
          } else {
            expect_cleared(form, e);
          }
        }
        expect_state_as_before(form.name + " " + std::to_string(before_it), choice);
      }
    }
  }
}

TEST_F(FirstFault, ReferenceFunctionsStopAtTheElementThatFaults) {
  for (const Form& form : forms("CLoadFF", sve::row_kind::bridge)) {
    for (std::size_t room = 0; room <= form.elements() * form.memory_bytes; ++room) {
      choose_predicate(form, room % 5);
      Addresses at;
      for (std::size_t e = 0; e < form.elements(); ++e)
        at.push_back(memory.end() - room + e * form.memory_bytes);
      state->x[1] = at[0] - 5 * form.memory_bytes;
      state->x[2] = 5;
      expect_stop(form, 2U << 16 | 1U << 5, at, room / form.memory_bytes);
    }
  }
}

// At every second stop, an element whose offset is in bytes begins in the readable page and runs
// over into the unreadable one. Inactive elements are far away.
TEST_F(FirstFault, GathersStopAtTheElementThatFaults) {
  int tested = 0;
  for (const Form& form : forms("LoadFF", sve::row_kind::bridge)) {
    const bool has_low_bases =
        form.memory.address == conformance::address_shape::vector_immediate &&
        form.element_bytes == 4;
    if (form.memory.access != conformance::access_shape::gathered || has_low_bases) continue;
    ++tested;
    for (std::size_t stop = 0; stop <= form.elements(); ++stop) {
      choose_predicate(form, stop % 5);
      Addresses at;
      for (std::size_t e = 0; e < form.elements(); ++e) {
        const std::uint64_t unit = random() % (memory.size() / form.memory_bytes);
        at.push_back(active(form, e) ? memory.begin() + unit * form.memory_bytes
                                     : memory.end() + 0x7000 * form.memory_bytes);
      }
      const bool overlaps = form.memory.offset_scale == 1 && stop % 2 != 0;
      for (std::size_t e = stop; e < form.elements(); ++e)
        at[e] = memory.end() - (overlaps ? form.memory_bytes / 2 : 0);
      expect_stop(form, set_addresses(form, at), at, stop);
    }
  }
  EXPECT_NE(tested, 0);
}

using FirstFaultDeathTest = FirstFault;

// If the first active element can't be read and nothing before it can be loaded, the load faults.
TEST_F(FirstFaultDeathTest, FaultsWithoutProgress) {
  const rlimit no_core_file{0, 0};
  setrlimit(RLIMIT_CORE, &no_core_file);
  const struct {
    const char* name;
    std::size_t first_active;
    std::uint64_t address;
  } faults[] = {{"VecU8CLoadFF1LSSZ", 0, memory.end() + 8},
                {"VecU8CLoadFF1LSSZ", 100 % vector_bytes, memory.end() + 8},
                {"VecU32CLoadFF4LSSZ", 0, memory.end() - 3},
                {"VecU32CLoadFF4LSSZ", 1, memory.end() - 3},
                {"VecU64CLoadFF1LSSZ", 1, memory.end() - 1}};
  for (const auto& [name, first_active, address] : faults) {
    const Form form = forms(name).at(0);
    choose_predicate(form, 1);
    state->p[pg][first_active * form.element_bytes] = 1;
    EXPECT_EXIT(call(form, address), testing::KilledBySignal(SIGSEGV), "caught signal SIGSEGV")
        << form.name;
  }
}

}  // namespace
