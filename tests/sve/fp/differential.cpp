// The differential test of the floating-point library. It compares each function with the
// processor's own instruction, results and flags bit for bit, under every mode. It runs on a
// processor with half precision and SVE. `fp_differential --help` lists the options.
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <random>

#include "sve/fp/fpscr.h"
#include "tests/sve/fp/values.h"
#include "tests/tools/options.h"

namespace fp_test {
namespace {

constexpr const char* purpose =
    "Compares the floating-point library with the processor, results and flags, under every mode."
    "\vExit status: 0 if nothing differs, 1 if something does, 2 if the test could not run.";

constexpr argp_option described[] = {
    {"function", 'f', "GLOB", 0, "only these functions; --list shows their names", 0},
    {"count", 'c', "N", 0,
     "N random operands for each function and mode, besides the special ones (default 1000); "
     "functions of one half get all halves instead",
     0},
    {"seed", 's', "N", 0, "make random operands from N (default: random, and printed)", 0},
    {"mode", 'm', "WORD", 0, "only this mode, as in FPCR", 0},
    {"part", 'p', "K/N", 0, "only the K-th of N parts of the work", 0},
    {"all-half-pairs", 'a', nullptr, 0,
     "all 2^32 pairs of each function of two halves, by default under mode 0", 0},
    {"self-check", 'k', nullptr, 0,
     "falsify an answer of the library under each mode: the test must find all of them", 0},
    {"list", 'l', nullptr, 0, "list the functions and run nothing", 0},
    {},
};

struct options {
  std::string function = "*";
  std::uint64_t seed = std::random_device{}();
  std::uint64_t count = 1000;
  std::int64_t mode = -1;
  test_options::part part;
  bool all_half_pairs = false, self_check = false, list = false;
} chosen;

// What is not compared, and why.
bool is_excepted(const operation& of, std::uint32_t mode) {
  // SCVTF and UCVTF of a fixed-point number flush a half result under FZ16, and fplibFixedToFP does
  // not. No SVE instruction has fraction bits, and without them no result is denormal.
  return of.name.find("cvtf#") == 1 && of.name.ends_with(".h") && (mode & FPSCR::FZ16) != 0;
}

class comparison {
 public:
  explicit comparison(const operation& of) : of_(of) {}

  void run(std::uint32_t mode, const std::vector<operands>& batch) {
    library_.resize(batch.size());
    processor_.resize(batch.size());
    of_.library(mode, batch, library_);
    of_.processor(mode, batch, processor_);
    if (chosen.self_check) falsify(library_[batch.size() / 2]);
    for (std::size_t i = 0; i < batch.size(); ++i)
      if (library_[i] != processor_[i]) report(mode, batch[i], library_[i], processor_[i]);
    compared_ += batch.size();
  }

  bool conclude() const {
    std::printf("%-14s %11lu compared, %lu differ\n", of_.name.c_str(), compared_, different_);
    return different_ == falsified_ && compared_ != 0;
  }

 private:
  // Changes the result and the flags in turn.
  void falsify(answer& wrong) { (++falsified_ % 2 == 0 ? wrong.value : wrong.flags) ^= FPSCR::IXC; }

  void report(std::uint32_t mode, const operands& in, const answer& got, const answer& expected) {
    if (++different_ > 5 || chosen.self_check) return;
    std::printf("%s, mode 0x%08x, operands", of_.name.c_str(), mode);
    for (int i = 0; i < of_.count; ++i) std::printf(" 0x%0*lx", of_.width / 4, in[i]);
    std::printf(": library 0x%lx flags 0x%02lx, processor 0x%lx flags 0x%02lx\n", got.value,
                got.flags, expected.value, expected.flags);
  }

