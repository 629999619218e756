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

#include "tests/conformance/arena.h"
#include "tests/conformance/cases.h"
#include "tests/conformance/options.h"
#include "tests/conformance/report.h"
#include "tests/conformance/self_check.h"

namespace conformance {
namespace {

bool is_chosen(const options& chosen, const sve::instruction_row& row) {
  const std::string name{row.name}, mnemonic{row.mnemonic};
  return chosen.rows.empty() || std::ranges::any_of(chosen.rows, [&](const std::string& pattern) {
           return fnmatch(pattern.c_str(), name.c_str(), 0) == 0 ||
                  fnmatch(pattern.c_str(), mnemonic.c_str(), 0) == 0;
         });
}

std::vector<const sve::instruction_row*> choose_rows(const options& chosen) {
  std::vector<const sve::instruction_row*> rows;
  unsigned position = 0;
  for (const sve::instruction_row& row : sve::instruction_rows())
    if (is_chosen(chosen, row) && chosen.shard.has(position++)) rows.push_back(&row);
  return rows;
}

std::vector<row_shape> describe_all(const std::vector<const sve::instruction_row*>& rows) {
  std::vector<row_shape> shapes;
  shapes.reserve(rows.size());
  for (const sve::instruction_row* row : rows) shapes.push_back(describe(*row));
  return shapes;
}

int run_word(const options& chosen) {
  const sve::instruction_row* row = sve::find_row(*chosen.word);
  if (row == nullptr) {
    std::fprintf(stderr, "conformance: no row serves the word 0x%08x\n", *chosen.word);
    return 2;
  }
  const std::uint64_t first = chosen.state_seed.value_or(chosen.seed);
  std::vector<instruction_case> cases;
  for (unsigned i = 0; i < chosen.count; ++i) cases.push_back({*chosen.word, first + i});
  const row_shape shape = describe(*row);
  const row_result result = test_cases(shape, cases, report_failure);
  std::printf("%s: %u states compared, %u failed%s\n", std::string{row->name}.c_str(),
              result.compared, result.failed,
              result.reserved > 0 ? "; the processor refuses the word" : "");
  return result.status == row_status::passing ? 0 : 1;
}

int conclude(const options& chosen, const std::string& heading,
             const std::vector<row_result>& results) {
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

int run_rows(const options& chosen, const std::vector<const sve::instruction_row*>& rows) {
  const std::string heading = "seed " + std::to_string(chosen.seed) + ", " +
                              std::to_string(chosen.count) + " words for each row, " +
                              std::to_string(sve::vector_bits) + "-bit vectors\n";
  std::fputs(heading.c_str(), stdout);
  std::vector<row_result> results;
  for (const row_shape& shape : describe_all(rows))
    results.push_back(test_row(shape, chosen.seed, chosen.count, report_failure));
  return conclude(chosen, heading, results);
}

int run(const options& chosen) {
  const auto rows = choose_rows(chosen);
  if (rows.empty()) {
    std::fputs("conformance: no row matches\n", stderr);
    return 2;
  }
  map_arena();
  start_native_runs();
  if (chosen.word) return run_word(chosen);
  if (chosen.self_check) return self_check(describe_all(rows), chosen.seed) ? 0 : 1;
  return run_rows(chosen, rows);
}

}  // namespace
}  // namespace conformance

int main(int argc, char** argv) { return conformance::run(conformance::parse_options(argc, argv)); }
