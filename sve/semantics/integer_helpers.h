// The integers of the architecture's pseudocode, which are unbounded. Here they are signed 128-bit
// values and, for the widest sums, 256-bit ones. An element is widened with Int, computed, and
// saturated with SatQ or truncated with bits. All functions are pure. Names and argument orders are
// the pseudocode's: w is an element width in bits, 1 to 64, and u is 1 for unsigned, 0 for signed.
#pragma once

#include <array>
#include <cstdint>

// The low w bits set: all of them for w = 64, none for w below 1.
constexpr std::uint64_t ones(int w) {
  if (w >= 64) return ~std::uint64_t{0};
  return w > 0 ? (std::uint64_t{1} << w) - 1 : 0;
}

namespace sve {

// A saturating operation's value and whether it saturated (0 or 1).
struct Saturated {
  std::uint64_t value;
  std::uint64_t flag;
  friend bool operator==(const Saturated&, const Saturated&) = default;
};

// A 128-bit bit string.
struct WordPair {
  std::uint64_t low;
  std::uint64_t high;
  friend bool operator==(const WordPair&, const WordPair&) = default;
};

namespace semantics {

using Int128 = __int128;

// Only bit w - 1 set.
constexpr std::uint64_t sign_bit(int w) { return ones(w) ^ ones(w - 1); }

}  // namespace semantics
}  // namespace sve

// A 256-bit two's complement integer, least significant word first.
struct BigInt {
  std::array<std::uint64_t, 4> words;
  friend bool operator==(const BigInt&, const BigInt&) = default;
};

// Widening and truncation.

// The low w bits of x as an integer, signed unless u is 1.
constexpr __int128 Int(std::uint64_t x, int w, int u) {
  const auto value = static_cast<__int128>(x & ones(w));
  const bool negative = u != 1 && (x & sve::semantics::sign_bit(w)) != 0;
  return negative ? value - static_cast<__int128>(ones(w)) - 1 : value;
}

constexpr __int128 UInt(std::uint64_t x, int w) { return Int(x, w, 1); }

// 0 for a w other than 8, 16, 32, 64.
constexpr __int128 SInt(std::uint64_t x, int w) {
  return w == 8 || w == 16 || w == 32 || w == 64 ? Int(x, w, 0) : 0;
}

constexpr std::uint64_t bits(__int128 x) { return static_cast<std::uint64_t>(x); }

// Arithmetic modulo 2 to the power 128.

constexpr __int128 AddInt(__int128 x, __int128 y) {
  return static_cast<__int128>(static_cast<unsigned __int128>(x) +
                               static_cast<unsigned __int128>(y));
}
constexpr __int128 SubInt(__int128 x, __int128 y) {
  return static_cast<__int128>(static_cast<unsigned __int128>(x) -
                               static_cast<unsigned __int128>(y));
}
constexpr __int128 NegInt(__int128 x) { return SubInt(0, x); }
constexpr __int128 AbsInt(__int128 x) { return x < 0 ? NegInt(x) : x; }

// A negative s shifts right by -s. An s above 64 counts as 64.
__int128 ShiftLeftInt(__int128 x, __int128 s);
// Arithmetic shift. s is not negative. An s above 65 counts as 65. The exception is 128, which
// gives all ones if the two highest bits of x are set, else 0.
__int128 ShiftRightInt(__int128 x, __int128 s);
// x << (n modulo 64).
std::uint64_t ShiftLeft(std::uint64_t x, int n, int unread);

// Saturation to w bits. A value that saturates becomes the limit's bit pattern at w bits.

// In range: x truncated to w bits.
sve::Saturated SatQ(__int128 x, int w, int u);
// In range: the low 64 bits of the sum, not truncated.
sve::Saturated SatAdd(std::uint64_t a, std::uint64_t b, int w, int u);
sve::Saturated SatSub(std::uint64_t a, std::uint64_t b, int w, int u);
// The product is taken modulo 2 to the power 128, as a signed value.
sve::Saturated SatMult(std::uint64_t a, std::uint64_t b, int w, int u);
// Like SatQ, but not truncated in range, and the signed minimum is sign-extended to 64 bits.
sve::Saturated SatQShift(__int128 x, int w, int u);
sve::Saturated SatQUShift(__int128 x, int w);
// Saturating left shift. A negative s shifts right.
sve::Saturated ShiftQLeftInt(__int128 x, __int128 s, int w, int u);
sve::Saturated SatShiftLeft(std::uint64_t a, std::uint64_t s, int w, int u);
// The unsigned result for a signed value.
sve::Saturated SatShiftLeftU(std::uint64_t a, std::uint64_t s, int w);

// Operations on the low w bits of a word.

int HighestBitSet(std::uint64_t x, int w);  // -1 if no bit is set
int CountLeadingZeroBits(std::uint64_t x, int w);
int CountLeadingSignBits(std::uint64_t x, int w);
int BitCount(std::uint64_t x, int w);
std::uint64_t BitReverse(std::uint64_t x, int w);
// Groups of g bytes in reverse order. g is 1, 2 or 4. The result is 0 for any other g, and if there
// is no group.
std::uint64_t Reverse(std::uint64_t x, int w, int g);

// These compare at width w, but return the chosen argument whole, and the first one on a tie. They
// return 0 for a w other than 8, 16, 32, 64.
std::uint64_t Max(std::uint64_t a, std::uint64_t b, int w, int u);
std::uint64_t Min(std::uint64_t a, std::uint64_t b, int w, int u);

// Carry-less product.
sve::WordPair PolynomialMult(std::uint64_t a, std::uint64_t b);

// 256 bits.

BigInt toBigInt(__int128 x);
BigInt AddBigInt(BigInt a, BigInt b);
BigInt ShiftRightBigInt(BigInt b, int s);  // arithmetic, s from 0 to 127
sve::Saturated SatQBigInt(BigInt b, int w, int u);

// Fixed-point estimates (the architecture's RecipEstimate and RecipSqrtEstimate): multiples of
// 1/256 for a in [0.5, 1) and in [0.25, 1).
double recip_estimate(double a);
double recip_sqrt_estimate(double a);
// On 32-bit fixed-point numbers in [0, 1), for URECPE and URSQRTE. All ones if x is too small.
std::uint32_t UnsignedRecipEstimate(std::uint64_t x, int unread);
std::uint32_t UnsignedRSqrtEstimate(std::uint64_t x, int unread);