  const operation& of_;
  std::vector<answer> library_, processor_;
  std::uint64_t compared_ = 0, different_ = 0, falsified_ = 0;
};

std::vector<std::uint32_t> modes_of(const operation& of) {
  if (chosen.mode >= 0) return {static_cast<std::uint32_t>(chosen.mode)};
  std::vector<std::uint32_t> result{0};
  for (const std::uint32_t control : {1U << FPSCR::RMode_shift, 2U << FPSCR::RMode_shift, FPSCR::FZ,
                                      FPSCR::DN, FPSCR::FZ16, FPSCR::AHP}) {
    if (control == FPSCR::AHP && !of.name.starts_with("fcvt.")) continue;  // nothing else uses it
    for (std::size_t i = result.size(); i > 0; --i) result.push_back(result[i - 1] | control);
  }
  std::erase_if(result, [&](std::uint32_t mode) { return is_excepted(of, mode); });
  return result;
}

// All pairs of special values. For three operands, each pair comes with two values of the third.
std::vector<operands> special_operands(const operation& of, operand_source& source) {
  std::vector<operands> result;
  const std::vector<std::uint64_t> first = source.special_values(0);
  const std::vector<std::uint64_t> second = source.special_values(1);
  for (const std::uint64_t a : first) {
    if (of.count == 1) result.push_back({a});
    for (std::size_t i = 0; of.count > 1 && i < second.size(); ++i) {
      result.push_back({a, second[i]});
      if (of.count == 2) continue;
      result.back()[2] = first[i * 17 % first.size()];
      result.push_back({a, second[i], source.random()[2]});
    }
  }
  return result;
}

// Compares the same operands under each mode.
bool compare(const operation& of) {
  comparison result{of};
  operand_source source{of, conformance::derive_seed(chosen.seed, of.name, 0)};
  const std::vector<std::uint32_t> modes = modes_of(of);
  const auto run = [&](const std::vector<operands>& batch) {
    for (const std::uint32_t mode : modes) result.run(mode, batch);
  };
  if (!chosen.self_check) run(special_operands(of, source));
  const bool is_exhausted = of.count == 1 && of.width == 16 && !chosen.self_check;
  std::vector<operands> batch;
  for (std::uint64_t left = is_exhausted ? 0 : chosen.count; left > 0; left -= batch.size()) {
    batch.resize(std::min<std::uint64_t>(left, 4096));
    std::ranges::generate(batch, [&] { return source.random(); });
    run(batch);
  }
  return result.conclude();
}

// Compares all pairs of halves under one mode.
bool compare_all_pairs(const operation& of) {
  comparison result{of};
  std::vector<operands> batch(0x10000);
  for (std::uint64_t a = chosen.part.number - 1; a < batch.size(); a += chosen.part.count) {
    for (std::uint64_t b = 0; b < batch.size(); ++b) batch[b] = {a, b};
    result.run(static_cast<std::uint32_t>(std::max<std::int64_t>(chosen.mode, 0)), batch);
  }
  return result.conclude();
}

error_t apply(int key, char* text, argp_state* state) {
  switch (key) {
    case 'f': chosen.function = text; break;
    case 'c': chosen.count = test_options::number(state, "--count", text); break;
    case 's': chosen.seed = test_options::number(state, "--seed", text); break;
    case 'm':
      chosen.mode =
          static_cast<std::uint32_t>(test_options::number(state, "--mode", text, 0, UINT32_MAX));
      break;
    case 'p': chosen.part = test_options::part_of(state, "--part", text); break;
    case 'a': chosen.all_half_pairs = true; break;
    case 'k': chosen.self_check = true; break;
    case 'l': chosen.list = true; break;
    default: return ARGP_ERR_UNKNOWN;
  }
  return 0;
}

std::vector<operation> chosen_operations() {
  std::vector<operation> result;
  std::size_t position = 0;
  for (const operation& of : operations()) {
    if (fnmatch(chosen.function.c_str(), of.name.c_str(), 0) != 0) continue;
    if (chosen.all_half_pairs ? of.count == 2 && of.width == 16 : chosen.part.has(position++))
      result.push_back(of);
  }
  if (!result.empty()) return result;
  std::fprintf(stderr, "fp_differential: no function fits \"%s\"\n", chosen.function.c_str());
  std::exit(2);
}

int run() {
  std::printf("seed 0x%lx: --seed repeats this run\n", chosen.seed);
  std::size_t failed = 0;
  const std::vector<operation> functions = chosen_operations();
  for (const operation& of : functions) {
    if (!(chosen.all_half_pairs ? compare_all_pairs(of) : compare(of))) ++failed;
    std::fflush(stdout);
  }
  std::printf("%zu functions, %zu failed\n", functions.size(), failed);
  return failed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace fp_test

int main(int argc, char** argv) {
  test_options::parse(argc, argv, fp_test::described, fp_test::apply, fp_test::purpose);
  if (!fp_test::chosen.list) return fp_test::run();
  for (const auto& of : fp_test::chosen_operations()) std::puts(of.name.c_str());
}
