// What every bridge does before and after its semantic function, even if the operation needs none
// of it. The flags come back zero-extended, and the FFR comes back with each byte 0 or 1.
#include "sve/decode/bridge.h"

#include <cstring>

#include "sve/state/access.h"
#include "sve/state/packed_predicate.h"

namespace sve {

PredV pack(const predicate_register& predicate) {
  PredV value{};
  for (unsigned i = 0; i < predicate_bytes; ++i)
    value.words[i / 8] |= std::uint64_t{pack_lanes(element<std::uint64_t>(predicate, i))}
                          << (i % 8 * 8);
  return value;
}

void unpack(const PredV& value, predicate_register& predicate) {
  for (unsigned i = 0; i < predicate_bytes; ++i) {
    const auto packed = static_cast<std::uint8_t>(value.words[i / 8] >> (i % 8 * 8));
    set_element(predicate, i, unpack_lanes(packed));
  }
}

CpuContext context_in(const cpu_state& state) {
  CpuContext context{};
  context.nzcv = static_cast<std::uint32_t>(state.nzcv);
  context.fpsr = state.fpsr;
  context.fpcr = state.fpcr | state.fpcr_extra;
  context.vl = vector_words64;
  context.ffr = pack(state.ffr);
  return context;
}

void context_out(const CpuContext& context, cpu_state& state) {
  state.nzcv = context.nzcv;
  state.fpsr = context.fpsr;
  state.fpcr = context.fpcr;
  unpack(context.ffr, state.ffr);
}

PredV value_of(const cpu_state* state, aarch64_p_reg reg) { return pack(state->p[reg.num]); }

std::uint64_t value_of(const cpu_state* state, aarch64_i_reg reg) {
  const unsigned code = reg.size == i_none ? reg.src_size : reg.size;
  const std::uint64_t value = read_x(state, reg);
  return code == D ? value : static_cast<std::uint32_t>(value);
}

std::uint64_t value_of(const cpu_state* state, aarch64_i_rsp_reg reg) { return read_x(state, reg); }

std::uint64_t value_of(const cpu_state* state, simd_register reg) {
  return element<std::uint64_t>(state->z[reg.num], 0);
}

void write_result(cpu_state* state, aarch64_z_reg reg, const VecV& value) {
  std::memcpy(state->z[reg.num], value.bytes, vector_bytes);
}

void write_result(cpu_state* state, aarch64_p_reg reg, const PredV& value) {
  unpack(value, state->p[reg.num]);
}

void write_result(cpu_state* state, aarch64_i_reg reg, std::uint64_t value) {
  const unsigned code = reg.size == i_none ? reg.dst_size : reg.size;
  write_x(state, reg, code == D ? value : static_cast<std::uint32_t>(value));
}

void write_result(cpu_state* state, simd_register reg, std::uint64_t value) {
  std::memset(state->z[reg.num], 0, vector_bytes);
  set_element(state->z[reg.num], 0, value);
}

}  // namespace sve
