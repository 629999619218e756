// Runs a fuzz target with random inputs. The targets have libFuzzer's entry, so that clang can link
// them with -fsanitize=fuzzer instead. GCC has only the sanitizers, and this driver does the rest.
// Input number i depends only on the seed and on i. A child process runs the inputs. No matter what
// ends it, the driver prints the command that runs the failing input alone.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/tools/options.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

struct settings {
  std::uint64_t seed = std::random_device{}();
  std::uint64_t first = 0;
  std::uint64_t count = 100'000;
} chosen;

constexpr argp_option described[] = {
    {"seed", 's', "N", 0, "make the inputs from N (default: random, and printed)", 0},
    {"first", 'f', "N", 0, "begin with input N", 0},
    {"count", 'c', "N", 0, "run N inputs (default 100000)", 0},
    {},
};

error_t apply(int key, char* text, argp_state* state) {
  switch (key) {
    case 's': chosen.seed = test_options::number(state, "--seed", text); break;
    case 'f': chosen.first = test_options::number(state, "--first", text); break;
    case 'c': chosen.count = test_options::number(state, "--count", text); break;
    default: return ARGP_ERR_UNKNOWN;
  }
  return 0;
}

void run_input(std::uint64_t number) {
  std::mt19937_64 random(chosen.seed * 0x9e3779b97f4a7c15 + number);
  std::vector<std::uint8_t> input(random() % 64);
  for (std::uint8_t& byte : input) byte = static_cast<std::uint8_t>(random());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

void run_inputs(std::atomic<std::uint64_t>& current) {
  for (current = chosen.first; current < chosen.first + chosen.count; ++current) run_input(current);
}

}  // namespace

int main(int argc, char* argv[]) {
  test_options::parse(argc, argv, described, apply, "Runs a fuzz target with random inputs.");
  std::printf("seed %lu\n", chosen.seed);
  std::fflush(stdout);
  void* const shared = mmap(nullptr, sizeof(std::atomic<std::uint64_t>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  auto& current = *new (shared) std::atomic<std::uint64_t>;
  const pid_t child = fork();
  if (child == 0) {
    run_inputs(current);
    return 0;
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    std::fprintf(stderr, "repeat with: %s --seed %lu --first %lu --count 1\n", argv[0], chosen.seed,
                 current.load());
    return 1;
  }
  std::printf("%lu inputs, no failures\n", chosen.count);
}
