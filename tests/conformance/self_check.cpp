#include "tests/conformance/self_check.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>

#include "tests/conformance/comparison.h"
#include "tests/conformance/random.h"
#include "tests/conformance/words.h"

namespace conformance {
namespace {

test_case tested;
machine_image native;
cpu_state emulated;
arena_content native_memory;

void flip_bit(unsigned char& byte, random_source& random) {
  byte = static_cast<unsigned char>(byte ^ (1U << random.below(8)));
}

template <class T>
void flip_bit(T& value, unsigned low, unsigned high, random_source& random) {
  value ^= T{1} << random.between(low, high);
}

using O = emulated_outcome&;
using R = random_source&;

unsigned char& any_predicate_byte(R random) {
  return emulated.p[random.below(16)][random.below(sve::vector_bytes)];
}

// One thing to change, and the beginning of the difference that must report it.
struct corruption {
  const char* name;
  const char* place;
  void (*apply)(O outcome, R random);
};

constexpr std::array corruptions{
    corruption{"general register", "x",
               [](O, R random) { flip_bit(emulated.x[random.below(31)], 0, 63, random); }},
    corruption{"SP", "sp", [](O, R random) { flip_bit(emulated.sp, 0, 63, random); }},
    corruption{"condition flag", "nzcv",
               [](O, R random) { flip_bit(emulated.nzcv, 28, 31, random); }},
    corruption{"NZCV above bit 31", "nzcv",
               [](O, R random) { flip_bit(emulated.nzcv, 32, 63, random); }},
    corruption{"FPSR", "fpsr", [](O, R random) { flip_bit(emulated.fpsr, 0, 31, random); }},
    corruption{"FPCR", "fpcr", [](O, R random) { flip_bit(emulated.fpcr, 0, 31, random); }},
    corruption{"vector byte", "z",
               [](O, R random) {
                 flip_bit(emulated.z[random.below(32)][random.below(sve::vector_bytes)], random);
               }},
    corruption{"predicate bit", "p", [](O, R random) { any_predicate_byte(random) ^= 1; }},
    corruption{"predicate byte that is not 0 or 1", "p",
               [](O, R random) { any_predicate_byte(random) ^= 0x80; }},
    corruption{"FFR bit", "ffr",
               [](O, R random) { emulated.ffr[random.below(sve::vector_bytes)] ^= 1; }},
    corruption{"memory byte", "memory",
               [](O, R random) { flip_bit(arena()[random.below(arena_bytes)], random); }},
    corruption{"result code", "result code",
               [](O outcome, R) { outcome.rc = aarch64_decode_unimplemented; }},
    corruption{"pc", "pc advance", [](O outcome, R) { outcome.pc_advance = 0; }},
    corruption{"signal", "signal", [](O outcome, R) { outcome.signal = SIGSEGV; }},
};

bool applies(const corruption& change) {
  return tested.shape->memory || std::string_view{change.name} != "memory byte";
}

// Copies the processor's outcome into the emulation's form.
emulated_outcome take_over_native() {
  unpack(native, emulated);
  arena() = native_memory;
  emulated_outcome outcome;
  outcome.pc_advance = 1;
  return outcome;
}

std::vector<difference> compare_with(const emulated_outcome& outcome) {
  return compare(tested, {&native, &native_memory, &emulated, &arena(), outcome});
}

bool notices(const corruption& change, random_source& random) {
  emulated_outcome outcome = take_over_native();
  change.apply(outcome, random);
  const auto found = compare_with(outcome);
  return found.size() == 1 && found[0].place.starts_with(change.place);
}

bool make_native_outcome(const row_shape& shape, random_source& random) {
  make_state(shape, make_word(shape, random), random(), tested);
  if (shape.memory) arena() = tested.memory;
  prepare({&tested.word, 1});
  const bool ran = run_native(0, tested.before, native).signal == 0;
  native_memory = arena();
  return ran;
}

struct counts {
  unsigned made = 0, noticed = 0;
};

}  // namespace

bool self_check(const std::vector<row_shape>& shapes, std::uint64_t seed) {
  std::array<counts, corruptions.size()> all{};
  unsigned compared = 0, equal = 0;
  for (const row_shape& shape : shapes) {
    random_source random{derive_seed(seed, shape.row->name, 0)};
    if (!make_native_outcome(shape, random)) continue;
    ++compared;
    equal += compare_with(take_over_native()).empty() ? 1 : 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (!applies(corruptions[i])) continue;
      ++all[i].made;
      all[i].noticed += notices(corruptions[i], random) ? 1 : 0;
    }
  }
  std::printf("unchanged: %u of %u compare equal\n", equal, compared);
  for (std::size_t i = 0; i < all.size(); ++i)
    std::printf("%s: %u of %u changes noticed\n", corruptions[i].name, all[i].noticed, all[i].made);
  return compared > 0 && equal == compared && std::ranges::all_of(all, [](const counts& each) {
           return each.made > 0 && each.noticed == each.made;
         });
}

}  // namespace conformance
