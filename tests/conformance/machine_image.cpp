#include "tests/conformance/machine_image.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace conformance {
namespace {

// The eight predicate bytes for each value of eight predicate bits.
consteval std::array<std::uint64_t, 256> make_expansion() {
  std::array<std::uint64_t, 256> table{};
  for (std::size_t value = 0; value < 256; ++value)
    for (unsigned bit = 0; bit < 8; ++bit)
      table[value] |= static_cast<std::uint64_t>((value >> bit) & 1) << (8 * bit);
  return table;
}

constexpr std::array<std::uint64_t, 256> expansion = make_expansion();

void unpack_predicate(const packed_predicate& packed, predicate_register& unpacked) {
  for (unsigned j = 0; j < sve::predicate_bytes; ++j)
    std::memcpy(&unpacked[8 * static_cast<std::size_t>(j)], &expansion[packed[j]], 8);
}

// The multiplication moves bit 0 of byte k to bit 56 + k.
void pack_predicate(const predicate_register& unpacked, packed_predicate& packed) {
  for (unsigned j = 0; j < sve::predicate_bytes; ++j) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, &unpacked[8 * static_cast<std::size_t>(j)], 8);
    packed[j] =
        static_cast<unsigned char>(((bytes & 0x0101010101010101) * 0x0102040810204080) >> 56);
  }
}

}  // namespace

void unpack(const machine_image& image, cpu_state& state) {
  std::ranges::copy(image.x, state.x);
  state.sp = image.sp;
  state.pc = nullptr;
  state.nzcv = image.nzcv;
  state.fpsr = image.fpsr;
  state.fpcr = image.fpcr;
  state.fpcr_extra = 0;
  std::memcpy(state.z, image.z, sizeof state.z);
  for (unsigned i = 0; i < 16; ++i) unpack_predicate(image.p[i], state.p[i]);
  unpack_predicate(image.p[ffr_index], state.ffr);
  state.instr = 0;
}

void pack(const cpu_state& state, machine_image& image) {
  std::ranges::copy(state.x, image.x);
  image.sp = state.sp;
  image.nzcv = state.nzcv;
  image.fpsr = state.fpsr;
  image.fpcr = state.fpcr;
  std::memcpy(image.z, state.z, sizeof image.z);
  for (unsigned i = 0; i < 16; ++i) pack_predicate(state.p[i], image.p[i]);
  pack_predicate(state.ffr, image.p[ffr_index]);
}

}  // namespace conformance
