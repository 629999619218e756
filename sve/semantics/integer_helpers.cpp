// Overflow is intended in several places here. It goes through unsigned arithmetic, because the
// tests also run these functions under the sanitizers.
#include "sve/semantics/integer_helpers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <tuple>

using sve::Saturated;
using sve::WordPair;
using namespace sve::semantics;

namespace {

// x * 2^s modulo 2^128, s from 0 to 127.
Int128 shifted_left(Int128 x, int s) {
  return static_cast<Int128>(static_cast<unsigned __int128>(x) << s);
}

Int128 max_signed(int w) { return static_cast<Int128>(ones(w - 1)); }
Int128 min_signed(int w) { return -max_signed(w) - 1; }

bool is_element_width(int w) { return w == 8 || w == 16 || w == 32 || w == 64; }

// A double in [0.5, 1) or [0.25, 0.5) with the top bits of the fraction taken from x.
double fixed_point(std::uint64_t x, std::uint64_t biased_exponent, int fraction_bits) {
  const std::uint64_t fraction = (x & ones(fraction_bits)) << (52 - fraction_bits);
  return std::bit_cast<double>(biased_exponent << 52 | fraction);
}

// An estimate in [1, 2) as 32-bit fixed point: 1 and the 31 highest bits of the fraction.
std::uint32_t estimate_bits(double estimate) {
  return static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(estimate) >> 21) | 0x80000000U;
}

}  // namespace

// The header defines these as constexpr functions. This list makes the compiler emit them, for
// callers that only declare them.
[[gnu::used]] static constexpr std::tuple emitted(&ones, &Int, &UInt, &SInt, &bits, &AddInt,
                                                  &SubInt, &NegInt, &AbsInt);

Int128 ShiftLeftInt(Int128 x, Int128 s) {
  if (s < 0) return ShiftRightInt(x, NegInt(s));
  return shifted_left(x, static_cast<int>(std::min<Int128>(s, 64)));
}

Int128 ShiftRightInt(Int128 x, Int128 s) {
  if (s == 128) return x >> 126 == -1 ? -1 : 0;
  return x >> static_cast<int>(std::min<Int128>(s, 65));
}

std::uint64_t ShiftLeft(std::uint64_t x, int n, int /*unread*/) { return x << (n & 63); }

Saturated SatQ(Int128 x, int w, int u) {
  const auto limit = static_cast<Int128>(ones(w));
  if (u == 1) {
    if (x < 0) return {0, 1};
    return x > limit ? Saturated{ones(w), 1} : Saturated{bits(x), 0};
  }
  if (x > max_signed(w)) return {ones(w - 1), 1};
  if (x < min_signed(w)) return {sign_bit(w), 1};
  return {bits(x) & ones(w), 0};
}

Saturated SatAdd(std::uint64_t a, std::uint64_t b, int w, int u) {
  const Int128 sum = Int(a, w, u) + Int(b, w, u);
  const Saturated result = SatQ(sum, w, u);
  return result.flag != 0 ? result : Saturated{bits(sum), 0};
}

Saturated SatSub(std::uint64_t a, std::uint64_t b, int w, int u) {
  return SatQ(Int(a, w, u) - Int(b, w, u), w, u);
}

Saturated SatMult(std::uint64_t a, std::uint64_t b, int w, int u) {
  const auto x = static_cast<unsigned __int128>(Int(a, w, u));
  const auto y = static_cast<unsigned __int128>(Int(b, w, u));
  return SatQ(static_cast<Int128>(x * y), w, u);
}

Saturated SatQShift(Int128 x, int w, int u) {
  const Saturated result = SatQ(x, w, u);
  if (result.flag == 0) return {bits(x), 0};
  return u != 1 && x < 0 ? Saturated{bits(min_signed(w)), 1} : result;
}

Saturated SatQUShift(Int128 x, int w) {
  if (bits(x) <= ones(w)) return {bits(x), 0};
  return {x >> (2 * w) == 0 ? ones(w) : 0, 1};  // w < 64, since no word is above ones(64)
}

Saturated ShiftQLeftInt(Int128 x, Int128 s, int w, int u) {
  if (s < 0) return {bits(ShiftRightInt(x, NegInt(s))), 0};
  if (s < w) return SatQShift(shifted_left(x, static_cast<int>(s)), w, u);
  if (x == 0) return {0, 0};
  if (u == 1) return {ones(w), 1};
  return {bits(x > 0 ? max_signed(w) : min_signed(w)), 1};
}

Saturated SatShiftLeft(std::uint64_t a, std::uint64_t s, int w, int u) {
  const Int128 x = ShiftLeftInt(Int(a, w, u), std::min<Int128>(Int(s, w, u), w));
  if (SatQ(x, w, u).flag == 0) return {bits(x), 0};
  if (u != 0) return {ones(w), 1};
  return {(a & ~ones(w - 1)) != 0 ? sign_bit(w) : ones(w - 1), 1};
}

Saturated SatShiftLeftU(std::uint64_t a, std::uint64_t s, int w) {
  const Int128 x = ShiftLeftInt(Int(a, w, 0), std::min<Int128>(UInt(s, w), w));
  if (x >> w == 0) return {bits(x), 0};
  return {(a & ~ones(w - 1)) == 0 ? ones(w) : 0, 1};
}

