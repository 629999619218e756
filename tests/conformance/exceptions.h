// The rows for which the test does not compare with the processor's own outcome, because QEMU 7.2
// is wrong or because a difference from the architecture is intended. This list has all of them,
// each with its reason.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

struct exception {
  const char* rows;  // name pattern with * ? [] as in a shell
  const char* reason;

  // The word that runs on the processor in place of the row's own. May be null.
  std::uint32_t (*native_word)(std::uint32_t word);

  // Corrects what the processor left in `after`. May be null.
  void (*correct)(const row_shape& shape, std::uint32_t word, const machine_image& before,
                  machine_image& after);
};

// The exception for a row at the vector length of the build, or null.
const exception* find_exception(const row_shape& shape);

}  // namespace conformance
