// The operands of the differential test: special values of each format, made by formula, and random
// values that are hard to round.
#pragma once

#include <algorithm>

#include "tests/conformance/random.h"
#include "tests/sve/fp/operations.h"

namespace fp_test {

class operand_source {
 public:
  operand_source(const operation& of, std::uint64_t seed)
      : width_(of.width), count_(of.count), last_is_integer_(of.last_is_integer), random_(seed) {}

  // The special values for an operand. A function of one operand also gets the values at which
  // conversions round and saturate. If that operand is a half, it gets all halves instead.
  std::vector<std::uint64_t> special_values(int index) const {
    std::vector<std::uint64_t> result;
    if (last_is_integer_ && index == count_ - 1) return special_integers();
    if (count_ == 1 && width_ == 16)
      for (std::uint64_t value = 0; value < 0x10000; ++value) result.push_back(value);
    else
      add_numbers(result);
    return result;
  }

  // Each operand has an exponent that is hard in view of the operands before it: equal, apart by
  // the precision, or such that the product or quotient is at an end of the range.
  operands random() {
    operands result{};
    std::array<std::int64_t, 3> exponents{};
    for (int i = 0; i < count_; ++i) {
      exponents[i] = std::clamp<std::int64_t>(exponent(i, exponents), 0, top_);
      result[i] = pack(random_.below(2), exponents[i], random_fraction());
    }
    if (last_is_integer_) result[count_ - 1] = random_integer();
    return result;
  }

 private:
  std::uint64_t pack(std::uint64_t sign, std::int64_t exponent, std::uint64_t fraction) const {
    return sign << (width_ - 1) | static_cast<std::uint64_t>(exponent) << precision_ |
           (fraction & ((one << precision_) - 1));
  }

  // Zeros, denormals, infinities, NaNs of both kinds, and numbers near 1, near the precision and
  // near the ends of the range. Their fractions are at the ends and in the middle.
  void add_numbers(std::vector<std::uint64_t>& result) const {
    const std::uint64_t quiet = one << (precision_ - 1);
    for (const std::uint64_t sign : {0, 1}) {
      for (const int exponent : {0, 1, 2, bias_ - precision_ - 1, bias_ - 1, bias_, bias_ + 1,
                                 bias_ + precision_, top_ - 1, top_})
        for (const std::uint64_t fraction : {0 * one, one, quiet - 1, quiet, quiet + 1, 0 - one})
          result.push_back(pack(sign, std::max(exponent, 0), fraction));
      if (count_ == 1)
        for (const int power : {-2, -1, 0, 1, 2, 14, 15, 16, 30, 31, 32, 62, 63, 64})
          for (int bit = 0; bit <= precision_; ++bit)  // 2^31, 2.5, 2^31 - 0.5
            for (const std::uint64_t fraction : {one << bit, 0 - (one << bit)})
              result.push_back(pack(sign, bias_ + power, fraction));
    }
  }

  // Powers of two, their neighbours and complements.
  std::vector<std::uint64_t> special_integers() const {
    std::vector<std::uint64_t> result;
    for (int bit = 0; bit < width_; ++bit)
      for (const std::uint64_t value : {(one << bit) - 1, one << bit, (one << bit) + 1})
        for (const std::uint64_t sign : {0 * one, 0 - one})
          result.push_back((value ^ sign) & ~std::uint64_t{0} >> (64 - width_));
    return result;
  }

  // Few bits set, few clear, runs of ones, zeros at the end, or anything.
  std::uint64_t random_fraction() {
    const auto bit = [&] { return one << random_.below(static_cast<unsigned>(precision_)); };
    const std::uint64_t a = bit(), b = bit();
    switch (random_.below(6)) {
      case 0: return a | b;
      case 1: return ~(a | b);
      case 2: return a - b;
      case 3: return 0 - a;
      case 4: return random_() * a;
      default: return random_();
    }
  }

  std::uint64_t random_integer() {
    const std::uint64_t value = random_fraction() << random_.below(12) >> random_.below(64);
    return (value ^ (0 - random_.below(2))) & ~std::uint64_t{0} >> (64 - width_);
  }

  std::int64_t exponent(int index, const std::array<std::int64_t, 3>& before) {
    const auto near = [&](std::int64_t middle, int below, int above) {
      return middle + random_.between(-below, above);
    };
    if (random_.chance(20)) return random_.between(0, top_);
    if (index == 2) return near(before[0] + before[1] - bias_, precision_ + 4, 2 * precision_ + 4);
    const std::int64_t end =
        random_.chance(60) ? near(0, precision_ + 3, precision_ + 3) : near(top_, 3, 0);
    if (index == 0) return random_.chance(50) ? end : near(bias_, precision_ + 2, 66);
    switch (random_.below(4)) {
      case 0: return near(before[0], 1, 1);
      case 1: return near(before[0], precision_ + 4, precision_ + 4);
      case 2: return end + bias_ - before[0];   // puts the product at an end
      default: return before[0] + bias_ - end;  // or the quotient
    }
  }

  static constexpr std::uint64_t one = 1;

  int width_, count_;
  bool last_is_integer_;
  int precision_ = width_ == 16 ? 10 : width_ == 32 ? 23 : 52;
  int top_ = (1 << (width_ - precision_ - 1)) - 1, bias_ = top_ / 2;
  conformance::random_source random_;
};

}  // namespace fp_test
