// Runs a fuzz target on random inputs. An input is a number, the seed of all that the target makes
// of it: input i of a run is the run's seed plus i. A child process runs the inputs. No matter what
// ends it, the driver prints the command that runs the failing input alone.
#include <atomic>
#include <cstdio>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/fuzz/target.h"
#include "tests/tools/options.h"

namespace {

struct settings {
  std::uint64_t seed = std::random_device{}();
  std::uint64_t count = 100'000;
} chosen;

constexpr argp_option described[] = {
    {"seed", 's', "N", 0, "begin with input N (default: random, and printed)", 0},
    {"count", 'c', "N", 0, "run N inputs (default 100000)", 0},
    {},
};

error_t apply(int key, char* text, argp_state* state) {
  switch (key) {
    case 's': chosen.seed = test_options::number(state, "--seed", text); break;
    case 'c': chosen.count = test_options::number(state, "--count", text); break;
    default: return ARGP_ERR_UNKNOWN;
  }
  return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  test_options::parse(argc, argv, described, apply, "Runs a fuzz target with random inputs.");
  std::printf("seed %lu\n", chosen.seed);
  std::fflush(stdout);
  void* const shared = mmap(nullptr, sizeof(std::atomic<std::uint64_t>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  auto& done = *new (shared) std::atomic<std::uint64_t>;
  const pid_t child = fork();
  if (child == 0) {
    for (; done < chosen.count; ++done) {
      conformance::random_source random(chosen.seed + done);
      run_input(random);
    }
    return 0;
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    std::fprintf(stderr, "repeat with: %s --seed %lu --count 1\n", argv[0], chosen.seed + done);
    return 1;
  }
  std::printf("%lu inputs, no failures\n", chosen.count);
}
