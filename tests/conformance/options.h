// The command line of the conformance test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/tools/options.h"

namespace conformance {

struct options {
  std::uint64_t seed = 0;  // random unless given
  unsigned count = 0;
  std::vector<std::string> rows;  // name patterns; none means all rows
  test_options::part shard;
  std::optional<std::uint32_t> word;
  std::optional<std::uint64_t> state_seed;
  std::string output;  // the file for the full list, or empty
  bool self_check = false;
};

options parse_options(int argc, char** argv);

}  // namespace conformance
