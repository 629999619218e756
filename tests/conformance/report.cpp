#include "tests/conformance/report.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fnmatch.h>
#include <map>
#include <memory>

#include "tests/conformance/exceptions.h"

namespace conformance {
namespace {

constexpr std::size_t max_differences = 12;

struct family {
  const char* rows;
  const char* name;
};

// The first entry that matches a row's name determines its family.
constexpr std::array families{
    family{"*Prefetch*", "prefetches"},
    family{"*@(Fill|Spill)SI", "register loads and stores"},
    family{"*LoadDup*", "replicating loads"},
    family{"*Load[FN]F*", "first-fault and non-fault loads"},
    family{"*E[234]@(Load|Store)*", "structure loads and stores"},
    family{"*C@(Load|Store)*", "contiguous loads and stores"},
    family{"*@(Load|Store)[1248]*", "gathers and scatters"},
    family{"*@(While|CTerm)*", "loop control"},
    family{"*@(Count*|VL[48SVX]*|AddPLX)", "counts"},
    family{"VecP*", "predicates"},
    family{"*CmpFlg*", "integer compares"},
    family{"*@(Zip[12]|Uzp[12]|Trn[12]|Tbl|Splice|Compress|Sel)VV",
           "permutes, copies and extraction"},
    family{"*@(ReverseV|SlideVI|Last[AB]V|InsertS)", "permutes, copies and extraction"},
    family{"*@(Unpack|CondX[AB]|Dup|Move)*", "permutes, copies and extraction"},
    family{"Vec[FDH][136]*", "floating point"},
    family{"*_[248]From*", "floating point"},
    family{"*Reduce*", "integer reductions"},
    family{"*", "integer arithmetic"},
};

const char* family_of(const sve::instruction_row& row) {
  const std::string name{row.name};
  return std::ranges::find_if(families,
                              [&](const family& entry) {
                                return fnmatch(entry.rows, name.c_str(), FNM_EXTMATCH) == 0;
                              })
      ->name;
}

const char* kind_name(sve::row_kind kind) {
  if (kind == sve::row_kind::fast) return "fast";
  return kind == sve::row_kind::bridge ? "bridge" : "no-op";
}

const char* status_name(row_status status) {
  return status == row_status::passing ? "passing" : "failing";
}

std::string text(std::string_view view) { return std::string{view}; }

struct tally {
  unsigned passing = 0, failing = 0;
  unsigned long compared = 0, reserved = 0;

  void add(const row_result& result) {
    passing += result.status == row_status::passing ? 1 : 0;
    failing += result.status == row_status::failing ? 1 : 0;
    compared += result.compared;
    reserved += result.reserved;
  }

  void print(std::FILE* out, const char* family, const char* kind) const {
    std::fprintf(out, "%-32s %-7s %8u %8u %10lu\n", family, kind, passing, failing, compared);
  }
};

void print_fields(const test_case& tested) {
  for (const operand_field& field : tested.shape->fields)
    std::printf(" %c=%u", field.letter, tested.shape->value(field.letter, tested.word));
}

void report_row(std::FILE* out, const row_result& result) {
  const std::string name = text(result.row->name) + " (" + text(result.row->mnemonic) + ")";
  if (result.compared == 0)
    std::fprintf(out, "failing: %s: the processor refused all %u words\n", name.c_str(),
                 result.reserved);
  else
    std::fprintf(out, "failing: %s: %u of %u words\n", name.c_str(), result.failed,
                 result.compared);
}

void print_failing_rows(std::FILE* out, const std::vector<row_result>& results) {
  for (const row_result& result : results)
    if (result.status == row_status::failing) report_row(out, result);
}

}  // namespace

void report_failure(const test_case& tested, const std::vector<difference>& found) {
  std::printf("\n%s: word 0x%08x, %s (%s;", text(tested.shape->row->name).c_str(), tested.word,
              sve::disassemble(tested.word).c_str(), text(tested.shape->row->pattern).c_str());
  print_fields(tested);
  std::printf(")\n  %-20s %18s %18s %18s\n", "", "before", "processor", "emulation");
  for (std::size_t i = 0; i < std::min(found.size(), max_differences); ++i)
    std::printf("  %-20s %18s %18s %18s\n", found[i].place.c_str(), found[i].before.c_str(),
                found[i].native.c_str(), found[i].emulated.c_str());
  if (found.size() > max_differences)
    std::printf("  and %zu more\n", found.size() - max_differences);
  if (const exception* applied = find_exception(*tested.shape))
    std::printf("  the processor's side follows an exception: %s\n", applied->reason);
  std::printf(
      "  repeat: qemu-aarch64 -L /usr/aarch64-linux-gnu -cpu max,sve-default-vector-length=%u %s "
      "--word 0x%08x --state-seed 0x%016llx\n",
      sve::vector_bytes, program_invocation_name, tested.word,
      static_cast<unsigned long long>(tested.state_seed));
  std::fflush(stdout);
}

void print_summary(std::FILE* out, const std::vector<row_result>& results) {
  std::map<std::pair<std::string, std::string>, tally> groups;
  tally total;
  for (const row_result& result : results) {
    groups[{family_of(*result.row), kind_name(result.row->kind)}].add(result);
    total.add(result);
  }
  std::fprintf(out, "\n%-32s %-7s %8s %8s %10s\n", "family", "kind", "passing", "failing", "words");
  for (const auto& [group, count] : groups)
    count.print(out, group.first.c_str(), group.second.c_str());
  total.print(out, "all", "");
  std::fprintf(out, "%lu reserved words left out\n", total.reserved);
  print_failing_rows(out, results);
}

bool write_results(const std::string& path, const std::string& heading,
                   const std::vector<row_result>& results) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file{std::fopen(path.c_str(), "w"),
                                                             std::fclose};
  if (!file) return false;
  std::fputs(heading.c_str(), file.get());
  print_summary(file.get(), results);
  std::fputs("\nname\tfamily\tkind\tpattern\tstatus\tcompared\tfailed\treserved\tsyntax\n",
             file.get());
  for (const row_result& result : results)
    std::fprintf(file.get(), "%s\t%s\t%s\t%s\t%s\t%u\t%u\t%u\t%s\n", text(result.row->name).c_str(),
                 family_of(*result.row), kind_name(result.row->kind),
                 text(result.row->pattern).c_str(), status_name(result.status), result.compared,
                 result.failed, result.reserved, result.row->syntax().c_str());
  return std::fflush(file.get()) == 0 && std::ferror(file.get()) == 0;
}

}  // namespace conformance
