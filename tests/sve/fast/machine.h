// Random machine states for calling fast paths, and their comparison.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "sve/state/access.h"
#include "sve/state/cpu_state.h"
#include "sve/state/operands.h"

using u64 = std::uint64_t;
using byte = unsigned char;

// The record of a predicate that is only read or only written.
constexpr aarch64_p_reg predicate(unsigned num, unsigned size) { return {num, size, 7, 7}; }

// Describes where two states differ; empty if they are equal.
inline std::string difference(const cpu_state& expected, const cpu_state& actual) {
  std::ostringstream out;
  const auto compare = [&out](const std::string& name, const byte* e, const byte* a) {
    for (unsigned k = 0; k < sve::vector_bytes; ++k) {
      if (e[k] == a[k]) continue;
      out << name << " byte " << k << ": expected " << unsigned{e[k]} << ", got " << unsigned{a[k]}
          << "\n";
      return;
    }
  };
  for (unsigned i = 0; i < 32; ++i) {
    compare("z" + std::to_string(i), expected.z[i], actual.z[i]);
    if (i < 16) compare("p" + std::to_string(i), expected.p[i], actual.p[i]);
    const u64 e = i < 31 ? expected.x[i] : expected.sp, a = i < 31 ? actual.x[i] : actual.sp;
    if (e != a) out << "x" << i << ": expected " << e << ", got " << a << "\n";
  }
  compare("ffr", expected.ffr, actual.ffr);
  if (expected.nzcv != actual.nzcv) {
    out << std::hex << "nzcv: expected " << expected.nzcv << ", got " << actual.nzcv << "\n";
  }
  if (expected.pc != actual.pc || expected.instr != actual.instr || expected.fpsr != actual.fpsr ||
      expected.fpcr != actual.fpcr) {
    out << "pc, instr, fpsr or fpcr changed\n";
  }
  return out.str();
}

// Random states and numbers. Every case says how to get the same numbers again.
class RandomMachine : public testing::Test {
 protected:
  RandomMachine() : seed_(chosen_seed()), random_(seed_) {
    trace_ = std::make_unique<testing::ScopedTrace>(
        __FILE__, __LINE__, "repeat with --gtest_random_seed=" + std::to_string(seed_));
    std::printf("seed %u\n", seed_);
  }

  u64 number(u64 below) { return random_() % below; }

  // A predicate byte that is true `density` times in 64. Only bit 0 counts, and the others vary.
  byte predicate_byte(unsigned density) {
    constexpr std::array<byte, 4> odd{0xff, 0x01, 0x81, 0x01}, even{0x00, 0xfe, 0x00, 0x02};
    return number(64) < density ? odd[number(4)] : even[number(4)];
  }

  void randomize(cpu_state& state) {
    auto* const bytes = reinterpret_cast<byte*>(&state);
    std::generate_n(bytes, sizeof state, [this] { return static_cast<byte>(random_()); });
    constexpr std::array<unsigned, 5> densities{0, 1, 16, 48, 64};
    for (unsigned i = 0; i <= 16; ++i) {
      const unsigned density = densities[number(5)];
      for (byte& b : i < 16 ? state.p[i] : state.ffr) b = predicate_byte(density);
    }
  }

 private:
  static unsigned chosen_seed() {
    const int given = GTEST_FLAG_GET(random_seed);
    return given != 0 ? static_cast<unsigned>(given) : std::random_device{}() % 99999 + 1;
  }

  unsigned seed_;
  std::mt19937_64 random_;
  std::unique_ptr<testing::ScopedTrace> trace_;
};
