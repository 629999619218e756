// The command line of the conformance test.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace conformance {

struct options {
  std::uint64_t seed = 0;  // random unless given
  unsigned count = 500;
  std::vector<std::string> rows;  // name patterns; none means all rows
  unsigned shard = 1, shards = 1;
  std::optional<std::uint32_t> word;
  std::optional<std::uint64_t> state_seed;
  std::string output;  // file for the full list, or empty
  bool list = false;
  bool self_check = false;
};

// Ends the program with the usage text for --help, with one line of explanation for anything wrong.
options parse_options(int argc, char** argv);

}  // namespace conformance