int HighestBitSet(std::uint64_t x, int w) {
  return static_cast<int>(std::bit_width(x & ones(w))) - 1;
}

int CountLeadingZeroBits(std::uint64_t x, int w) { return w - 1 - HighestBitSet(x, w); }

int CountLeadingSignBits(std::uint64_t x, int w) {
  return CountLeadingZeroBits((x & ones(63)) ^ (x >> 1), w - 1);
}

int BitCount(std::uint64_t x, int w) { return std::popcount(x & ones(w)); }

std::uint64_t BitReverse(std::uint64_t x, int w) {
  std::uint64_t result = 0;
  for (int i = 0; i < w; ++i) result |= ((x >> i) & 1) << (w - 1 - i);
  return result;
}

std::uint64_t Reverse(std::uint64_t x, int w, int g) {
  if (g != 1 && g != 2 && g != 4) return 0;
  const int groups = w / 8 / g;
  std::uint64_t result = 0;
  for (int i = 0; i < groups; ++i) {
    result |= ((x >> (8 * g * i)) & ones(8 * g)) << (8 * g * (groups - 1 - i));
  }
  return result;
}

std::uint64_t Max(std::uint64_t a, std::uint64_t b, int w, int u) {
  if (!is_element_width(w)) return 0;
  return Int(a, w, u) >= Int(b, w, u) ? a : b;
}

std::uint64_t Min(std::uint64_t a, std::uint64_t b, int w, int u) {
  if (!is_element_width(w)) return 0;
  return Int(a, w, u) <= Int(b, w, u) ? a : b;
}

WordPair PolynomialMult(std::uint64_t a, std::uint64_t b) {
  WordPair product{0, 0};
  for (int i = 0; i < 64; ++i) {
    if (((a >> i) & 1) == 0) continue;
    product.low ^= b << i;
    product.high ^= (b >> 1) >> (63 - i);
  }
  return product;
}

BigInt toBigInt(Int128 x) {
  const std::uint64_t sign = x < 0 ? ones(64) : 0;
  return {{bits(x), bits(x >> 64), sign, sign}};
}

BigInt AddBigInt(BigInt a, BigInt b) {
  BigInt sum{};
  unsigned __int128 carry = 0;
  for (int i = 0; i < 4; ++i) {
    carry += static_cast<unsigned __int128>(a.words[i]) + b.words[i];
    sum.words[i] = static_cast<std::uint64_t>(carry);
    carry >>= 64;
  }
  return sum;
}

BigInt ShiftRightBigInt(BigInt b, int s) {
  const std::uint64_t sign = (b.words[3] >> 63) != 0 ? ones(64) : 0;
  const auto word = [&b, sign](int i) { return i < 4 ? b.words[i] : sign; };
  BigInt result{};
  for (int i = 0; i < 4; ++i) {
    const int from = i + s / 64;
    const auto pair = static_cast<unsigned __int128>(word(from + 1)) << 64 | word(from);
    result.words[i] = static_cast<std::uint64_t>(pair >> (s % 64));
  }
  return result;
}

Saturated SatQBigInt(BigInt b, int w, int u) {
  const std::uint64_t low = b.words[0];
  const auto upper_words_are = [&b](std::uint64_t fill) {
    return b.words[1] == fill && b.words[2] == fill && b.words[3] == fill;
  };
  const bool negative = (b.words[3] >> 63) != 0;
  if (u == 1) {
    if (negative) return {0, 1};
    return upper_words_are(0) && low <= ones(w) ? Saturated{low, 0} : Saturated{ones(w), 1};
  }
  const std::uint64_t magnitude = negative ? ~low : low;
  const bool in_range = upper_words_are(negative ? ones(64) : 0) && magnitude <= ones(w - 1);
  if (in_range) return {low & ones(w), 0};
  return {negative ? sign_bit(w) : ones(w - 1), 1};
}

double recip_estimate(double a) {
  const double centre = (std::trunc(a * 512.0) + 0.5) / 512.0;
  return std::trunc(1.0 / centre * 256.0 + 0.5) / 256.0;
}

double recip_sqrt_estimate(double a) {
  const double steps = a < 0.5 ? 512.0 : 256.0;
  const double centre = (std::trunc(a * steps) + 0.5) / steps;
  return std::trunc(1.0 / std::sqrt(centre) * 256.0 + 0.5) / 256.0;
}

std::uint32_t UnsignedRecipEstimate(std::uint64_t x, int /*unread*/) {
  if (((x >> 31) & 1) == 0) return 0xffffffffU;
  return estimate_bits(recip_estimate(fixed_point(x, 0x3fe, 31)));
}

std::uint32_t UnsignedRSqrtEstimate(std::uint64_t x, int /*unread*/) {
  if (((x >> 30) & 3) == 0) return 0xffffffffU;
  const bool upper_half = ((x >> 31) & 1) != 0;
  return estimate_bits(
      recip_sqrt_estimate(upper_half ? fixed_point(x, 0x3fe, 31) : fixed_point(x, 0x3fd, 30)));
}
