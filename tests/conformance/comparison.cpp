#include "tests/conformance/comparison.h"

#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <numeric>

namespace conformance {
namespace {

std::string hex(std::uint64_t value, unsigned bytes = 8) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%0*" PRIx64, static_cast<int>(2 * bytes), value);
  return text;
}

std::string numbered(const char* name, std::size_t number, const char* suffix = "") {
  return std::string{name}.append(std::to_string(number)).append(suffix);
}

class differences {
 public:
  void check(const std::string& place, std::uint64_t before, std::uint64_t native,
             std::uint64_t emulated, unsigned bytes = 8) {
    if (native != emulated)
      found.push_back({place, hex(before, bytes), hex(native, bytes), hex(emulated, bytes)});
  }

  // Compares arrays of bytes as elements of 1, 2, 4 or 8 bytes.
  void check_elements(const std::string& place, unsigned element_bytes, std::size_t size,
                      const unsigned char* before, const unsigned char* native,
                      const unsigned char* emulated) {
    if (std::memcmp(native, emulated, size) == 0) return;
    for (std::size_t i = 0; i < size; i += element_bytes) {
      if (std::memcmp(native + i, emulated + i, element_bytes) == 0) continue;
      std::uint64_t values[3]{};
      std::memcpy(&values[0], before + i, element_bytes);
      std::memcpy(&values[1], native + i, element_bytes);
      std::memcpy(&values[2], emulated + i, element_bytes);
      check(place + "[" + std::to_string(i / element_bytes) + "]", values[0], values[1], values[2],
            element_bytes);
    }
  }

  std::vector<difference> found;
};

constexpr char element_letter(unsigned element_bytes) {
  return element_bytes == 8 ? 'd' : element_bytes == 4 ? 's' : element_bytes == 2 ? 'h' : 'b';
}

void compare_general(const machine_image& before, const machine_image& native,
                     const machine_image& emulated, differences& to) {
  if (std::memcmp(&native, &emulated, offsetof(machine_image, z)) == 0) return;
  for (std::size_t i = 0; i < 31; ++i)
    to.check(numbered("x", i), before.x[i], native.x[i], emulated.x[i]);
  to.check("sp", before.sp, native.sp, emulated.sp);
  to.check("nzcv", before.nzcv, native.nzcv, emulated.nzcv);
  to.check("fpsr", before.fpsr, native.fpsr, emulated.fpsr, 4);
  to.check("fpcr", before.fpcr, native.fpcr, emulated.fpcr, 4);
}

void compare_vectors(const test_case& tested, const machine_image& native,
                     const machine_image& emulated, differences& to) {
  if (std::memcmp(native.z, emulated.z, sizeof native.z) == 0) return;
  const unsigned size = std::min(tested.shape->element_bytes, 8U);
  const char suffix[] = {'.', element_letter(size), '\0'};
  for (std::size_t i = 0; i < 32; ++i)
    if (std::memcmp(native.z[i], emulated.z[i], sizeof native.z[i]) != 0)
      to.check_elements(numbered("z", i, suffix), size, sve::vector_bytes, tested.before.z[i],
                        native.z[i], emulated.z[i]);
}

std::string predicate_name(std::size_t i) { return i == ffr_index ? "ffr" : numbered("p", i); }

void compare_predicate(std::size_t i, const machine_image& before, const machine_image& native,
                       const machine_image& emulated, differences& to) {
  for (unsigned lane = 0; lane < sve::vector_bytes; ++lane) {
    const bool native_bit = predicate_bit(native.p[i], lane);
    const bool emulated_bit = predicate_bit(emulated.p[i], lane);
    if (native_bit != emulated_bit)
      to.found.push_back({predicate_name(i) + " bit [" + std::to_string(lane) + "]",
                          predicate_bit(before.p[i], lane) ? "1" : "0", native_bit ? "1" : "0",
                          emulated_bit ? "1" : "0"});
  }
}

void compare_predicates(const machine_image& before, const machine_image& native,
                        const machine_image& emulated, differences& to) {
  if (std::memcmp(native.p, emulated.p, sizeof native.p) == 0) return;
  for (std::size_t i = 0; i <= ffr_index; ++i)
    if (std::memcmp(native.p[i], emulated.p[i], sizeof native.p[i]) != 0)
      compare_predicate(i, before, native, emulated, to);
}

// Checks that bits 1 to 7 of each predicate byte are 0. Bit 0 has been compared already. The FFR
// follows P15.
void check_predicate_bytes(const cpu_state& state, differences& to) {
  const unsigned char* bytes = &state.p[0][0];
  const std::size_t size = sizeof state.p + sizeof state.ffr;
  const bool all_0_or_1 = std::accumulate(bytes, bytes + size, 0, std::bit_or<>{}) <= 1;
  for (std::size_t i = 0; i < size && !all_0_or_1; ++i)
    if (bytes[i] > 1)
      to.check(predicate_name(i / sve::vector_bytes) + " byte [" +
                   std::to_string(i % sve::vector_bytes) + "] (0 or 1)",
               bytes[i] & 1, bytes[i] & 1, bytes[i], 1);
}

void compare_ends(const emulated_outcome& outcome, differences& to) {
  if (outcome.signal != 0) {
    to.found.push_back(
        {"signal", "", "none",
         std::string{sigabbrev_np(outcome.signal)} + " at " + hex(outcome.fault_address)});
    return;
  }
  to.check("result code", 0, aarch64_decode_ok, static_cast<std::uint64_t>(outcome.rc), 1);
  to.check("pc advance", 0, 1, static_cast<std::uint64_t>(outcome.pc_advance));
}

}  // namespace

std::vector<difference> compare(const test_case& tested, const both_runs& runs) {
  static machine_image emulated;
  differences all;
  compare_ends(runs.outcome, all);
  pack(*runs.emulated, emulated);
  compare_general(tested.before, *runs.native, emulated, all);
  compare_vectors(tested, *runs.native, emulated, all);
  compare_predicates(tested.before, *runs.native, emulated, all);
  check_predicate_bytes(*runs.emulated, all);
  if (tested.shape->memory)
    all.check_elements("memory", tested.shape->memory->memory, arena_bytes, tested.memory.data(),
                       runs.native_memory->data(), runs.emulated_memory->data());
  return std::move(all.found);
}

}  // namespace conformance
