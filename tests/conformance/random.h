// The random source of the conformance test. Its state is one 64-bit word, so that one printed
// number determines a whole case.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace conformance {

// SplitMix64: a counter whose values are mixed. Also a UniformRandomBitGenerator.
class random_source {
 public:
  using result_type = std::uint64_t;

  explicit random_source(std::uint64_t seed) : state_(seed) {}

  static constexpr result_type min() { return 0; }
  static constexpr result_type max() { return ~result_type{0}; }

  result_type operator()() {
    state_ += 0x9e3779b97f4a7c15;
    std::uint64_t value = state_;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
    value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
    return value ^ (value >> 31);
  }

  // A number from 0 to bound - 1. The bound is below 2^32.
  std::uint64_t below(std::uint64_t bound) { return (((*this)() >> 32) * bound) >> 32; }

  std::int64_t between(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(below(static_cast<std::uint64_t>(high - low) + 1));
  }

  bool chance(unsigned percent) { return below(100) < percent; }

  template <class T, std::size_t N>
  T pick(const std::array<T, N>& choices) {
    return choices[below(N)];
  }

 private:
  std::uint64_t state_;
};

// The seed of stream `index` of `name`, derived from `seed`. The streams are independent.
inline std::uint64_t derive_seed(std::uint64_t seed, std::string_view name, std::uint64_t index) {
  std::uint64_t hash = 0xcbf29ce484222325 ^ seed;  // FNV-1a
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  return random_source{hash + index * 0xd1342543de82ef95}();
}

}  // namespace conformance
