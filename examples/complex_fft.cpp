// A fast Fourier transform of complex numbers in single precision, forward and back.
//
// Every pass has the same geometry: it reads the four quarters of its input as contiguous vectors
// and interleaves the four results, so no pass has short inner loops. Each result ends up at the
// index with its bits reversed, and a gather puts them in order. A complex number is a 64-bit
// element for loads, stores and predicates. It is a pair of floats for FCADD, which adds i or -i
// times its operand, and for FCMLA. Two of those make a complex product.
#include <arm_sve.h>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <vector>

#include "examples/check.h"

namespace {

constexpr int log2_size = 10;
constexpr std::int64_t size = 1 << log2_size;
constexpr int passes = log2_size / 2;
static_assert(log2_size % 2 == 0, "a pass takes two bits of the index");

using exact = std::complex<double>;
using signal = std::vector<std::uint64_t>;  // of std::complex<float>

std::uint64_t element(exact value) {
  return std::bit_cast<std::uint64_t>(static_cast<std::complex<float>>(value));
}

exact value(std::uint64_t element) { return std::bit_cast<std::complex<float>>(element); }

// The n-th power of the size-th root of 1, going clockwise.
exact root(std::int64_t n) {
  return std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(n % size) / size);
}

// The angle, in degrees, of the root with n = size / 4.
enum direction { forward = 270, back = 90 };

// The n-th roots times b. For the way back, the roots are conjugated.
template <direction way>
svuint64_t rotate(svbool_t pg, const signal& roots, svuint64_t n, svfloat32_t b) {
  const svfloat32_t w = svreinterpret_f32(svld1_gather_index(pg, roots.data(), n));
  const svfloat32_t product = svcmla_x(svptrue_b32(), svdup_f32(0), w, b, 0);
  return svreinterpret_u64(svcmla_x(svptrue_b32(), product, w, b, 360 - way));
}

template <direction way>
void one_pass(signal& out, const signal& in, const signal& roots, int pass) {
  const svbool_t all = svptrue_b32();
  for (std::int64_t i = 0; i < size / 4; i += static_cast<std::int64_t>(svcntd())) {
    const svbool_t pg = svwhilelt_b64(i, size / 4);
    const svfloat32_t a = svreinterpret_f32(svld1(pg, &in[i]));
    const svfloat32_t b = svreinterpret_f32(svld1(pg, &in[i + size / 4]));
    const svfloat32_t c = svreinterpret_f32(svld1(pg, &in[i + size / 2]));
    const svfloat32_t d = svreinterpret_f32(svld1(pg, &in[i + size / 4 * 3]));
    const svfloat32_t even = svadd_x(all, a, c), even_rest = svsub_x(all, a, c);
    const svfloat32_t odd = svadd_x(all, b, d), odd_rest = svsub_x(all, b, d);
    const svfloat32_t y1 = svcadd_x(all, even_rest, odd_rest, way);
    const svfloat32_t y2 = svsub_x(all, even, odd);
    const svfloat32_t y3 = svcadd_x(all, even_rest, odd_rest, 360 - way);

    const svuint64_t n = svand_x(pg, svindex_u64(i, 1), ~std::uint64_t{0} << (2 * pass));
    svst4(pg, &out[4 * i],
          svcreate4(svreinterpret_u64(svadd_x(all, even, odd)),
                    rotate<way>(pg, roots, svmul_x(pg, n, 2), y2), rotate<way>(pg, roots, n, y1),
                    rotate<way>(pg, roots, svmul_x(pg, n, 3), y3)));
  }
}

template <direction way>
signal transform(signal in, const signal& roots) {
  signal out(size);
  for (int pass = 0; pass < passes; ++pass) {
    one_pass<way>(out, in, roots, pass);
    std::swap(in, out);
  }
  for (std::int64_t i = 0; i < size; i += static_cast<std::int64_t>(svcntd())) {
    const svbool_t pg = svwhilelt_b64(i, size);
    const svuint64_t place = svlsr_x(pg, svrbit_x(pg, svindex_u64(i, 1)), 64 - log2_size);
    svst1(pg, &out[i], svld1_gather_index(pg, in.data(), place));
  }
  return out;
}

// The transform by its definition, in double precision.
SCALAR std::vector<exact> transform_scalar(const std::vector<exact>& in) {
  std::vector<exact> roots(size), out(size);
  for (std::int64_t n = 0; n < size; ++n) roots[n] = root(n);
  for (std::int64_t k = 0; k < size; ++k) {
    for (std::int64_t n = 0; n < size; ++n) out[k] += in[n] * roots[k * n % size];
  }
  return out;
}

// The length of the difference, divided by the length of the expected vector.
double relative_error(const signal& result, const std::vector<exact>& expected, double scale) {
  double error = 0, length = 0;
  for (std::int64_t n = 0; n < size; ++n) {
    error += std::norm(value(result[n]) * scale - expected[n]);
    length += std::norm(expected[n]);
  }
  return std::sqrt(error / length);
}

}  // namespace

int main() {
  signal roots(size), in(size);
  std::vector<exact> in_exactly(size);
  std::vector<std::int16_t> noise(size);
  fill_random(noise.data(), size * sizeof(noise[0]), 12);
  for (std::int64_t n = 0; n < size; ++n) {
    roots[n] = element(root(n));
    const exact chord = std::conj(root(100 * n) + 0.7 * root(126 * n) + 0.4 * root(150 * n));
    in[n] = element(chord + 0.1 * noise[n] / 32768);
    in_exactly[n] = value(in[n]);
  }

  // A pass rounds a sum twice, a root once and a product twice: below 8 units of 2^-24 in length.
  constexpr double bound = passes * 0x1p-21;
  const signal spectrum = transform<forward>(in, roots);
  const double error = relative_error(spectrum, transform_scalar(in_exactly), 1);
  const signal again = transform<back>(spectrum, roots);
  const double error_again = relative_error(again, in_exactly, 1.0 / size);
  check_at_most("forward", error, bound);
  check_at_most("forward and back", error_again, 2 * bound);

  std::printf("tones at");
  for (std::int64_t k = 0; k < size; ++k) {
    if (std::abs(value(spectrum[k])) > 0.3 * size) std::printf(" %ld", k);
  }
  std::printf(" of %ld; error below 2^%d, forward and back below 2^%d; %016lx\n", size,
              std::ilogb(error) + 1, std::ilogb(error_again) + 1,
              fingerprint(spectrum.data(), size * sizeof(spectrum[0])));
}
