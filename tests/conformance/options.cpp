#include "tests/conformance/options.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
#include <random>

namespace conformance {
namespace {

constexpr const char* usage_text =
    R"(usage: conformance [OPTIONS]

Runs instruction words of every row of the instruction table on the processor, which has to have SVE
at the vector length of the build, and through the emulation, and compares all that they leave.

  --count N          compare N words of each row (default 500)
  --seed N           make words and states from N (default: a random number, which is printed)
  --row NAME         only the row of this name, or the rows of this mnemonic; * ? and [] as in the
                     shell; may be given several times
  --shard I/N        only every N-th row, starting with the I-th
  --word WORD        run this instruction word only, --count times (default 1)
  --state-seed N     make the first machine state of --word from N
  --list             list the rows and run nothing
  --output FILE      write the summary to FILE, too, and below it a line for each row: name, family,
                     kind, pattern, status, words compared, failed and reserved, syntax, between
                     tabs
  --self-check       show that the comparison notices a fault of each kind, and nothing else
  --help             print this text

Exit status: 0 if no row failed, 1 if one did, 2 if the test could not run.
)";

[[noreturn]] void refuse(const std::string& what) {
  std::fprintf(stderr, "conformance: %s; --help shows the options\n", what.c_str());
  std::exit(2);
}

// A whole number, decimal or with 0x, from 0 to `limit`.
std::uint64_t number(const std::string& option, const char* text, std::uint64_t limit) {
  char* end = nullptr;
  errno = 0;
  const std::uint64_t value = std::strtoull(text, &end, 0);
  const bool whole = *text != '\0' && *text != '-' && *end == '\0' && errno == 0;
  if (!whole || value > limit)
    refuse(option + " takes a number from 0 to " + std::to_string(limit) + ", not \"" + text +
           "\"");
  return value;
}

unsigned count(const char* text) {
  const auto value = static_cast<unsigned>(number("--count", text, 1000000));
  if (value == 0) refuse("--count takes a number from 1 on, not 0");
  return value;
}

void set_shard(options& chosen, const char* text) {
  int end = 0;
  const int read = std::sscanf(  // NOLINT(cert-err34-c): the range is checked below
      text, "%9u/%9u%n", &chosen.shard, &chosen.shards, &end);
  const bool whole = read == 2 && text[end] == '\0';
  if (!whole || chosen.shard < 1 || chosen.shard > chosen.shards)
    refuse(std::string{"--shard takes I/N with I from 1 to N, not \""} + text + "\"");
}

std::uint64_t random_seed() {
  std::random_device device;
  return device();  // 32 bits, short enough to type
}

enum option_code : int {
  seed_option = 1,
  count_option,
  row_option,
  shard_option,
  word_option,
  state_option,
  list_option,
  output_option,
  check_option,
  help_option,
  missing_value = ':',
};

constexpr option long_options[] = {
    {"seed", required_argument, nullptr, seed_option},
    {"count", required_argument, nullptr, count_option},
    {"row", required_argument, nullptr, row_option},
    {"shard", required_argument, nullptr, shard_option},
    {"word", required_argument, nullptr, word_option},
    {"state-seed", required_argument, nullptr, state_option},
    {"list", no_argument, nullptr, list_option},
    {"output", required_argument, nullptr, output_option},
    {"self-check", no_argument, nullptr, check_option},
    {"help", no_argument, nullptr, help_option},
    {},
};

[[noreturn]] void show_usage() {
  std::fputs(usage_text, stdout);
  std::exit(0);
}

void apply(options& chosen, int code, const std::string& last_argument) {
  switch (code) {
    case seed_option: chosen.seed = number("--seed", optarg, UINT64_MAX); break;
    case count_option: chosen.count = count(optarg); break;
    case row_option: chosen.rows.emplace_back(optarg); break;
    case shard_option: set_shard(chosen, optarg); break;
    case word_option:
      chosen.word = static_cast<std::uint32_t>(number("--word", optarg, UINT32_MAX));
      break;
    case state_option: chosen.state_seed = number("--state-seed", optarg, UINT64_MAX); break;
    case list_option: chosen.list = true; break;
    case output_option: chosen.output = optarg; break;
    case check_option: chosen.self_check = true; break;
    case help_option: show_usage();
    case missing_value: refuse(last_argument + " needs a value");
    default: refuse("there is no option \"" + last_argument + "\"");
  }
}

}  // namespace

options parse_options(int argc, char** argv) {
  options chosen;
  chosen.seed = random_seed();
  opterr = 0;
  bool counted = false;
  for (int code = 0; (code = getopt_long_only(argc, argv, ":", long_options, nullptr)) != -1;) {
    counted = counted || code == count_option;
    apply(chosen, code, argv[optind - 1]);
  }
  if (optind < argc) refuse(std::string{"unexpected argument \""} + argv[optind] + "\"");
  if (chosen.state_seed && !chosen.word) refuse("--state-seed goes with --word");
  if (chosen.word && !counted) chosen.count = 1;
  return chosen;
}

}  // namespace conformance
