// The conformance test compares every row of the instruction table with a processor that has SVE.
//
// The processor is the judge. Each instruction word runs natively on it from a random machine
// state, and through execute_sve_instruction() from the same state. Both must end in the same
// state. Rows, patterns and names come from the instruction table, so a new row is tested
// automatically. `conformance --help` lists the options.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fnmatch.h>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/conformance/arena.h"
#include "tests/conformance/cases.h"
#include "tests/conformance/report.h"
#include "tests/conformance/self_check.h"
#include "tests/tools/options.h"

namespace conformance {
namespace {

using test_options::number;

struct options {
  std::uint64_t seed = std::random_device{}();  // 32 bits, short enough to type
  unsigned count = 0;
  std::vector<std::string> rows;  // name patterns; none means all rows
  test_options::part shard;
  std::optional<std::uint32_t> word;
  std::optional<std::uint64_t> state_seed;
  std::string output;  // the file for the full list, or empty
  bool self_check = false;
} chosen;

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

void check_together(argp_state* state) {
  if (chosen.state_seed && !chosen.word) argp_error(state, "--state-seed needs --word");
  if (chosen.count == 0) chosen.count = chosen.word ? 1 : 500;
}

error_t apply(int key, char* text, argp_state* state) {
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
    case ARGP_KEY_END: check_together(state); break;
    default: return ARGP_ERR_UNKNOWN;
  }
  return 0;
}

bool is_chosen(const sve::instruction_row& row) {
  const std::string name{row.name}, mnemonic{row.mnemonic};
  return chosen.rows.empty() || std::ranges::any_of(chosen.rows, [&](const std::string& pattern) {
           return fnmatch(pattern.c_str(), name.c_str(), 0) == 0 ||
                  fnmatch(pattern.c_str(), mnemonic.c_str(), 0) == 0;
         });
}

std::vector<const sve::instruction_row*> choose_rows() {
  std::vector<const sve::instruction_row*> rows;
  unsigned position = 0;
  for (const sve::instruction_row& row : sve::instruction_rows())
    if (is_chosen(row) && chosen.shard.has(position++)) rows.push_back(&row);
  return rows;
}

std::vector<row_shape> describe_all(const std::vector<const sve::instruction_row*>& rows) {
  std::vector<row_shape> shapes;
  shapes.reserve(rows.size());
  for (const sve::instruction_row* row : rows) shapes.push_back(describe(*row));
  return shapes;
}

int run_word() {
  const sve::instruction_row* row = sve::find_row(*chosen.word);
  if (row == nullptr) {
    std::fprintf(stderr, "conformance: no row serves the word 0x%08x\n", *chosen.word);
    return 2;
  }
  const std::uint64_t first = chosen.state_seed.value_or(chosen.seed);
  const auto make = [&](unsigned i) { return instruction_case{*chosen.word, first + i}; };
  const row_result result = test_row(describe(*row), chosen.count, make, report_failure);
  std::printf("%s: %u states compared, %u failed%s\n", std::string{row->name}.c_str(),
              result.compared, result.failed,
              result.reserved > 0 ? "; the processor refuses the word" : "");
  return result.status == row_status::passing ? 0 : 1;
}

int conclude(const std::string& heading, const std::vector<row_result>& results) {
  print_summary(stdout, results);
  if (!chosen.output.empty() && !write_results(chosen.output, heading, results)) {
    std::fprintf(stderr, "conformance: cannot write %s: %s\n", chosen.output.c_str(),
                 std::strerror(errno));
    return 2;
  }
  const auto failing = [](const row_result& result) {
    return result.status == row_status::failing;
  };
  return std::ranges::any_of(results, failing) ? 1 : 0;
}

int run_rows(const std::vector<const sve::instruction_row*>& rows) {
  const std::string heading = "seed " + std::to_string(chosen.seed) + ", " +
                              std::to_string(chosen.count) + " words for each row, " +
                              std::to_string(sve::vector_bits) + "-bit vectors\n";
  std::fputs(heading.c_str(), stdout);
  std::vector<row_result> results;
  for (const row_shape& shape : describe_all(rows)) {
    const auto make = [&](unsigned i) { return random_case(shape, chosen.seed, i); };
    results.push_back(test_row(shape, chosen.count, make, report_failure));
  }
  return conclude(heading, results);
}

int run() {
  const auto rows = choose_rows();
  if (rows.empty()) {
    std::fputs("conformance: no row matches\n", stderr);
    return 2;
  }
  map_arena();
  start_native_runs();
  if (chosen.word) return run_word();
  if (chosen.self_check) return self_check(describe_all(rows), chosen.seed) ? 0 : 1;
  return run_rows(rows);
}

}  // namespace
}  // namespace conformance

int main(int argc, char** argv) {
  test_options::parse(argc, argv, conformance::described, conformance::apply, conformance::purpose);
  return conformance::run();
}
