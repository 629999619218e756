#include "tests/conformance/options.h"

#include <random>

namespace conformance {
namespace {

using test_options::number;

constexpr const char* purpose =
    "Runs instruction words of every row of the instruction table on the processor and through the "
    "emulation, and compares the outcomes. The processor must have SVE at the vector length of the "
    "build.\vExit status: 0 if no row failed, 1 if one did, 2 if the test could not run.";

constexpr argp_option described[] = {
    {"count", 'c', "N", 0, "compare N words of each row (default 500)", 0},
    {"seed", 's', "N", 0, "make words and states from N (default: random, and printed)", 0},
    {"row", 'r', "NAME", 0,
     "only rows with this name or mnemonic; NAME is a shell pattern; repeatable", 0},
    {"shard", 'p', "I/N", 0, "only every N-th row, starting with the I-th", 0},
    {"word", 'w', "WORD", 0, "run this instruction word only, --count times (default 1)", 0},
    {"state-seed", 't', "N", 0, "make the first machine state of --word from N", 0},
    {"output", 'o', "FILE", 0,
     "also write the summary to FILE, and below it a line for each row, separated by tabs: name, "
     "family, kind, pattern, status, words compared, failed and reserved, syntax",
     0},
    {"self-check", 'k', nullptr, 0, "show that the comparison notices a fault of each kind", 0},
    {},
};

void check_together(argp_state* state, options& chosen) {
  if (chosen.state_seed && !chosen.word) argp_error(state, "--state-seed needs --word");
  if (chosen.count == 0) chosen.count = chosen.word ? 1 : 500;
}

error_t apply(int key, char* text, argp_state* state) {
  options& chosen = *static_cast<options*>(state->input);
  switch (key) {
    case 'c':
      chosen.count = static_cast<unsigned>(number(state, "--count", text, 1, 1000000));
      break;
    case 's': chosen.seed = number(state, "--seed", text); break;
    case 'r': chosen.rows.emplace_back(text); break;
    case 'p': chosen.shard = test_options::part_of(state, "--shard", text); break;
    case 'w':
      chosen.word = static_cast<std::uint32_t>(number(state, "--word", text, 0, UINT32_MAX));
      break;
    case 't': chosen.state_seed = number(state, "--state-seed", text); break;
    case 'o': chosen.output = text; break;
    case 'k': chosen.self_check = true; break;
    case ARGP_KEY_END: check_together(state, chosen); break;
    default: return ARGP_ERR_UNKNOWN;
  }
  return 0;
}

}  // namespace

options parse_options(int argc, char** argv) {
  options chosen;
  chosen.seed = std::random_device{}();  // 32 bits, short enough to type
  test_options::parse(argc, argv, described, apply, purpose, &chosen);
  return chosen;
}

}  // namespace conformance
