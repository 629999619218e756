// Where the records of a signal frame stand. The numbers are those of Linux 6.1 on a processor with
// SVE.
#include "host/signals/frame_records.h"

#include <array>
#include <gtest/gtest.h>

namespace {

using host::frame_layout;
using host::lay_out_frame;

constexpr std::size_t fpsimd_at = 592;
constexpr std::size_t behind_fpsimd = fpsimd_at + 528;

struct layout_case {
  const char* what;
  bool has_syndrome;
  std::optional<std::size_t> vector_bytes;
  frame_layout expected;
};

std::array<std::size_t, 6> members(const frame_layout& f) {
  return {f.fpsimd, f.esr, f.sve, f.extra, f.end, f.size};
}

TEST(frame_records, stand_where_the_kernel_puts_them) {
  const std::size_t at = behind_fpsimd;
  const layout_case cases[] = {
      {"without sve_context", false, std::nullopt, {fpsimd_at, 0, 0, 0, at, 4688}},
      {"a fault", true, std::nullopt, {fpsimd_at, at, 0, 0, at + 16, 4688}},
      {"the header of sve_context alone", true, 0, {fpsimd_at, at, at + 16, 0, at + 32, 4688}},
      {"128 bits", false, 16, {fpsimd_at, 0, at, 0, at + 576, 4688}},
      {"768 bits, the most that fits", true, 96, {fpsimd_at, at, at + 16, 0, at + 3312, 4688}},
      {"896 bits", false, 112, {fpsimd_at, 0, at + 48, at, at + 48 + 3840, 5024}},
      {"2048 bits", true, 256, {fpsimd_at, at, at + 64, at + 16, at + 64 + 8752, 9952}},
  };
  for (const layout_case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(members(lay_out_frame(c.has_syndrome, c.vector_bytes)), members(c.expected));
  }
}

TEST(frame_records, need_the_stack_that_the_kernel_announces) {
  for (const auto& [vector_bytes, bytes] : {std::pair<std::size_t, std::size_t>{16, 4720},
                                            {96, 4720},
                                            {128, 5616},
                                            {240, 9440},
                                            {256, 9984}}) {
    EXPECT_EQ(host::smallest_signal_stack(vector_bytes), bytes) << vector_bytes;
  }
}

}  // namespace
