// Encodings of the few instructions that the host itself puts into the cache, and the buffer for
// them. Register numbers are 0 to 31; displacements and offsets are in bytes.
#pragma once

#include <cstdint>
#include <vector>

namespace host {

using words = std::vector<std::uint32_t>;

inline constexpr unsigned context_register = 28;
inline constexpr unsigned zero_register = 31;

constexpr std::uint32_t field(std::uint32_t word, unsigned hi, unsigned lo) {
  return (word >> lo) & ((1u << (hi - lo + 1)) - 1);
}

constexpr std::int64_t signed_field(std::uint32_t word, unsigned hi, unsigned lo) {
  const unsigned width = hi - lo + 1;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(field(word, hi, lo))
                                   << (64 - width)) >>
         (64 - width);
}

constexpr std::uint32_t replace_field(std::uint32_t word, unsigned lo, unsigned value) {
  return (word & ~(31u << lo)) | (value << lo);
}

namespace a64 {

// LDR Xt, [Xn, #displacement]
constexpr std::uint32_t ldr(unsigned t, unsigned n, unsigned displacement) {
  return 0xf9400000 | (displacement / 8) << 10 | n << 5 | t;
}
// STR Xt, [Xn, #displacement]
constexpr std::uint32_t str(unsigned t, unsigned n, unsigned displacement) {
  return 0xf9000000 | (displacement / 8) << 10 | n << 5 | t;
}
// LDP Xt, Xt2, [Xn, #displacement]
constexpr std::uint32_t ldp(unsigned t, unsigned t2, unsigned n, int displacement) {
  return 0xa9400000 | (static_cast<unsigned>(displacement / 8) & 0x7f) << 15 | t2 << 10 | n << 5 |
         t;
}
// STP Xt, Xt2, [Xn, #displacement]
constexpr std::uint32_t stp(unsigned t, unsigned t2, unsigned n, int displacement) {
  return 0xa9000000 | (static_cast<unsigned>(displacement / 8) & 0x7f) << 15 | t2 << 10 | n << 5 |
         t;
}
// MOV Xd, Xm
constexpr std::uint32_t mov(unsigned d, unsigned m) { return 0xaa0003e0 | m << 16 | d; }
// ADD Xd|SP, Xn|SP, #immediate
constexpr std::uint32_t add(unsigned d, unsigned n, unsigned immediate) {
  return 0x91000000 | immediate << 10 | n << 5 | d;
}
constexpr std::uint32_t branch_bits(std::int64_t offset) {
  return static_cast<std::uint32_t>(offset / 4) & 0x03ffffff;
}
constexpr std::uint32_t b(std::int64_t offset) { return 0x14000000 | branch_bits(offset); }
constexpr std::uint32_t bl(std::int64_t offset) { return 0x94000000 | branch_bits(offset); }
constexpr std::uint32_t br(unsigned n) { return 0xd61f0000 | n << 5; }
constexpr std::uint32_t blr(unsigned n) { return 0xd63f0000 | n << 5; }
constexpr std::uint32_t movz(unsigned d, unsigned immediate, unsigned half) {
  return 0xd2800000 | half << 21 | immediate << 5 | d;
}
constexpr std::uint32_t movn(unsigned d, unsigned immediate, unsigned half) {
  return 0x92800000 | half << 21 | immediate << 5 | d;
}
constexpr std::uint32_t movk(unsigned d, unsigned immediate, unsigned half) {
  return 0xf2800000 | half << 21 | immediate << 5 | d;
}

// LDR Xt, label
constexpr std::uint32_t ldr_literal(unsigned t, std::int64_t offset) {
  return 0x58000000 | (static_cast<std::uint32_t>(offset / 4) & 0x7ffff) << 5 | t;
}
// SUB Xd, Xn, Xm
constexpr std::uint32_t sub(unsigned d, unsigned n, unsigned m) {
  return 0xcb000000 | m << 16 | n << 5 | d;
}
constexpr std::uint32_t cbnz(unsigned t, std::int64_t offset) {
  return 0xb5000000 | (static_cast<std::uint32_t>(offset / 4) & 0x7ffff) << 5 | t;
}
// ADD Xd|SP, Xn|SP, #immediate, LSL #12
constexpr std::uint32_t add_pages(unsigned d, unsigned n, unsigned pages) {
  return 0x91400000 | pages << 10 | n << 5 | d;
}
// BFI Xd, Xn, #position, #width
constexpr std::uint32_t bfi(unsigned d, unsigned n, unsigned position, unsigned width) {
  return 0xb3400000 | (64 - position) << 16 | (width - 1) << 10 | n << 5 | d;
}

// ORR Xd, Xn, #immediate: `width` ones from bit `position` up, at most up to bit 63
constexpr std::uint32_t orr_row(unsigned d, unsigned n, unsigned position, unsigned width) {
  return 0xb2400000 | ((64 - position) & 63) << 16 | (width - 1) << 10 | n << 5 | d;
}
// ORR Xd, Xn, Xm
constexpr std::uint32_t orr(unsigned d, unsigned n, unsigned m) {
  return 0xaa000000 | m << 16 | n << 5 | d;
}

// Loads a register from its home, and stores it there.
constexpr std::uint32_t load_home(unsigned reg) { return ldr(reg, context_register, reg * 8); }
constexpr std::uint32_t store_home(unsigned reg) { return str(reg, context_register, reg * 8); }

// The shortest MOVZ/MOVK or MOVN/MOVK sequence for a constant: 1 to 4 words.
words mov_constant(unsigned d, std::uint64_t value);

}  // namespace a64

inline void append(words& out, const words& more) {
  out.insert(out.end(), more.begin(), more.end());
}

}  // namespace host
