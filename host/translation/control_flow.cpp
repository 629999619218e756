#include "host/translation/control_flow.h"

#include "host/translation/assembler.h"

namespace host {
namespace {

constexpr bool matches(std::uint32_t word, std::uint32_t mask, std::uint32_t value) {
  return (word & mask) == value;
}

std::uint64_t target_at(std::uint32_t word, std::uint64_t pc, unsigned hi, unsigned lo) {
  return pc + static_cast<std::uint64_t>(signed_field(word, hi, lo) * 4);
}

control_flow indirect(std::uint32_t word) {
  control_flow out{
      .kind = flow::indirect, .links = field(word, 22, 21) == 1, .reg = field(word, 9, 5)};
  if (field(word, 11, 11) == 0) return out;
  const bool key_b = field(word, 10, 10) != 0;
  const bool is_return = field(word, 22, 21) == 2;
  if (is_return) out.reg = 30;
  out.has_modifier = is_return || field(word, 24, 24) != 0;
  out.modifier = field(word, 4, 0);
  if (out.has_modifier) {
    out.authenticate = key_b ? 0xdac11400 : 0xdac11000;  // AUTIB X0, X0; AUTIA X0, X0
  } else {
    out.authenticate = key_b ? 0xdac137e0 : 0xdac133e0;  // AUTIZB X0; AUTIZA X0
  }
  return out;
}

bool is_indirect(std::uint32_t word) {
  const bool is_plain = matches(word, 0xff9ffc1f, 0xd61f0000);  // BR, BLR, RET
  return (is_plain && field(word, 22, 21) != 3) ||
         matches(word, 0xffdff81f, 0xd61f081f)      // BRAAZ, BRABZ, BLRAAZ, BLRABZ
         || matches(word, 0xffdff800, 0xd71f0800)   // BRAA, BRAB, BLRAA, BLRAB
         || matches(word, 0xfffffbff, 0xd65f0bff);  // RETAA, RETAB
}

bool is_later_branch(std::uint32_t word) {
  return matches(word, 0x7e000000, 0x74000000)      // CBGT, CBHI, CBEQ...
         || matches(word, 0xff000000, 0x55000000)   // RETAASPPC, RETABSPPC (immediate)
         || matches(word, 0xfffffbe0, 0xd65f0be0)   // RETAASPPCR, RETABSPPCR
         || matches(word, 0xff800000, 0xf3800000);  // AUTIASPPC, AUTIBSPPC: PC-relative
}

}  // namespace

control_flow decode_control_flow(std::uint32_t word, std::uint64_t pc) {
  const bool is_branch_or_system = field(word, 28, 26) == 5;
  if (!is_branch_or_system && !is_later_branch(word)) return {};
  if (matches(word, 0x7c000000, 0x14000000)) {  // B, BL
    return {.kind = flow::direct,
            .links = field(word, 31, 31) != 0,
            .target = target_at(word, pc, 25, 0)};
  }
  if (matches(word, 0xff000000, 0x54000000)) {  // B.cond, BC.cond
    return {.kind = flow::conditional, .target = target_at(word, pc, 23, 5)};
  }
  if (matches(word, 0x7e000000, 0x34000000)) {  // CBZ, CBNZ
    return {.kind = flow::conditional,
            .target = target_at(word, pc, 23, 5),
            .reg = field(word, 4, 0),
            .tests_register = true};
  }
  if (matches(word, 0x7e000000, 0x36000000)) {  // TBZ, TBNZ
    return {.kind = flow::conditional,
            .target = target_at(word, pc, 18, 5),
            .reg = field(word, 4, 0),
            .tests_register = true};
  }
  if (is_indirect(word)) return indirect(word);
  if (matches(word, 0xffe0001f, 0xd4000001)) return {.kind = flow::supervisor_call};
  if (matches(word, 0xffffffe0, 0xd50b7520)) {  // IC IVAU, Xt
    return {.kind = flow::invalidate, .reg = field(word, 4, 0)};
  }
  if (matches(word, 0xfffff0ff, 0xd50330df)) return {.kind = flow::synchronize};
  if (is_later_branch(word)) return {.kind = flow::unknown};
  return {};
}

}  // namespace host
