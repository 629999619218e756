// Finds the word whose meaning is closest to a query. Words are vectors of half-precision numbers:
// the closer they are, the larger their dot product. Summed in half precision, the product is good
// to three digits. Converted to single precision first, the products of elements are exact and the
// sum is good to seven digits.
//
// Scalar code that adds in the same order gives the same bits. That order depends on the vector
// length, and so do the errors.
#include <algorithm>
#include <arm_sve.h>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "examples/check.h"

namespace {

constexpr int words = 50;
constexpr std::int64_t length = 300;
constexpr int most_lanes = 2048 / 16;

using meaning = std::array<float16_t, length>;

// Loads halves into the low parts of single-precision lanes and converts them.
svfloat32_t load_converted(svbool_t pg, const float16_t* halves) {
  const auto* bits = reinterpret_cast<const std::uint16_t*>(halves);
  return svcvt_f32_x(pg, svreinterpret_f16(svld1uh_u32(pg, bits)));
}

float16_t dot_in_half(const meaning& a, const meaning& b) {
  svfloat16_t sums = svdup_f16(0);
  for (std::int64_t i = 0; i < length; i += static_cast<std::int64_t>(svcnth())) {
    const svbool_t pg = svwhilelt_b16(i, length);
    sums = svmla_m(pg, sums, svld1(pg, &a[i]), svld1(pg, &b[i]));
  }
  return svaddv(svptrue_b16(), sums);
}

float dot_in_single(const meaning& a, const meaning& b) {
  svfloat32_t sums = svdup_f32(0);
  for (std::int64_t i = 0; i < length; i += static_cast<std::int64_t>(svcntw())) {
    const svbool_t pg = svwhilelt_b32(i, length);
    sums = svmla_m(pg, sums, load_converted(pg, &a[i]), load_converted(pg, &b[i]));
  }
  return svaddv(svptrue_b32(), sums);
}

void scale(meaning& a, float factor) {
  for (std::int64_t i = 0; i < length; i += static_cast<std::int64_t>(svcntw())) {
    const svbool_t pg = svwhilelt_b32(i, length);
    const svfloat32_t scaled = svmul_x(pg, load_converted(pg, &a[i]), factor);
    auto* bits = reinterpret_cast<std::uint16_t*>(&a[i]);
    svst1h(pg, bits, svreinterpret_u32(svcvt_f16_x(pg, scaled)));
  }
}

// Each addition is rounded to T, together with its product. fma() first rounds to double precision,
// but that value is never so close to the midpoint of two Ts that it changes the result.
template <class T>
SCALAR T dot_scalar(const meaning& a, const meaning& b, std::uint64_t lanes) {
  std::array<T, most_lanes> sums{};
  for (std::int64_t i = 0; i < length; ++i) {
    T& sum = sums[static_cast<std::uint64_t>(i) % lanes];
    sum = static_cast<T>(std::fma(double{a[i]}, double{b[i]}, double{sum}));
  }
  for (int rest = most_lanes / 2; rest > 0; rest /= 2) {
    for (int i = 0; i < rest; ++i) sums[i] = static_cast<T>(sums[2 * i] + sums[2 * i + 1]);
  }
  return sums[0];
}

SCALAR void scale_scalar(meaning& a, float factor) {
  for (float16_t& x : a) x = static_cast<float16_t>(float{x} * factor);
}

SCALAR double dot_exact(const meaning& a, const meaning& b) {
  double sum = 0;
  for (std::int64_t i = 0; i < length; ++i) sum += double{a[i]} * double{b[i]};
  return sum;
}

// The same meaning, scaled to length 1.
meaning normalised(meaning a) {
  meaning expected = a;
  const float factor = 1 / std::sqrt(dot_in_single(a, a));
  scale(a, factor);
  scale_scalar(expected, factor);
  check_equal("scaled", &a, &expected, sizeof(a));
  return a;
}

// Makes numbers from -1 to 1 out of random bytes.
SCALAR meaning random_meaning(std::uint64_t seed) {
  std::array<std::int8_t, length> bytes;
  fill_random(bytes.data(), bytes.size(), seed);
  meaning a;
  std::transform(bytes.begin(), bytes.end(), a.begin(),
                 [](std::int8_t x) { return static_cast<float16_t>(static_cast<float>(x) / 128); });
  return a;
}

struct closeness {
  float16_t half;
  float single;
  double exact;
};

closeness compare(const meaning& a, const meaning& b) {
  const closeness dots{dot_in_half(a, b), dot_in_single(a, b), dot_exact(a, b)};
  const auto expected_half = dot_scalar<float16_t>(a, b, svcnth());
  const auto expected_single = dot_scalar<float>(a, b, svcntw());
  check_equal("in half precision", &dots.half, &expected_half, sizeof(dots.half));
  check_equal("in single precision", &dots.single, &expected_single, sizeof(dots.single));
  return dots;
}

}  // namespace

int main() {
  meaning query = random_meaning(1000);
  std::array<meaning, words> table;
  for (int w = 0; w < words; ++w) table[w] = random_meaning(w + 1);
  for (std::int64_t i = 0; i < length; ++i) {
    query[i] = static_cast<float16_t>(query[i] + table[17][i]);
  }
  query = normalised(query);

  int closest = 0;
  closeness best{-1, -1, -1};
  double error_in_half = 0, error_in_single = 0;
  for (int w = 0; w < words; ++w) {
    const closeness dots = compare(query, normalised(table[w]));
    error_in_half = std::max(error_in_half, std::fabs(dots.half - dots.exact));
    error_in_single = std::max(error_in_single, std::fabs(dots.single - dots.exact));
    if (dots.single > best.single) best = dots, closest = w;
  }
  std::printf("closest of %d: word %d at %.7f; in half precision %.7f, in single %.7f\n", words,
              closest, best.exact, double{best.half}, best.single);
  std::printf("largest error: %.1e in half precision, %.1e in single\n", error_in_half,
              error_in_single);
}
