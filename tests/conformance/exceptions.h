// Where the outcome on the processor is not what is compared: faults of QEMU 7.2, and differences
// from the architecture that are meant. This list has all of them, each with its reason.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/conformance/machine_image.h"
#include "tests/conformance/row_shape.h"

namespace conformance {

struct exception {
  const char* rows;  // names, with * ? [] as a shell has them
  const char* reason;

  // The word that runs on the processor in place of the row's own. May be null.
  std::uint32_t (*native_word)(std::uint32_t word);

  // Puts right what the processor left in `after`. May be null.
  void (*correct)(const row_shape& shape, std::uint32_t word, const machine_image& before,
                  machine_image& after);
};

// The exception for a row at the vector length of the build, or null.
const exception* find_exception(const row_shape& shape);

}  // namespace conformance
