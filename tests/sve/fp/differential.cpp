// The differential test of the floating-point library: each function against the processor's own
// instruction, results and flags bit for bit, under every mode. It runs on a processor with half
// precision and SVE. `fp_differential --help` tells the options.
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <map>
#include <random>
#include <stdexcept>

#include "sve/fp/fpscr.h"
#include "tests/sve/fp/values.h"

namespace fp_test {
namespace {

constexpr const char* usage_text =
    R"(usage: fp_differential [OPTIONS]

Compares the floating-point library with the processor, results and flags, under every mode.

  --function GLOB   only these functions; --list shows their names
  --count N         N random operands for each function and mode, beside the special ones
                    (default 1000); functions of one half get all halves instead
  --seed N          make random operands from N (default: a random number, which is printed)
  --mode WORD       only this mode, as in FPCR
  --part K/N        only the K-th of N parts of the work
  --all-half-pairs  all 2^32 pairs of each function of two halves, by default under mode 0
  --self-check      falsify an answer of the library under each mode: all of them have to be found
  --list            list the functions and run nothing

Exit status: 0 if nothing differs, 1 if something does, 2 if the test could not run.
)";

struct options {
  std::string function = "*";
  std::uint64_t seed = std::random_device{}();
  std::uint64_t count = 1000;
  std::int64_t mode = -1;
  std::uint64_t part = 1, parts = 1;
  bool all_half_pairs = false, self_check = false, list = false, help = false;
} chosen;

// Whatever is not compared, and why.
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
  // By turns the result and the flags.
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
    if (control == FPSCR::AHP && !of.name.starts_with("fcvt.")) continue;  // nothing else knows it
    for (std::size_t i = result.size(); i > 0; --i) result.push_back(result[i - 1] | control);
  }
  std::erase_if(result, [&](std::uint32_t mode) { return is_excepted(of, mode); });
  return result;
}

// All pairs; of three operands, all pairs with two thirds each.
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

// The same operands under each mode.
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

// Under one mode.
bool compare_all_pairs(const operation& of) {
  comparison result{of};
  std::vector<operands> batch(0x10000);
  for (std::uint64_t a = chosen.part - 1; a < batch.size(); a += chosen.parts) {
    for (std::uint64_t b = 0; b < batch.size(); ++b) batch[b] = {a, b};
    result.run(static_cast<std::uint32_t>(std::max<std::int64_t>(chosen.mode, 0)), batch);
  }
  return result.conclude();
}

[[noreturn]] void refuse(const std::string& what) {
  std::fprintf(stderr, "fp_differential: %s; --help shows the options\n", what.c_str());
  std::exit(2);
}

std::uint64_t number(const std::string& text) {
  std::size_t end = 0;
  const std::uint64_t value = std::stoull(text, &end, 0);
  return end == text.size() ? value : throw std::invalid_argument{text};
}

void set_part(const std::string& text) {
  const std::size_t slash = std::min(text.find('/'), text.size() - 1);
  chosen.part = number(text.substr(0, slash));
  chosen.parts = number(text.substr(slash + 1));
  if (chosen.part < 1 || chosen.part > chosen.parts) throw std::invalid_argument{text};
}

void parse_options(const std::vector<std::string>& arguments) {
  const std::map<std::string, bool*> flags = {{"--all-half-pairs", &chosen.all_half_pairs},
                                              {"--self-check", &chosen.self_check},
                                              {"--list", &chosen.list},
                                              {"--help", &chosen.help}};
  const std::map<std::string, std::function<void(const std::string&)>> settings = {
      {"--function", [](auto& text) { chosen.function = text; }},
      {"--count", [](auto& text) { chosen.count = number(text); }},
      {"--seed", [](auto& text) { chosen.seed = number(text); }},
      {"--mode", [](auto& text) { chosen.mode = static_cast<std::uint32_t>(number(text)); }},
      {"--part", set_part}};
  for (std::size_t i = 0; i < arguments.size(); ++i) try {
      if (flags.contains(arguments[i]))
        *flags.at(arguments[i]) = true;
      else
        settings.at(arguments[i])(arguments.at(i + 1)), ++i;
    } catch (const std::logic_error&) {
      refuse("doesn't know " + arguments[i] + ", or not with that value");
    }
}

std::vector<operation> chosen_operations() {
  std::vector<operation> result;
  std::size_t position = 0;
  for (const operation& of : operations()) {
    if (fnmatch(chosen.function.c_str(), of.name.c_str(), 0) != 0) continue;
    if (chosen.all_half_pairs ? of.count == 2 && of.width == 16
                              : position++ % chosen.parts == chosen.part - 1)
      result.push_back(of);
  }
  if (result.empty()) refuse("no function fits \"" + chosen.function + "\"");
  return result;
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
  fp_test::parse_options({argv + 1, argv + argc});
  if (fp_test::chosen.help) return std::fputs(fp_test::usage_text, stdout) < 0 ? 1 : 0;
  if (!fp_test::chosen.list) return fp_test::run();
  for (const auto& of : fp_test::chosen_operations()) std::puts(of.name.c_str());
}
