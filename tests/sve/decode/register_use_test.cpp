// register_use_of and the emulation itself. What a row does not write stays as it was. What it does
// not read makes no difference. And what it is said to write or read does change or matter, in some
// states of some words.
#include "sve/decode/register_use.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "fp_registers.h"
#include "tests/conformance/arena.h"
#include "tests/conformance/random.h"
#include "tests/conformance/states.h"
#include "tests/conformance/words.h"
#include "tests/sve/fast/machine.h"

namespace {

using conformance::address_shape;
using conformance::row_shape;
using sve::register_use;

constexpr std::uint32_t ffr = 1U << 16;

// The numbers of the registers in a set.
std::vector<unsigned> numbers_in(std::uint32_t set) {
  std::vector<unsigned> numbers;
  for (; set != 0; set &= set - 1) numbers.push_back(static_cast<unsigned>(std::countr_zero(set)));
  return numbers;
}

// What an instruction leaves.
struct outcome {
  cpu_state state;
  conformance::arena_content memory;
};

std::array<int, 3> sizes(const register_use& use) {
  return {std::popcount(use.z_read), std::popcount(use.z_written), std::popcount(use.p_written)};
}

// The registers that differ between two states.
register_use changes(const cpu_state& before, const cpu_state& after) {
  register_use found;
  const auto differ = [](const byte* a, const byte* b) {
    return std::uint32_t{std::memcmp(a, b, sve::vector_bytes) != 0};
  };
  for (unsigned n = 0; n < 32; ++n) found.z_written |= differ(before.z[n], after.z[n]) << n;
  for (unsigned n = 0; n < 16; ++n) found.p_written |= differ(before.p[n], after.p[n]) << n;
  if (differ(before.ffr, after.ffr) != 0) found.p_written |= ffr;
  return found;
}

class RegisterUseOfRows : public RandomMachine {
 protected:
  static void SetUpTestSuite() { conformance::map_arena(); }

  // Takes words of the row, each in several states. Returns false as soon as a word uses more than
  // is said, or if no word shows that it uses all that is said. DUP (indexed) has sets of two
  // sizes, and must show it for both.
  bool check(const sve::instruction_row& row) {
    shape_ = conformance::describe(row);
    conformance::random_source random(number(~u64{0}));
    std::map<std::array<int, 3>, bool> is_shown;
    const auto all_shown = [&] {
      return std::ranges::all_of(is_shown, [](const auto& entry) { return entry.second; });
    };
    for (int i = 0; i < 24 || (i < 1000 && !all_shown()); ++i) {
      word_ = make_word(shape_, random);
      use_ = register_use_of(row, word_);
      bool nothing_to_show = true;
      bool& shown = names_different_registers() ? is_shown[sizes(use_)] : nothing_to_show;
      register_use seen;
      for (int round = shown ? 7 : 0; round < 8; ++round) {
        make_round();
        if (!uses_no_more()) return false;
        if (!shown) add_what_is_seen(seen);
      }
      shown = shown || has_seen_all(seen);
    }
    return all_shown();
  }

  [[nodiscard]] std::string description() const {
    std::ostringstream out;
    out << sve::disassemble(word_) << std::hex << ", word 0x" << word_ << ": Z read " << use_.z_read
        << ", Z written " << use_.z_written << ", P written " << use_.p_written;
    return out.str();
  }

 private:
  void make_round() {
    conformance::make_state(shape_, word_, number(~u64{0}), made_);
    unpack(made_.before, before_);
    run(before_, after_);
  }

  void run(const cpu_state& from, outcome& to) {
    if (shape_.memory) conformance::arena() = made_.memory;
    to.state = from;
    {
      const conformance::fp_registers_of scope(from);
      shape_.row->handler(&to.state, word_);
    }
    if (shape_.memory) to.memory = conformance::arena();
  }

  // Changes Z registers beyond their low 128 bits and runs the word again. Returns whether that
  // makes a difference to anything else.
  bool matter(std::uint32_t registers) {
    changed_ = before_;
    for (const unsigned n : numbers_in(registers)) change(changed_.z[n], n);
    run(changed_, after_change_);
    for (const unsigned n : numbers_in(registers & ~use_.z_written))
      std::memcpy(after_change_.state.z[n], before_.z[n], sve::vector_bytes);
    return !difference(after_.state, after_change_.state).empty() ||
           (shape_.memory && after_.memory != after_change_.memory);
  }

  // An active element that is an address or an offset becomes equal to another one, so that it
  // still leads into the arena.
  void change(vector_register& z, unsigned n) {
    if (!holds_addresses(n)) {
      for (byte& b : std::span(z).subspan(16)) b = static_cast<byte>(number(256));
      return;
    }
    const unsigned size = shape_.memory->container;
    const byte* active = nullptr;
    for (std::size_t at = 16; at < sizeof z; at += size) {
      if ((before_.p[use_.governing][at] & 1) == 0) continue;
      if (active != nullptr) std::memcpy(&z[at], active, size);
      active = &z[at];
    }
  }

  [[nodiscard]] bool holds_addresses(unsigned n) const {
    if (!shape_.memory) return false;
    const address_shape address = shape_.memory->address;
    return (address == address_shape::vector_immediate && n == shape_.value('n', word_)) ||
           (address == address_shape::scalar_vector && n == shape_.value('m', word_));
  }

  bool uses_no_more() {
    const register_use changed = changes(before_, after_.state);
    return (changed.z_written & ~use_.z_written) == 0 &&
           (changed.p_written & ~use_.p_written) == 0 && !matter(~use_.z_read);
  }

  void add_what_is_seen(register_use& seen) {
    const register_use changed = changes(before_, after_.state);
    seen.z_written |= changed.z_written;
    seen.p_written |= changed.p_written;
    for (const unsigned n : numbers_in(use_.z_read & ~seen.z_read))
      if (matter(1U << n)) seen.z_read |= 1U << n;
  }

  // All memory can be read here, so first-fault and non-fault loads leave the FFR as it is.
  bool has_seen_all(register_use seen) const {
    if (shape_.memory) seen.p_written |= use_.p_written & ffr;
    return seen.z_read == use_.z_read && seen.z_written == use_.z_written &&
           seen.p_written == use_.p_written;
  }

  // If two fields name one register, a use of one of them shows nothing about the other.
  bool names_different_registers() const {
    std::set<unsigned> numbers;
    for (const conformance::operand_field& field : shape_.fields)
      if (field.width == 5 && !numbers.insert(shape_.value(field.letter, word_)).second)
        return false;
    return true;
  }

  row_shape shape_;
  std::uint32_t word_ = 0;
  register_use use_;
  conformance::test_case made_{};
  cpu_state before_, changed_;
  outcome after_, after_change_;
};

TEST_F(RegisterUseOfRows, IsNeitherTooMuchNorTooLittle) {
  if (sve::vector_bits == 128) GTEST_SKIP() << "no register has more than its low 128 bits";
  for (const sve::instruction_row& row : sve::instruction_rows())
    EXPECT_TRUE(check(row)) << description();
}

}  // namespace
